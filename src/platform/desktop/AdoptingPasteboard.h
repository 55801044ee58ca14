#pragma once

#include "platform/MainQueue.h"
#include "platform/Pasteboard.h"

#include <QObject>
#include <functional>
#include <memory>

namespace framora {

/// Qt's clipboard, for a desktop that tells of the clipboard only to the window with the focus. Only what
/// this program puts there counts as a change: what others copy is told of late, and again with each focus.
/// The desktop gets a picture at once where one of the program's windows has the focus, else as soon as one
/// has. One that waits for that for half a minute is dropped: nobody expects it any more, and what the user
/// may have copied elsewhere since is not told.
class AdoptingPasteboard final : public QObject, public Pasteboard {
    Q_OBJECT

public:
    /// A file's picture with its pixel ratio; null when it cannot be read.
    using DecodePicture = std::function<QImage(const QByteArray& file)>;

    /// The queue outlives this.
    AdoptingPasteboard(MainQueue& mainQueue, DecodePicture decodePicture);

    std::int64_t changeCount() override { return m_changeCount; }
    QImage readImage() override;
    void writePng(const QByteArray& png) override;
    void adoptPicture(const QByteArray& png) override { writePng(png); }

    /// The picture that the desktop has not been given yet, which then is the caller's to offer; empty when
    /// there is none.
    QByteArray takeWaiting();

private:
    void offer();

    MainQueue& m_mainQueue;
    DecodePicture m_decodePicture;
    QByteArray m_waiting;
    std::unique_ptr<WorkItem> m_dropping; ///< While a picture waits.
    std::int64_t m_changeCount = 0;
};

} // namespace framora
