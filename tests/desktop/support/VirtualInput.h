#pragma once

#include <QPointF>
#include <QSizeF>
#include <QString>

#include <cstdint>
#include <functional>
#include <initializer_list>

struct wl_display;
struct wl_seat;
struct xkb_keymap;
struct xkb_state;
struct zwlr_virtual_pointer_v1;
struct zwp_virtual_keyboard_v1;

namespace framora {

/// A pointer and a US keyboard of a Wayland compositor's seat, moved and pressed by a test. Coordinates are
/// logical ones of the layout whose top left corner is the origin. Every call returns when the compositor has
/// dealt with it.
class VirtualInput {
public:
    enum class Button : std::uint32_t { left = 0x110, right = 0x111, middle = 0x112 };

    /// `layoutSize` tells the extent of all outputs at any moment. Throws std::runtime_error when the
    /// compositor does not answer or has no such devices.
    VirtualInput(const QString& waylandDisplay, std::function<QSizeF()> layoutSize);
    ~VirtualInput();
    VirtualInput(const VirtualInput&) = delete;
    VirtualInput& operator=(const VirtualInput&) = delete;

    void moveTo(const QPointF& position);
    void press(Button button = Button::left);
    void release(Button button = Button::left);
    void click(const QPointF& position, Button button = Button::left);
    void doubleClick(const QPointF& position);
    /// Press at `from`, move in `steps`, release at `to`.
    void drag(const QPointF& from, const QPointF& to, int steps = 8);
    /// Notches, positive towards the user.
    void wheel(int notches);

    /// By the number that the kernel gives the key (KEY_A is 30).
    void keyDown(std::uint32_t evdevCode);
    void keyUp(std::uint32_t evdevCode);
    /// By the names of keysyms: presses them in order and releases them in reverse, key({"Alt_L", "F4"}).
    void key(std::initializer_list<const char*> names);
    void keyDown(const char* name);
    void keyUp(const char* name);
    /// Printable ASCII and line ends.
    void type(const QString& text);

private:
    struct Place {
        std::uint32_t code = 0;
        bool shifted = false;
    };
    Place placeOf(std::uint32_t keysym) const;
    void sendKeymap();
    void sendKey(std::uint32_t evdevCode, bool down);
    void finish();
    std::uint32_t now() const;

    std::function<QSizeF()> m_layoutSize;
    wl_display* m_display = nullptr;
    wl_seat* m_seat = nullptr;
    zwlr_virtual_pointer_v1* m_pointer = nullptr;
    zwp_virtual_keyboard_v1* m_keyboard = nullptr;
    xkb_keymap* m_keymap = nullptr;
    xkb_state* m_state = nullptr;
};

} // namespace framora
