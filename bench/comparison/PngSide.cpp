#include "PngSide.h"

#include "UpFilterPng.h"
#include "editor/render/PictureFile.h"

#include <QFile>
#include <QFileInfo>
#include <memory>

namespace framora::comparison {
namespace {

constexpr double dotsPerInch = 144;

void writePlainly(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        file.write(bytes);
}

Contender writer(const QString& name, const QString& path, std::function<void(const QString&)> write) {
    return {
        .name = name,
        .run = [path, write = std::move(write)] { write(path); },
        .picture = [path] { return QImage(path); },
        .note = [path] { return QStringLiteral("%1 bytes").arg(QFileInfo(path).size()); },
        .prepare = [path] { QFile::remove(path); },
    };
}

} // namespace

QString ownPngFile(const QString& folder) {
    return folder + QStringLiteral("/framora.png");
}

QString defaultPngFile(const QString& folder) {
    return folder + QStringLiteral("/qt.png");
}

QList<Contender> pngWriters(const QImage& picture, const QString& folder) {
    QList<Contender> writers;
    writers << writer(QStringLiteral("Framora"), ownPngFile(folder), [picture](const QString& path) {
        writePlainly(path, encodePng(picture, dotsPerInch));
    });
    writers << writer(QStringLiteral("Framora, as Save writes: synced and renamed"),
                      folder + QStringLiteral("/framora-saved.png"), [picture](const QString& path) {
                          writeFileAtomically(path, encodePng(picture, dotsPerInch));
                      });
    // Said to be opaque, so that Qt writes three channels, as the others do.
    const QImage opaque = picture.convertToFormat(QImage::Format_RGB32);
    writers << writer(QStringLiteral("Qt's default"), defaultPngFile(folder),
                      [opaque](const QString& path) { opaque.save(path, "PNG"); });
    if (hasUpFilterPng())
        writers << writer(QStringLiteral("\"up\" and libdeflate 4, one thread"),
                          folder + QStringLiteral("/up.png"),
                          [opaque](const QString& path) { writePlainly(path, encodeUpFilterPng(opaque)); });
    return writers;
}

} // namespace framora::comparison
