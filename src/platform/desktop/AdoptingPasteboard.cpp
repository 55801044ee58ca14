#include "platform/desktop/AdoptingPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QWindow>
#include <utility>

namespace framora {

namespace {
const QString pngType = QStringLiteral("image/png");
} // namespace

AdoptingPasteboard::AdoptingPasteboard(DecodePicture decodePicture)
    : m_decodePicture(std::move(decodePicture)) {
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* window) {
        if (window)
            offer();
    });
}

QImage AdoptingPasteboard::readImage() {
    if (!m_waiting.isEmpty())
        return m_decodePicture(m_waiting);
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    if (!data)
        return {};
    for (const char* type : {"image/png", "image/tiff", "image/webp", "image/bmp", "image/jpeg"}) {
        const QString name = QString::fromLatin1(type);
        if (!data->hasFormat(name))
            continue;
        if (QImage image = m_decodePicture(data->data(name)); !image.isNull())
            return image;
    }
    return {};
}

void AdoptingPasteboard::writePng(const QByteArray& png) {
    ++m_changeCount;
    m_waiting = png;
    if (QGuiApplication::focusWindow())
        offer();
}

void AdoptingPasteboard::offer() {
    if (m_waiting.isEmpty())
        return;
    auto data = std::make_unique<QMimeData>();
    data->setData(pngType, std::exchange(m_waiting, {}));
    QGuiApplication::clipboard()->setMimeData(data.release());
}

} // namespace framora
