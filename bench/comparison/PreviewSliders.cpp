#include "PreviewSliders.h"

#include <algorithm>
#include <cmath>

namespace framora::comparison {
namespace {

struct Slider {
    const char* name;
    double from;
    double to;
    void (*set)(ScreenshotStyleConfig& style, double value);
    Workload workload = Workload::gradient;
};

using Style = ScreenshotStyleConfig;

/// The ranges are those of the editor's panels.
const Slider sliders[] = {
    {"tilt about x", -80, 80, [](Style& style, double value) { style.rotationX = value; }},
    {"tilt about y", -80, 80, [](Style& style, double value) { style.rotationY = value; }},
    {"tilt about x, turned by 12, y 15", -60, 60,
     [](Style& style, double value) {
         style.rotation = 12;
         style.rotationY = 15;
         style.rotationX = value;
     }},
    {"turn", -45, 45, [](Style& style, double value) { style.rotation = value; }},
    {"corner radius", 0, 40, [](Style& style, double value) { style.borderRadius = value; }},
    {"corner radius, glass frame", 0, 40,
     [](Style& style, double value) {
         style.mockupStyle = MockupStyle::glassEffect;
         style.borderRadius = value;
     }},
    {"scale", 0.1, 3, [](Style& style, double value) { style.scale = value; }},
    {"image scale", 10, 200, [](Style& style, double value) { style.imageScale = value; }},
    {"padding", 0, 200, [](Style& style, double value) { style.padding = value; }},
    {"padding, photograph", 0, 200,
     [](Style& style, double value) {
         style.gradientConfig.blurAmount = 0;
         style.padding = value;
     },
     Workload::blurredPhoto},
    {"border size", 0, 10,
     [](Style& style, double value) {
         style.mockupStyle = MockupStyle::border;
         style.mockupBorderSize = value;
     }},
    {"gradient angle", 0, 360, [](Style& style, double value) { style.gradientConfig.angle = value; }},
    {"angular gradient angle", 0, 360,
     [](Style& style, double value) {
         style.gradientConfig.style = GradientStyle::angular;
         style.gradientConfig.angle = value;
     }},
    {"blur, gradient", 0, 50, [](Style& style, double value) { style.gradientConfig.blurAmount = value; }},
    {"blur, photograph", 0, 50, [](Style& style, double value) { style.gradientConfig.blurAmount = value; },
     Workload::blurredPhoto},
    {"noise, gradient", 0, 100, [](Style& style, double value) { style.gradientConfig.noiseAmount = value; }},
    {"noise, photograph", 0, 100,
     [](Style& style, double value) {
         style.gradientConfig.blurAmount = 0;
         style.gradientConfig.noiseAmount = value;
     },
     Workload::blurredPhoto},
    {"saturation", 0, 200, [](Style& style, double value) { style.gradientConfig.saturation = value; }},
    {"brightness", 0, 200, [](Style& style, double value) { style.gradientConfig.brightness = value; }},
    {"dragging under 60 % noise", -100, 100,
     [](Style& style, double value) {
         style.gradientConfig.noiseAmount = 60;
         style.screenshotOffset = {std::round(value) * 3, 0};
     }},
};

Measurement drag(const Slider& slider, const QImage& screenshot, const Inputs& inputs, int frames) {
    Composition drawn = composition(slider.workload, inputs);
    drawn.image = screenshot;
    drawn.isRendering = false;
    CompositionRasterizer rasterizer;
    QImage target;
    const auto frame = [&](double share) {
        slider.set(drawn.config, slider.from + (slider.to - slider.from) * share);
        return timed([&] { rasterizer.drawInto(target, drawn, previewViewport(drawn)); });
    };
    const double first = frame(0.5);
    Measurement measurement{.name = QLatin1String(slider.name),
                            .milliseconds = {},
                            .note = QStringLiteral("the first frame %1 ms").arg(first, 0, 'f', 1),
                            .meanDifference = {},
                            .farShare = {}};
    for (int i = 1; i <= frames; ++i) {
        // From the middle to one end, to the other, and back.
        const double way = 2.0 * i / frames;
        const double share = way < 0.5 ? 0.5 + way : way < 1.5 ? 1.5 - way : way - 1.5;
        measurement.milliseconds.push_back(frame(share));
    }
    std::sort(measurement.milliseconds.begin(), measurement.milliseconds.end());
    return measurement;
}

} // namespace

QList<Measurement> dragSliders(const Inputs& inputs, int frames) {
    const QImage screenshot =
        inputs.screenshot.copy(0, 0, screenshotSize.width(), screenshotSize.width() * 9 / 16)
            .scaled(3840, 2160, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    QList<Measurement> measurements;
    for (const Slider& slider : sliders)
        measurements << drag(slider, screenshot, inputs, frames);
    return measurements;
}

} // namespace framora::comparison
