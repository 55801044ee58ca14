#pragma once

#include "screencapture/Geometry.h"

#include <optional>
#include <vector>

namespace framora {

/// Everything the overlay shows over the dimmed, frozen screen.
struct OverlayScene {
    /// The lines through the pointer while nothing is selected, and the monitor they cross.
    struct Guides {
        Point at;
        Rect monitor;
        bool operator==(const Guides&) const = default;
    };
    struct Label {
        Rect box;
        int width = 0; // the numbers it shows
        int height = 0;
        bool operator==(const Label&) const = default;
    };

    Rect selection;
    Rect highlight;           // the window that a click would take
    std::vector<Rect> inView; // what of it no other window covers; the boxes do not overlap
    std::optional<Guides> guides;
    std::optional<Label> label;

    bool operator==(const OverlayScene&) const = default;
};

} // namespace framora
