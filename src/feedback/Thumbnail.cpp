#include "feedback/Thumbnail.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace framora {
namespace {

/// At most this many rows of a cell are read; each is read whole, as memory likes it.
constexpr int mostRows = 4;

/// The mean of each cell, on 32-bit pixels.
QImage boxReduced(const QImage& picture, QSize size) {
    const bool straight = picture.format() == QImage::Format_ARGB32;
    QImage result(size, straight ? QImage::Format_ARGB32_Premultiplied : picture.format());
    // Channel sums of a row of cells, two channels a word: each has room for 32 bits.
    struct Sum {
        std::uint64_t redBlue;
        std::uint64_t alphaGreen;
    };
    const auto spread = [](std::uint32_t two) { return (std::uint64_t(two >> 16) << 32) | (two & 0xffff); };
    std::vector<Sum> sums(std::size_t(size.width()));
    for (int y = 0; y < size.height(); ++y) {
        const auto top = std::int64_t(y) * picture.height() / size.height();
        const auto cellRows = std::int64_t(y + 1) * picture.height() / size.height() - top;
        const int rows = int(std::clamp<std::int64_t>(cellRows, 1, mostRows));
        std::fill(sums.begin(), sums.end(), Sum{0, 0});
        for (int j = 0; j < rows; ++j) {
            const auto* row = reinterpret_cast<const QRgb*>(
                picture.constScanLine(int(top + (2 * j + 1) * cellRows / (2 * rows))));
            std::int64_t column = 0;
            for (int x = 0; x < size.width(); ++x) {
                const auto end = std::int64_t(x + 1) * picture.width() / size.width();
                Sum& sum = sums[std::size_t(x)];
                while (column < end) {
                    // 256 pixels at most fit the halves of a 32-bit word.
                    const auto stop = std::min(end, column + 256);
                    std::uint32_t redBlue = 0;
                    std::uint32_t alphaGreen = 0;
                    for (; column < stop; ++column) {
                        QRgb pixel = row[column];
                        if (straight && qAlpha(pixel) != 255)
                            pixel = qPremultiply(pixel);
                        redBlue += pixel & 0x00ff00ff;
                        alphaGreen += (pixel >> 8) & 0x00ff00ff;
                    }
                    sum.redBlue += spread(redBlue);
                    sum.alphaGreen += spread(alphaGreen);
                }
            }
        }
        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const auto left = std::int64_t(x) * picture.width() / size.width();
            const auto count =
                std::uint64_t((std::int64_t(x + 1) * picture.width() / size.width() - left) * rows);
            const auto mean = [&](std::uint64_t total) { return int((total + count / 2) / count); };
            const Sum& sum = sums[std::size_t(x)];
            out[x] = qRgba(mean(sum.redBlue >> 32), mean(sum.alphaGreen & 0xffffffff),
                           mean(sum.redBlue & 0xffffffff), mean(sum.alphaGreen >> 32));
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
        const QSize intermediate = (size * mostRows).boundedTo(picture.size());
        source = source.scaled(intermediate, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                     .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    QImage result = size == source.size() ? source : boxReduced(source, size);
    result.setDevicePixelRatio(1);
    return result;
}

} // namespace framora
