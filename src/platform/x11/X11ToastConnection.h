#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace framora {

class X11ToastPanel;

/// The toasts' own connection to the X server: it delivers their events and knows whether a compositor runs.
class X11ToastConnection final : public QObject {
    Q_OBJECT

public:
    struct Atoms {
        xcb_atom_t compositor; ///< _NET_WM_CM_Sn of this screen.
        xcb_atom_t windowType;
        xcb_atom_t windowTypeNotification;
        xcb_atom_t state;
        xcb_atom_t stateAbove;
        xcb_atom_t stateSticky;
        xcb_atom_t stateSkipTaskbar;
        xcb_atom_t stateSkipPager;
        xcb_atom_t desktop;
        xcb_atom_t name;
        xcb_atom_t utf8String;
        xcb_atom_t bypassCompositor;
        xcb_atom_t comptonShadow;
    };

    X11ToastConnection();
    ~X11ToastConnection() override;

    /// False when there is no server, or it has gone.
    bool isValid() const;
    operator xcb_connection_t*() const { return m_connection; }
    const xcb_screen_t& screen() const { return *m_screen; }
    const Atoms& atoms() const { return m_atoms; }

    /// The visual for windows with alpha, or the screen's own where there is none.
    xcb_visualid_t visual() const { return m_visual; }
    std::uint8_t depth() const { return m_depth; }
    xcb_colormap_t colormap() const { return m_colormap; }
    /// Whether that visual's pixels are 32 bits of red, green and blue as in our pictures. Black and white
    /// are left where they are not.
    bool hasOurColors() const { return m_hasOurColors; }
    /// Whether a compositor runs that could make windows translucent.
    bool hasCompositor() const { return m_hasCompositor && m_hasComposite && m_depth == 32; }
    /// Whether the compositor has taken over this mapped window. One that starts, or that steps back for a
    /// full-screen program, has not, and would let the window's transparent parts be black.
    bool isRedirected(xcb_window_t window);
    /// The pointing hand; loaded at the first call, NONE where the theme has none.
    xcb_cursor_t handCursor();

    /// Panels hear their own window's events, changes of the stacking and of the compositor.
    void add(X11ToastPanel& panel);
    void remove(X11ToastPanel& panel);
    const std::vector<X11ToastPanel*>& panels() const { return m_panels; }

    /// Takes all panels off the screen, or lets them show again; the server has done so when this returns.
    void setWithdrawn(bool withdrawn);

    /// Sends what is buffered; events that were read meanwhile are delivered in a later turn of the event
    /// loop.
    void flush();

Q_SIGNALS:
    /// While there are panels: a screen has come, gone or changed.
    void screensChanged();

private:
    void findVisual();
    void watchCompositor();
    void readCompositor();
    void dispatch();
    void deliver(const xcb_generic_event_t& event);
    void raisePanels();
    X11ToastPanel* panelOf(xcb_window_t window) const;
    void selectRootEvents();

    xcb_connection_t* m_connection = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    Atoms m_atoms{};
    xcb_visualid_t m_visual = 0;
    std::uint8_t m_depth = 0;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_cursor_t m_handCursor = XCB_NONE;
    bool m_hasOurColors = false;
    bool m_cursorLoaded = false;
    bool m_hasCompositor = false;
    bool m_hasComposite = false;
    bool m_dispatchQueued = false;
    int m_xfixesFirstEvent = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::vector<X11ToastPanel*> m_panels;
};

} // namespace framora
