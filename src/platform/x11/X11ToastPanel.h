#pragma once

#include "platform/ToastAnimation.h"
#include "platform/x11/X11ToastConnection.h"

#include <memory>

namespace framora {

/// One toast: an override-redirect window of the screen's whole frame, shaped to what its content draws.
///
/// Under a compositor the window shows the content's bounds, shadow included, and fades by repainting them.
/// Without one it is shaped to the card, drawn opaque, and comes and goes at once.
class X11ToastPanel final : public ToastPanel {
public:
    /// The connection and the queue outlive the panel.
    X11ToastPanel(X11ToastConnection& connection, MainQueue& queue, const Screen& screen, bool ignoresMouse,
                  std::unique_ptr<ToastContent> content);
    ~X11ToastPanel() override;

    void setAlpha(double alpha) override;
    void orderFront() override;
    void animateAlpha(double alpha, double seconds, Easing easing, std::function<void()> done) override;

    xcb_window_t window() const { return m_window; }

    // From the connection.
    void exposed();
    void pointerIsOver(bool over);
    void pressed(int x, int y); ///< Pixels. The panel may have gone when this returns.
    void compositorChanged();
    /// Not on the screen for a while, whatever else is asked of it.
    void setWithdrawn(bool withdrawn);
    void keepAbove();
    const Screen& screen() const { return m_screen; }
    /// Moves there, or takes its new size and ratio.
    void setScreen(const Screen& screen);

private:
    /// How the window may look now.
    enum class Look {
        opaque,      ///< The card alone, solid.
        translucent, ///< The content's bounds, blended.
        unseen       ///< Nothing yet: the compositor is about to take the window over.
    };

    void createWindow();
    void describeWindow();
    /// Lets the content draw itself anew.
    void renderContent();
    /// Finds out how the window may look, and again soon where the compositor is late.
    void updateLook();
    void setLook(Look look);
    /// Gives the window the shape and the background for its look.
    void applyShape();
    std::vector<xcb_rectangle_t> cardSpans() const;
    /// Puts the picture on the window as transparent as alpha says.
    void put();
    /// Where the screen has other colours than our pictures.
    void putInBlackAndWhite();
    void changeAlpha(double alpha);
    void step();

    X11ToastConnection& m_connection;
    MainQueue& m_queue;
    Screen m_screen;
    const bool m_ignoresMouse;
    const std::unique_ptr<ToastContent> m_content;
    xcb_window_t m_window = XCB_NONE;
    xcb_gcontext_t m_gc = XCB_NONE;
    QSizeF m_size;   ///< Points.
    QImage m_image;  ///< The content's bounds; its pixel ratio is left at 1.
    QPoint m_origin; ///< Of m_image in the window, pixels.
    QRect m_card;    ///< In the window, pixels.
    QImage m_frame;  ///< m_image at the present alpha; kept to be filled again.
    double m_alpha = 0;
    Look m_look = Look::opaque;
    int m_probes = 0; ///< Questions put to a late compositor.
    std::unique_ptr<WorkItem> m_probeTimer;
    bool m_ordered = false;
    bool m_mapped = false;
    bool m_withdrawn = false;
    int m_raisesLeft;
    std::unique_ptr<ToastAnimation> m_animation;
};

} // namespace framora
