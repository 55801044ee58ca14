#pragma once

#include "editor/render/DecodingWatch.h"

#include <QByteArray>
#include <QIODevice>

namespace framora {

/// A picture's file for a decoder that knows no bounds of its own: once the watch is over the file ends,
/// which every decoder takes for damage. What it makes of the part that it has got is to be dropped then.
class WatchedBytes final : public QIODevice {
public:
    /// Both outlive this; it is open. At most `pieceBytes` are given at a time: how much a decoder may do
    /// before it is stopped. Some decoders fail unless they get all that they ask for.
    WatchedBytes(const QByteArray& bytes, DecodingWatch& watch, qint64 pieceBytes = qint64(1) << 40);

    qint64 size() const override { return m_bytes.size(); }

protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray& m_bytes;
    DecodingWatch& m_watch;
    qint64 m_pieceBytes;
};

/// The longest piece for a decoder of JPEG files: hundreds of passes over a picture fit into four kilobytes.
inline constexpr qint64 jpegPieceBytes = 512;

} // namespace framora
