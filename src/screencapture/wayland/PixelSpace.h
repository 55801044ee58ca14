#pragma once

#include "screencapture/Geometry.h"
#include "screencapture/wayland/Output.h"

#include <span>
#include <vector>

namespace framora {

/// The device pixels of one output, its home, continued over the whole layout: where a selection lives while
/// it is dragged. (0, 0) is the home's top left pixel, and every pixel of the home is one of the space.
/// Outputs of another scale are as large in it as they look beside the home.
class PixelSpace {
public:
    /// `outputs` are not empty and outlive the space; `home` is an index into them.
    PixelSpace(std::span<const Output> outputs, std::size_t home);

    std::size_t home() const { return m_home; }
    double scale() const { return m_outputs[m_home].scale; }
    /// The boxes of the outputs, in their order.
    const std::vector<Rect>& monitors() const { return m_monitors; }
    /// Whether this output's pixels are pixels of the space as they are.
    bool exact(std::size_t output) const;

    /// The pixel of the space under a place on an output, told in logical pixels from its top left corner;
    /// the place may lie beyond the output.
    Point pixelAt(std::size_t output, double x, double y) const;
    /// The same place in an output's own pixels, which count from its top left one.
    Point onOutput(Point p, std::size_t output) const;
    Rect onOutput(const Rect& box, std::size_t output) const;

private:
    int edgeX(int logical) const;
    int edgeY(int logical) const;

    std::span<const Output> m_outputs;
    std::size_t m_home;
    std::vector<Rect> m_monitors;
};

/// A box of the layout's logical pixels in the device pixels of an output, rounded as compositors round it.
Rect inPixelsOf(const Output& output, const Rect& logical);

} // namespace framora
