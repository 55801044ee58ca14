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

double inQuarters(double ratio) {
    return std::clamp(std::round(ratio * 4) / 4, 1.0, 8.0);
}

std::optional<double> number(std::string_view text) {
    double value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || stop != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

/// A factor above zero.
std::optional<double> factor(std::string_view text) {
    const auto value = number(trimmed(text));
    return value && *value > 0 ? value : std::nullopt;
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
        const auto dpi = number(trimmed(line.substr(colon + 1)));
        return dpi ? inQuarters(*dpi / 96) : 1;
    }
    return 1;
}

MonitorScales::MonitorScales(std::string_view monitors, std::string_view all)
    : m_all(factor(all).value_or(1)) {
    while (!monitors.empty()) {
        const auto end = monitors.find(';');
        const std::string_view entry = trimmed(monitors.substr(0, end));
        monitors = end == std::string_view::npos ? std::string_view{} : monitors.substr(end + 1);
        const auto equals = entry.rfind('=');
        const bool byName = equals != std::string_view::npos;
        const auto value = factor(byName ? entry.substr(equals + 1) : entry);
        // A bad entry among those without names still has its place.
        if (value || !byName)
            m_scales.push_back({std::string(byName ? trimmed(entry.substr(0, equals)) : std::string_view{}),
                                value.value_or(0)});
    }
}

bool MonitorScales::named() const {
    return std::any_of(m_scales.begin(), m_scales.end(),
                       [](const Scale& scale) { return !scale.name.empty(); });
}

double MonitorScales::ratio(std::size_t index, std::string_view name, double ofResources) const {
    double own = ofResources;
    for (std::size_t place = 0; place < m_scales.size(); ++place) {
        const Scale& scale = m_scales[place];
        if (scale.factor > 0 && (scale.name.empty() ? place == index : scale.name == name))
            own = scale.factor;
    }
    return inQuarters(own * m_all);
}

} // namespace framora
