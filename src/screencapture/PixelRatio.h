#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace framora {

/// The device pixels a point has, from the text of the root window's RESOURCE_MANAGER: Xft.dpi / 96, rounded
/// to a quarter, 1...8. 1 when the text has no such resource or its value is no number.
double pixelRatioFromResources(std::string_view resources);

/// What a desktop says of single monitors in the environment of its programs, for Qt and all that follow it.
class MonitorScales {
public:
    /// `monitors` is the text of QT_SCREEN_SCALE_FACTORS, "eDP-1=1.5;HDMI-1=2" or "1.5;2" in the order of the
    /// monitors; `all` that of QT_SCALE_FACTOR. What is no number above zero is passed over.
    MonitorScales(std::string_view monitors, std::string_view all);

    /// Whether any monitor is spoken of by its name.
    bool named() const;
    /// Device pixels a point of the monitor at place `index` with that name, in quarters, 1...8;
    /// `ofResources` where nothing is said of it.
    double ratio(std::size_t index, std::string_view name, double ofResources) const;

private:
    struct Scale {
        std::string name; // empty: by its place
        double factor = 1;
    };
    std::vector<Scale> m_scales;
    double m_all = 1;
};

} // namespace framora
