#include "screencapture/SelectionModel.h"

#include <cstdlib>
#include <limits>

namespace framora {

namespace {

// Pixels the pointer has to go before the axis that Shift keeps is clear.
constexpr int kAxisSlack = 4;

} // namespace

SelectionModel::SelectionModel(CaptureMode mode, std::vector<Rect> monitors, Point pointer)
    : m_mode(mode), m_monitors(std::move(monitors)), m_bounds(boundingBox(m_monitors)), m_pointer(pointer) {}

void SelectionModel::setSpace(std::vector<Rect> monitors, Point pointer) {
    if (m_dragging)
        return;
    m_monitors = std::move(monitors);
    m_bounds = boundingBox(m_monitors);
    m_pointer = pointer;
}

void SelectionModel::keyHeldAtStart(int code) {
    m_keysDown.insert(code);
}

Rect SelectionModel::selection() const {
    if (!m_dragging)
        return {};
    const Rect r = Rect::between(m_anchor, m_corner);
    return r.empty() ? Rect{} : r;
}

Rect SelectionModel::monitorUnderPointer() const {
    Rect nearest;
    long best = std::numeric_limits<long>::max();
    for (const Rect& monitor : m_monitors) {
        const long distance = squaredDistance(monitor, m_pointer);
        if (distance < best) {
            best = distance;
            nearest = monitor;
        }
    }
    return nearest;
}

Point SelectionModel::edgeAt(Point p) const {
    const auto shown = [this](Point at) {
        return std::any_of(m_monitors.begin(), m_monitors.end(),
                           [at](const Rect& monitor) { return monitor.contains(at); });
    };
    Point edge{std::clamp(p.x, m_bounds.x, m_bounds.right()), std::clamp(p.y, m_bounds.y, m_bounds.bottom())};
    if (shown(p)) {
        if (!shown({p.x + 1, p.y}))
            edge.x = p.x + 1;
        if (!shown({p.x, p.y + 1}))
            edge.y = p.y + 1;
    }
    return edge;
}

Point SelectionModel::constrained(Point p) {
    if (!m_lock)
        return p;
    const int dx = std::abs(p.x - m_lock->origin.x);
    const int dy = std::abs(p.y - m_lock->origin.y);
    if (m_lock->axis == AxisLock::Axis::Undecided && std::max(dx, dy) >= kAxisSlack)
        m_lock->axis = dx >= dy ? AxisLock::Axis::Horizontal : AxisLock::Axis::Vertical;
    switch (m_lock->axis) {
    case AxisLock::Axis::Horizontal:
        return {p.x, m_lock->origin.y};
    case AxisLock::Axis::Vertical:
        return {m_lock->origin.x, p.y};
    case AxisLock::Axis::Undecided:
        break;
    }
    return m_lock->origin;
}

void SelectionModel::moveTo(Point corner) {
    const Rect now = Rect::between(m_anchor, m_corner);
    int dx = corner.x - m_corner.x;
    int dy = corner.y - m_corner.y;
    dx = std::clamp(dx, m_bounds.x - now.x, m_bounds.right() - now.right());
    dy = std::clamp(dy, m_bounds.y - now.y, m_bounds.bottom() - now.bottom());
    m_anchor = {m_anchor.x + dx, m_anchor.y + dy};
    m_corner = {m_corner.x + dx, m_corner.y + dy};
}

Point SelectionModel::held() {
    const Point p = edgeAt(constrained(m_pointer));
    return {p.x + m_grip.x, p.y + m_grip.y};
}

void SelectionModel::holdHere() {
    const Point p = edgeAt(constrained(m_pointer));
    m_grip = {m_corner.x - p.x, m_corner.y - p.y};
}

void SelectionModel::follow() {
    if (!m_dragging)
        return;
    const Point p = held();
    if (m_moving)
        moveTo(p);
    else
        m_corner = {std::clamp(p.x, m_bounds.x, m_bounds.right()),
                    std::clamp(p.y, m_bounds.y, m_bounds.bottom())};
}

SelectionModel::Outcome SelectionModel::pointerMoved(Point pointer) {
    m_pointer = pointer;
    follow();
    return Outcome::None;
}

SelectionModel::Outcome SelectionModel::buttonPressed(Button button, Point pointer) {
    m_pointer = pointer;
    if (button == Button::Secondary)
        m_secondaryDown = true;
    if (button == Button::Primary && !m_primaryDown && !m_escapeCode) {
        m_primaryDown = true;
        if (m_mode == CaptureMode::Area) {
            m_dragging = true;
            m_grip = {};
            m_anchor = m_corner = edgeAt(pointer);
        }
    }
    return Outcome::None;
}

SelectionModel::Outcome SelectionModel::buttonReleased(Button button, Point pointer) {
    // The secondary button cancels when it comes up, so that no other program sees half a click.
    if (button == Button::Secondary && m_secondaryDown)
        return Outcome::Cancel;
    if (button != Button::Primary || !m_primaryDown)
        return Outcome::None;
    m_pointer = pointer;
    m_primaryDown = false;
    if (m_mode == CaptureMode::Window)
        return Outcome::CaptureWindow;
    follow();
    m_moving = false;
    m_lock.reset();
    // A drag stays readable through selection() when it is taken; one without an area is forgotten.
    if (!selection().empty())
        return Outcome::CaptureArea;
    m_dragging = false;
    return Outcome::None;
}

SelectionModel::Outcome SelectionModel::keyPressed(Key key, int code) {
    if (!m_keysDown.insert(code).second)
        return Outcome::None; // a repeat, or held since before the capture
    switch (key) {
    case Key::Escape:
        // It cancels when it comes up: the repeats of a key that is held would reach the program below. Until
        // then nothing can be taken any more.
        m_escapeCode = code;
        m_dragging = m_primaryDown = m_moving = false;
        m_lock.reset();
        break;
    case Key::Space:
        if (m_dragging)
            m_moving = true;
        else if (!m_primaryDown && m_windowsKnown)
            m_mode = m_mode == CaptureMode::Area ? CaptureMode::Window : CaptureMode::Area;
        break;
    case Key::Shift:
        if (m_dragging && !m_lock) {
            m_lock = AxisLock{m_pointer};
            m_shiftCode = code;
        }
        break;
    case Key::Other:
        break;
    }
    return Outcome::None;
}

SelectionModel::Outcome SelectionModel::keyReleased(Key key, int code) {
    m_keysDown.erase(code);
    if (code == m_escapeCode)
        return Outcome::Cancel;
    if (key == Key::Space && m_moving) {
        // What was stopped at an edge stays there: the pointer holds the corner from where it is now.
        m_moving = false;
        holdHere();
    } else if (key == Key::Shift && m_lock && code == m_shiftCode) {
        m_lock.reset();
        follow();
    }
    return Outcome::None;
}

} // namespace framora
