#pragma once

#include "screencapture/CaptureMode.h"
#include "screencapture/Geometry.h"

#include <optional>
#include <set>
#include <vector>

namespace framora {

/// What the pointer and the keys mean while a capture is on screen; it knows nothing of the window system.
///
/// Corners of a selection lie between pixels: a drag from x = 100 to x = 300 is 200 pixels wide. The last
/// pixel of a monitor with no monitor behind it stands for the edge behind it, so that whole screens can be
/// selected.
class SelectionModel {
public:
    enum class Key { Escape, Space, Shift, Other };
    enum class Button { Primary, Secondary, Other };
    enum class Outcome { None, CaptureArea, CaptureWindow, Cancel };

    /// `monitors` in root coordinates, at least one; `pointer` where it stands when the capture begins.
    SelectionModel(CaptureMode mode, std::vector<Rect> monitors, Point pointer);

    /// Other coordinates, as of another screen that the pointer came to. Not while something is dragged.
    void setSpace(std::vector<Rect> monitors, Point pointer);
    /// Where windows cannot be told apart, Space does not lead to them. They can at first.
    void setWindowsKnown(bool known) { m_windowsKnown = known; }
    /// A key that was down before the capture began: it counts only after it was released and pressed anew.
    void keyHeldAtStart(int code);

    Outcome pointerMoved(Point pointer);
    Outcome buttonPressed(Button button, Point pointer);
    Outcome buttonReleased(Button button, Point pointer);
    /// `code` tells apart the two Shift keys, and a key's repeats from its first press.
    Outcome keyPressed(Key key, int code);
    Outcome keyReleased(Key key, int code);

    CaptureMode mode() const { return m_mode; }
    bool dragging() const { return m_dragging; }
    bool moving() const { return m_moving; }
    /// Whether Escape is down, whose coming up cancels.
    bool cancelling() const { return m_escapeCode.has_value(); }
    Point pointer() const { return m_pointer; }
    /// Empty while nothing is dragged, and while one of its sides is zero.
    Rect selection() const;
    /// The corner that follows the pointer; the pointer itself while nothing is dragged.
    Point activeCorner() const { return m_dragging ? m_corner : m_pointer; }
    /// The monitor of the pointer, or the nearest one.
    Rect monitorUnderPointer() const;

private:
    /// Movement along one axis only: from where Shift went down, along the axis that moved first.
    struct AxisLock {
        enum class Axis { Undecided, Horizontal, Vertical };
        Point origin;
        Axis axis = Axis::Undecided;
    };

    Point constrained(Point pointer);
    Point edgeAt(Point pointer) const;
    Point held();
    void holdHere();
    void follow();
    void moveTo(Point corner);

    CaptureMode m_mode;
    std::vector<Rect> m_monitors;
    Rect m_bounds;
    Point m_pointer;
    Point m_anchor;
    Point m_corner;
    bool m_windowsKnown = true;
    bool m_dragging = false;
    bool m_primaryDown = false;
    bool m_secondaryDown = false;
    bool m_moving = false; // by Space
    Point m_grip;          // from the pointer to the corner it holds
    std::optional<AxisLock> m_lock;
    std::optional<int> m_escapeCode; // of the key that cancels when it comes up
    int m_shiftCode = 0;
    std::set<int> m_keysDown;
};

} // namespace framora
