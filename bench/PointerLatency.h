#pragma once

#include <QPoint>
#include <QWindow>
#include <vector>

/// How long a window takes from a movement of the pointer to the pixels that answer it, as the X server sees
/// both. In milliseconds, one of each kind a movement that was answered.
struct PointerLatency {
    std::vector<double> toFirstPixels;
    std::vector<double> toLastPixels;

    /// Drags with the left button about `middle`, a place on the screen, by `count` movements, while this
    /// thread serves its events. Nothing where the server has no XTEST or no DAMAGE.
    static PointerLatency measure(WId window, QPoint middle, int count);
};
