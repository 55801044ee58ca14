#pragma once

#include "screencapture/CaptureCursor.h"
#include "screencapture/CaptureMode.h"
#include "screencapture/FrozenScreen.h"
#include "screencapture/InputGrab.h"
#include "screencapture/Keyboard.h"
#include "screencapture/Monitors.h"
#include "screencapture/Overlay.h"
#include "screencapture/Picture.h"
#include "screencapture/SelectionModel.h"
#include "screencapture/WindowGrab.h"
#include "screencapture/WindowList.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace framora {

class XConnection;

/// One capture from the frozen screen to the chosen picture: joins the selection's rules with the overlay,
/// the windows and the input.
class CaptureSession {
public:
    enum class Outcome { Captured, Cancelled, Failed };

    CaptureSession(const XConnection& connection, CaptureMode mode);
    ~CaptureSession();

    /// Runs until the user chose or cancelled. Nothing of it is left on screen afterwards.
    Outcome run();
    /// The picture of a run that ended with Captured; handed over once.
    Picture takePicture() { return std::move(m_picture); }
    /// Device pixels a point on the monitor where the capture was begun.
    double pixelRatio() const { return m_ratio; }
    /// One line for the user after Failed.
    const std::string& failure() const { return m_failure; }

private:
    using Clock = WindowGrab::Clock;

    bool begin();
    Outcome fail(std::string message);
    Outcome loop();
    std::optional<Outcome> handle(const xcb_generic_event_t& event);
    std::optional<Outcome> decide(SelectionModel::Outcome outcome);
    std::optional<Outcome> takeWindow();
    Outcome takeArea();
    void listWindows();
    void enterWindowMode();
    void modeMayHaveChanged();
    void updateScene();
    void pointerAt(Point at);
    xcb_cursor_t cursor();
    OverlayScene scene();
    void endOnScreen();

    const XConnection& m_connection;
    CaptureMode m_mode;
    double m_ratio = 1;
    std::string m_failure;
    std::vector<Monitor> m_monitors;
    std::unique_ptr<FrozenScreen> m_frozen;
    std::optional<Keyboard> m_keyboard;
    std::optional<SelectionModel> m_model;
    PictureFormats m_formats;
    std::map<double, CaptureCursor> m_cursors; // by their ratio
    std::optional<WindowGrab> m_windowGrab;
    WindowList m_windows;
    bool m_windowsKnown = false;
    InputGrab m_input;
    std::unique_ptr<Overlay> m_overlay;
    /// The window that was clicked and still repaints what was covered.
    std::optional<TopLevel> m_clicked;
    Picture m_picture;
};

} // namespace framora
