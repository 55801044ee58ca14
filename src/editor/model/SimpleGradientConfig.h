#pragma once

#include "editor/model/Color.h"
#include "editor/model/StyleEnums.h"

namespace framora {

/// A procedural gradient of two or three colours.
struct SimpleGradientConfig {
    Q_GADGET
    Q_PROPERTY(framora::GradientStyle style MEMBER style)
    Q_PROPERTY(framora::Color color1 MEMBER color1)
    Q_PROPERTY(framora::Color color2 MEMBER color2)
    Q_PROPERTY(framora::Color color3 MEMBER color3)
    Q_PROPERTY(bool useThreeColors MEMBER useThreeColors)
    Q_PROPERTY(double angle MEMBER angle)
    Q_PROPERTY(double blurAmount MEMBER blurAmount)
    Q_PROPERTY(double noiseAmount MEMBER noiseAmount)
    Q_PROPERTY(double saturation MEMBER saturation)
    Q_PROPERTY(double brightness MEMBER brightness)
public:
    GradientStyle style = GradientStyle::linear;
    Color color1 = {};
    Color color2 = {};
    Color color3 = {};
    bool useThreeColors = false; ///< when false, color3 is ignored
    double angle = 135.0;        ///< degrees: direction of a linear, start of an angular gradient
    double blurAmount = 0.0;
    double noiseAmount = 0.0;
    double saturation = 100.0; ///< percent, 100 leaves the colours as they are
    double brightness = 100.0; ///< percent, 100 leaves the colours as they are

    /// What a new style uses when there is no catalogue entry to take.
    static SimpleGradientConfig fallback();

    bool operator==(const SimpleGradientConfig&) const = default;
};

} // namespace framora
