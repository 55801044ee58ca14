#include "desktop/support/ScriptedCompositor.h"

#include "desktop/support/ScriptedClipboard.h"
#include "desktop/support/ScriptedCopies.h"
#include "desktop/support/ScriptedSeat.h"

#include <QFile>

#include <cstring>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <wayland-server-protocol.h>
#include <wayland-server-protocols/wlr-layer-shell-unstable-v1.h>

namespace framora {

namespace {

/// A socket that listens at that path.
int listenAt(const QByteArray& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (std::size_t(path.size()) >= sizeof address.sun_path)
        throw std::runtime_error("the path of the compositor's socket is too long");
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listening < 0 || bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listening, 16) != 0)
        throw std::runtime_error("the compositor's socket cannot be made");
    return listening;
}

} // namespace

ScriptedCompositor::ScriptedCompositor(CompositorScript script)
    : DesktopSession(QStringLiteral("wayland")), m_pieces(std::make_unique<ScriptedPieces>()),
      m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    m_pieces->script = std::move(script);
    m_pieces->display = wl_display_create();
    m_pieces->surfaces = std::make_unique<ScriptedSurfaces>(*m_pieces);
    m_pieces->outputs = std::make_unique<ScriptedOutputs>(*m_pieces);
    m_pieces->seat = std::make_unique<ScriptedSeat>(*m_pieces);
    m_pieces->copies = std::make_unique<ScriptedCopies>(*m_pieces);
    m_pieces->clipboard = std::make_unique<ScriptedClipboard>(*m_pieces);
    wl_display_add_socket_fd(m_pieces->display, listenAt(QFile::encodeName(socketPath())));
    m_environment.insert(QStringLiteral("WAYLAND_DISPLAY"), socketPath());
    m_thread = std::thread([this] { run(); });
}

ScriptedCompositor::~ScriptedCompositor() {
    thaw();
    endEverything();
    die();
    close(m_wake);
}

QString ScriptedCompositor::socketPath() const {
    return runtimePath() + QStringLiteral("/scripted");
}

void ScriptedCompositor::run() {
    wl_display* const display = m_pieces->display;
    wl_event_loop* const loop = wl_display_get_event_loop(display);
    wl_event_source* const wake = wl_event_loop_add_fd(
        loop, m_wake, WL_EVENT_READABLE,
        [](int, std::uint32_t, void* data) {
            static_cast<ScriptedCompositor*>(data)->drain();
            return 0;
        },
        this);
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return !m_frozen || m_stopping; });
            if (m_stopping)
                break;
        }
        wl_display_flush_clients(display);
        wl_event_loop_dispatch(loop, -1);
    }
    wl_event_source_remove(wake);
    wl_display_destroy_clients(display);
    wl_display_destroy(display);
}

void ScriptedCompositor::drain() {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t taken = read(m_wake, &count, sizeof count);
    std::vector<std::function<void()>> tasks;
    {
        const std::lock_guard lock(m_mutex);
        tasks = std::exchange(m_tasks, {});
    }
    for (const auto& task : tasks)
        task();
}

void ScriptedCompositor::perform(const std::function<void(ScriptedPieces&)>& action) {
    if (std::this_thread::get_id() == m_thread.get_id()) {
        action(*m_pieces);
        return;
    }
    bool done = false;
    std::unique_lock lock(m_mutex);
    if (m_stopping)
        return;
    m_tasks.push_back([&] {
        action(*m_pieces);
        wl_display_flush_clients(m_pieces->display);
        const std::lock_guard inside(m_mutex);
        done = true;
        m_changed.notify_all();
    });
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_wake, &one, sizeof one);
    m_changed.wait(lock, [&] { return done; });
}

void ScriptedCompositor::freeze() {
    // Whatever it was doing is done before.
    perform([this](ScriptedPieces&) {
        const std::lock_guard lock(m_mutex);
        m_frozen = true;
    });
}

void ScriptedCompositor::thaw() {
    const std::lock_guard lock(m_mutex);
    m_frozen = false;
    m_changed.notify_all();
}

void ScriptedCompositor::die() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_changed.notify_all();
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = write(m_wake, &one, sizeof one);
    }
    if (m_thread.joinable())
        m_thread.join();
    QFile::remove(socketPath());
}

int ScriptedCompositor::clients() {
    return ask<int>(
        [](ScriptedPieces& pieces) { return wl_list_length(wl_display_get_client_list(pieces.display)); });
}

int ScriptedCompositor::copiesAsked() {
    return ask<int>([](ScriptedPieces& pieces) { return pieces.copies->asked(); });
}

QImage ScriptedCompositor::picture(const QString& output) {
    return ask<QImage>([&](ScriptedPieces& pieces) {
        const auto* monitor = pieces.outputs->named(output);
        return monitor ? monitor->picture : QImage();
    });
}

QImage ScriptedCompositor::shown(const QString& output) {
    return ask<QImage>([&](ScriptedPieces& pieces) {
        const auto* surface = pieces.surfaces->layerOn(output);
        return surface ? surface->shown : QImage();
    });
}

int ScriptedCompositor::layerSurfaces() {
    return ask<int>([](ScriptedPieces& pieces) { return int(pieces.surfaces->layers().size()); });
}

void ScriptedCompositor::addOutput(const ScriptedOutput& output) {
    perform([&](ScriptedPieces& pieces) { pieces.outputs->add(output); });
}

void ScriptedCompositor::removeOutput(const QString& output, bool closeSurfaces) {
    perform([&](ScriptedPieces& pieces) {
        if (closeSurfaces)
            pieces.surfaces->close(output);
        pieces.outputs->remove(output);
    });
}

void ScriptedCompositor::changeOutput(const QString& output,
                                      const std::function<void(ScriptedOutput&)>& edit) {
    perform([&](ScriptedPieces& pieces) { pieces.outputs->change(output, edit); });
}

void ScriptedCompositor::closeSurfaces(const QString& output) {
    perform([&](ScriptedPieces& pieces) { pieces.surfaces->close(output); });
}

void ScriptedCompositor::configureSurfaces(QSize size) {
    perform([&](ScriptedPieces& pieces) {
        for (auto* surface : pieces.surfaces->layers())
            pieces.surfaces->configure(*surface, size);
    });
}

void ScriptedCompositor::setCapabilities(std::uint32_t capabilities) {
    perform([&](ScriptedPieces& pieces) { pieces.seat->setCapabilities(capabilities); });
}

void ScriptedCompositor::pointTo(QPointF position, const QString& output) {
    perform([&](ScriptedPieces& pieces) {
        if (auto* const surface = pieces.surfaces->layerOn(output))
            pieces.seat->pointTo(*surface, position);
    });
}

void ScriptedCompositor::press(std::uint32_t button) {
    perform([&](ScriptedPieces& pieces) { pieces.seat->button(button, true); });
}

void ScriptedCompositor::release(std::uint32_t button) {
    perform([&](ScriptedPieces& pieces) { pieces.seat->button(button, false); });
}

void ScriptedCompositor::key(std::uint32_t code) {
    perform([&](ScriptedPieces& pieces) {
        pieces.seat->key(code, true);
        pieces.seat->key(code, false);
    });
}

} // namespace framora
