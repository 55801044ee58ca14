#include "screencapture/PixelRatio.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace framora {

namespace {

constexpr std::string_view kBlank = " \t\r";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlank);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

} // namespace

double pixelRatioFromResources(std::string_view resources) {
    while (!resources.empty()) {
        const auto end = resources.find('\n');
        const std::string_view line = resources.substr(0, end);
        resources = end == std::string_view::npos ? std::string_view{} : resources.substr(end + 1);
        const auto colon = line.find(':');
        if (colon == std::string_view::npos || trimmed(line.substr(0, colon)) != "Xft.dpi")
            continue;
        const std::string_view value = trimmed(line.substr(colon + 1));
        double dpi = 0;
        const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), dpi);
        if (error != std::errc{} || stop != value.data() + value.size() || !std::isfinite(dpi))
            return 1;
        return std::clamp(std::round(dpi / 96 * 4) / 4, 1.0, 8.0);
    }
    return 1;
}

} // namespace framora
