#include "platform/desktop/AdoptingPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QWindow>
#include <utility>

namespace framora {

namespace {
const QString pngType = QStringLiteral("image/png");
/// For a window to come up.
constexpr double waitSeconds = 30;
} // namespace

AdoptingPasteboard::AdoptingPasteboard(MainQueue& mainQueue, DecodePicture decodePicture)
    : m_mainQueue(mainQueue), m_decodePicture(std::move(decodePicture)) {
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
    m_dropping = m_mainQueue.after(waitSeconds, [this] { m_waiting.clear(); });
    if (QGuiApplication::focusWindow())
        offer();
}

QByteArray AdoptingPasteboard::takeWaiting() {
    m_dropping.reset();
    return std::exchange(m_waiting, {});
}

void AdoptingPasteboard::offer() {
    const QByteArray png = takeWaiting();
    if (png.isEmpty())
        return;
    auto data = std::make_unique<QMimeData>();
    data->setData(pngType, png);
    QGuiApplication::clipboard()->setMimeData(data.release());
}

} // namespace framora
