#pragma once

#include <QPointF>
#include <QString>

#include <initializer_list>

struct wl_display;
struct wl_registry;
struct org_kde_kwin_fake_input;

namespace framora {

/// Keys and the pointer of a KwinDesktop, which reach its programs as a person's would. Each call returns
/// when KWin has taken it.
class KwinInput {
public:
    /// `socket` is the compositor's, by its whole path. Throws std::runtime_error when there is no such
    /// compositor or it does not let us.
    explicit KwinInput(const QString& socket);
    ~KwinInput();
    KwinInput(const KwinInput&) = delete;
    KwinInput& operator=(const KwinInput&) = delete;

    /// Evdev codes, as <linux/input-event-codes.h> has them.
    void key(unsigned code, bool down);
    /// Presses the keys in this order and releases them in the reverse one.
    void press(std::initializer_list<unsigned> codes);

    /// Logical pixels of the whole desktop.
    void movePointer(const QPointF& position);
    void button(unsigned code, bool down);
    /// The left button, at that place.
    void click(const QPointF& position);
    /// From one place to the other with the left button held, in a few steps.
    void drag(const QPointF& from, const QPointF& to);

private:
    void taken();

    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    org_kde_kwin_fake_input* m_input = nullptr;
};

} // namespace framora
