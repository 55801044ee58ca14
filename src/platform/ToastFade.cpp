#include "platform/ToastFade.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace framora {

void fadeToast(const QImage& from, QImage& to, double alpha) {
    const auto factor = std::uint32_t(std::lround(std::clamp(alpha, 0.0, 1.0) * 256));
    const auto count = std::size_t(from.width()) * std::size_t(from.height());
    const auto* in = reinterpret_cast<const std::uint32_t*>(from.constBits());
    auto* out = reinterpret_cast<std::uint32_t*>(to.bits());
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = in[i];
        out[i] = (((pixel & 0x00ff00ff) * factor >> 8) & 0x00ff00ff) |
                 (((pixel >> 8) & 0x00ff00ff) * factor & 0xff00ff00);
    }
}

} // namespace framora
