#include "platform/wayland/WaylandWindowExport.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QWindow>
#include <cstring>
#include <functional>
#include <poll.h>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>
#include <wayland-protocols/xdg-activation-v1.h>
#include <wayland-protocols/xdg-foreign-unstable-v2.h>

namespace framora {
namespace {

/// Compositors answer within a frame.
constexpr int answerMilliseconds = 500;

} // namespace

/// Speaks on Qt's own connection, since the surface is Qt's, in a queue of its own.
class WaylandWindowExport::Exporter {
public:
    Exporter(wl_display* display, wl_surface* surface) : m_display(display) {
        m_queue = wl_display_create_queue(display);
        auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), m_queue);
        m_registry = wl_display_get_registry(wrapper);
        wl_registry_add_listener(m_registry, &registryListener, this);
        wl_callback* const told = wl_display_sync(wrapper);
        wl_callback_add_listener(told, &toldListener, this);
        wl_proxy_wrapper_destroy(wrapper);
        dispatchUntil([this] { return m_allTold; });
        wl_callback_destroy(told);
        if (m_exporter) {
            m_exported = zxdg_exporter_v2_export_toplevel(m_exporter, surface);
            zxdg_exported_v2_add_listener(m_exported, &exportedListener, this);
        }
        if (m_activation) {
            m_token = xdg_activation_v1_get_activation_token(m_activation);
            xdg_activation_token_v1_add_listener(m_token, &tokenListener, this);
            xdg_activation_token_v1_set_app_id(m_token, "org.framora.Framora");
            xdg_activation_token_v1_set_surface(m_token, surface);
            xdg_activation_token_v1_commit(m_token);
        }
        dispatchUntil([this] {
            return (!m_exported || !m_handle.isEmpty()) && (!m_token || !m_activationToken.isEmpty());
        });
    }

    ~Exporter() {
        if (m_token)
            xdg_activation_token_v1_destroy(m_token);
        if (m_activation)
            xdg_activation_v1_destroy(m_activation);
        if (m_exported)
            zxdg_exported_v2_destroy(m_exported);
        if (m_exporter)
            zxdg_exporter_v2_destroy(m_exporter);
        wl_registry_destroy(m_registry);
        wl_display_flush(m_display);
        wl_event_queue_destroy(m_queue);
    }

    const QString& handle() const { return m_handle; }
    const QString& activationToken() const { return m_activationToken; }

private:
    void dispatchUntil(const std::function<bool()>& condition) {
        const QDeadlineTimer deadline(answerMilliseconds);
        while (!condition()) {
            while (wl_display_prepare_read_queue(m_display, m_queue) != 0)
                if (wl_display_dispatch_queue_pending(m_display, m_queue) < 0)
                    return;
            wl_display_flush(m_display);
            pollfd waiting{wl_display_get_fd(m_display), POLLIN, 0};
            if (condition() || ::poll(&waiting, 1, int(deadline.remainingTime())) <= 0) {
                wl_display_cancel_read(m_display);
                return;
            }
            if (wl_display_read_events(m_display) < 0 ||
                wl_display_dispatch_queue_pending(m_display, m_queue) < 0)
                return;
        }
    }

    static void global(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                       std::uint32_t) {
        auto& self = *static_cast<Exporter*>(data);
        if (std::strcmp(interface, zxdg_exporter_v2_interface.name) == 0)
            self.m_exporter = static_cast<zxdg_exporter_v2*>(
                wl_registry_bind(registry, name, &zxdg_exporter_v2_interface, 1));
        else if (std::strcmp(interface, xdg_activation_v1_interface.name) == 0)
            self.m_activation = static_cast<xdg_activation_v1*>(
                wl_registry_bind(registry, name, &xdg_activation_v1_interface, 1));
    }

    static void removed(void*, wl_registry*, std::uint32_t) {}
    static void allTold(void* data, wl_callback*, std::uint32_t) {
        static_cast<Exporter*>(data)->m_allTold = true;
    }
    static void exported(void* data, zxdg_exported_v2*, const char* handle) {
        static_cast<Exporter*>(data)->m_handle = QString::fromUtf8(handle);
    }
    static void activated(void* data, xdg_activation_token_v1*, const char* token) {
        static_cast<Exporter*>(data)->m_activationToken = QString::fromUtf8(token);
    }

    static constexpr wl_registry_listener registryListener{global, removed};
    static constexpr wl_callback_listener toldListener{allTold};
    static constexpr zxdg_exported_v2_listener exportedListener{exported};
    static constexpr xdg_activation_token_v1_listener tokenListener{activated};

    wl_display* m_display;
    wl_event_queue* m_queue = nullptr;
    wl_registry* m_registry = nullptr;
    bool m_allTold = false;
    zxdg_exporter_v2* m_exporter = nullptr;
    zxdg_exported_v2* m_exported = nullptr;
    xdg_activation_v1* m_activation = nullptr;
    xdg_activation_token_v1* m_token = nullptr;
    QString m_handle;
    QString m_activationToken;
};

WaylandWindowExport::WaylandWindowExport(QWindow* window) {
    if (!window || !window->handle())
        return;
    if (QGuiApplication::platformName() == u"xcb") {
        m_portalName = QStringLiteral("x11:%1").arg(window->winId(), 0, 16);
        return;
    }
    QPlatformNativeInterface* const native = QGuiApplication::platformNativeInterface();
    if (!native || !QGuiApplication::platformName().startsWith(QStringLiteral("wayland")))
        return;
    auto* const display = static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
    auto* const surface = static_cast<wl_surface*>(native->nativeResourceForWindow("surface", window));
    if (!display || !surface)
        return;
    m_exporter = std::make_unique<Exporter>(display, surface);
    if (!m_exporter->handle().isEmpty())
        m_portalName = QStringLiteral("wayland:") + m_exporter->handle();
    m_activationToken = m_exporter->activationToken();
}

WaylandWindowExport::~WaylandWindowExport() = default;

} // namespace framora
