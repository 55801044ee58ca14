#include "controls/SymbolIcon.h"

#include "platform/Symbols.h"

#include <QPainter>

namespace framora {

SymbolIcon::SymbolIcon(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setImplicitSize(m_size, m_size);
    connect(this, &SymbolIcon::symbolChanged, this, [this] { update(); });
    connect(this, &SymbolIcon::colorChanged, this, [this] { update(); });
}

void SymbolIcon::setSize(double size) {
    if (m_size == size)
        return;
    m_size = size;
    setImplicitSize(size, size);
    Q_EMIT sizeChanged();
}

void SymbolIcon::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(symbolPath(m_symbol, boundingRect()), m_color);
}

} // namespace framora
