#include "editor/render/TiffReduction.h"

#include "editor/render/RowReducer.h"

#include <QColorSpace>
#include <algorithm>
#include <cstring>
#include <memory>
#include <tiffio.h>
#include <vector>

namespace framora {
namespace {

struct Close {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};
using Tiff = std::unique_ptr<TIFF, Close>;

/// The file in memory, as the library reads it.
struct Source {
    const QByteArray& bytes;
    DecodingWatch& watch;
    toff_t position = 0;

    static tmsize_t read(thandle_t handle, void* data, tmsize_t most) {
        auto* self = static_cast<Source*>(handle);
        const auto size = toff_t(self->bytes.size());
        if (self->watch.isOver() || self->position >= size || most < 0)
            return 0;
        const toff_t count = std::min<toff_t>(toff_t(most), size - self->position);
        std::memcpy(data, self->bytes.constData() + self->position, count);
        self->position += count;
        return tmsize_t(count);
    }
    static tmsize_t write(thandle_t, void*, tmsize_t) { return -1; }
    static toff_t seek(thandle_t handle, toff_t offset, int whence) {
        auto* self = static_cast<Source*>(handle);
        const toff_t base = whence == SEEK_CUR   ? self->position
                            : whence == SEEK_END ? toff_t(self->bytes.size())
                                                 : 0;
        return self->position = base + offset;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle) { return toff_t(static_cast<Source*>(handle)->bytes.size()); }
    static int map(thandle_t, void**, toff_t*) { return 0; }
    static void unmap(thandle_t, void*, toff_t) {}
};

int ignore(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

Tiff opened(Source& source) {
    const std::unique_ptr<TIFFOpenOptions, Close> options(TIFFOpenOptionsAlloc());
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), ignore, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), ignore, nullptr);
    return Tiff(TIFFClientOpenExt("picture", "rm", &source, Source::read, Source::write, Source::seek,
                                  Source::close, Source::size, Source::map, Source::unmap, options.get()));
}

template <typename Number> Number field(TIFF* tiff, ttag_t tag) {
    Number value = 0;
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

bool isPlain(TIFF* tiff) {
    const auto compression = field<std::uint16_t>(tiff, TIFFTAG_COMPRESSION);
    return !TIFFIsTiled(tiff) && field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE) == 8 &&
           field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL) == 3 &&
           field<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_RGB &&
           field<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_CONTIG &&
           field<std::uint16_t>(tiff, TIFFTAG_ORIENTATION) == ORIENTATION_TOPLEFT &&
           field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_UINT &&
           (compression == COMPRESSION_NONE || compression == COMPRESSION_LZW ||
            compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE ||
            compression == COMPRESSION_PACKBITS);
}

} // namespace

std::optional<QImage> reducedTiff(const QByteArray& encoded, int factor, DecodingWatch& watch) {
    Source source{encoded, watch};
    const Tiff tiff = opened(source);
    if (!tiff)
        return QImage();
    const QSize size(int(field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGEWIDTH)),
                     int(field<std::uint32_t>(tiff.get(), TIFFTAG_IMAGELENGTH)));
    constexpr int bytesPerPixel = 3;
    if (!isPlain(tiff.get()) || size.width() < factor || size.height() < factor ||
        TIFFScanlineSize(tiff.get()) != tmsize_t(size.width()) * bytesPerPixel)
        return {};
    RowReducer reducer(size, factor, QImage::Format_RGB888);
    std::vector<uchar> row(std::size_t(size.width()) * bytesPerPixel);
    for (int y = 0; y < size.height(); ++y) {
        if (watch.isOver() || TIFFReadScanline(tiff.get(), row.data(), std::uint32_t(y), 0) != 1)
            return QImage();
        reducer.add(row.data());
    }
    QImage image = reducer.take();
    std::uint32_t profileBytes = 0;
    const void* profile = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &profileBytes, &profile) == 1)
        image.setColorSpace(QColorSpace::fromIccProfile(
            QByteArray(static_cast<const char*>(profile), qsizetype(profileBytes))));
    return image;
}

} // namespace framora
