#pragma once

#include "platform/desktop/AdoptingPasteboard.h"
#include "platform/x11/X11Pasteboard.h"

#include <memory>

namespace framora {

/// The clipboard of the session's X server, for a desktop that tells only that one's clients of it and shares
/// it with Wayland's. The server is connected to, and by that started, at the first question, and again when
/// it has been started anew; where there is none, Qt's clipboard stands in.
class XwaylandPasteboard final : public Pasteboard {
public:
    explicit XwaylandPasteboard(X11Pasteboard::DecodePicture decodePicture);
    ~XwaylandPasteboard() override;

    std::int64_t changeCount() override;
    QImage readImage() override { return current().readImage(); }
    void writePng(const QByteArray& png) override { current().writePng(png); }
    void adoptPicture(const QByteArray& png) override { current().adoptPicture(png); }

private:
    Pasteboard& current();

    X11Pasteboard::DecodePicture m_decodePicture;
    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11Pasteboard> m_pasteboard; ///< Null while there is no server.
    std::unique_ptr<AdoptingPasteboard> m_standIn;
    std::int64_t m_earlierChanges = 0; ///< Counted by those that are no more.
    std::int64_t m_lastCount = 0;
};

} // namespace framora
