#include "editor/model/GradientRandomizer.h"

#include "editor/model/RandomSource.h"
#include "editor/model/SimpleGradientConfig.h"

#include <algorithm>
#include <cmath>

namespace framora {
namespace {

/// All in 0...1; the hue runs once round the circle.
Color hsb(double hue, double saturation, double brightness) {
    const auto component = [&](double shift) {
        const double sector = std::fmod(shift + hue * 6.0, 6.0);
        return brightness * (1.0 - saturation * std::clamp(std::min(sector, 4.0 - sector), 0.0, 1.0));
    };
    return {component(5.0), component(3.0), component(1.0), 1.0};
}

} // namespace

void randomizeGradient(SimpleGradientConfig& gradient, RandomSource& random) {
    // Each draw on a line of its own keeps their order.
    const auto fraction = [](double x) { return x - std::floor(x); };

    const double hue1 = random.real(0.0, 1.0);
    const double saturation1 = random.real(0.6, 1.0);
    const double brightness1 = random.real(0.7, 0.95);
    gradient.color1 = hsb(hue1, saturation1, brightness1);

    const double hue2 = fraction(hue1 + random.real(0.08, 0.2));
    const double saturation2 = random.real(0.5, 0.9);
    const double brightness2 = random.real(0.6, 0.9);
    gradient.color2 = hsb(hue2, saturation2, brightness2);

    const double hue3 = fraction(hue1 + random.real(0.25, 0.5));
    const double saturation3 = random.real(0.5, 0.95);
    const double brightness3 = random.real(0.65, 0.95);
    gradient.color3 = hsb(hue3, saturation3, brightness3);

    gradient.angle = 45.0 * random.integer(0, 7);
}

} // namespace framora
