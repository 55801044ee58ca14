#pragma once

#include "screencapture/wayland/KeyMeanings.h"

#include <cstdint>
#include <set>

struct wl_array;
struct wl_keyboard;
struct wl_pointer;
struct wl_seat;
struct wl_surface;

namespace framora {

class WaylandConnection;

/// Who is told what pointer and keyboard do over surfaces of this connection.
class InputSink {
public:
    virtual ~InputSink() = default;

    /// Places are in logical pixels from the surface's top left corner; while a button is held they may lie
    /// beyond it.
    virtual void pointerEntered(wl_surface* surface, double x, double y) = 0;
    virtual void pointerMoved(double x, double y) = 0;
    virtual void pointerLeft() = 0;
    virtual void buttonChanged(SelectionModel::Button button, bool pressed) = 0;
    /// The key was down before the keyboard came here.
    virtual void keyHeldBefore(uint32_t code) = 0;
    virtual void keyChanged(uint32_t code, SelectionModel::Key meaning, bool pressed) = 0;
};

/// Pointer and keyboard of the compositor's first seat.
class SeatInput {
public:
    SeatInput(WaylandConnection& connection, InputSink& sink);
    ~SeatInput();
    SeatInput(const SeatInput&) = delete;
    SeatInput& operator=(const SeatInput&) = delete;

    /// Whether there is anything to choose or to cancel with.
    bool hasDevice() const { return m_pointer || m_keyboard; }
    /// The pointer's picture while it is over the surface that it entered last. The place it points at in
    /// logical pixels.
    void setCursor(wl_surface* picture, int hotX, int hotY);
    /// Loads what is better loaded when nobody waits.
    void warmUp() { m_meanings.prepare(); }

private:
    void capabilities(uint32_t capabilities);
    void listenToPointer();
    void listenToKeyboard();
    void keyboardEntered(const wl_array& keys);
    void key(uint32_t code, bool pressed);

    InputSink& m_sink;
    wl_seat* m_seat;
    wl_pointer* m_pointer = nullptr;
    wl_keyboard* m_keyboard = nullptr;
    uint32_t m_enterSerial = 0;
    KeyMeanings m_meanings;
    std::set<uint32_t> m_down;
};

} // namespace framora
