#pragma once

#include <QIODevice>
#include <QSize>
#include <optional>

namespace framora {

/// What the header of a JPEG file says of what decoding it takes.
struct JpegFrame {
    QSize size;
    /// Whether the picture comes in several passes: its decoder keeps all coefficients, two bytes a sample.
    bool isInPasses = false;
    /// Of all components together, with those that are coded smaller; 3 for colour without.
    double samplesPerPixel = 0;

    /// The memory for the coefficients; 0 when they are not kept.
    qint64 coefficientBytes() const;

    /// Reads the header from the start of the device, up to its first scan. Nothing when it is damaged.
    static std::optional<JpegFrame> read(QIODevice& file);
};

} // namespace framora
