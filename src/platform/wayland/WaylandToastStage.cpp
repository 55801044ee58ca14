#include "platform/wayland/WaylandToastStage.h"

#include "platform/ApplicationId.h"
#include "platform/wayland/WaylandToastPanel.h"

#include <algorithm>
#include <cmath>
#include <linux/input-event-codes.h>
#include <utility>
#include <wayland-cursor.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>
#include <wayland-protocols/xdg-activation-v1.h>

namespace framora {

namespace {

constexpr std::uint32_t compositorVersion = 4; ///< The first that takes damage in pixels.
constexpr std::uint32_t seatVersion = 3;       ///< The first whose pointer can be given back.
constexpr std::uint32_t layerShellVersion = 4;
constexpr int tokenMilliseconds = 500;
constexpr int defaultCursorSize = 24;

} // namespace

const wl_seat_listener WaylandToastStage::seatListener{
    [](void* data, wl_seat*, std::uint32_t capabilities) {
        static_cast<WaylandToastStage*>(data)->takePointer(capabilities & WL_SEAT_CAPABILITY_POINTER);
    },
    [](void*, wl_seat*, const char*) {},
};

const wl_pointer_listener WaylandToastStage::pointerListener = [] {
    // What is left out comes with later versions than the one that is bound.
    wl_pointer_listener listener{};
    listener.enter = [](void* data, wl_pointer*, std::uint32_t serial, wl_surface* surface, wl_fixed_t x,
                        wl_fixed_t y) {
        auto& self = *static_cast<WaylandToastStage*>(data);
        self.m_pointed = surface;
        self.m_position = {wl_fixed_to_double(x), wl_fixed_to_double(y)};
        self.showHand(serial);
        if (auto* panel = self.panelOf(surface))
            panel->pointerIsOver(true);
    };
    listener.leave = [](void* data, wl_pointer*, std::uint32_t, wl_surface* surface) {
        auto& self = *static_cast<WaylandToastStage*>(data);
        self.m_pointed = nullptr;
        if (auto* panel = self.panelOf(surface))
            panel->pointerIsOver(false);
    };
    listener.motion = [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
        static_cast<WaylandToastStage*>(data)->m_position = {wl_fixed_to_double(x), wl_fixed_to_double(y)};
    };
    listener.button = [](void* data, wl_pointer*, std::uint32_t serial, std::uint32_t, std::uint32_t button,
                         std::uint32_t state) {
        if (button == BTN_LEFT && state == WL_POINTER_BUTTON_STATE_PRESSED)
            static_cast<WaylandToastStage*>(data)->pressed(serial);
    };
    listener.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
    return listener;
}();

bool WaylandToastStage::isOffered(const WaylandConnection& connection) {
    return connection.offers(zwlr_layer_shell_v1_interface.name);
}

WaylandToastStage::WaylandToastStage(WaylandConnection& connection, const WaylandOutputs& outputs,
                                     TokenHandler onToken)
    : m_connection(connection), m_outputs(outputs), m_onToken(std::move(onToken)),
      m_compositor(connection.bind<wl_compositor>(wl_compositor_interface, compositorVersion)),
      m_shm(connection.bind<wl_shm>(wl_shm_interface, 1)),
      m_layerShell(connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, layerShellVersion)),
      m_viewporter(connection.bind<wp_viewporter>(wp_viewporter_interface, 1)),
      m_activation(connection.bind<xdg_activation_v1>(xdg_activation_v1_interface, 1)),
      m_seat(connection.bind<wl_seat>(wl_seat_interface, seatVersion)) {
    if (m_seat)
        wl_seat_add_listener(m_seat, &seatListener, this);
}

WaylandToastStage::~WaylandToastStage() {
    releaseCursor();
    takePointer(false);
    if (m_seat)
        wl_seat_destroy(m_seat);
    if (m_activation)
        xdg_activation_v1_destroy(m_activation);
    if (m_viewporter)
        wp_viewporter_destroy(m_viewporter);
    // A layer shell of an early version cannot be told.
    if (zwlr_layer_shell_v1_get_version(m_layerShell) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION)
        zwlr_layer_shell_v1_destroy(m_layerShell);
    else
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(m_layerShell));
    wl_shm_destroy(m_shm);
    wl_compositor_destroy(m_compositor);
    m_connection.flush();
}

void WaylandToastStage::takePointer(bool exists) {
    if (exists == (m_pointer != nullptr))
        return;
    if (!exists) {
        m_pointed = nullptr;
        wl_pointer* const pointer = std::exchange(m_pointer, nullptr);
        if (wl_pointer_get_version(pointer) >= WL_POINTER_RELEASE_SINCE_VERSION)
            wl_pointer_release(pointer);
        else
            wl_pointer_destroy(pointer);
        return;
    }
    m_pointer = wl_seat_get_pointer(m_seat);
    wl_pointer_add_listener(m_pointer, &pointerListener, this);
}

void WaylandToastStage::add(WaylandToastPanel& panel) {
    m_panels.push_back(&panel);
}

void WaylandToastStage::remove(WaylandToastPanel& panel) {
    std::erase(m_panels, &panel);
    // A program without a toast holds no pictures of cursors.
    if (m_panels.empty())
        releaseCursor();
}

void WaylandToastStage::outputChanged(const WaylandOutput& output) {
    for (WaylandToastPanel* panel : m_panels)
        panel->outputChanged(output);
}

void WaylandToastStage::setWithdrawn(bool withdrawn) {
    if (m_panels.empty())
        return;
    for (auto* panel : m_panels)
        panel->setWithdrawn(withdrawn);
    m_connection.roundTrip();
}

WaylandToastPanel* WaylandToastStage::panelOf(const wl_surface* surface) const {
    const auto found =
        std::ranges::find_if(m_panels, [&](const auto* panel) { return panel->stands(surface); });
    return !surface || found == m_panels.end() ? nullptr : *found;
}

void WaylandToastStage::loadCursors(int scale) {
    releaseCursor();
    m_cursorScale = scale;
    bool isNumber = false;
    const int size = qEnvironmentVariableIntValue("XCURSOR_SIZE", &isNumber);
    const QByteArray theme = qgetenv("XCURSOR_THEME");
    m_cursors = wl_cursor_theme_load(theme.isEmpty() ? nullptr : theme.constData(),
                                     (isNumber && size > 0 ? size : defaultCursorSize) * scale, m_shm);
}

wl_cursor* WaylandToastStage::loadedHand() const {
    wl_cursor* cursor = nullptr;
    for (const char* name : {"pointer", "pointing_hand", "hand2", "hand1", "left_ptr"}) {
        if (m_cursors && !cursor)
            cursor = wl_cursor_theme_get_cursor(m_cursors, name);
    }
    return cursor;
}

wl_cursor* WaylandToastStage::hand(int scale) {
    if (m_cursors && m_wantedScale == scale)
        return loadedHand();
    m_wantedScale = scale;
    loadCursors(scale);
    wl_cursor* const cursor = loadedHand();
    // A theme may not have the size that was asked for, and a compositor takes only whole parts.
    const auto isWhole = [&](std::uint32_t length) { return length % std::uint32_t(scale) == 0; };
    if (!cursor || (isWhole(cursor->images[0]->width) && isWhole(cursor->images[0]->height)))
        return cursor;
    loadCursors(1);
    return loadedHand();
}

void WaylandToastStage::showHand(std::uint32_t serial) {
    const WaylandToastPanel* const panel = panelOf(m_pointed);
    if (!panel)
        return;
    wl_cursor* const cursor = hand(int(std::ceil(panel->pixelRatio())));
    const int scale = m_cursorScale;
    if (!cursor)
        return;
    const wl_cursor_image& image = *cursor->images[0];
    if (!m_cursorSurface)
        m_cursorSurface = wl_compositor_create_surface(m_compositor);
    wl_surface_set_buffer_scale(m_cursorSurface, scale);
    wl_surface_attach(m_cursorSurface, wl_cursor_image_get_buffer(cursor->images[0]), 0, 0);
    wl_surface_damage_buffer(m_cursorSurface, 0, 0, int(image.width), int(image.height));
    wl_surface_commit(m_cursorSurface);
    wl_pointer_set_cursor(m_pointer, serial, m_cursorSurface, int(image.hotspot_x) / scale,
                          int(image.hotspot_y) / scale);
}

void WaylandToastStage::releaseCursor() {
    if (m_cursorSurface)
        wl_surface_destroy(std::exchange(m_cursorSurface, nullptr));
    if (m_cursors)
        wl_cursor_theme_destroy(std::exchange(m_cursors, nullptr));
}

void WaylandToastStage::pressed(std::uint32_t serial) {
    wl_surface* const surface = m_pointed;
    if (!panelOf(surface))
        return;
    const QString token = activationToken(serial, surface);
    // Asking took a while.
    WaylandToastPanel* const panel = panelOf(surface);
    if (!panel)
        return;
    if (!token.isEmpty() && m_onToken)
        m_onToken(token);
    panel->pressed(m_position);
}

QString WaylandToastStage::activationToken(std::uint32_t serial, wl_surface* surface) {
    if (!m_activation)
        return {};
    static constexpr xdg_activation_token_v1_listener listener{
        [](void* data, xdg_activation_token_v1*, const char* text) {
            *static_cast<QString*>(data) = QString::fromUtf8(text);
        }};
    QString result;
    xdg_activation_token_v1* const token = xdg_activation_v1_get_activation_token(m_activation);
    xdg_activation_token_v1_add_listener(token, &listener, &result);
    xdg_activation_token_v1_set_serial(token, serial, m_seat);
    xdg_activation_token_v1_set_app_id(token, applicationId);
    xdg_activation_token_v1_set_surface(token, surface);
    xdg_activation_token_v1_commit(token);
    m_connection.roundTrip(tokenMilliseconds);
    xdg_activation_token_v1_destroy(token);
    return result;
}

} // namespace framora
