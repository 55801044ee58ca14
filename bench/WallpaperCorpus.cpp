#include "WallpaperCorpus.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QProcess>
#include <cmath>
#include <cstdio>
#include <functional>
#include <unistd.h>
#include <vector>

namespace framora {
namespace {

struct Kind {
    const char* extension;
    int count;
    /// Makes the file of one of the sizes, told by its number; a line on failure.
    std::function<QString(const QString& path, int size)> make;
};

constexpr int sizeCount = 3;
constexpr QSize sizes[sizeCount] = {{3840, 2160}, {5120, 2880}, {6016, 3384}};

/// Hills under a sky with the grain of a sensor.
QImage photograph(QSize size, int seed) {
    QImage image(size, QImage::Format_RGB32);
    quint32 noise = quint32(seed) * 747796405u + 1;
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const double v = double(y) / size.height();
        for (int x = 0; x < size.width(); ++x) {
            const double u = double(x) / size.width() * 6 + seed;
            double red = 250 - 170 * v, green = 190 - 90 * v, blue = 110 + 90 * v;
            for (int hill = 0; hill < 4; ++hill) {
                const double top = 0.45 + hill * 0.13 + 0.06 * std::sin(u * (1.3 + hill)) +
                                   0.015 * std::sin(u * (9 + 5 * hill)) + 0.004 * std::sin(u * 61);
                if (v > top) {
                    const double texture = 8 * std::sin(u * 211 + v * 173) * std::sin(v * 397);
                    red = 70 - hill * 14 + texture;
                    green = 90 - hill * 15 + texture;
                    blue = 95 - hill * 20 + texture;
                }
            }
            noise = noise * 1664525u + 1013904223u;
            const int grain = int(noise >> 30) - 1;
            row[x] = qRgb(qBound(0, int(red) + grain, 255), qBound(0, int(green) + grain, 255),
                          qBound(0, int(blue) + grain, 255));
        }
    }
    return image;
}

QString run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted())
        return program + QStringLiteral(" is missing");
    process.waitForFinished(-1);
    return process.exitCode() == 0 ? QString() : QString::fromLocal8Bit(process.readAllStandardError());
}

QString write(const QImage& image, const QString& path, int quality, int compression = -1) {
    QImageWriter writer(path);
    writer.setQuality(quality);
    if (compression >= 0)
        writer.setCompression(compression);
    return writer.write(image) ? QString() : writer.errorString();
}

QString heic(const QString& path, const QString& picture, bool withThumbnail) {
    QStringList arguments{QStringLiteral("-q"), QStringLiteral("60"), QStringLiteral("-p"),
                          QStringLiteral("preset=ultrafast")};
    if (withThumbnail)
        arguments << QStringLiteral("-t") << QStringLiteral("416");
    return run(QStringLiteral("heif-enc"), arguments + QStringList{picture, QStringLiteral("-o"), path});
}

/// Two seconds of the picture passing by.
QString video(const QString& path, const QString& picture, QSize size) {
    return run(
        QStringLiteral("ffmpeg"),
        {QStringLiteral("-v"),
         QStringLiteral("error"),
         QStringLiteral("-y"),
         QStringLiteral("-loop"),
         QStringLiteral("1"),
         QStringLiteral("-framerate"),
         QStringLiteral("25"),
         QStringLiteral("-t"),
         QStringLiteral("2"),
         QStringLiteral("-i"),
         picture,
         QStringLiteral("-vf"),
         QStringLiteral("crop=%1:%2:n*2:n,format=yuv420p").arg(size.width() - 128).arg(size.height() - 128),
         QStringLiteral("-c:v"),
         QStringLiteral("libx264"),
         QStringLiteral("-preset"),
         QStringLiteral("veryfast"),
         QStringLiteral("-crf"),
         QStringLiteral("24"),
         path});
}

} // namespace

bool makeWallpaperCorpus(const QString& folder) {
    const QDir files(folder);
    const QDir sources(folder + QStringLiteral("-sources"));
    if (files.exists() && files.count() == 200 + 2)
        return true;
    QDir().mkpath(folder);
    QDir().mkpath(sources.path());
    const auto picture = [&](int size) { return sources.filePath(QStringLiteral("%1.jpg").arg(size)); };
    std::vector<QImage> photographs;
    for (int size = 0; size < sizeCount; ++size) {
        photographs.push_back(photograph(sizes[size], size));
        write(photographs.back(), picture(size), 95);
    }
    const auto image = [&](int quality, int compression = -1) {
        return [&photographs, quality, compression](const QString& path, int size) {
            return write(photographs[std::size_t(size)], path, quality, compression);
        };
    };
    const auto clip = [&](const QString& path, int size) { return video(path, picture(size), sizes[size]); };
    // The HEIC of the phones bring a small picture along, those of the collections do not.
    const std::vector<Kind> kinds{
        {"jpg", 62, image(90)},
        {"png", 30, image(-1)},
        {"heic", 20, [&](const QString& path, int size) { return heic(path, picture(size), false); }},
        {"HEIC", 20, [&](const QString& path, int size) { return heic(path, picture(size), true); }},
        {"webp", 24, image(85)},
        {"tiff", 14, image(-1, 1)},
        {"mov", 15, clip},
        {"mp4", 15, clip}};
    for (const Kind& kind : kinds) {
        std::printf("making %d %s\n", kind.count, kind.extension);
        std::fflush(stdout);
        for (int i = 0; i < kind.count; ++i) {
            const QString extension = QLatin1String(kind.extension);
            const QString source =
                sources.filePath(QStringLiteral("%1.%2").arg(i % sizeCount).arg(extension));
            const bool isJpeg = extension == u"jpg";
            if (!isJpeg && !QFile::exists(source)) {
                const QString error = kind.make(source, i % sizeCount);
                if (!error.isEmpty()) {
                    std::fprintf(stderr, "%s: %s\n", qPrintable(source), qPrintable(error));
                    return false;
                }
            }
            const QString name = files.filePath(
                QStringLiteral("%1-%2.%3").arg(extension).arg(i, 3, 10, QLatin1Char('0')).arg(extension));
            QFile::remove(name);
            if (link(QFile::encodeName(source).constData(), QFile::encodeName(name).constData()) != 0)
                return false;
        }
    }
    return true;
}

} // namespace framora
