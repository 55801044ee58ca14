#pragma once

#include "platform/desktop/AdoptingPasteboard.h"
#include "platform/x11/X11Pasteboard.h"

#include <memory>

namespace framora {

/// The clipboard of the session's X server, for a desktop that tells only that one's clients of it and shares
/// it with Wayland's. The server is connected to, and by that started, at the first question, and again when
/// it has been started anew; where there is none, Qt's clipboard stands in. A server that does not answer is
/// not waited for again until a while has passed.
class XwaylandPasteboard final : public Pasteboard {
public:
    /// Null when no server answers; bounded in time.
    using Connect = std::function<std::unique_ptr<X11Connection>()>;

    /// The queue outlives this.
    XwaylandPasteboard(MainQueue& mainQueue, X11Pasteboard::DecodePicture decodePicture,
                       Connect connect = connectSoon());
    ~XwaylandPasteboard() override;

    std::int64_t changeCount() override;
    QImage readImage() override { return current().readImage(); }
    void writePng(const QByteArray& png) override { current().writePng(png); }
    void adoptPicture(const QByteArray& png) override { current().adoptPicture(png); }

private:
    static Connect connectSoon();
    Pasteboard& current();
    /// Whether there is a server now that there was not.
    bool connectAgain();

    MainQueue& m_mainQueue;
    Connect m_connect;
    X11Pasteboard::DecodePicture m_decodePicture;
    std::unique_ptr<X11Connection> m_connection;
    std::unique_ptr<X11Pasteboard> m_pasteboard; ///< Null while there is no server.
    std::unique_ptr<AdoptingPasteboard> m_standIn;
    std::unique_ptr<WorkItem> m_rest;  ///< After an attempt that failed.
    std::int64_t m_earlierChanges = 0; ///< Counted by those that are no more.
    std::int64_t m_lastCount = 0;
};

} // namespace framora
