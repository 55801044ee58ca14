#pragma once

#include "platform/MainQueue.h"
#include "platform/Sharing.h"

#include <QImage>
#include <QStringList>
#include <QWindow>

namespace framora {

/// A desktop that does with files what the test says, and remembers what it was given.
class RecordingSharing final : public Sharing {
public:
    explicit RecordingSharing(MainQueue& queue) : m_queue(queue) {}

    void queryAbilities(std::function<void(Abilities)> answer) override {
        m_queue.async([this, answer = std::move(answer)] { answer(abilities); });
    }
    void openWith(const QString& path, QWindow* parent, Finished finished) override {
        record(QStringLiteral("open"), path, parent, std::move(finished));
    }
    void composeMail(const QString& path, const QString& subject, QWindow* parent,
                     Finished finished) override {
        record(QStringLiteral("mail ") + subject, path, parent, std::move(finished));
    }

    Abilities abilities{true, true};
    Outcome outcome = Outcome::taken;
    QStringList calls;
    QStringList paths;
    QList<QImage> pictures; ///< As they lay there at the call.
    QWindow* parentWindow = nullptr;

private:
    void record(const QString& call, const QString& path, QWindow* parent, Finished finished) {
        calls.append(call);
        paths.append(path);
        pictures.append(QImage(path));
        parentWindow = parent;
        m_queue.async([this, finished = std::move(finished)] { finished(outcome); });
    }

    MainQueue& m_queue;
};

} // namespace framora
