#include "platform/x11/X11ToastPanel.h"

#include "platform/ToastFade.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <xcb/shape.h>

namespace framora {
namespace {

constexpr double frameSeconds = 1.0 / 60;
/// Against an endless contest with another window that keeps itself on top, a screen locker above all.
constexpr int mostRaises = 12;
/// A compositor that has not taken the window over after so many frames gets a solid card, and is asked a
/// little longer.
constexpr int probesUnseen = 6;
constexpr int mostProbes = 40;
/// A pixel of the card itself is opaque but for the smoothing of its edge; the shadow never gets near this.
constexpr int leastCardAlpha = 150;

/// The picture laid on an opaque ground.
void flatten(const QImage& from, QImage& to, QRgb ground) {
    const auto count = std::size_t(from.width()) * std::size_t(from.height());
    const auto* in = reinterpret_cast<const QRgb*>(from.constBits());
    auto* out = reinterpret_cast<QRgb*>(to.bits());
    for (std::size_t i = 0; i < count; ++i) {
        const int rest = 255 - qAlpha(in[i]);
        const auto over = [&](int value, int below) { return value + (below * rest + 127) / 255; };
        out[i] = qRgb(over(qRed(in[i]), qRed(ground)), over(qGreen(in[i]), qGreen(ground)),
                      over(qBlue(in[i]), qBlue(ground)));
    }
}

} // namespace

X11ToastPanel::X11ToastPanel(X11ToastConnection& connection, MainQueue& queue, const Screen& screen,
                             bool ignoresMouse, std::unique_ptr<ToastContent> content)
    : m_connection(connection), m_queue(queue), m_screen(screen), m_ignoresMouse(ignoresMouse),
      m_content(std::move(content)), m_size(QSizeF(screen.pixelFrame.size()) / screen.pixelRatio),
      m_raisesLeft(mostRaises) {
    createWindow();
    describeWindow();
    renderContent();
    m_look = m_connection.hasCompositor() ? Look::unseen : Look::opaque;
    applyShape();
    m_connection.add(*this);
}

X11ToastPanel::~X11ToastPanel() {
    m_connection.remove(*this);
    xcb_free_gc(m_connection, m_gc);
    xcb_destroy_window(m_connection, m_window);
    m_connection.flush();
}

void X11ToastPanel::createWindow() {
    const QRect& frame = m_screen.pixelFrame;
    m_window = xcb_generate_id(m_connection);
    std::uint32_t events = XCB_EVENT_MASK_EXPOSURE;
    if (!m_ignoresMouse)
        events |= XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_BUTTON_PRESS;
    // In the order of the mask's bits. A border pixel has to be given where the depth is not the root's.
    const std::array<std::uint32_t, 5> values{0, 0, 1, events, m_connection.colormap()};
    xcb_create_window(m_connection, m_connection.depth(), m_window, m_connection.screen().root,
                      std::int16_t(frame.x()), std::int16_t(frame.y()),
                      std::uint16_t(std::max(1, frame.width())), std::uint16_t(std::max(1, frame.height())),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, m_connection.visual(),
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                          XCB_CW_COLORMAP,
                      values.data());
    m_gc = xcb_generate_id(m_connection);
    const std::uint32_t noExposures = 0;
    xcb_create_gc(m_connection, m_gc, m_window, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
}

void X11ToastPanel::describeWindow() {
    // A window manager leaves the window alone; compositors, panels and accessibility tools read these.
    const auto& atoms = m_connection.atoms();
    const auto set = [&](xcb_atom_t property, xcb_atom_t type, std::initializer_list<std::uint32_t> values) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, property, type, 32,
                            std::uint32_t(values.size()), values.begin());
    };
    set(atoms.windowType, XCB_ATOM_ATOM, {atoms.windowTypeNotification});
    set(atoms.state, XCB_ATOM_ATOM,
        {atoms.stateAbove, atoms.stateSticky, atoms.stateSkipTaskbar, atoms.stateSkipPager});
    set(atoms.desktop, XCB_ATOM_CARDINAL, {0xffffffff});
    set(atoms.bypassCompositor, XCB_ATOM_CARDINAL, {2}); // Never bypass it: the toast is translucent.
    set(atoms.comptonShadow, XCB_ATOM_CARDINAL, {0});
    const auto text = [&](xcb_atom_t property, xcb_atom_t type, const std::string& value) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, property, type, 8,
                            std::uint32_t(value.size()), value.data());
    };
    text(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, std::string("toast\0Framora\0", 14));
    text(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "Framora toast");
    text(atoms.name, atoms.utf8String, "Framora toast");
}

void X11ToastPanel::renderContent() {
    const double ratio = m_screen.pixelRatio;
    m_image = m_content->paint(m_size, ratio).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    m_image.setDevicePixelRatio(1);
    m_origin = (m_content->bounds(m_size).topLeft() * ratio).toPoint();
    const QRectF card = m_content->cardRect(m_size);
    m_card = QRectF(card.topLeft() * ratio, card.size() * ratio).toAlignedRect();
    if (m_frame.size() != m_image.size())
        m_frame = QImage(m_image.size(), QImage::Format_ARGB32_Premultiplied);
}

std::vector<xcb_rectangle_t> X11ToastPanel::cardSpans() const {
    std::vector<xcb_rectangle_t> spans;
    const QRect card = m_card.translated(-m_origin).intersected(m_image.rect());
    for (int y = card.top(); y <= card.bottom(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(m_image.constScanLine(y));
        const auto isCard = [](QRgb pixel) { return qAlpha(pixel) >= leastCardAlpha; };
        const auto* first = std::find_if(row + card.left(), row + card.right() + 1, isCard);
        const auto* end = row + card.right() + 1;
        while (end > first && !isCard(end[-1]))
            --end;
        if (end == first)
            continue;
        const xcb_rectangle_t span{std::int16_t(m_origin.x() + (first - row)), std::int16_t(m_origin.y() + y),
                                   std::uint16_t(end - first), 1};
        // The straight part between the corners is one rectangle.
        if (!spans.empty() && spans.back().x == span.x && spans.back().width == span.width)
            ++spans.back().height;
        else
            spans.push_back(span);
    }
    return spans;
}

void X11ToastPanel::applyShape() {
    const auto card = cardSpans();
    const auto shape = [&](xcb_shape_sk_t kind, const std::vector<xcb_rectangle_t>& rectangles) {
        xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, m_window, 0, 0,
                             std::uint32_t(rectangles.size()), rectangles.data());
    };
    const xcb_rectangle_t bounds{std::int16_t(m_origin.x()), std::int16_t(m_origin.y()),
                                 std::uint16_t(m_image.width()), std::uint16_t(m_image.height())};
    // What shows before the first picture, and where the server has to fill in.
    const std::uint32_t background = m_look == Look::opaque ? m_content->cardColor().rgb() : 0;
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_BACK_PIXEL, &background);
    switch (m_look) {
    case Look::opaque:
        shape(XCB_SHAPE_SK_BOUNDING, card);
        break;
    case Look::translucent:
        shape(XCB_SHAPE_SK_BOUNDING, {bounds});
        break;
    case Look::unseen:
        shape(XCB_SHAPE_SK_BOUNDING, {});
        break;
    }
    shape(XCB_SHAPE_SK_INPUT, m_ignoresMouse ? std::vector<xcb_rectangle_t>{} : card);
}

void X11ToastPanel::updateLook() {
    m_probeTimer.reset();
    if (!m_connection.hasCompositor())
        return setLook(Look::opaque);
    if (!m_mapped)
        return setLook(Look::unseen);
    if (m_connection.isRedirected(m_window))
        return setLook(Look::translucent);
    setLook(++m_probes <= probesUnseen ? Look::unseen : Look::opaque);
    if (m_probes < mostProbes)
        m_probeTimer = m_queue.after(frameSeconds, [this] {
            updateLook();
            changeAlpha(m_alpha);
        });
}

void X11ToastPanel::setLook(Look look) {
    if (m_look == look)
        return;
    m_look = look;
    applyShape();
}

void X11ToastPanel::put() {
    if (!m_mapped || m_look == Look::unseen)
        return;
    if (!m_connection.hasOurColors())
        return putInBlackAndWhite();
    const QImage* picture = &m_image;
    if (m_look == Look::opaque) {
        flatten(m_image, m_frame, m_content->cardColor().rgb());
        picture = &m_frame;
    } else if (m_alpha < 1) {
        fadeToast(m_image, m_frame, m_alpha);
        picture = &m_frame;
    }
    // In slices that the server's longest request holds.
    constexpr std::size_t header = 64;
    const auto stride = std::size_t(picture->bytesPerLine());
    const std::size_t longest = std::size_t(xcb_get_maximum_request_length(m_connection)) * 4 - header;
    const int rows = int(std::clamp<std::size_t>(longest / stride, 1, std::size_t(picture->height())));
    for (int y = 0; y < picture->height(); y += rows) {
        const int count = std::min(rows, picture->height() - y);
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_gc,
                      std::uint16_t(picture->width()), std::uint16_t(count), std::int16_t(m_origin.x()),
                      std::int16_t(m_origin.y() + y), 0, m_connection.depth(),
                      std::uint32_t(stride * std::size_t(count)), picture->constScanLine(y));
    }
    m_connection.flush();
}

void X11ToastPanel::putInBlackAndWhite() {
    flatten(m_image, m_frame, m_content->cardColor().rgb());
    const bool lowBitFirst =
        xcb_get_setup(m_connection)->bitmap_format_bit_order == XCB_IMAGE_ORDER_LSB_FIRST;
    const QImage ink =
        m_frame.convertToFormat(lowBitFirst ? QImage::Format_MonoLSB : QImage::Format_Mono,
                                {QRgb(0xffffffff), QRgb(0xff000000)}, Qt::MonoOnly | Qt::ThresholdDither);
    const std::array<std::uint32_t, 2> colors{m_connection.screen().black_pixel,
                                              m_connection.screen().white_pixel};
    xcb_change_gc(m_connection, m_gc, XCB_GC_FOREGROUND | XCB_GC_BACKGROUND, colors.data());
    xcb_put_image(m_connection, XCB_IMAGE_FORMAT_XY_BITMAP, m_window, m_gc, std::uint16_t(ink.width()),
                  std::uint16_t(ink.height()), std::int16_t(m_origin.x()), std::int16_t(m_origin.y()), 0, 1,
                  std::uint32_t(ink.sizeInBytes()), ink.constBits());
    m_connection.flush();
}

void X11ToastPanel::setAlpha(double alpha) {
    m_animation.reset();
    changeAlpha(alpha);
}

void X11ToastPanel::changeAlpha(double alpha) {
    m_alpha = std::clamp(alpha, 0.0, 1.0);
    // Without a compositor the window is either there or not; with one it stays mapped, so that a fade never
    // blinks.
    const bool goingAway = m_animation && m_animation->target() <= 0;
    const bool mayShow = m_look != Look::opaque || (m_alpha > 0 && !goingAway);
    // One whose time ran out while it was withdrawn does not come back to fade.
    const bool shown = m_ordered && !m_withdrawn && mayShow && (m_mapped || !goingAway);
    if (shown && !m_mapped) {
        m_mapped = true;
        xcb_map_window(m_connection, m_window);
        updateLook();
    } else if (!shown && m_mapped) {
        m_mapped = false;
        xcb_unmap_window(m_connection, m_window);
        m_connection.flush();
    }
    put();
}

void X11ToastPanel::orderFront() {
    m_ordered = true;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    changeAlpha(m_alpha);
}

void X11ToastPanel::animateAlpha(double alpha, double seconds, Easing easing, std::function<void()> done) {
    m_animation = std::make_unique<ToastAnimation>(m_alpha, alpha, seconds, easing, std::move(done));
    m_animation->timer = m_queue.every(frameSeconds, [this] { step(); });
    // Where nothing fades, the change happens now.
    if (m_look == Look::opaque)
        changeAlpha(alpha > 0 ? alpha : m_alpha);
}

void X11ToastPanel::step() {
    if (!m_animation->isOver()) {
        changeAlpha(m_animation->alpha());
        return;
    }
    // The callback may close this panel.
    const auto finished = std::exchange(m_animation, nullptr);
    changeAlpha(finished->target());
    if (finished->done)
        finished->done();
}

void X11ToastPanel::exposed() {
    put();
}

void X11ToastPanel::pointerIsOver(bool over) {
    if (over) {
        const xcb_cursor_t cursor = m_connection.handCursor();
        xcb_change_window_attributes(m_connection, m_window, XCB_CW_CURSOR, &cursor);
    }
    if (m_content->setHovered(over)) {
        renderContent();
        put();
    }
    m_connection.flush();
}

void X11ToastPanel::pressed(int x, int y) {
    m_content->press(QPointF(x, y) / m_screen.pixelRatio);
}

void X11ToastPanel::compositorChanged() {
    m_probes = 0;
    updateLook();
    changeAlpha(m_alpha);
    m_connection.flush();
}

void X11ToastPanel::setWithdrawn(bool withdrawn) {
    if (m_withdrawn == withdrawn)
        return;
    m_withdrawn = withdrawn;
    m_probes = 0;
    changeAlpha(m_alpha);
}

void X11ToastPanel::setScreen(const Screen& screen) {
    if (m_screen == screen)
        return;
    m_screen = screen;
    const QRect& frame = screen.pixelFrame;
    m_size = QSizeF(frame.size()) / screen.pixelRatio;
    const std::array<std::uint32_t, 4> place{std::uint32_t(frame.x()), std::uint32_t(frame.y()),
                                             std::uint32_t(std::max(1, frame.width())),
                                             std::uint32_t(std::max(1, frame.height()))};
    xcb_configure_window(m_connection, m_window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         place.data());
    renderContent();
    applyShape();
    put();
    m_connection.flush();
}

void X11ToastPanel::keepAbove() {
    if (!m_mapped || m_raisesLeft <= 0)
        return;
    --m_raisesLeft;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    m_connection.flush();
}

} // namespace framora
