#include "Workloads.h"

#include "editor/render/ScreenshotRenderer.h"

#include <QLineF>
#include <QUrl>
#include <cmath>
#include <numbers>

namespace framora::comparison {
namespace {

constexpr double turn = 12;
constexpr double tiltX = 20;
constexpr double tiltY = 15;

Color color(int red, int green, int blue) {
    return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
}

double radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

TextOverlay heading() {
    TextOverlay overlay;
    overlay.text = QStringLiteral("Framora, side by side");
    overlay.fontSize = 64;
    overlay.fontWeight = QFont::DemiBold;
    overlay.position = {1360, 60};
    return overlay;
}

ShadowScene leaves() {
    ShadowScene scene;
    scene.name = QStringLiteral("Leaves");
    scene.colors = {color(20, 30, 40), color(120, 90, 60), color(255, 240, 220)};
    return scene;
}

} // namespace

QString name(Workload workload) {
    switch (workload) {
    case Workload::gradient:
        return QStringLiteral("W1");
    case Workload::tilted:
        return QStringLiteral("W2");
    case Workload::blurredPhoto:
        return QStringLiteral("W3");
    case Workload::everything:
        return QStringLiteral("W4");
    }
    return {};
}

ScreenshotStyleConfig style(Workload workload, const Inputs& inputs) {
    ScreenshotStyleConfig style;
    style.gradientConfig = {.style = GradientStyle::linear,
                            .color1 = color(102, 126, 234),
                            .color2 = color(118, 75, 162),
                            .color3 = color(249, 83, 198),
                            .useThreeColors = true,
                            .angle = 135};
    if (workload == Workload::gradient || workload == Workload::tilted) {
        style.backgroundType = BackgroundType::gradient;
    } else {
        style.backgroundType = BackgroundType::image;
        style.backgroundImageURL = QUrl::fromLocalFile(inputs.photographPath);
        style.gradientConfig.blurAmount = photoBlurRadius;
    }
    if (workload == Workload::tilted) {
        style.rotation = turn;
        style.rotationX = tiltX;
        style.rotationY = tiltY;
    }
    if (workload == Workload::everything) {
        style.mockupStyle = MockupStyle::glassEffect;
        // The frame's room comes out of the padding, so that the canvas has the size of the other workloads.
        style.padding -= 3 * style.mockupBorderSize;
        style.textOverlays = {heading()};
        style.selectedShadowScene = leaves();
        style.shadowSceneMode = ShadowSceneMode::overlay;
    }
    return style;
}

Composition composition(Workload workload, const Inputs& inputs) {
    Composition composition;
    composition.image = inputs.screenshot;
    composition.config = style(workload, inputs);
    composition.isRendering = true;
    if (composition.config.backgroundType == BackgroundType::image)
        composition.preloadedBackgroundImage = inputs.photograph;
    return composition;
}

CompositionRasterizer::Viewport exportViewport() {
    return {outputSize, exportScale, QPointF(outputSize.width() / 2.0, outputSize.height() / 2.0)};
}

CompositionRasterizer::Viewport previewViewport(const Composition& composition) {
    const QSizeF canvas = canvasSize(pointSize(composition.image), composition.config);
    return {previewSize,
            std::min(previewSize.width() / canvas.width(), previewSize.height() / canvas.height()),
            QPointF(previewSize.width() / 2.0, previewSize.height() / 2.0)};
}

QTransform screenshotToOutput(Workload workload, const Inputs& inputs) {
    const double width = inputs.screenshot.width();
    const double height = inputs.screenshot.height();
    // QTransform maps row vectors: what comes first stands on the left.
    QTransform map = QTransform::fromTranslate(-width / 2, -height / 2);
    if (workload == Workload::tilted) {
        const double eye = std::max(width, height);
        const double x = radians(tiltX);
        const double y = radians(tiltY);
        map *= QTransform().rotate(turn);
        // The bottom and the left come nearer, so that they are divided by less than 1.
        map *= QTransform(1, 0, 0, 0, std::cos(x), -std::sin(x) / eye, 0, 0, 1);
        map *= QTransform(std::cos(y), 0, std::sin(y) / eye, 0, 1, 0, 0, 0, 1);
    }
    map *= QTransform::fromScale(exportScale, exportScale);
    map *= QTransform::fromTranslate(outputSize.width() / 2.0, outputSize.height() / 2.0);
    return map;
}

QLineF gradientLine(const ScreenshotStyleConfig& style) {
    // Corner to corner, as on the web: 0 degrees points up, angles go clockwise.
    const double angle = radians(style.gradientConfig.angle);
    const double width = outputSize.width();
    const double height = outputSize.height();
    const double half = (std::abs(width * std::sin(angle)) + std::abs(height * std::cos(angle))) / 2;
    const QPointF centre(width / 2, height / 2);
    const QPointF way(std::sin(angle) * half, -std::cos(angle) * half);
    return {centre - way, centre + way};
}

} // namespace framora::comparison
