#pragma once

#include "platform/ToastAnimation.h"
#include "platform/wayland/WaylandToastSurface.h"

#include <memory>

namespace framora {

/// One toast: a surface of what its content draws, above all windows, that takes the pointer on its card
/// alone. It fades by pictures that are drawn when the compositor wants the next one, and asks for none once
/// it stands still.
class WaylandToastPanel final : public ToastPanel {
public:
    /// The stage and the queue outlive the panel. With `compositorChooses` it stands on the output that the
    /// user works on, which the compositor knows; `screen` is then only the likeliest one.
    WaylandToastPanel(WaylandToastStage& stage, MainQueue& queue, const Screen& screen,
                      bool compositorChooses, bool ignoresMouse, std::unique_ptr<ToastContent> content);
    ~WaylandToastPanel() override;

    void setAlpha(double alpha) override;
    void orderFront() override;
    void animateAlpha(double alpha, double seconds, Easing easing, std::function<void()> done) override;

    // From the stage.
    bool stands(const wl_surface* surface) const { return m_surface && m_surface->is(surface); }
    double pixelRatio() const { return m_place.pixelRatio; }
    void pointerIsOver(bool over);
    void pressed(QPointF position); ///< In the surface. The panel may have gone when this returns.
    /// Not on the screen for a while, whatever else is asked of it.
    void setWithdrawn(bool withdrawn);
    void outputChanged(const WaylandOutput& output);

private:
    /// Places the content on an output of that size in units.
    void layOut(QSizeF size, double pixelRatio);
    /// Lets the content draw itself anew.
    void renderContent();
    /// Makes the surface, or takes it away.
    void updateSurface();
    void enteredOutput(const WaylandOutput& output);
    void surfaceClosed();
    void put();
    double presentAlpha() const;
    void finishAnimation();

    WaylandToastStage& m_stage;
    MainQueue& m_queue;
    const bool m_ignoresMouse;
    const std::unique_ptr<ToastContent> m_content;
    QString m_outputName; ///< Empty where the compositor chooses.
    std::uint32_t m_entered =
        0;         ///< The compositor's number for the output that the surface is on; 0 for none.
    QSizeF m_size; ///< The panel's, in units.
    WaylandToastSurface::Place m_place;
    QImage m_image; ///< The whole surface; its pixel ratio is left at 1.
    double m_alpha = 0;
    bool m_ordered = false;
    bool m_withdrawn = false;
    int m_returnsLeft;
    std::unique_ptr<WaylandToastSurface> m_surface;
    std::unique_ptr<WorkItem> m_return;
    std::unique_ptr<ToastAnimation> m_animation;
};

} // namespace framora
