#include "editor/render/SrgbPicture.h"

#include "editor/render/raster/ParallelFor.h"

#include <QColorSpace>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace framora {
namespace {

/// Whether a picture's numbers are those of sRGB. Many programs say so in a PNG by nothing but the gamma and
/// the primaries that the standard has for readers without sRGB; a profile always has a name.
bool meansSrgb(const QColorSpace& space) {
    const QColorSpace srgb(QColorSpace::SRgb);
    if (!space.isValid() || space == srgb)
        return true;
    constexpr double gamma = 1 / 0.45455;
    constexpr double rounding = 0.003; // of a gamma written with three digits
    return space.transferFunction() == QColorSpace::TransferFunction::Gamma &&
           std::abs(space.gamma() - gamma) < rounding && space.description().isEmpty() &&
           space.withTransferFunction(QColorSpace::TransferFunction::SRgb) == srgb;
}

/// What a picture's bytes mean.
class Pixels {
public:
    explicit Pixels(const QImage& image)
        : m_format(image.format()), m_width(image.width()), m_rowBytes(image.bytesPerLine()),
          m_space(image.colorSpace()), m_table(image.colorTable()) {}

    /// So few that Qt converts them on the thread that asks for it: for more it waits for threads of its own,
    /// and for ever where they find no memory for their stacks.
    int bandRows() const {
        constexpr int bytes = 1 << 16;
        constexpr int mostBytes = 8; // a pixel, on its way
        return std::max(1, bytes / (m_width * mostBytes));
    }

    /// Some rows of the picture whose first byte this is. Throws std::bad_alloc.
    QImage converted(const uchar* picture, int first, int rows, bool isSrgb) const {
        QImage part(picture + first * m_rowBytes, m_width, rows, m_rowBytes, m_format);
        if (!m_table.isEmpty())
            part.setColorTable(m_table);
        if (!isSrgb) {
            part.setColorSpace(m_space);
            part.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
        }
        part.convertTo(QImage::Format_ARGB32_Premultiplied);
        if (part.isNull())
            throw std::bad_alloc();
        return part;
    }

private:
    const QImage::Format m_format;
    const int m_width;
    const qsizetype m_rowBytes;
    const QColorSpace m_space;
    const QList<QRgb> m_table;
};

} // namespace

QImage srgbPicture(QImage&& image) {
    constexpr QImage::Format target = QImage::Format_ARGB32_Premultiplied;
    const bool isSrgb = meansSrgb(image.colorSpace());
    if (image.isNull() || (isSrgb && image.format() == target)) {
        image.setColorSpace(QColorSpace());
        return std::move(image);
    }
    const Pixels pixels(image);
    QImage result = image.depth() == 32 ? std::move(image) : QImage(image.size(), target);
    if (result.isNull() || !result.reinterpretAsFormat(target))
        throw std::bad_alloc();
    result.setColorSpace(QColorSpace());
    uchar* const to = result.bits();
    const uchar* const from = image.isNull() ? to : image.constBits();
    const int rows = pixels.bandRows();
    raster::parallelFor((result.height() - 1) / rows + 1, [&](int band) {
        const int first = band * rows;
        const QImage part = pixels.converted(from, first, std::min(rows, result.height() - first), isSrgb);
        for (int y = 0; y < part.height(); ++y)
            std::memcpy(to + (first + y) * result.bytesPerLine(), part.constScanLine(y),
                        std::size_t(part.width()) * sizeof(QRgb));
    });
    return result;
}

} // namespace framora
