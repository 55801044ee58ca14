#include "editor/render/TextLayers.h"

#include "editor/render/RasterView.h"
#include "editor/render/raster/BlurTaps.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>

namespace framora {
namespace {

using raster::MixBuffer;

constexpr double blurRadius = 8;
constexpr double shadowRadius = 2;
constexpr double shadowOpacity = 0.5;
constexpr QPointF shadowOffset(1, 1);

// Text is laid out at this size and scaled, so that its lines break and its letters stand alike at every
// scale.
constexpr int layoutSize = 64;

struct Layout {
    QFont font;
    QSizeF size; ///< Of its lines.
};

Layout layout(const TextOverlay& overlay) {
    Layout result;
    // The program's own family: the desktop's would differ from one place to the next.
    result.font.setFamilies({QStringLiteral("Inter"), QStringLiteral("sans-serif")});
    result.font.setPixelSize(layoutSize);
    result.font.setWeight(overlay.fontWeight);
    result.font.setHintingPreference(QFont::PreferNoHinting);
    constexpr double endless = 1e6;
    result.size =
        QFontMetricsF(result.font)
            .boundingRect(QRectF(0, 0, endless, endless), Qt::AlignLeft | Qt::AlignTop, overlay.text)
            .size();
    return result;
}

/// From the layout to the output's pixels: centred on its position, turned about it, and moved by `offset`
/// points.
QTransform toOutput(const TextOverlay& overlay, const Layout& layout, const TextLayers::Place& place,
                    QPointF offset) {
    const double scale = place.pixelsPerPoint;
    const double size = overlay.fontSize / layoutSize * scale;
    QTransform transform;
    transform.translate(place.origin.x() + (overlay.position.x + offset.x()) * scale,
                        place.origin.y() + (overlay.position.y + offset.y()) * scale);
    transform.rotate(overlay.rotation);
    transform.scale(size, size);
    transform.translate(-layout.size.width() / 2, -layout.size.height() / 2);
    return transform;
}

/// The text where `transform` puts it in an area of the output.
QImage drawn(const TextOverlay& overlay, const Layout& layout, const QColor& color,
             const QTransform& transform, const QRect& area) {
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.setTransform(transform * QTransform::fromTranslate(-area.left(), -area.top()));
    painter.setFont(layout.font);
    painter.setPen(color);
    painter.drawText(QRectF(QPointF(), layout.size), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip,
                     overlay.text);
    return image;
}

/// The part of a picture where something is.
QRect ink(const QImage& image) {
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        const auto isSet = [](QRgb pixel) { return pixel != 0; };
        const QRgb* first = std::find_if(row, row + image.width(), isSet);
        if (first == row + image.width())
            continue;
        const QRgb* last = row + image.width() - 1;
        while (*last == 0)
            --last;
        found |= QRect(QPoint(int(first - row), y), QPoint(int(last - row), y));
    }
    return found;
}

/// `part` of a picture that lies at `origin` in the output.
MixBuffer mixBuffer(const QImage& image, QPoint origin, const QRect& part) {
    raster::PixelView view = rasterView(image);
    view.data = reinterpret_cast<const std::byte*>(view.row(part.top()) + part.left());
    view.width = part.width();
    view.height = part.height();
    return {view, origin.x() + part.left(), origin.y() + part.top()};
}

int reach(double deviation) {
    return deviation > 0 ? raster::gaussianRadius(deviation) : 0;
}

bool isDrawable(const TextOverlay& overlay) {
    return !overlay.text.isEmpty() && overlay.opacity > 0 && overlay.fontSize > 0 &&
           std::isfinite(overlay.fontSize) && std::isfinite(overlay.rotation) &&
           std::isfinite(overlay.position.x) && std::isfinite(overlay.position.y);
}

std::shared_ptr<const MixBuffer> textPixels(const TextOverlay& overlay, const TextLayers::Place& place) {
    if (!isDrawable(overlay) || !qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return nullptr;
    const double blur = overlay.isBlurred ? blurRadius * place.pixelsPerPoint : 0;
    const double shadowBlur = std::hypot(blur, shadowRadius * place.pixelsPerPoint);
    const int margin = reach(shadowBlur) + 2;

    const Layout lines = layout(overlay);
    const QTransform transform = toOutput(overlay, lines, place, {});
    // Letters may lean out of their lines.
    const QRectF box =
        QRectF(QPointF(), lines.size).adjusted(-layoutSize, -layoutSize, layoutSize, layoutSize);
    const QRectF touched = transform.mapRect(box).adjusted(-margin, -margin, margin, margin);
    const QRectF visible = QRectF(QPointF(), QSizeF(place.output)).adjusted(-margin, -margin, margin, margin);
    const QRect area = touched.intersected(visible).toAlignedRect();
    if (area.isEmpty())
        return nullptr;

    const QColor color = QColor::fromRgbF(
        float(std::clamp(overlay.color.red, 0.0, 1.0)), float(std::clamp(overlay.color.green, 0.0, 1.0)),
        float(std::clamp(overlay.color.blue, 0.0, 1.0)), float(std::clamp(overlay.color.alpha, 0.0, 1.0)));
    const QColor shadowColor = QColor::fromRgbF(0, 0, 0, color.alphaF());
    const QImage letters = drawn(overlay, lines, color, transform, area);
    const QImage below =
        drawn(overlay, lines, shadowColor, toOutput(overlay, lines, place, shadowOffset), area);
    // The letters take a part of their lines only, and what is empty need not be blurred nor mixed.
    const QRect inked = ink(letters) | ink(below);
    if (inked.isEmpty())
        return nullptr;
    const QRect part = inked.adjusted(-margin, -margin, margin, margin).intersected(letters.rect());
    MixBuffer text = mixBuffer(letters, area.topLeft(), part);
    text.blur(blur);
    text.fade(overlay.opacity);
    // The shadow of a blurred text: two Gaussians in a row are one.
    auto pixels = std::make_shared<MixBuffer>(mixBuffer(below, area.topLeft(), part));
    pixels->blur(shadowBlur);
    pixels->fade(shadowOpacity * std::min(overlay.opacity, 1.0));
    pixels->put(text);
    return pixels;
}

} // namespace

std::vector<raster::Layer> TextLayers::layers(const QList<TextOverlay>& overlays, const Place& place) {
    std::vector<Drawn> drawnNow;
    std::vector<raster::Layer> layers;
    for (const TextOverlay& overlay : overlays) {
        const auto kept = std::find_if(m_drawn.begin(), m_drawn.end(), [&](const Drawn& drawn) {
            return drawn.overlay == overlay && drawn.place == place;
        });
        drawnNow.push_back(
            {overlay, place, kept != m_drawn.end() ? kept->pixels : textPixels(overlay, place)});
        const std::shared_ptr<const MixBuffer>& pixels = drawnNow.back().pixels;
        if (!pixels)
            continue;
        const raster::TileRect& area = pixels->area();
        raster::Layer& layer = layers.emplace_back();
        layer.shape = {double(area.width), double(area.height), 0};
        layer.placement.toOutput =
            raster::Homography::translation(area.x + area.width / 2.0, area.y + area.height / 2.0);
        layer.paint = std::make_shared<raster::MixBufferPaint>(pixels);
    }
    m_drawn = std::move(drawnNow);
    return layers;
}

} // namespace framora
