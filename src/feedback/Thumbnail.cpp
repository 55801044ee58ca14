#include "feedback/Thumbnail.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cstdint>

namespace framora {
namespace {

/// At most this many samples a side go into one pixel of the thumbnail.
constexpr int mostSamples = 6;

/// The mean of evenly spread samples of each cell, on 32-bit pixels.
QImage boxReduced(const QImage& picture, QSize size) {
    const bool straight = picture.format() == QImage::Format_ARGB32;
    QImage result(size, straight ? QImage::Format_ARGB32_Premultiplied : picture.format());
    for (int y = 0; y < size.height(); ++y) {
        const auto top = std::int64_t(y) * picture.height() / size.height();
        const auto rows = std::int64_t(y + 1) * picture.height() / size.height() - top;
        const int samplesY = int(std::clamp<std::int64_t>(rows, 1, mostSamples));
        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const auto left = std::int64_t(x) * picture.width() / size.width();
            const auto columns = std::int64_t(x + 1) * picture.width() / size.width() - left;
            const int samplesX = int(std::clamp<std::int64_t>(columns, 1, mostSamples));
            std::array<unsigned, 4> sum{};
            for (int j = 0; j < samplesY; ++j) {
                const auto* row = reinterpret_cast<const QRgb*>(
                    picture.constScanLine(int(top + (2 * j + 1) * rows / (2 * samplesY))));
                for (int i = 0; i < samplesX; ++i) {
                    const QRgb stored = row[left + (2 * i + 1) * columns / (2 * samplesX)];
                    const QRgb pixel = straight ? qPremultiply(stored) : stored;
                    sum[0] += unsigned(qAlpha(pixel));
                    sum[1] += unsigned(qRed(pixel));
                    sum[2] += unsigned(qGreen(pixel));
                    sum[3] += unsigned(qBlue(pixel));
                }
            }
            const unsigned count = unsigned(samplesX * samplesY);
            const auto mean = [&](unsigned total) { return int((total + count / 2) / count); };
            out[x] = qRgba(mean(sum[1]), mean(sum[2]), mean(sum[3]), mean(sum[0]));
        }
    }
    return result;
}

bool canAverage(QImage::Format format) {
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

} // namespace

QImage thumbnailOf(const QImage& picture, QSize largest) {
    if (picture.isNull())
        return {};
    const QSize size = picture.width() <= largest.width() && picture.height() <= largest.height()
                           ? picture.size()
                           : picture.size().scaled(largest, Qt::KeepAspectRatio).expandedTo({1, 1});
    // Unusual formats are reduced first by skipping pixels to a few times the size, and converted then.
    QImage source = picture;
    if (!canAverage(source.format())) {
        const QSize intermediate = (size * mostSamples).boundedTo(picture.size());
        source = source.scaled(intermediate, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                     .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    QImage result = size == source.size() ? source : boxReduced(source, size);
    result.setDevicePixelRatio(1);
    return result;
}

} // namespace framora
