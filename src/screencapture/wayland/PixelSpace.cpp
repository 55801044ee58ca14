#include "screencapture/wayland/PixelSpace.h"

#include <cmath>

namespace framora {

namespace {

int rounded(double value) {
    return static_cast<int>(std::lround(value));
}

/// Pointers come in 1/256 of a logical pixel, rounded: a place on the edge of a pixel belongs to that pixel.
int pixelUnder(double logical, double scale) {
    constexpr double kHalfStep = 1.0 / 512;
    return static_cast<int>(std::floor((logical + kHalfStep) * scale));
}

/// An edge of the layout in the home's pixels; its own edges are exact, whatever their logical size lost.
int edge(int logical, int homeStart, int homeLength, int homePixels, double scale) {
    const int beyond = logical - (homeStart + homeLength);
    return beyond >= 0 ? homePixels + rounded(beyond * scale) : rounded((logical - homeStart) * scale);
}

/// Where an output of the home's scale begins: it keeps its exact number of pixels, and touches the home
/// where it does in the layout.
int exactStart(int from, int to, int pixels) {
    return to <= 0 ? to - pixels : from;
}

} // namespace

PixelSpace::PixelSpace(std::span<const Output> outputs, std::size_t home) : m_outputs(outputs), m_home(home) {
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const Output& output = outputs[i];
        const Rect& l = output.logical;
        Rect box = Rect::between({edgeX(l.x), edgeY(l.y)}, {edgeX(l.right()), edgeY(l.bottom())});
        if (exact(i))
            box = {exactStart(box.x, box.right(), output.pixelWidth),
                   exactStart(box.y, box.bottom(), output.pixelHeight), output.pixelWidth,
                   output.pixelHeight};
        m_monitors.push_back(box);
    }
}

int PixelSpace::edgeX(int logical) const {
    const Output& home = m_outputs[m_home];
    return edge(logical, home.logical.x, home.logical.width, home.pixelWidth, home.scale);
}

int PixelSpace::edgeY(int logical) const {
    const Output& home = m_outputs[m_home];
    return edge(logical, home.logical.y, home.logical.height, home.pixelHeight, home.scale);
}

bool PixelSpace::exact(std::size_t output) const {
    return m_outputs[output].scale == m_outputs[m_home].scale;
}

Point PixelSpace::pixelAt(std::size_t output, double x, double y) const {
    const Output& from = m_outputs[output];
    if (exact(output)) {
        const Rect& monitor = m_monitors[output];
        return {monitor.x + pixelUnder(x, from.scale), monitor.y + pixelUnder(y, from.scale)};
    }
    const Output& home = m_outputs[m_home];
    return {pixelUnder(x + from.logical.x - home.logical.x, home.scale),
            pixelUnder(y + from.logical.y - home.logical.y, home.scale)};
}

Point PixelSpace::onOutput(Point p, std::size_t output) const {
    const Rect& monitor = m_monitors[output];
    if (exact(output))
        return {p.x - monitor.x, p.y - monitor.y};
    const Output& to = m_outputs[output];
    return {rounded(static_cast<double>(p.x - monitor.x) * to.pixelWidth / std::max(1, monitor.width)),
            rounded(static_cast<double>(p.y - monitor.y) * to.pixelHeight / std::max(1, monitor.height))};
}

Rect PixelSpace::onOutput(const Rect& box, std::size_t output) const {
    if (box.empty())
        return {};
    return Rect::between(onOutput(Point{box.x, box.y}, output),
                         onOutput(Point{box.right(), box.bottom()}, output));
}

Rect inPixelsOf(const Output& output, const Rect& logical) {
    if (logical.empty())
        return {};
    const auto x = [&](int at) { return rounded((at - output.logical.x) * output.scale); };
    const auto y = [&](int at) { return rounded((at - output.logical.y) * output.scale); };
    return Rect::between({x(logical.x), y(logical.y)}, {x(logical.right()), y(logical.bottom())});
}

} // namespace framora
