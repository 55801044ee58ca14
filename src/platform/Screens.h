#pragma once

#include <QRect>
#include <QString>
#include <optional>
#include <vector>

namespace framora {

/// One monitor. Coordinates are device pixels of the whole desktop, y down.
struct Screen {
    QRect pixelFrame;
    double pixelRatio = 1.0; ///< Device pixels a point.
    QString name = {};       ///< Of the output, "HDMI-1"; empty where it is not known.

    friend bool operator==(const Screen&, const Screen&) = default;
};

class Screens {
public:
    virtual ~Screens() = default;
    /// Never empty while a toast or a window is to be shown: the main screen is first.
    virtual std::vector<Screen> screens() = 0;
    /// The one that the user is at, where the desktop tells; else the first. Nothing where there is none.
    virtual std::optional<Screen> screenInUse() {
        const auto all = screens();
        return all.empty() ? std::nullopt : std::optional(all.front());
    }
};

} // namespace framora
