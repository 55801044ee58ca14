#pragma once

#include <QString>
#include <QUrl>
#include <memory>

namespace framora {

/// One playing sound; destroying it cuts it off.
class AudioPlayer {
public:
    virtual ~AudioPlayer() = default;
    virtual void setVolume(float volume) = 0; ///< Linear, 0 to 1.
    virtual void play() = 0;                  ///< Returns at once.
};

class SoundOutput {
public:
    virtual ~SoundOutput() = default;
    virtual bool fileExists(const QString& path) const = 0;
    /// Nothing when the file is no sound that can be played.
    virtual std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) = 0;
    /// The desktop's own sound for a capture sound's name ("Frog"); nothing when it has none.
    virtual std::unique_ptr<AudioPlayer> systemSound(const QString& name) = 0;
};

} // namespace framora
