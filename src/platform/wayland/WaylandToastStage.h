#pragma once

#include "platform/wayland/WaylandOutputs.h"

#include <QPointF>
#include <functional>
#include <vector>

struct wl_cursor;
struct wl_cursor_theme;
struct wp_viewporter;
struct xdg_activation_v1;
struct zwlr_layer_shell_v1;

namespace framora {

class WaylandToastPanel;

/// What toasts stand on: the parts of the compositor that they need, and the pointer that may come over them.
class WaylandToastStage {
public:
    /// Told of what the compositor gives for a click: by it a window may come to the front.
    using TokenHandler = std::function<void(const QString& token)>;

    /// Both outlive this. The connection offers the layer shell.
    WaylandToastStage(WaylandConnection& connection, const WaylandOutputs& outputs, TokenHandler onToken);
    ~WaylandToastStage();
    WaylandToastStage(const WaylandToastStage&) = delete;
    WaylandToastStage& operator=(const WaylandToastStage&) = delete;

    static bool isOffered(const WaylandConnection& connection);

    WaylandConnection& connection() const { return m_connection; }
    const WaylandOutputs& outputs() const { return m_outputs; }
    wl_compositor* compositor() const { return m_compositor; }
    wl_shm* shm() const { return m_shm; }
    zwlr_layer_shell_v1* layerShell() const { return m_layerShell; }
    /// Null where pictures can only be shown at whole ratios.
    wp_viewporter* viewporter() const { return m_viewporter; }

    /// Panels hear of the pointer over their own surface.
    void add(WaylandToastPanel& panel);
    void remove(WaylandToastPanel& panel);
    /// Takes all panels off the screen, or lets them show again; the compositor has done so when this
    /// returns.
    void setWithdrawn(bool withdrawn);
    /// The panels on that output take its present size and ratio.
    void outputChanged(const WaylandOutput& output);

private:
    static const wl_seat_listener seatListener;
    static const wl_pointer_listener pointerListener;

    void takePointer(bool exists);
    /// The pointing hand in the user's size times `scale`, or once where the theme has no such size; null
    /// where no theme has one.
    wl_cursor* hand(int scale);
    void loadCursors(int scale);
    wl_cursor* loadedHand() const;
    void showHand(std::uint32_t serial);
    void pressed(std::uint32_t serial);
    /// Empty where the compositor gives none.
    QString activationToken(std::uint32_t serial, wl_surface* surface);
    WaylandToastPanel* panelOf(const wl_surface* surface) const;
    void releaseCursor();

    WaylandConnection& m_connection;
    const WaylandOutputs& m_outputs;
    TokenHandler m_onToken;
    wl_compositor* m_compositor;
    wl_shm* m_shm;
    zwlr_layer_shell_v1* m_layerShell;
    wp_viewporter* m_viewporter;
    xdg_activation_v1* m_activation;
    wl_seat* m_seat;
    wl_pointer* m_pointer = nullptr;
    wl_surface* m_pointed = nullptr; ///< What the pointer is over; only compared.
    QPointF m_position;              ///< Of the pointer in it.
    wl_cursor_theme* m_cursors = nullptr;
    wl_surface* m_cursorSurface = nullptr;
    int m_wantedScale = 0; ///< What the cursors were loaded for.
    int m_cursorScale = 0; ///< What they are.
    std::vector<WaylandToastPanel*> m_panels;
};

} // namespace framora
