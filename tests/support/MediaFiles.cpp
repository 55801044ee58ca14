#include "support/MediaFiles.h"

#include <QPainter>
#include <QProcess>
#include <QtEndian>
#include <algorithm>
#include <libheif/heif.h>
#include <memory>

namespace framora {
namespace {

struct HeifFree {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image* image) const { heif_image_release(image); }
    void operator()(heif_encoder* encoder) const { heif_encoder_release(encoder); }
    void operator()(heif_encoding_options* options) const { heif_encoding_options_free(options); }
    void operator()(heif_color_profile_nclx* profile) const { heif_nclx_color_profile_free(profile); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
template <typename T> using Heif = std::unique_ptr<T, HeifFree>;

heif_error append(heif_context*, const void* data, std::size_t size, void* file) {
    static_cast<QByteArray*>(file)->append(static_cast<const char*>(data), qsizetype(size));
    return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

Heif<heif_image> heifImage(const QImage& image, const HeifOptions& options) {
    const bool isDeep = options.bits > 8;
    const heif_chroma chroma =
        isDeep ? (options.hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE)
               : (options.hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB);
    heif_image* made = nullptr;
    if (heif_image_create(image.width(), image.height(), heif_colorspace_RGB, chroma, &made).code !=
        heif_error_Ok)
        return nullptr;
    Heif<heif_image> result(made);
    heif_image_add_plane(made, heif_channel_interleaved, image.width(), image.height(), options.bits);
    int stride = 0;
    std::uint8_t* plane = heif_image_get_plane(made, heif_channel_interleaved, &stride);
    const unsigned full = (1u << options.bits) - 1;
    for (int y = 0; y < image.height(); ++y) {
        std::uint8_t* to = plane + std::ptrdiff_t(y) * stride;
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            const int channels[] = {color.red(), color.green(), color.blue(), color.alpha()};
            for (int channel = 0; channel < (options.hasAlpha ? 4 : 3); ++channel) {
                const unsigned value = (unsigned(channels[channel]) * full + 127) / 255;
                *to++ = std::uint8_t(value);
                if (isDeep)
                    *to++ = std::uint8_t(value >> 8);
            }
        }
    }
    return result;
}

} // namespace

QByteArray heifFile(const QImage& image, const HeifOptions& options) {
    const Heif<heif_image> picture = heifImage(image, options);
    const Heif<heif_context> context(heif_context_alloc());
    heif_encoder* made = nullptr;
    if (!picture || heif_context_get_encoder_for_format(
                        context.get(), options.isAv1 ? heif_compression_AV1 : heif_compression_HEVC, &made)
                            .code != heif_error_Ok)
        return {};
    const Heif<heif_encoder> encoder(made);
    heif_encoder_set_lossy_quality(made, 100);
    heif_encoder_set_parameter_string(made, "chroma", "444");

    const Heif<heif_color_profile_nclx> colors(heif_nclx_color_profile_alloc());
    heif_nclx_color_profile_set_matrix_coefficients(colors.get(), std::uint16_t(options.matrix));
    colors->full_range_flag = options.isFullRange;
    const Heif<heif_encoding_options> encoding(heif_encoding_options_alloc());
    encoding->image_orientation = heif_orientation(options.orientation);
    encoding->output_nclx_profile = colors.get();
    encoding->macOS_compatibility_workaround_no_nclx_profile = 0;
    if (!options.profile.isEmpty())
        heif_image_set_raw_color_profile(picture.get(), "prof", options.profile.constData(),
                                         std::size_t(options.profile.size()));

    heif_image_handle* handle = nullptr;
    if (heif_context_encode_image(context.get(), picture.get(), made, encoding.get(), &handle).code !=
        heif_error_Ok)
        return {};
    const Heif<heif_image_handle> encoded(handle);
    if (!options.thumbnail.isNull()) {
        HeifOptions plain;
        plain.hasAlpha = options.hasAlpha;
        heif_image_handle* thumbnail = nullptr;
        if (heif_context_encode_thumbnail(context.get(), heifImage(options.thumbnail, plain).get(), handle,
                                          made, encoding.get(), options.thumbnailSide, &thumbnail)
                    .code != heif_error_Ok ||
            !thumbnail)
            return {};
        heif_image_handle_release(thumbnail);
    }
    QByteArray file;
    heif_writer writer{1, append};
    heif_context_write(context.get(), &writer, &file);
    // The encoder leaves the primaries and the transfer function unsaid.
    const qsizetype label = file.indexOf("nclx");
    if (label > 0) {
        qToBigEndian(quint16(options.primaries), file.data() + label + 4);
        qToBigEndian(quint16(options.transfer), file.data() + label + 6);
    }
    return file;
}

QString runFfmpeg(const QStringList& arguments, const QByteArray& input) {
    QProcess process;
    process.start(QStringLiteral("ffmpeg"),
                  QStringList{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-y")} +
                      arguments);
    if (!process.waitForStarted())
        return QStringLiteral("no ffmpeg");
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000))
        return QStringLiteral("ffmpeg does not end");
    return process.exitCode() == 0 ? QString() : QString::fromLocal8Bit(process.readAllStandardError());
}

QString makeClip(const QString& path, int count, const QString& rate, const std::function<QImage(int)>& frame,
                 const QStringList& options) {
    QByteArray raw;
    QSize size;
    for (int i = 0; i < count; ++i) {
        const QImage picture = frame(i).convertToFormat(QImage::Format_RGBA8888);
        size = picture.size();
        raw.append(reinterpret_cast<const char*>(picture.constBits()), picture.sizeInBytes());
    }
    QStringList arguments{
        QStringLiteral("-f"),       QStringLiteral("rawvideo"),
        QStringLiteral("-pix_fmt"), QStringLiteral("rgba"),
        QStringLiteral("-s"),       QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
        QStringLiteral("-r"),       rate,
        QStringLiteral("-i"),       QStringLiteral("-")};
    if (!options.contains(QStringLiteral("-c:v")))
        arguments << QStringLiteral("-c:v") << QStringLiteral("libx264") << QStringLiteral("-qp")
                  << QStringLiteral("4");
    if (!options.contains(QStringLiteral("-pix_fmt")))
        arguments << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p");
    return runFfmpeg(arguments + options + QStringList{path}, raw);
}

QImage fourQuarters(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    const int x = width / 2;
    const int y = height / 2;
    painter.fillRect(0, 0, x, y, QColor(255, 0, 0));
    painter.fillRect(x, 0, width - x, y, QColor(0, 255, 0));
    painter.fillRect(0, y, x, height - y, QColor(0, 0, 255));
    painter.fillRect(x, y, width - x, height - y, Qt::white);
    return image;
}

QString cornerColors(const QImage& image) {
    if (image.width() < 8 || image.height() < 8)
        return {};
    const int right = image.width() - 4;
    const int bottom = image.height() - 4;
    QString letters;
    for (const QPoint point : {QPoint(3, 3), QPoint(right, 3), QPoint(3, bottom), QPoint(right, bottom)}) {
        const QColor color = image.pixelColor(point);
        const auto isNear = [&color](int red, int green, int blue) {
            return std::max({std::abs(color.red() - red), std::abs(color.green() - green),
                             std::abs(color.blue() - blue)}) <= 12;
        };
        letters += isNear(255, 0, 0)       ? u'R'
                   : isNear(0, 255, 0)     ? u'G'
                   : isNear(0, 0, 255)     ? u'B'
                   : isNear(255, 255, 255) ? u'W'
                                           : u'?';
    }
    return letters;
}

} // namespace framora
