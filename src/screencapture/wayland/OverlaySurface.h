#pragma once

#include "screencapture/OverlayPainter.h"
#include "screencapture/OverlayScene.h"
#include "screencapture/wayland/Output.h"
#include "screencapture/wayland/ShmBuffer.h"

#include <array>
#include <memory>

struct wl_callback;
struct wl_compositor;
struct wl_surface;
struct wp_viewport;
struct wp_viewporter;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

namespace framora {

/// What the surfaces of the overlay are made of; all but the viewporter are needed.
struct OverlayGlobals {
    wl_compositor* compositor = nullptr;
    wl_shm* shm = nullptr;
    zwlr_layer_shell_v1* layerShell = nullptr;
    wp_viewporter* viewporter = nullptr;
};

/// The overlay on one output: above everything, in the output's device pixels. It repaints only what changed,
/// and never draws faster than the compositor shows it.
class OverlaySurface {
public:
    /// Asks for the surface; nothing is seen of it before show().
    OverlaySurface(const OverlayGlobals& globals, const Output& output);
    ~OverlaySurface();
    OverlaySurface(const OverlaySurface&) = delete;
    OverlaySurface& operator=(const OverlaySurface&) = delete;

    wl_surface* surface() const { return m_surface; }
    /// The compositor has said how large it is.
    bool configured() const { return m_width > 0; }
    /// The compositor took it away, or made it another size after it was shown.
    bool lost() const { return m_lost; }

    /// The memory of the first frame, shared and of the output's size in pixels. Needed by show().
    void adopt(std::unique_ptr<MemoryImage> memory);
    /// Puts the output's frozen picture up, dimmed and with nothing else on it. `frozen` has the output's
    /// size in pixels and outlives the surface; `screen` is the whole layout in the output's pixels.
    void show(const PixelImage& frozen, const Rect& screen);
    /// What should be seen; drawn by flush().
    void setScene(OverlayScene scene) { m_wanted = std::move(scene); }
    /// Draws what changed when the compositor has shown the frame before.
    void flush();
    /// The font and other things that are better loaded when nobody waits; one of them a call. False when
    /// nothing is left to do.
    bool warmUp();
    /// A size label with these numbers in its place beside `corner` of `selection`, which is in the output's
    /// pixels.
    OverlayScene::Label labelFor(const Rect& selection, Point corner, int width, int height);

private:
    /// One of the pictures that take turns.
    struct Frame {
        std::unique_ptr<ShmBuffer> buffer;
        std::unique_ptr<OverlayPainter> painter;
        OverlayScene scene;
        bool painted = false;
    };

    Frame* freeFrame();
    void paintWhole(Frame& frame);
    void commit(Frame& frame, const std::vector<Rect>& parts);
    void configure(int width, int height);

    OverlayGlobals m_globals;
    const Output& m_output;
    wl_surface* m_surface;
    zwlr_layer_surface_v1* m_layer;
    wp_viewport* m_viewport = nullptr;
    wl_callback* m_frameCallback = nullptr;
    int m_width = 0; // logical
    int m_height = 0;
    bool m_shownOnce = false;
    bool m_lost = false;
    std::array<Frame, 2> m_frames;
    OverlayScene m_shown;
    OverlayScene m_wanted;
};

} // namespace framora
