#include "feedback/InteractiveToastView.h"

#include "feedback/Thumbnail.h"
#include "feedback/ToastCard.h"
#include "platform/Localized.h"
#include "platform/Symbols.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace framora {
namespace {

constexpr double height = 92;
constexpr double widestCard = 440;
constexpr double inset = 12; ///< Around the thumbnail's place.
constexpr double gap = 18;
constexpr double endInset = 26; ///< After the text.
constexpr double narrowestText = 96;
constexpr double badgeSide = 26;
constexpr double badgeRing = 2.5; ///< Card that shows around the badge.
constexpr double pencilSide = 34;
constexpr double thumbnailRadius = 9;
constexpr QSizeF largestThumbnail(120, 68);
/// A thin strip still gets a place that can be seen and hovered.
constexpr QSizeF smallestThumbnail(44, 36);
constexpr double largestPixelRatio = 2;

} // namespace

struct InteractiveToastView::Layout {
    QRectF card;
    QRectF thumbnail;
    QRectF badge;
    QRectF message;
    QRectF hint;
};

InteractiveToastView::InteractiveToastView(QString text, QString symbol, std::function<void()> edit,
                                           const QImage& image, QString hint, ToastPalette palette)
    : message(std::move(text)), icon(std::move(symbol)), onEdit(std::move(edit)), m_hint(std::move(hint)),
      m_palette(palette), m_naturalSize(image.deviceIndependentSize()),
      m_thumbnail(thumbnailOf(image, (largestThumbnail * largestPixelRatio).toSize())) {}

QSizeF InteractiveToastView::thumbnailSize() const {
    if (m_thumbnail.isNull())
        return largestThumbnail;
    return pictureSize(largestThumbnail).expandedTo(smallestThumbnail).boundedTo(largestThumbnail);
}

QSizeF InteractiveToastView::pictureSize(QSizeF place) const {
    QSizeF size = m_naturalSize;
    if (size.width() > place.width() || size.height() > place.height())
        size.scale(place, Qt::KeepAspectRatio);
    return size;
}

InteractiveToastView::Layout InteractiveToastView::layout(QSizeF panelSize) const {
    const QSizeF thumbnail = thumbnailSize();
    const double text =
        std::max({ToastCard::textWidth(ToastCard::messageFont(), message.simplified()),
                  ToastCard::textWidth(ToastCard::hintFont(), m_hint.simplified()), narrowestText});
    const double widest = std::min(widestCard, panelSize.width() - 2 * ToastCard::sideMargin);
    const double width = std::min(inset + thumbnail.width() + gap + text + endInset, widest);
    Layout result;
    result.card = ToastCard::placed({width, height}, panelSize);
    result.thumbnail = QRectF(
        QPointF(result.card.left() + inset, result.card.center().y() - thumbnail.height() / 2), thumbnail);
    const QPointF corner = result.thumbnail.bottomRight() + QPointF(-badgeSide + 7, -badgeSide + 5);
    result.badge = QRectF(corner, QSizeF(badgeSide, badgeSide));
    const double textLeft = result.thumbnail.right() + gap;
    const double textWidth = result.card.right() - endInset - textLeft;
    const double middle = result.card.center().y();
    const double messageHeight = 22;
    const double hintHeight = m_hint.isEmpty() ? 0 : 20;
    const double top = middle - (messageHeight + hintHeight) / 2;
    result.message = QRectF(textLeft, top, textWidth, messageHeight);
    result.hint = QRectF(textLeft, top + messageHeight, textWidth, hintHeight);
    return result;
}

QRectF InteractiveToastView::bounds(QSizeF panelSize) const {
    return ToastCard::boundsWithShadow(cardRect(panelSize));
}

QRectF InteractiveToastView::cardRect(QSizeF panelSize) const {
    return layout(panelSize).card;
}

double InteractiveToastView::cardCornerRadius() const {
    return ToastCard::cornerRadius;
}

QColor InteractiveToastView::cardColor() const {
    return isHovered ? blended(m_palette.card, m_palette.tint, 0.05) : m_palette.card;
}

QImage InteractiveToastView::paint(QSizeF panelSize, double pixelRatio) const {
    const Layout place = layout(panelSize);
    const QRectF area = ToastCard::boundsWithShadow(place.card);
    ToastPalette palette = m_palette;
    if (isHovered) {
        palette.hairline = m_palette.tint;
        palette.hairline.setAlpha(150);
    }
    QImage image = ToastCard::backdrop(area, place.card, cardColor(), palette, pixelRatio);
    QPainter painter(&image);
    ToastCard::prepare(painter, area);
    drawThumbnail(painter, place.thumbnail, pixelRatio);

    if (isHovered) {
        const QPointF half(pencilSide / 2, pencilSide / 2);
        ToastCard::drawRoundIcon(painter, {place.thumbnail.center() - half, QSizeF(pencilSide, pencilSide)},
                                 QStringLiteral("pencil"), m_palette.onTint, m_palette.tint);
    } else {
        painter.setPen(Qt::NoPen);
        painter.setBrush(cardColor());
        painter.drawEllipse(place.badge.adjusted(-badgeRing, -badgeRing, badgeRing, badgeRing));
        ToastCard::drawRoundIcon(painter, place.badge, icon, m_palette.tint,
                                 blended(cardColor(), m_palette.tint, m_palette.tintOpacity));
    }
    ToastCard::drawLine(painter, place.message, ToastCard::messageFont(), m_palette.text, message);
    ToastCard::drawLine(painter, place.hint, ToastCard::hintFont(),
                        isHovered ? m_palette.tint : m_palette.secondaryText, m_hint);
    return image;
}

void InteractiveToastView::drawThumbnail(QPainter& painter, const QRectF& box, double pixelRatio) const {
    const QPainterPath frame = ToastCard::outline(box, thumbnailRadius);
    // Behind transparent parts, and behind a strip that does not fill its place.
    painter.fillPath(frame, blended(m_palette.card, m_palette.text, 0.07));
    painter.save();
    painter.setClipPath(frame);
    if (!m_thumbnail.isNull()) {
        const QSizeF size = pictureSize(box.size());
        const QRectF target(box.center() - QPointF(size.width() / 2, size.height() / 2), size);
        const QSize pixels = (size * pixelRatio).toSize().expandedTo({1, 1});
        painter.drawImage(target,
                          pixels.width() < m_thumbnail.width()
                              ? m_thumbnail.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                              : m_thumbnail);
    }
    if (isHovered)
        painter.fillRect(box, QColor(0, 0, 0, 70));
    painter.restore();
    const double line = 1 / pixelRatio * std::max(1.0, std::floor(pixelRatio));
    painter.strokePath(
        ToastCard::outline(box.adjusted(line / 2, line / 2, -line / 2, -line / 2), thumbnailRadius),
        QPen(m_palette.hairline, line));
}

ToastSummary InteractiveToastView::summary() const {
    return {message, m_hint, localized(QStringLiteral("toast.edit.action")), m_thumbnail, true, seconds};
}

bool InteractiveToastView::setHovered(bool hovered) {
    return std::exchange(isHovered, hovered) != hovered;
}

void InteractiveToastView::press(QPointF) {
    // The action may close the panel, and with it this view.
    if (const auto edit = std::exchange(onEdit, nullptr))
        edit();
}

} // namespace framora
