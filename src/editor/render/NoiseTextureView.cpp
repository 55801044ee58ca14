#include "editor/render/NoiseTextureView.h"

#include "editor/render/raster/PixelEffects.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

namespace framora {
namespace {

/// Half-way between black and white, where soft light changes nothing: only the grain shows.
constexpr float standardGrey = 0.5f;

} // namespace

QImage NoiseTextureView::texture(QSize size) const {
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    std::vector<raster::Float4> row(std::size_t(size.width()));
    for (int y = 0; y < size.height(); ++y) {
        std::fill(row.begin(), row.end(), raster::Float4{standardGrey, standardGrey, standardGrey, 1});
        if (intensity > 0)
            raster::addNoise(row.data(), size.width(), 0, y, float(intensity));
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int grey = int(std::lround(row[std::size_t(x)][0] * 255));
            pixels[x] = qRgb(grey, grey, grey);
        }
    }
    return image;
}

void NoiseTextureView::drawOver(QImage& picture) const {
    const QImage grain = texture(picture.size());
    if (grain.isNull())
        return;
    picture.convertTo(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SoftLight);
    painter.drawImage(0, 0, grain);
}

} // namespace framora
