#include "feedback/ToastView.h"

#include "feedback/ToastCard.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace framora {
namespace {

constexpr double height = 56;
constexpr double widestCard = 440;
constexpr double inset = 11; ///< Around the icon.
constexpr double iconSide = 34;
constexpr double gap = 12;
constexpr double endInset = 22; ///< After the text.

} // namespace

ToastView::ToastView(QString text, QString symbol, bool isSuccess, ToastPalette palette)
    : message(std::move(text)), icon(std::move(symbol)), success(isSuccess), m_palette(palette) {
    if (!success) {
        m_palette.tint = m_palette.failure;
        m_palette.hairline = m_palette.failure;
        m_palette.hairline.setAlpha(90);
    }
}

ToastSummary ToastView::summary() const {
    return {message, {}, {}, {}, success, seconds};
}

QRectF ToastView::bounds(QSizeF panelSize) const {
    return ToastCard::boundsWithShadow(cardRect(panelSize));
}

QRectF ToastView::cardRect(QSizeF panelSize) const {
    const double text = ToastCard::textWidth(ToastCard::messageFont(), message.simplified());
    const double widest = std::min(widestCard, panelSize.width() - 2 * ToastCard::sideMargin);
    const double width = std::min(inset + iconSide + gap + text + endInset, widest);
    return ToastCard::placed({width, height}, panelSize);
}

double ToastView::cardCornerRadius() const {
    return ToastCard::cornerRadius;
}

QColor ToastView::cardColor() const {
    // A failure's card carries a breath of its red.
    return success ? m_palette.card : blended(m_palette.card, m_palette.failure, 0.045);
}

QImage ToastView::paint(QSizeF panelSize, double pixelRatio) const {
    const QRectF area = bounds(panelSize);
    const QRectF card = cardRect(panelSize);
    QImage image = ToastCard::backdrop(area, card, cardColor(), m_palette, pixelRatio);
    QPainter painter(&image);
    ToastCard::prepare(painter, area);
    const QRectF round(card.left() + inset, card.top() + inset, iconSide, iconSide);
    ToastCard::drawRoundIcon(painter, round, icon, m_palette.tint,
                             blended(cardColor(), m_palette.tint, m_palette.tintOpacity));
    const double textLeft = round.right() + gap;
    ToastCard::drawLine(painter, {textLeft, card.top(), card.right() - endInset - textLeft, card.height()},
                        ToastCard::messageFont(), m_palette.text, message);
    return image;
}

} // namespace framora
