#include "desktop/support/KwinInput.h"

#include <wayland-client.h>
#include <wayland-protocols/fake-input.h>

#include <cstring>
#include <linux/input-event-codes.h>
#include <stdexcept>
#include <vector>

namespace framora {
namespace {

void bindInput(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version) {
    if (std::strcmp(interface, org_kde_kwin_fake_input_interface.name) == 0 && version >= 4)
        *static_cast<org_kde_kwin_fake_input**>(data) = static_cast<org_kde_kwin_fake_input*>(
            wl_registry_bind(registry, name, &org_kde_kwin_fake_input_interface, 4));
}

const wl_registry_listener registryListener = {bindInput, [](void*, wl_registry*, uint32_t) {}};

} // namespace

KwinInput::KwinInput(const QString& socket) : m_display(wl_display_connect(socket.toUtf8().constData())) {
    if (!m_display)
        throw std::runtime_error("no compositor at " + socket.toStdString());
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, &m_input);
    wl_display_roundtrip(m_display);
    if (!m_input) {
        wl_registry_destroy(m_registry);
        wl_display_disconnect(m_display);
        throw std::runtime_error("the compositor offers no fake input");
    }
    org_kde_kwin_fake_input_authenticate(m_input, "desktop tests", "keys and pointer of a test");
    taken();
}

KwinInput::~KwinInput() {
    org_kde_kwin_fake_input_destroy(m_input);
    wl_registry_destroy(m_registry);
    wl_display_disconnect(m_display);
}

void KwinInput::taken() {
    if (wl_display_roundtrip(m_display) < 0)
        throw std::runtime_error("the compositor has gone or refused the input");
}

void KwinInput::key(unsigned code, bool down) {
    org_kde_kwin_fake_input_keyboard_key(m_input, code, down);
    taken();
}

void KwinInput::press(std::initializer_list<unsigned> codes) {
    for (const unsigned code : codes)
        key(code, true);
    const std::vector<unsigned> held(codes);
    for (auto code = held.rbegin(); code != held.rend(); ++code)
        key(*code, false);
}

void KwinInput::movePointer(const QPointF& position) {
    org_kde_kwin_fake_input_pointer_motion_absolute(m_input, wl_fixed_from_double(position.x()),
                                                    wl_fixed_from_double(position.y()));
    taken();
}

void KwinInput::button(unsigned code, bool down) {
    org_kde_kwin_fake_input_button(m_input, code, down);
    taken();
}

void KwinInput::click(const QPointF& position) {
    movePointer(position);
    button(BTN_LEFT, true);
    button(BTN_LEFT, false);
}

void KwinInput::drag(const QPointF& from, const QPointF& to) {
    movePointer(from);
    button(BTN_LEFT, true);
    constexpr int steps = 4;
    for (int step = 1; step <= steps; ++step)
        movePointer(from + (to - from) * step / steps);
    button(BTN_LEFT, false);
}

} // namespace framora
