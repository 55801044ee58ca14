#pragma once

#include "platform/Pasteboard.h"
#include "platform/wayland/WaylandClipboard.h"

#include <functional>

namespace framora {

/// The clipboard by a data-control protocol. What the program offers is served by a small process from the
/// start, so that it is there whatever this program does, and after it has quit.
class WaylandPasteboard final : public Pasteboard {
public:
    /// A file's picture with its pixel ratio; null when it cannot be read.
    using DecodePicture = std::function<QImage(const QByteArray& file)>;

    /// The connection outlives this.
    WaylandPasteboard(WaylandConnection& connection, std::unique_ptr<WaylandClipboard> clipboard,
                      DecodePicture decodePicture);

    std::int64_t changeCount() override;
    QImage readImage() override;
    void writePng(const QByteArray& png) override;
    void adoptPicture(const QByteArray& png) override { writePng(png); }

private:
    /// What the owner gives as that type; empty when it falls silent for too long or sends too much.
    QByteArray read(const std::string& type);

    WaylandConnection& m_connection;
    std::unique_ptr<WaylandClipboard> m_clipboard;
    DecodePicture m_decodePicture;
};

} // namespace framora
