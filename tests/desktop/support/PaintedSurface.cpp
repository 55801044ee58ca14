#include "desktop/support/PaintedSurface.h"

#include <chrono>
#include <cstring>
#include <map>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>
#include <wayland-protocols/xdg-shell.h>

namespace framora {

struct PaintedSurface::Connection {
    wl_display* display = nullptr;
    wl_compositor* compositor = nullptr;
    wl_shm* shm = nullptr;
    wl_seat* seat = nullptr;
    wp_viewporter* viewporter = nullptr;
    xdg_wm_base* shell = nullptr;
    zwlr_layer_shell_v1* layers = nullptr;
    std::map<std::string, wl_output*> outputs;
    wl_surface* surface = nullptr;
    wl_buffer* buffer = nullptr;
    std::atomic<bool> shown = false;
    bool committed = false;
    QPointF pointer;
    mutable std::mutex mutex; ///< Guards the clicks.
    std::vector<QPointF> clicks;

    void connect(const QString& waylandDisplay);
    void makeBuffer(const QImage& picture);
    void show(const Options& options);
    void commit();

    static void announce(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                         std::uint32_t version);
};

namespace {

template <typename Object>
Object* bound(wl_registry* registry, std::uint32_t name, const wl_interface& interface,
              std::uint32_t version) {
    return static_cast<Object*>(wl_registry_bind(registry, name, &interface, version));
}

} // namespace

void PaintedSurface::Connection::announce(void* data, wl_registry* registry, std::uint32_t name,
                                          const char* interface, std::uint32_t) {
    auto& self = *static_cast<Connection*>(data);
    const std::string_view offered = interface;
    if (offered == wl_compositor_interface.name) {
        self.compositor = bound<wl_compositor>(registry, name, wl_compositor_interface, 4);
    } else if (offered == wl_shm_interface.name) {
        self.shm = bound<wl_shm>(registry, name, wl_shm_interface, 1);
    } else if (offered == wl_seat_interface.name) {
        self.seat = bound<wl_seat>(registry, name, wl_seat_interface, 1);
    } else if (offered == wp_viewporter_interface.name) {
        self.viewporter = bound<wp_viewporter>(registry, name, wp_viewporter_interface, 1);
    } else if (offered == xdg_wm_base_interface.name) {
        self.shell = bound<xdg_wm_base>(registry, name, xdg_wm_base_interface, 1);
    } else if (offered == zwlr_layer_shell_v1_interface.name) {
        self.layers = bound<zwlr_layer_shell_v1>(registry, name, zwlr_layer_shell_v1_interface, 1);
    } else if (offered == wl_output_interface.name) {
        static constexpr wl_output_listener listener = {
            [](void*, wl_output*, int, int, int, int, int, const char*, const char*, int) {},
            [](void*, wl_output*, std::uint32_t, int, int, int) {},
            [](void*, wl_output*) {},
            [](void*, wl_output*, int) {},
            [](void* connection, wl_output* output, const char* outputName) {
                static_cast<Connection*>(connection)->outputs[outputName] = output;
            },
            [](void*, wl_output*, const char*) {}};
        auto* output = bound<wl_output>(registry, name, wl_output_interface, 4);
        wl_output_add_listener(output, &listener, &self);
    }
}

void PaintedSurface::Connection::connect(const QString& waylandDisplay) {
    display = wl_display_connect(waylandDisplay.toUtf8().constData());
    if (!display)
        throw std::runtime_error("no compositor for a painted surface");
    static constexpr wl_registry_listener registryListener = {announce,
                                                              [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(wl_display_get_registry(display), &registryListener, this);
    wl_display_roundtrip(display);
    wl_display_roundtrip(display); // The outputs tell their names after they were bound.
    if (!compositor || !shm || !viewporter || !shell || !layers)
        throw std::runtime_error("the compositor lacks what a painted surface needs");
    if (seat) {
        static const wl_pointer_listener pointerListener = [] {
            wl_pointer_listener listener = {};
            listener.enter = [](void* data, wl_pointer* seatPointer, std::uint32_t serial, wl_surface*,
                                wl_fixed_t x, wl_fixed_t y) {
                // No pointer is drawn over the known pixels.
                wl_pointer_set_cursor(seatPointer, serial, nullptr, 0, 0);
                static_cast<Connection*>(data)->pointer = {wl_fixed_to_double(x), wl_fixed_to_double(y)};
            };
            listener.leave = [](void*, wl_pointer*, std::uint32_t, wl_surface*) {};
            listener.motion = [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
                static_cast<Connection*>(data)->pointer = {wl_fixed_to_double(x), wl_fixed_to_double(y)};
            };
            listener.button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t,
                                 std::uint32_t state) {
                auto& self = *static_cast<Connection*>(data);
                if (state != WL_POINTER_BUTTON_STATE_PRESSED)
                    return;
                const std::scoped_lock lock(self.mutex);
                self.clicks.push_back(self.pointer);
            };
            listener.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
            return listener;
        }();
        wl_pointer_add_listener(wl_seat_get_pointer(seat), &pointerListener, this);
    }
    static constexpr xdg_wm_base_listener shellListener = {
        [](void*, xdg_wm_base* base, std::uint32_t serial) { xdg_wm_base_pong(base, serial); }};
    xdg_wm_base_add_listener(shell, &shellListener, this);
}

void PaintedSurface::Connection::makeBuffer(const QImage& picture) {
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    const auto size = std::size_t(pixels.sizeInBytes());
    const int file = ::memfd_create("painted", MFD_CLOEXEC);
    if (::ftruncate(file, off_t(size)) != 0)
        throw std::runtime_error("no memory for a painted surface");
    void* memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    std::memcpy(memory, pixels.constBits(), size);
    ::munmap(memory, size);
    wl_shm_pool* pool = wl_shm_create_pool(shm, file, int(size));
    buffer = wl_shm_pool_create_buffer(pool, 0, pixels.width(), pixels.height(), int(pixels.bytesPerLine()),
                                       WL_SHM_FORMAT_XRGB8888);
    wl_shm_pool_destroy(pool);
    ::close(file);
}

void PaintedSurface::Connection::show(const Options& options) {
    surface = wl_compositor_create_surface(compositor);
    wp_viewport_set_destination(wp_viewporter_get_viewport(viewporter, surface), options.size.width(),
                                options.size.height());
    if (options.output.isEmpty()) {
        static constexpr xdg_surface_listener surfaceListener = {
            [](void* data, xdg_surface* xdg, std::uint32_t serial) {
                xdg_surface_ack_configure(xdg, serial);
                static_cast<Connection*>(data)->commit();
            }};
        xdg_surface* xdg = xdg_wm_base_get_xdg_surface(shell, surface);
        xdg_surface_add_listener(xdg, &surfaceListener, this);
        static constexpr xdg_toplevel_listener windowListener = {
            [](void*, xdg_toplevel*, int, int, wl_array*) {}, [](void*, xdg_toplevel*) {},
            [](void*, xdg_toplevel*, int, int) {}, [](void*, xdg_toplevel*, wl_array*) {}};
        xdg_toplevel* window = xdg_surface_get_toplevel(xdg);
        xdg_toplevel_add_listener(window, &windowListener, this);
        xdg_toplevel_set_title(window, options.title.toUtf8().constData());
        xdg_toplevel_set_app_id(window, "painted");
        xdg_toplevel_set_min_size(window, options.size.width(), options.size.height());
        xdg_toplevel_set_max_size(window, options.size.width(), options.size.height());
    } else {
        const auto output = outputs.find(options.output.toStdString());
        if (output == outputs.end())
            throw std::runtime_error("no output " + options.output.toStdString());
        static constexpr zwlr_layer_surface_v1_listener layerListener = {
            [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t, std::uint32_t) {
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                static_cast<Connection*>(data)->commit();
            },
            [](void*, zwlr_layer_surface_v1*) {}};
        zwlr_layer_surface_v1* layer = zwlr_layer_shell_v1_get_layer_surface(
            layers, surface, output->second,
            options.onOverlay ? ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY : ZWLR_LAYER_SHELL_V1_LAYER_BACKGROUND,
            "painted");
        zwlr_layer_surface_v1_add_listener(layer, &layerListener, this);
        zwlr_layer_surface_v1_set_size(layer, std::uint32_t(options.size.width()),
                                       std::uint32_t(options.size.height()));
        zwlr_layer_surface_v1_set_anchor(layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP |
                                                    ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
        zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
    }
    wl_surface_commit(surface);
    wl_display_flush(display);
}

void PaintedSurface::Connection::commit() {
    if (!committed) {
        static constexpr wl_callback_listener frameListener = {
            [](void* data, wl_callback* callback, std::uint32_t) {
                wl_callback_destroy(callback);
                static_cast<Connection*>(data)->shown = true;
            }};
        wl_callback_add_listener(wl_surface_frame(surface), &frameListener, this);
        wl_surface_attach(surface, buffer, 0, 0);
        wl_surface_damage_buffer(surface, 0, 0, INT32_MAX, INT32_MAX);
        committed = true;
    }
    wl_surface_commit(surface);
}

PaintedSurface::PaintedSurface(const QString& waylandDisplay, const Options& options)
    : m_options(options), m_connection(std::make_unique<Connection>()) {
    try {
        m_connection->connect(waylandDisplay);
        m_connection->makeBuffer(options.picture);
        m_connection->show(options);
        m_stopDescriptor = ::eventfd(0, EFD_CLOEXEC);
        m_thread = std::thread([this] { run(); });
    } catch (...) {
        if (m_connection->display)
            wl_display_disconnect(m_connection->display);
        throw;
    }
    using namespace std::chrono;
    for (const auto limit = steady_clock::now() + 10s; !m_connection->shown && steady_clock::now() < limit;)
        std::this_thread::sleep_for(1ms);
}

PaintedSurface::~PaintedSurface() {
    ::eventfd_write(m_stopDescriptor, 1);
    m_thread.join();
    ::close(m_stopDescriptor);
    wl_display_disconnect(m_connection->display);
}

void PaintedSurface::run() {
    wl_display* display = m_connection->display;
    pollfd waiting[] = {{wl_display_get_fd(display), POLLIN, 0}, {m_stopDescriptor, POLLIN, 0}};
    while (wl_display_flush(display) >= 0) {
        ::poll(waiting, 2, -1);
        if (waiting[1].revents != 0 || (waiting[0].revents != 0 && wl_display_dispatch(display) < 0))
            return;
    }
}

std::vector<QPointF> PaintedSurface::clicks() const {
    const std::scoped_lock lock(m_connection->mutex);
    return m_connection->clicks;
}

QImage PaintedSurface::pattern(const QSize& size, int seed) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            reinterpret_cast<QRgb*>(image.scanLine(y))[x] =
                qRgb((x * 7 + seed * 40) & 255, (y * 5 + seed * 90) & 255, ((x ^ (3 * y)) + seed * 17) & 255);
    return image;
}

} // namespace framora
