#pragma once

#include "platform/ScreenColorPicker.h"
#include "platform/x11/X11Connection.h"

#include <QImage>
#include <QObject>
#include <QPoint>
#include <QTimer>
#include <bitset>
#include <chrono>
#include <memory>

namespace framora {

class ColorLoupe;
class Screens;

/// Takes pointer and keys for itself and follows the pointer with a loupe. A click, Return or Space takes the
/// pixel, the arrow keys move by one (with Shift by ten), Escape or another button lets it be. What ends it
/// does so at its release: a program below sees neither half a click nor a held key's repeats.
///
/// One that is left alone ends by itself: who holds pointer and keys keeps the screen from being locked.
class X11ColorPicker final : public QObject, public ScreenColorPicker {
    Q_OBJECT

public:
    /// How long nothing is done before the user has forgotten it; shorter than desktops wait by default to
    /// lock.
    static constexpr std::chrono::milliseconds patience{30000};

    /// Both outlive the picker.
    X11ColorPicker(X11Connection& connection, Screens& screens, std::chrono::milliseconds bound = patience);
    ~X11ColorPicker() override;

    void queryAvailable(std::function<void(bool)> answer) override;
    void pick(QWindow* parent, Picked picked, Failed failed) override;
    void dismiss() override;
    void cancel() override;
    /// While no window of any program gets the keys.
    bool holdsKeys() const { return m_loupe != nullptr; }

private:
    /// A bit for each key.
    using Keys = std::bitset<256>;

    /// Tries for a moment where another program has pointer or keys: a menu that is just closing.
    void start(int triesLeft);
    void handle(const xcb_generic_event_t& event);
    void pressed(xcb_keycode_t key, bool many);
    void released(xcb_keycode_t key);
    /// 0 for a key that prints nothing.
    xcb_keysym_t printedOn(xcb_keycode_t key);
    Keys keysDown();
    /// False where another program has them.
    bool grab();
    void release();
    void readPointer();
    /// Draws the loupe anew, once for all that has just arrived.
    void follow();
    void showLoupe();
    void take();
    void end(std::optional<QColor> color);
    void fail();
    /// In a later turn, unless it is cancelled before.
    void answer(std::function<void()> word);
    /// ColorLoupe::pixelsAcross to each side; what lies outside of the screen is black. Null where the
    /// server's pixels are of a kind that is not known here.
    QImage pixelsAround(QPoint middle);
    bool hasCompositor();
    xcb_cursor_t crosshair();

    X11Connection& m_connection;
    Screens& m_screens;
    Picked m_picked; ///< Empty while nothing is under way.
    Failed m_failed;
    QTimer m_nextTry;
    QTimer m_forgotten; ///< Starts again with every motion and key.
    unsigned m_cancellations = 0;
    Keys m_heldBefore; ///< Since before the picking: their repeats mean something else.
    xcb_keycode_t m_deciding = 0;
    QPoint m_pointer;
    bool m_followQueued = false;
    std::unique_ptr<ColorLoupe> m_loupe;
};

} // namespace framora
