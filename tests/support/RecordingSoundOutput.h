#pragma once

#include "platform/SoundOutput.h"

#include <QHash>
#include <string>
#include <vector>

namespace framora {

/// A sound output that writes down what is asked of it.
class RecordingSoundOutput final : public SoundOutput {
public:
    class Player final : public AudioPlayer {
    public:
        Player(RecordingSoundOutput& owner, std::string name) : m_owner(owner), m_name(std::move(name)) {}
        ~Player() override { m_owner.log.push_back("release " + m_name); }
        void setVolume(float volume) override {
            m_owner.log.push_back("volume " + QString::number(double(volume)).toStdString());
        }
        void play() override { m_owner.log.push_back("play " + m_name); }

    private:
        RecordingSoundOutput& m_owner;
        std::string m_name;
    };

    bool fileExists(const QString& path) const override {
        log.push_back("exists " + path.toStdString());
        return files.contains(path);
    }
    std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override {
        log.push_back("open " + url.toString().toStdString());
        return files.value(url.path()) ? std::make_unique<Player>(*this, url.path().toStdString()) : nullptr;
    }
    std::unique_ptr<AudioPlayer> systemSound(const QString& name) override {
        log.push_back("system " + name.toStdString());
        return hasSystemSounds ? std::make_unique<Player>(*this, "system " + name.toStdString()) : nullptr;
    }

    /// The files there are; false for one that is no sound.
    QHash<QString, bool> files;
    bool hasSystemSounds = true;
    mutable std::vector<std::string> log;
};

} // namespace framora
