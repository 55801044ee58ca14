#pragma once

#include "platform/wayland/WaylandToastBuffers.h"
#include "platform/wayland/WaylandToastStage.h"

#include <QRect>
#include <functional>
#include <memory>
#include <vector>

struct wp_viewport;
struct zwlr_layer_surface_v1;
struct zwlr_layer_surface_v1_listener;

namespace framora {

/// One surface above all windows, at a fixed place of an output, without the keyboard. Lengths are units of
/// the compositor's space unless they are called pixels.
class WaylandToastSurface {
public:
    struct Place {
        QRect frame; ///< From the output's top left.
        double pixelRatio = 1;
        std::vector<QRect> input; ///< What takes the pointer, from the frame's top left.
    };
    struct Events {
        std::function<void()> ready; ///< Pictures can be shown from now on.
        std::function<void()> frame; ///< It is time for the picture that requestFrame() asked for.
        std::function<void(const WaylandOutput&)> entered; ///< It stands on that output now.
        std::function<void()> closed; ///< The compositor took it away; it shows nothing any more.
    };

    /// On `output`, or on the one that the compositor chooses where that is null.
    WaylandToastSurface(WaylandToastStage& stage, wl_output* output, const Place& place, Events events);
    ~WaylandToastSurface();
    WaylandToastSurface(const WaylandToastSurface&) = delete;
    WaylandToastSurface& operator=(const WaylandToastSurface&) = delete;

    bool is(const wl_surface* surface) const { return surface == m_surface; }
    bool isReady() const { return m_isReady; }
    QSize pixels() const { return m_buffers->pixels(); }

    /// With the next picture.
    void setPlace(const Place& place);
    /// Shows `picture`, premultiplied ARGB of pixels(), times `alpha`. False when the compositor still holds
    /// all memory for pictures.
    bool show(const QImage& picture, double alpha);
    /// With the next picture.
    void requestFrame();

private:
    static const zwlr_layer_surface_v1_listener layerListener;
    static const wl_surface_listener surfaceListener;
    static const wl_callback_listener frameListener;

    void applyPlace(const Place& place);
    void dropFrame();

    WaylandToastStage& m_stage;
    Events m_events;
    wl_surface* m_surface;
    zwlr_layer_surface_v1* m_layer;
    wp_viewport* m_viewport = nullptr;
    wl_callback* m_frame = nullptr;
    std::unique_ptr<WaylandToastBuffers> m_buffers;
    std::unique_ptr<WaylandToastBuffers> m_former; ///< What may still be on the screen.
    bool m_isReady = false;
};

} // namespace framora
