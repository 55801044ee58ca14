#include "screencapture/CaptureSession.h"

#include "screencapture/EndSignals.h"
#include "screencapture/ReadySignal.h"
#include "screencapture/XConnection.h"

#include <cstdlib>
#include <poll.h>
#include <xcb/randr.h>

namespace framora {

namespace {

// How long another program's grab is waited for.
constexpr std::chrono::milliseconds kGrabPatience{1000};
constexpr int kRepaintPoll = 10; // ms

std::string_view environment(const char* name) {
    const char* text = std::getenv(name);
    return text ? text : std::string_view{};
}

SelectionModel::Button buttonOf(uint8_t detail) {
    switch (detail) {
    case XCB_BUTTON_INDEX_1:
        return SelectionModel::Button::Primary;
    case XCB_BUTTON_INDEX_3:
        return SelectionModel::Button::Secondary;
    default:
        return SelectionModel::Button::Other;
    }
}

} // namespace

CaptureSession::CaptureSession(const XConnection& connection, CaptureMode mode)
    : m_connection(connection), m_mode(mode), m_input(connection) {}

CaptureSession::~CaptureSession() = default;

CaptureSession::Outcome CaptureSession::fail(std::string message) {
    m_failure = std::move(message);
    return Outcome::Failed;
}

CaptureSession::Outcome CaptureSession::run() {
    const Outcome outcome = begin() ? loop() : Outcome::Failed;
    endOnScreen();
    return outcome;
}

bool CaptureSession::begin() {
    m_monitors =
        monitorsOf(m_connection, {environment("QT_SCREEN_SCALE_FACTORS"), environment("QT_SCALE_FACTOR")});
    if (m_monitors.empty()) {
        m_failure = "the screen has no monitor";
        return false;
    }
    m_frozen = std::make_unique<FrozenScreen>(m_connection);
    if (!m_frozen->valid()) {
        m_failure = "the screen cannot be read";
        return false;
    }
    m_formats = PictureFormats::of(m_connection);
    m_overlay = std::make_unique<Overlay>(m_connection, *m_frozen, m_formats);
    m_keyboard.emplace(m_connection);
    Point at;
    const auto askPointer = [&] {
        if (const auto pointer = m_connection.reply(xcb_query_pointer(m_connection, m_connection.root()),
                                                    xcb_query_pointer_reply))
            at = {pointer->root_x, pointer->root_y};
    };
    // The cursor's ratio is needed before the pointer is held, its place after.
    if (std::any_of(m_monitors.begin(), m_monitors.end(),
                    [&](const Monitor& monitor) { return monitor.ratio != m_monitors[0].ratio; }))
        askPointer();
    m_ratio = ratioAt(m_monitors, at);
    if (!m_input.acquire(cursor(), kGrabPatience)) {
        m_failure = "another program holds the pointer or the keyboard";
        return false;
    }
    askPointer();
    std::vector<Rect> areas;
    for (const Monitor& monitor : m_monitors)
        areas.push_back(monitor.area);
    m_model.emplace(m_mode, std::move(areas), at);
    pointerAt(at);
    // Asked now that the keyboard is held: what came up while it was not yet would never be told.
    for (const uint8_t code : Keyboard::keysDown(m_connection))
        m_model->keyHeldAtStart(code);
    if (m_connection.hasRandr())
        xcb_randr_select_input(m_connection, m_connection.root(), XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE);
    if (m_mode == CaptureMode::Window)
        listWindows(); // as they stand in the frozen picture
    announceReady();
    if (!m_overlay->show() || !m_overlay->prepare()) {
        m_failure = "the screen cannot be drawn on";
        return false;
    }
    if (m_mode == CaptureMode::Window)
        enterWindowMode();
    return true;
}

xcb_cursor_t CaptureSession::cursor() {
    return m_cursors.try_emplace(m_ratio, m_connection, m_formats, m_ratio).first->second.forMode(m_mode);
}

/// The pointer takes the ratio of its monitor with it until a drag holds on to it.
void CaptureSession::pointerAt(Point at) {
    const double ratio = ratioAt(m_monitors, at);
    if (m_model->dragging() || m_clicked || ratio == m_ratio)
        return;
    m_ratio = ratio;
    m_input.setCursor(cursor());
}

void CaptureSession::endOnScreen() {
    m_input.release();
    m_overlay.reset();
    xcb_flush(m_connection);
}

void CaptureSession::listWindows() {
    if (m_windowsKnown)
        return;
    m_windowsKnown = true;
    m_windows = WindowList::scan(m_connection, m_overlay->window());
}

void CaptureSession::enterWindowMode() {
    listWindows();
    if (!m_windowGrab)
        m_windowGrab.emplace(m_connection);
    m_windowGrab->prepare(m_windows, Clock::now());
}

void CaptureSession::modeMayHaveChanged() {
    if (m_model->mode() == m_mode)
        return;
    m_mode = m_model->mode();
    m_input.setCursor(cursor());
    if (m_mode == CaptureMode::Window)
        enterWindowMode();
}

OverlayScene CaptureSession::scene() {
    OverlayScene scene;
    if (m_mode == CaptureMode::Window) {
        const TopLevel* window = m_clicked ? &*m_clicked : m_windows.at(m_model->pointer());
        if (window) {
            scene.highlight = window->visible.intersected(m_connection.rootRect());
            scene.inView = m_windows.inView(*window);
        }
        return scene;
    }
    const Rect monitor = m_model->monitorUnderPointer();
    scene.selection = m_model->selection();
    if (!scene.selection.empty())
        scene.label = m_overlay->labelFor(scene.selection, m_model->activeCorner(), monitor, m_ratio);
    else
        scene.guides = OverlayScene::Guides{m_model->pointer(), monitor};
    return scene;
}

void CaptureSession::updateScene() {
    m_overlay->setScene(scene(), m_ratio);
    m_overlay->flush();
}

CaptureSession::Outcome CaptureSession::loop() {
    bool warm = false;
    while (m_connection.valid()) {
        bool any = false;
        // Everything that has arrived first: a fast pointer is drawn where it is, not where it was.
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            any = true;
            if (const auto outcome = handle(*event))
                return *outcome;
        }
        if (m_clicked && !m_model->cancelling() && m_windowGrab->ready(m_clicked->window, Clock::now()))
            if (const auto outcome = takeWindow())
                return *outcome;
        updateScene();
        if (any)
            continue;
        if (!warm && !m_overlay->busy()) {
            warm = true;
            m_overlay->warmUp(m_ratio);
            continue;
        }
        xcb_flush(m_connection);
        // Writing may have read events, which then wake no poll.
        if (const XReply<xcb_generic_event_t> event{xcb_poll_for_queued_event(m_connection)}) {
            if (const auto outcome = handle(*event))
                return *outcome;
            continue;
        }
        pollfd waiting{m_connection.fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, m_clicked ? kRepaintPoll : -1);
    }
    return fail("the display is gone");
}

std::optional<CaptureSession::Outcome> CaptureSession::handle(const xcb_generic_event_t& event) {
    if (m_overlay->handleEvent(event))
        return std::nullopt;
    if (m_windowGrab && m_windowGrab->handleEvent(event, Clock::now()))
        return std::nullopt;
    const uint8_t type = event.response_type & 0x7f;
    SelectionModel::Outcome outcome = SelectionModel::Outcome::None;
    switch (type) {
    case XCB_MOTION_NOTIFY: {
        const auto& motion = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
        pointerAt({motion.root_x, motion.root_y});
        outcome = m_model->pointerMoved({motion.root_x, motion.root_y});
        break;
    }
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE: {
        const auto& button = reinterpret_cast<const xcb_button_press_event_t&>(event);
        const Point at{button.root_x, button.root_y};
        pointerAt(at);
        outcome = type == XCB_BUTTON_PRESS ? m_model->buttonPressed(buttonOf(button.detail), at)
                                           : m_model->buttonReleased(buttonOf(button.detail), at);
        break;
    }
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE: {
        const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
        const auto meaning = m_keyboard->meaning(key.detail);
        outcome = type == XCB_KEY_PRESS ? m_model->keyPressed(meaning, key.detail)
                                        : m_model->keyReleased(meaning, key.detail);
        break;
    }
    default:
        // A screen that changes its size makes the frozen picture a lie.
        if (m_connection.hasRandr() &&
            type == xcb_get_extension_data(m_connection, &xcb_randr_id)->first_event +
                        XCB_RANDR_SCREEN_CHANGE_NOTIFY)
            return Outcome::Cancelled;
        break;
    }
    return decide(outcome);
}

std::optional<CaptureSession::Outcome> CaptureSession::decide(SelectionModel::Outcome outcome) {
    if (m_clicked) // the choice is made; only giving up is left
        return outcome == SelectionModel::Outcome::Cancel ? std::optional(Outcome::Cancelled) : std::nullopt;
    switch (outcome) {
    case SelectionModel::Outcome::Cancel:
        return Outcome::Cancelled;
    case SelectionModel::Outcome::CaptureArea:
        return takeArea();
    case SelectionModel::Outcome::CaptureWindow:
        if (const TopLevel* window = m_windows.at(m_model->pointer()))
            m_clicked = *window;
        break;
    case SelectionModel::Outcome::None:
        modeMayHaveChanged();
        break;
    }
    return std::nullopt;
}

std::optional<CaptureSession::Outcome> CaptureSession::takeWindow() {
    m_picture = m_windowGrab->take(m_windows, *m_clicked, *m_frozen->image());
    m_clicked.reset();
    // A window that is gone and showed no pixel: the user can still pick another.
    if (!m_picture)
        return std::nullopt;
    ignoreEndSignals();
    return Outcome::Captured;
}

CaptureSession::Outcome CaptureSession::takeArea() {
    ignoreEndSignals();
    auto image = m_frozen->takeImage();
    const Rect part = m_model->selection().intersected({0, 0, image->width(), image->height()});
    endOnScreen();
    // The fourth byte of the screen's pixels means nothing.
    for (int y = part.y; y < part.bottom(); ++y) {
        uint32_t* row = image->row(y);
        for (int x = part.x; x < part.right(); ++x)
            row[x] |= 0xff000000U;
    }
    // What no monitor shows is transparent.
    std::vector<Rect> dark{part};
    for (const Monitor& monitor : m_monitors)
        dark = subtracted(dark, monitor.area);
    for (const Rect& hole : dark)
        for (int y = hole.y; y < hole.bottom(); ++y)
            std::fill_n(image->row(y) + hole.x, hole.width, 0U);
    m_picture = {std::move(image), part};
    return Outcome::Captured;
}

} // namespace framora
