#include "editor/render/TextLayers.h"

#include "editor/render/raster/AlphaPlane.h"
#include "editor/render/raster/BlurTaps.h"
#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/ResampleKernels.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>
#include <new>

namespace framora {
namespace {

using raster::AlphaPlane;
using raster::MixBuffer;
using raster::MixBufferPaint;

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
    // The program's own family: the desktop's would differ from one place to the next. Emoji before other
    // fonts, some of which have outlines of a few.
    result.font.setFamilies(
        {QStringLiteral("Inter"), QStringLiteral("Noto Color Emoji"), QStringLiteral("sans-serif")});
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

/// From the layout to the output's pixels: centred on its position and turned about it.
QTransform toOutput(const TextOverlay& overlay, const Layout& layout, const TextLayers::Place& place) {
    const double scale = place.pixelsPerPoint;
    const double size = overlay.fontSize / layoutSize * scale;
    QTransform transform;
    transform.translate(place.origin.x() + overlay.position.x * scale,
                        place.origin.y() + overlay.position.y * scale);
    transform.rotate(overlay.rotation);
    transform.scale(size, size);
    transform.translate(-layout.size.width() / 2, -layout.size.height() / 2);
    return transform;
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

/// Throws std::bad_alloc for one that found no memory: a picture without its text would be taken for the
/// whole.
QImage held(QImage image) {
    if (image.isNull())
        throw std::bad_alloc();
    return image;
}

QImage emptyImage(const QSize& size) {
    QImage image = held(QImage(size, QImage::Format_ARGB32_Premultiplied));
    image.fill(Qt::transparent);
    return image;
}

/// Some pixels, and where they stand in a larger area.
struct Piece {
    QImage image;
    QPoint at;
};

/// The text where `transform` puts it in an area of the output. Symbols may have colours of their own. Only
/// what there is of it, with a margin: the rest need not be blurred nor mixed. Null for no ink at all.
Piece drawn(const TextOverlay& overlay, const Layout& layout, const QTransform& transform, const QRect& area,
            int margin) {
    const QColor color = QColor::fromRgbF(
        float(std::clamp(overlay.color.red, 0.0, 1.0)), float(std::clamp(overlay.color.green, 0.0, 1.0)),
        float(std::clamp(overlay.color.blue, 0.0, 1.0)), float(std::clamp(overlay.color.alpha, 0.0, 1.0)));
    // Strip by strip, since a row of the rasterizer's takes the square of the edges on it: half of the time.
    // Each reads all of the text, so there are only some.
    const int stripWidth = std::min(std::max(160, area.width() / 16 + 1), area.width());
    QImage strip = emptyImage({stripWidth, area.height()});
    std::vector<Piece> pieces;
    QRect inked;
    for (int x = 0; x < area.width(); x += stripWidth) {
        strip.fill(Qt::transparent);
        QPainter painter(&strip);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.setTransform(transform * QTransform::fromTranslate(-area.left() - x, -area.top()));
        painter.setFont(layout.font);
        painter.setPen(color);
        painter.drawText(QRectF(QPointF(), layout.size), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip,
                         overlay.text);
        painter.end();
        // The last one reaches beyond the area.
        const QRect found = ink(strip) & QRect(0, 0, area.width() - x, area.height());
        if (found.isEmpty())
            continue;
        pieces.push_back({held(strip.copy(found)), found.topLeft() + QPoint(x, 0)});
        inked |= found.translated(x, 0);
    }
    if (inked.isEmpty())
        return {};
    const QRect part =
        inked.adjusted(-margin, -margin, margin, margin).intersected(QRect(QPoint(), area.size()));
    QImage whole = emptyImage(part.size());
    QPainter painter(&whole);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const Piece& piece : pieces)
        painter.drawImage(piece.at - part.topLeft(), piece.image);
    painter.end();
    return {whole, area.topLeft() + part.topLeft()};
}

const QRgb* pixelsOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// One channel of a picture.
AlphaPlane plane(const QImage& image, int channel) {
    AlphaPlane result(image.width(), image.height());
    raster::parallelFor(image.height(), [&](int y) {
        const QRgb* from = pixelsOf(image, y);
        std::transform(from, from + image.width(), result.row(y), [channel](QRgb pixel) {
            return std::int16_t(int(pixel >> (8 * channel) & 255u) * raster::mixStep);
        });
    });
    return result;
}

/// The letters, row by row.
class Letters {
public:
    Letters(const QImage& image, double blur) : m_image(image) {
        for (int channel = 0; blur > 0 && channel < 4; ++channel)
            m_blurred.push_back(plane(image, channel).blurred(blur));
    }
    void read(int y, raster::MixPixel* out) const {
        if (m_blurred.empty())
            return raster::widenRow(pixelsOf(m_image, y), std::size_t(m_image.width()), out);
        for (std::size_t channel = 0; channel < m_blurred.size(); ++channel)
            for (int x = 0; x < m_image.width(); ++x)
                out[x].channel[channel] = m_blurred[channel].row(y)[x];
    }

private:
    const QImage& m_image;
    std::vector<AlphaPlane> m_blurred; ///< A plane for each channel, if any.
};

int reach(double deviation) {
    return deviation > 0 ? raster::gaussianRadius(deviation) : 0;
}

bool isDrawable(const TextOverlay& overlay) {
    return !overlay.text.isEmpty() && overlay.opacity > 0 && overlay.fontSize > 0 &&
           std::isfinite(overlay.fontSize) && std::isfinite(overlay.rotation) &&
           std::isfinite(overlay.position.x) && std::isfinite(overlay.position.y);
}

std::shared_ptr<const MixBufferPaint> textPaint(const TextOverlay& overlay, const TextLayers::Place& place) {
    if (!isDrawable(overlay) || !qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return nullptr;
    const double blur = overlay.isBlurred ? blurRadius * place.pixelsPerPoint : 0;
    const double shadowBlur = std::hypot(blur, shadowRadius * place.pixelsPerPoint);
    const QPointF offset = shadowOffset * place.pixelsPerPoint;
    const int margin = reach(shadowBlur) + int(std::ceil(std::max(offset.x(), offset.y()))) + 2;

    const Layout lines = layout(overlay);
    const QTransform transform = toOutput(overlay, lines, place);
    // Letters may lean out of their lines.
    const QRectF box =
        QRectF(QPointF(), lines.size).adjusted(-layoutSize, -layoutSize, layoutSize, layoutSize);
    const QRectF touched = transform.mapRect(box).adjusted(-margin, -margin, margin, margin);
    const QRectF visible = QRectF(QPointF(), QSizeF(place.output)).adjusted(-margin, -margin, margin, margin);
    const QRect area = touched.intersected(visible).toAlignedRect();
    if (area.isEmpty())
        return nullptr;

    const Piece text = drawn(overlay, lines, transform, area, margin);
    const QImage& image = text.image;
    if (image.isNull())
        return nullptr;
    // The shadow of a blurred text: two Gaussians in a row are one.
    const AlphaPlane shadow = plane(image, 3).blurred(shadowBlur, {offset.x(), offset.y()});
    const Letters letters(image, blur);
    const auto share = [](double value) { return std::int16_t(std::lround(value * raster::coverageOne)); };
    const double opacity = std::min(overlay.opacity, 1.0);
    auto pixels = std::make_shared<MixBuffer>(
        raster::TileRect{text.at.x(), text.at.y(), image.width(), image.height()});
    raster::parallelFor(image.height(), [&](int y) {
        thread_local std::vector<raster::MixPixel> above;
        above.resize(std::size_t(image.width()));
        letters.read(y, above.data());
        raster::MixPixel* out = pixels->row(y);
        std::transform(shadow.row(y), shadow.row(y) + image.width(), out,
                       [darkness = share(shadowOpacity * opacity)](std::int16_t alpha) {
                           return raster::MixPixel{{0, 0, 0, raster::mulFixed(alpha, darkness)}};
                       });
        raster::blendOver(out, above.data(), share(opacity), above.size());
    });
    return std::make_shared<MixBufferPaint>(std::move(pixels));
}

} // namespace

std::vector<raster::Layer> TextLayers::layers(const QList<TextOverlay>& overlays, const Place& place) {
    std::vector<Drawn> drawnNow;
    std::vector<raster::Layer> layers;
    for (const TextOverlay& overlay : overlays) {
        const auto kept = std::find_if(m_drawn.begin(), m_drawn.end(), [&](const Drawn& drawn) {
            return drawn.overlay == overlay && drawn.place == place;
        });
        drawnNow.push_back({overlay, place, kept != m_drawn.end() ? kept->paint : textPaint(overlay, place)});
        const auto& paint = drawnNow.back().paint;
        if (!paint)
            continue;
        const raster::TileRect& area = paint->area();
        raster::Layer& layer = layers.emplace_back();
        layer.shape = {double(area.width), double(area.height), 0};
        layer.placement.toOutput =
            raster::Homography::translation(area.x + area.width / 2.0, area.y + area.height / 2.0);
        layer.paint = paint;
    }
    m_drawn = std::move(drawnNow);
    return layers;
}

} // namespace framora
