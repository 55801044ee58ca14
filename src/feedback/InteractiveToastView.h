#pragma once

#include "feedback/ToastPalette.h"
#include "platform/ToastPanel.h"

#include <QImage>
#include <QString>
#include <functional>

namespace framora {

/// The toast of a capture: its picture, the message, and a hint that a click edits it. The whole card is a
/// button.
class InteractiveToastView final : public ToastContent {
public:
    InteractiveToastView(QString message, QString icon, std::function<void()> onEdit, const QImage& image,
                         QString hint, ToastPalette palette);

    static constexpr double seconds = 3.0; ///< How long it is shown.

    QString message;              ///< Localised.
    QString icon;                 ///< A symbol's name.
    std::function<void()> onEdit; ///< Empty once it was chosen: a toast edits once.
    bool isHovered = false;

    QRectF bounds(QSizeF panelSize) const override;
    QRectF cardRect(QSizeF panelSize) const override;
    double cardCornerRadius() const override;
    QColor cardColor() const override;
    QImage paint(QSizeF panelSize, double pixelRatio) const override;
    ToastSummary summary() const override;
    bool setHovered(bool hovered) override;
    void press(QPointF position) override;

private:
    struct Layout;
    Layout layout(QSizeF panelSize) const;
    QSizeF thumbnailSize() const;
    /// The picture's size in its place: its own where it fits, never blown up.
    QSizeF pictureSize(QSizeF place) const;
    void drawThumbnail(QPainter& painter, const QRectF& box, double pixelRatio) const;

    QString m_hint;
    ToastPalette m_palette;
    QSizeF m_naturalSize; ///< The picture's, points.
    QImage m_thumbnail;   ///< Already small, yet sharp at a pixel ratio of 2.
};

} // namespace framora
