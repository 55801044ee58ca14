#pragma once

#include "platform/Pasteboard.h"

#include <QObject>
#include <functional>

namespace framora {

/// Qt's clipboard, for a desktop that tells of the clipboard only to the window with the focus. Only what
/// this program puts there counts as a change: what others copy is told of late, and again with each focus.
/// The desktop gets a picture at once where one of the program's windows has the focus, else as soon as one
/// has.
class AdoptingPasteboard final : public QObject, public Pasteboard {
    Q_OBJECT

public:
    /// A file's picture with its pixel ratio; null when it cannot be read.
    using DecodePicture = std::function<QImage(const QByteArray& file)>;

    explicit AdoptingPasteboard(DecodePicture decodePicture);

    std::int64_t changeCount() override { return m_changeCount; }
    QImage readImage() override;
    void writePng(const QByteArray& png) override;
    void adoptPicture(const QByteArray& png) override { writePng(png); }

private:
    void offer();

    DecodePicture m_decodePicture;
    QByteArray m_waiting; ///< A picture that the desktop has not been given yet.
    std::int64_t m_changeCount = 0;
};

} // namespace framora
