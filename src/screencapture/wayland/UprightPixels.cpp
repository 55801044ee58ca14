#include "screencapture/wayland/UprightPixels.h"

#include <algorithm>
#include <cstring>
#include <vector>
#include <wayland-client-protocol.h>

namespace framora {

namespace {

/// Red and blue exchanged, the rest as it is.
void swapRedAndBlue(const uint8_t* row, int width, uint32_t* out) {
    for (int x = 0; x < width; ++x) {
        uint32_t p = 0;
        std::memcpy(&p, row + static_cast<std::ptrdiff_t>(x) * 4, 4);
        out[x] = (p & 0xff00ff00U) | (p >> 16 & 0xffU) | (p & 0xffU) << 16;
    }
}

/// Reads the panel's row that is `y`th from the top.
class Rows {
public:
    explicit Rows(const PanelPixels& panel)
        : m_panel(panel), m_native(panel.format.native()),
          m_swapped(panel.format.bitsPerPixel == 32 && panel.format.leastByteFirst &&
                    panel.format.red == 0xff && panel.format.green == 0xff00 &&
                    panel.format.blue == 0xff0000) {}

    void read(int y, uint32_t* out) const {
        const int line = m_panel.bottomUp ? m_panel.height - 1 - y : y;
        const uint8_t* row = m_panel.bytes + static_cast<std::size_t>(line) * m_panel.stride;
        if (m_native)
            std::memcpy(out, row, static_cast<std::size_t>(m_panel.width) * 4);
        else if (m_swapped)
            swapRedAndBlue(row, m_panel.width, out);
        else
            m_panel.format.toBgra(row, m_panel.width, out);
    }

private:
    const PanelPixels& m_panel;
    bool m_native;
    bool m_swapped;
};

} // namespace

std::optional<PixelFormat> shmPixelFormat(uint32_t format) {
    const auto masks = [](int bits, uint32_t red, uint32_t green, uint32_t blue) {
        PixelFormat f;
        f.bitsPerPixel = bits;
        f.red = red;
        f.green = green;
        f.blue = blue;
        return f;
    };
    // An output's alpha means nothing.
    switch (format) {
    case WL_SHM_FORMAT_XRGB8888:
    case WL_SHM_FORMAT_ARGB8888:
        return masks(32, 0xff0000, 0xff00, 0xff);
    case WL_SHM_FORMAT_XBGR8888:
    case WL_SHM_FORMAT_ABGR8888:
        return masks(32, 0xff, 0xff00, 0xff0000);
    case WL_SHM_FORMAT_RGBX8888:
    case WL_SHM_FORMAT_RGBA8888:
        return masks(32, 0xff000000, 0xff0000, 0xff00);
    case WL_SHM_FORMAT_BGRX8888:
    case WL_SHM_FORMAT_BGRA8888:
        return masks(32, 0xff00, 0xff0000, 0xff000000);
    case WL_SHM_FORMAT_XRGB2101010:
    case WL_SHM_FORMAT_ARGB2101010:
        return masks(32, 0x3ff00000, 0xffc00, 0x3ff);
    case WL_SHM_FORMAT_XBGR2101010:
    case WL_SHM_FORMAT_ABGR2101010:
        return masks(32, 0x3ff, 0xffc00, 0x3ff00000);
    case WL_SHM_FORMAT_RGB888:
        return masks(24, 0xff0000, 0xff00, 0xff);
    case WL_SHM_FORMAT_BGR888:
        return masks(24, 0xff, 0xff00, 0xff0000);
    case WL_SHM_FORMAT_RGB565:
        return masks(16, 0xf800, 0x7e0, 0x1f);
    case WL_SHM_FORMAT_BGR565:
        return masks(16, 0x1f, 0x7e0, 0xf800);
    default:
        return std::nullopt;
    }
}

void copyUpright(const PanelPixels& from, PixelImage& to) {
    const Rows rows(from);
    const int w = from.width;
    const int h = from.height;
    if (from.transform == WL_OUTPUT_TRANSFORM_NORMAL) {
        for (int y = 0; y < h; ++y)
            rows.read(y, to.row(y));
        return;
    }
    // Some rows at a time: a turned picture is written down its columns, and a line of memory holds 16
    // pixels.
    constexpr int kBand = 16;
    std::vector<uint32_t> band(static_cast<std::size_t>(w) * kBand);
    for (int top = 0; top < h; top += kBand) {
        const int count = std::min(kBand, h - top);
        for (int i = 0; i < count; ++i)
            rows.read(top + i, band.data() + static_cast<std::ptrdiff_t>(i) * w);
        for (int x = 0; x < w; ++x) {
            for (int i = 0; i < count; ++i) {
                const int y = top + i;
                const uint32_t pixel = band[static_cast<std::size_t>(i) * static_cast<std::size_t>(w) +
                                            static_cast<std::size_t>(x)];
                switch (from.transform) {
                case WL_OUTPUT_TRANSFORM_90:
                    to.row(x)[h - 1 - y] = pixel;
                    break;
                case WL_OUTPUT_TRANSFORM_180:
                    to.row(h - 1 - y)[w - 1 - x] = pixel;
                    break;
                case WL_OUTPUT_TRANSFORM_270:
                    to.row(w - 1 - x)[y] = pixel;
                    break;
                case WL_OUTPUT_TRANSFORM_FLIPPED:
                    to.row(y)[w - 1 - x] = pixel;
                    break;
                case WL_OUTPUT_TRANSFORM_FLIPPED_90:
                    to.row(x)[y] = pixel;
                    break;
                case WL_OUTPUT_TRANSFORM_FLIPPED_180:
                    to.row(h - 1 - y)[x] = pixel;
                    break;
                case WL_OUTPUT_TRANSFORM_FLIPPED_270:
                    to.row(w - 1 - x)[h - 1 - y] = pixel;
                    break;
                default:
                    break;
                }
            }
        }
    }
}

} // namespace framora
