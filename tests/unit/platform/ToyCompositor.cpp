#include "unit/platform/ToyCompositor.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server-protocol.h>

namespace framora {

namespace {

constexpr std::uint32_t xdgOutputLogicalPosition = 0;
constexpr std::uint32_t xdgOutputLogicalSize = 1;
constexpr std::uint32_t layerSurfaceConfigure = 0;

bool is(const wl_interface* interface, std::string_view name) {
    return interface->name == name;
}

} // namespace

ToyCompositor* ToyCompositor::running = nullptr;

ToyCompositor::ToyCompositor() : m_display(wl_display_create()) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = socketPath();
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket, 8) != 0 || wl_display_add_socket_fd(m_display, socket) != 0)
        throw std::runtime_error("no socket for the toy compositor");
    wl_display_init_shm(m_display);
    running = this;
    m_thread = std::thread([this] { run(); });
}

ToyCompositor::~ToyCompositor() {
    {
        const std::lock_guard lock(m_work);
        m_stops = true;
    }
    m_thread.join();
    wl_display_destroy_clients(m_display);
    wl_display_destroy(m_display);
    running = nullptr;
}

QByteArray ToyCompositor::socketPath() const {
    return m_folder.filePath(QStringLiteral("socket")).toLocal8Bit();
}

void ToyCompositor::run() {
    for (;;) {
        {
            const std::lock_guard lock(m_work);
            if (m_stops)
                return;
            wl_event_loop_dispatch(wl_display_get_event_loop(m_display), 0);
            wl_display_flush_clients(m_display);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

int ToyCompositor::offer(const wl_interface& interface, int version) {
    const std::lock_guard lock(m_work);
    auto global = std::make_unique<Global>();
    global->owner = this;
    global->interface = &interface;
    global->global = wl_global_create(m_display, &interface, version, global.get(), bound);
    m_globals.push_back(std::move(global));
    return int(m_globals.size()) - 1;
}

int ToyCompositor::addOutput(const char* name, QSize pixels, int scale, QSize logical) {
    const std::lock_guard lock(m_work);
    auto global = std::make_unique<Global>();
    global->owner = this;
    global->interface = &wl_output_interface;
    global->outputName = name;
    global->pixels = pixels;
    global->scale = scale;
    global->logical = logical;
    global->global = wl_global_create(m_display, &wl_output_interface, 4, global.get(), bound);
    m_globals.push_back(std::move(global));
    return int(m_globals.size()) - 1;
}

void ToyCompositor::withdraw(int number) {
    const std::lock_guard lock(m_work);
    wl_global_destroy(m_globals.at(std::size_t(number))->global);
    m_globals[std::size_t(number)]->global = nullptr;
}

wl_resource* ToyCompositor::make(wl_client* client, const wl_interface& interface, int version,
                                 std::uint32_t id, void* data) {
    wl_resource* const resource = wl_resource_create(client, &interface, version, id);
    wl_resource_set_dispatcher(resource, dispatch, this, data, [](wl_resource* gone) {
        if (running)
            std::erase(running->m_resources, gone);
    });
    m_resources.push_back(resource);
    return resource;
}

void ToyCompositor::bound(wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
    auto& global = *static_cast<Global*>(data);
    wl_resource* const resource = global.owner->make(client, *global.interface, int(version), id, &global);
    if (global.outputName) {
        wl_output_send_geometry(resource, 0, 0, 0, 0, 0, "", "", WL_OUTPUT_TRANSFORM_NORMAL);
        wl_output_send_mode(resource, WL_OUTPUT_MODE_CURRENT, global.pixels.width(), global.pixels.height(),
                            60000);
        wl_output_send_scale(resource, global.scale);
        if (version >= WL_OUTPUT_NAME_SINCE_VERSION)
            wl_output_send_name(resource, global.outputName);
        wl_output_send_done(resource);
    }
}

int ToyCompositor::dispatch(const void* implementation, void* target, std::uint32_t,
                            const wl_message* message, wl_argument* arguments) {
    auto& self = *static_cast<ToyCompositor*>(const_cast<void*>(implementation));
    auto* const object = static_cast<wl_resource*>(target);
    wl_client* const client = wl_resource_get_client(object);
    wl_resource* made = nullptr;
    int index = 0;
    for (const char* kind = message->signature; *kind; ++kind) {
        if (!std::strchr("iufsonah", *kind))
            continue;
        // What is made belongs to what made it, unless it is made of an output.
        if (*kind == 'n')
            made = self.make(client, *message->types[index], wl_resource_get_version(object),
                             arguments[index].n, object);
        ++index;
    }
    const std::string_view request = message->name;
    self.answer(object, message->name, made, arguments);
    if (request == "destroy" || request == "release")
        wl_resource_destroy(object);
    return 0;
}

void ToyCompositor::answer(wl_resource* object, const char* request, wl_resource* made,
                           wl_argument* arguments) {
    const std::string_view asked = request;
    if (asked == "get_layer_surface") {
        // The surface is the parent: its first commit is answered by a size.
        wl_resource_set_user_data(made, wl_resource_get_user_data(object));
        wl_resource_set_user_data(reinterpret_cast<wl_resource*>(arguments[1].o), made);
    } else if (asked == "commit" && is(&wl_surface_interface, wl_resource_get_class(object))) {
        auto* const role = static_cast<wl_resource*>(wl_resource_get_user_data(object));
        const bool isLayer = role && std::ranges::find(m_resources, role) != m_resources.end() &&
                             std::string_view(wl_resource_get_class(role)) == "zwlr_layer_surface_v1";
        if (isLayer) {
            wl_resource_post_event(role, layerSurfaceConfigure, 1u, 100u, 100u);
            wl_resource_set_user_data(object, nullptr);
        }
    } else if (asked == "get_xdg_output") {
        auto* const output = reinterpret_cast<wl_resource*>(arguments[1].o);
        const auto& global = *static_cast<Global*>(wl_resource_get_user_data(output));
        wl_resource_post_event(made, xdgOutputLogicalPosition, 0, 0);
        if (!global.logical.isEmpty())
            wl_resource_post_event(made, xdgOutputLogicalSize, global.logical.width(),
                                   global.logical.height());
    } else if (asked == "receive") {
        const int pipe = arguments[1].h;
        [[maybe_unused]] const auto written = ::write(pipe, m_clipboard.data(), m_clipboard.size());
        ::close(pipe);
    }
}

int ToyCompositor::count(const wl_interface& interface) {
    const std::lock_guard lock(m_work);
    return int(std::ranges::count_if(
        m_resources, [&](wl_resource* known) { return is(&interface, wl_resource_get_class(known)); }));
}

void ToyCompositor::sendToAll(const wl_interface& interface, std::uint32_t opcode) {
    const std::lock_guard lock(m_work);
    for (wl_resource* known : std::vector(m_resources)) {
        if (is(&interface, wl_resource_get_class(known)))
            wl_resource_post_event(known, opcode);
    }
}

void ToyCompositor::copy(const wl_interface& device, const wl_interface& offer,
                         const std::vector<std::string>& types, const std::string& bytes) {
    constexpr std::uint32_t dataOffer = 0;
    constexpr std::uint32_t selection = 1;
    constexpr std::uint32_t typeOffered = 0;
    const std::lock_guard lock(m_work);
    m_clipboard = bytes;
    for (wl_resource* known : std::vector(m_resources)) {
        if (!is(&device, wl_resource_get_class(known)))
            continue;
        wl_resource* const offered = make(wl_resource_get_client(known), offer, 1, 0, known);
        wl_resource_post_event(known, dataOffer, offered);
        for (const std::string& type : types)
            wl_resource_post_event(offered, typeOffered, type.c_str());
        wl_resource_post_event(known, selection, offered);
    }
}

} // namespace framora
