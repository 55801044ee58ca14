#include "editor/render/WebpReduction.h"

#include "editor/render/decoders/DecodedPicture.h"

#include <QColorSpace>
#include <QtEndian>
#include <algorithm>
#include <memory>
#include <webp/decode.h>

namespace framora {
namespace {

struct Delete {
    void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
};

/// The content of the file's "ICCP" chunk; empty when there is none.
QByteArray storedProfile(const QByteArray& file) {
    constexpr qsizetype riffHeader = 12;
    constexpr qsizetype chunkHeader = 8;
    for (qsizetype at = riffHeader; at + chunkHeader <= file.size();) {
        const auto size = qsizetype(qFromLittleEndian<quint32>(file.constData() + at + 4));
        if (size > file.size() - at - chunkHeader)
            break;
        if (QByteArrayView(file).sliced(at, 4) == "ICCP")
            return file.mid(at + chunkHeader, size);
        at += chunkHeader + size + (size & 1);
    }
    return {};
}

} // namespace

std::optional<QImage> reducedWebp(const QByteArray& encoded, int factor, DecodingWatch& watch) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(encoded.constData());
    const auto size = std::size_t(encoded.size());
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config) || WebPGetFeatures(bytes, size, &config.input) != VP8_STATUS_OK)
        return QImage();
    if (config.input.has_animation)
        return {};
    const int width = std::max(config.input.width / factor, 1);
    const int height = std::max(config.input.height / factor, 1);
    if (std::int64_t(config.input.width) * config.input.height > maximumPicturePixels)
        return QImage();
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    constexpr int farReduction = 3; // sides; the blocks are smaller than a pixel of the outcome then
    config.options.bypass_filtering = factor >= farReduction;
    config.options.use_scaling = factor > 1;
    config.options.scaled_width = width;
    config.options.scaled_height = height;
    config.output.colorspace = MODE_bgrA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {image.bits(), int(image.bytesPerLine()), std::size_t(image.sizeInBytes())};
    const std::unique_ptr<WebPIDecoder, Delete> decoder(WebPIDecode(nullptr, 0, &config));
    if (!decoder)
        return QImage();
    // Piece by piece, so that it can be stopped: a picture of one colour has thousands of blocks in one.
    constexpr std::size_t pieceBytes = 512;
    VP8StatusCode status = VP8_STATUS_SUSPENDED;
    for (std::size_t given = 0; given < size && status == VP8_STATUS_SUSPENDED && !watch.isOver();) {
        given = std::min(given + pieceBytes, size);
        status = WebPIUpdate(decoder.get(), bytes, given);
    }
    if (status != VP8_STATUS_OK || watch.isOver())
        return QImage();
    if (const QByteArray profile = storedProfile(encoded); !profile.isEmpty())
        image.setColorSpace(QColorSpace::fromIccProfile(profile));
    return image;
}

} // namespace framora
