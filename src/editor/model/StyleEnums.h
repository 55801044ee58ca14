#pragma once

#include "editor/model/RawEnum.h"

namespace framora {

enum class MockupStyle { defaultStyle, glassEffect, border };
enum class BorderStyle { sharp, curved, round };
enum class BackgroundType { transparent, color, gradient, image };
enum class GradientStyle { linear, radial, angular };
enum class ShadowSceneMode { underlay, overlay };
enum class RedactStyle { blur, pixelate, blackBar };

template <> struct RawEnum<MockupStyle> {
    static constexpr std::array cases{
        RawCase<MockupStyle>{MockupStyle::defaultStyle, u"defaultStyle"},
        RawCase<MockupStyle>{MockupStyle::glassEffect, u"glassEffect"},
        RawCase<MockupStyle>{MockupStyle::border, u"border"},
    };
};

template <> struct RawEnum<BorderStyle> {
    static constexpr std::array cases{
        RawCase<BorderStyle>{BorderStyle::sharp, u"sharp"},
        RawCase<BorderStyle>{BorderStyle::curved, u"curved"},
        RawCase<BorderStyle>{BorderStyle::round, u"round"},
    };
};

template <> struct RawEnum<BackgroundType> {
    static constexpr std::array cases{
        RawCase<BackgroundType>{BackgroundType::transparent, u"transparent"},
        RawCase<BackgroundType>{BackgroundType::color, u"color"},
        RawCase<BackgroundType>{BackgroundType::gradient, u"gradient"},
        RawCase<BackgroundType>{BackgroundType::image, u"image"},
    };
};

template <> struct RawEnum<GradientStyle> {
    static constexpr std::array cases{
        RawCase<GradientStyle>{GradientStyle::linear, u"linear"},
        RawCase<GradientStyle>{GradientStyle::radial, u"radial"},
        RawCase<GradientStyle>{GradientStyle::angular, u"angular"},
    };
};

template <> struct RawEnum<ShadowSceneMode> {
    static constexpr std::array cases{
        RawCase<ShadowSceneMode>{ShadowSceneMode::underlay, u"underlay"},
        RawCase<ShadowSceneMode>{ShadowSceneMode::overlay, u"overlay"},
    };
};

template <> struct RawEnum<RedactStyle> {
    static constexpr std::array cases{
        RawCase<RedactStyle>{RedactStyle::blur, u"blur"},
        RawCase<RedactStyle>{RedactStyle::pixelate, u"pixelate"},
        RawCase<RedactStyle>{RedactStyle::blackBar, u"blackBar"},
    };
};

} // namespace framora
