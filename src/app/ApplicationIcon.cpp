#include "app/ApplicationIcon.h"

#include "platform/Symbols.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

namespace framora {

namespace {

/// A tile of dusk colours that carries the picture symbol.
QPixmap drawIcon(int side) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const double margin = side / 16.0;
    const QRectF tile(margin, margin, side - 2 * margin, side - 2 * margin);
    QLinearGradient dusk(tile.topLeft(), tile.bottomRight());
    dusk.setColorAt(0, QColor(0x4f, 0x7b, 0xf7));
    dusk.setColorAt(0.55, QColor(0x8a, 0x5c, 0xe6));
    dusk.setColorAt(1, QColor(0xe8, 0x6a, 0xa6));
    painter.setPen(Qt::NoPen);
    painter.setBrush(dusk);
    painter.drawRoundedRect(tile, tile.width() * 0.24, tile.height() * 0.24);
    const double inset = side * 0.22;
    painter.fillPath(symbolPath(u"photo", QRectF(inset, inset, side - 2 * inset, side - 2 * inset)),
                     Qt::white);
    return pixmap;
}

} // namespace

QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128})
        icon.addPixmap(drawIcon(side));
    return icon;
}

} // namespace framora
