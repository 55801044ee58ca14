#pragma once

#include "screencapture/MemoryImage.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace framora {

/// Pixels as KWin sends them through a pipe: rows of `stride` bytes in one of Qt's image formats.
struct RawPicture {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t stride = 0; ///< bytes
    uint32_t format = 0; ///< a number of QImage::Format
    double scale = 1;    ///< device pixels a logical pixel

    /// Bytes of all rows; 0 when the sides or the stride make no sense or no MemoryImage holds them, or when
    /// the format is none that we know.
    std::size_t byteCount() const;
    /// Whether the bytes are a MemoryImage's as they are.
    bool isPlain() const;
    /// The pixels as premultiplied BGRA, opaque where the format has no alpha. Null when `bytes` are not
    /// exactly byteCount() or memory is short.
    std::unique_ptr<MemoryImage> unpack(std::span<const std::byte> bytes) const;
};

} // namespace framora
