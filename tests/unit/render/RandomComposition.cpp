#include "unit/render/RandomComposition.h"

#include "unit/render/TestPictures.h"

#include <QPainter>
#include <cmath>

namespace framora {

RandomComposition::RandomComposition(unsigned seed) : m_engine(seed) {
    m_composition.image = picture(40 + upTo(160), 30 + upTo(120));
    m_composition.image.setDevicePixelRatio(std::array{1.0, 1.0, 1.5, 2.0}[m_engine() % 4]);
    m_composition.isRendering = chance(0.5);
    setBackground();
    setMockup();
    setPlace();
    setScene();
    setTexts();
    const double scale = m_composition.isRendering ? 2 : between(0.3, 1.4);
    const QSizeF canvas = canvasSize(pointSize(m_composition.image), m_composition.config);
    m_viewport.pixelSize = QSize(std::min(420, int(canvas.width() * scale) + upTo(40)),
                                 std::min(300, int(canvas.height() * scale) + upTo(40)));
    m_viewport.pixelsPerPoint = scale;
    m_viewport.canvasCentre = QPointF(m_viewport.pixelSize.width() / 2.0 + between(-9, 9),
                                      m_viewport.pixelSize.height() / 2.0 + between(-9, 9));
    if (chance(0.3))
        m_viewport.canvasCentre = m_viewport.canvasCentre.toPoint();
}

double RandomComposition::between(double low, double high) {
    return low + (high - low) * double(m_engine()) / 4294967295.0;
}

Color RandomComposition::color() {
    const double alpha = chance(0.2) ? between(0.1, 1) : 1.0;
    return {between(0, 1), between(0, 1), between(0, 1), alpha};
}

QList<Color> RandomComposition::colors(int atLeast) {
    QList<Color> colors;
    for (int count = atLeast + upTo(3); count > 0; --count)
        colors.append(color());
    return colors;
}

/// Shapes with edges on a ramp; some let what is behind them through.
QImage RandomComposition::picture(int width, int height) {
    if (chance(0.15))
        return noisePicture(width, height);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(chance(0.2) ? Qt::transparent : QColor::fromRgbF(float(between(0, 1)), 0.5F, 0.4F));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 12; ++i) {
        const Color fill = color();
        painter.setBrush(
            QColor::fromRgbF(float(fill.red), float(fill.green), float(fill.blue), float(fill.alpha)));
        painter.drawEllipse(QPointF(between(0, width), between(0, height)), between(1, width / 3.0),
                            between(1, height / 3.0));
    }
    return image;
}

void RandomComposition::setBackground() {
    ScreenshotStyleConfig& style = m_composition.config;
    style.backgroundType = any<BackgroundType>();
    style.customColor = color();
    style.selectedGradientPreset.reset();
    switch (upTo(4)) {
    case 0:
        style.selectedSolidColor = SolidColor{.color = color()};
        break;
    case 1:
        style.selectedGradient = GradientPreset{.colors = colors(2), .angle = between(0, 360)};
        break;
    case 2:
        style.selectedMagicPreset = MagicPreset{.colors = colors(1)};
        break;
    default:
        break;
    }
    SimpleGradientConfig& gradient = style.gradientConfig;
    gradient.style = any<GradientStyle>();
    gradient.color1 = color();
    gradient.color2 = color();
    gradient.color3 = color();
    gradient.useThreeColors = chance(0.5);
    gradient.angle = between(0, 360);
    if (chance(0.3)) {
        gradient.saturation = between(0, 200);
        gradient.brightness = between(0, 200);
    }
    gradient.blurAmount = chance(0.35) ? between(0.2, 50) : 0;
    gradient.noiseAmount = chance(0.4) ? between(0, 100) : 0;
    const QImage background = picture(20 + upTo(300), 20 + upTo(300));
    (m_composition.isRendering ? m_composition.preloadedBackgroundImage
                               : m_composition.loadedBackgroundImage) = background;
}

void RandomComposition::setMockup() {
    ScreenshotStyleConfig& style = m_composition.config;
    style.showMockup = chance(0.85);
    style.mockupStyle = any<MockupStyle>();
    style.mockupBorderSize = between(0.5, 10);
    style.borderColor = color();
    style.borderRadius = chance(0.2) ? 0 : between(0, 60);
}

void RandomComposition::setPlace() {
    ScreenshotStyleConfig& style = m_composition.config;
    style.padding = between(0, 60);
    if (chance(0.4))
        style.rotation = chance(0.3) ? 90.0 * upTo(4) : between(-180, 180);
    if (chance(0.5))
        style.imageScale = between(20, 200);
    if (chance(0.3))
        style.scale = between(0.3, 1.6);
    if (chance(0.35))
        style.rotationX = between(-80, 80);
    if (chance(0.35))
        style.rotationY = between(-80, 80);
    if (chance(0.4))
        style.screenshotOffset = {between(-40, 40), between(-40, 40)};
    if (!m_composition.isRendering && chance(0.4))
        m_composition.dragOffset = {between(-40, 40), between(-40, 40)};
    if (chance(0.15)) {
        const auto& presets = PresetCatalogues::socialMediaPresets();
        style.selectedSocialPreset = presets[upTo(int(presets.size()))];
    }
}

void RandomComposition::setScene() {
    ScreenshotStyleConfig& style = m_composition.config;
    if (chance(0.5))
        return;
    style.selectedShadowScene = ShadowScene{.name = {}, .colors = colors(0), .isTexture = false};
    style.shadowSceneMode = any<ShadowSceneMode>();
    style.shadowSceneOpacity = between(5, 100);
}

void RandomComposition::setTexts() {
    const QSizeF canvas = canvasSize(pointSize(m_composition.image), m_composition.config);
    for (int count = chance(0.5) ? upTo(3) : 0; count > 0; --count) {
        TextOverlay text;
        text.text = chance(0.3) ? QStringLiteral("Two\nlines") : QStringLiteral("Overlay %1").arg(count);
        text.fontSize = between(6, 60);
        text.fontWeight = chance(0.5) ? QFont::Bold : QFont::Light;
        text.color = color();
        text.position = {between(0, canvas.width()), between(0, canvas.height())};
        text.rotation = chance(0.5) ? between(-180, 180) : 0;
        text.opacity = chance(0.5) ? between(0.1, 1) : 1;
        text.isBlurred = chance(0.3);
        m_composition.config.textOverlays.append(text);
    }
}

} // namespace framora
