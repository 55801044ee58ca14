#pragma once

#include "feedback/ToastPalette.h"
#include "platform/ToastPanel.h"

#include <QString>

namespace framora {

/// The plain toast: an icon in a tinted round and one line of text.
class ToastView final : public ToastContent {
public:
    ToastView(QString message, QString icon, bool success, ToastPalette palette);

    static constexpr double seconds = 1.8; ///< How long it is shown.

    QString message; ///< Localised.
    QString icon;    ///< A symbol's name.
    bool success;    ///< False for failures: icon and edge turn red.

    QRectF bounds(QSizeF panelSize) const override;
    QRectF cardRect(QSizeF panelSize) const override;
    double cardCornerRadius() const override;
    QColor cardColor() const override;
    QImage paint(QSizeF panelSize, double pixelRatio) const override;
    ToastSummary summary() const override;
    bool setHovered(bool) override { return false; }
    void press(QPointF) override {}

private:
    ToastPalette m_palette;
};

} // namespace framora
