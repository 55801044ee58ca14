#pragma once

#include "platform/Screens.h"

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QString>
#include <functional>
#include <memory>

namespace framora {

/// A toast in words and a picture, for desktops that show such things themselves.
struct ToastSummary {
    QString message;
    QString hint;        ///< What can be done; empty for nothing.
    QString action;      ///< The name of what a press does; empty for nothing.
    QImage picture;      ///< Small; null for none.
    bool success = true; ///< False for failures.
    double seconds = 0;  ///< How long it is shown.
};

/// What a toast panel shows: a card somewhere inside the panel, in points, y down, from the panel's top left.
class ToastContent {
public:
    virtual ~ToastContent() = default;
    /// The part of the panel that this content draws in, its shadow included. Everything outside is
    /// transparent and lets clicks through.
    virtual QRectF bounds(QSizeF panelSize) const = 0;
    /// The card itself: what takes the pointer, and what stays visible where nothing can be translucent.
    virtual QRectF cardRect(QSizeF panelSize) const = 0;
    virtual double cardCornerRadius() const = 0;
    /// What fills the card, opaque: its edges blend into this where nothing can be translucent.
    virtual QColor cardColor() const = 0;
    /// Draws bounds() as premultiplied ARGB at `pixelRatio`.
    virtual QImage paint(QSizeF panelSize, double pixelRatio) const = 0;
    virtual ToastSummary summary() const = 0;
    /// Pointer inside the card or not. Returns true when the content has to be drawn again.
    virtual bool setHovered(bool hovered) = 0;
    /// A press of the primary button at `position` inside the card.
    virtual void press(QPointF position) = 0;
};

/// A panel over everything, on every desktop, that never takes focus.
class ToastPanel {
public:
    enum class Easing { easeOut, easeIn };

    virtual ~ToastPanel() = default; ///< Closes it at once.
    /// 0 is invisible, 1 is fully shown.
    virtual void setAlpha(double alpha) = 0;
    /// Shows it without giving it focus.
    virtual void orderFront() = 0;
    /// Animates alpha; `done` runs on the main queue when it got there, never when the panel went before. A
    /// new animation replaces the running one and starts where it stands; the replaced one's `done` does not
    /// run.
    virtual void animateAlpha(double alpha, double seconds, Easing easing, std::function<void()> done) = 0;
};

class ToastPanels {
public:
    virtual ~ToastPanels() = default;
    /// A panel of the screen's whole frame at alpha 0, not yet shown. With `ignoresMouse` every click goes to
    /// what lies beneath.
    virtual std::unique_ptr<ToastPanel> makePanel(const Screen& screen, bool ignoresMouse,
                                                  std::unique_ptr<ToastContent> content) = 0;
    /// Takes the panels that are there off the screen, so that they are in no picture of it. A panel that
    /// comes later is not concerned.
    virtual void withdraw() = 0;
    /// Shows again what withdraw() took away and what has not been closed since.
    virtual void restore() = 0;
};

} // namespace framora
