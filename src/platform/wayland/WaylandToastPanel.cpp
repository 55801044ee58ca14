#include "platform/wayland/WaylandToastPanel.h"

#include "platform/ToastFade.h"
#include "platform/wayland/WaylandToastPlacement.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace framora {

namespace {
/// How often it comes back after its output has gone.
constexpr int mostReturns = 3;
} // namespace

WaylandToastPanel::WaylandToastPanel(WaylandToastStage& stage, MainQueue& queue, const Screen& screen,
                                     bool compositorChooses, bool ignoresMouse,
                                     std::unique_ptr<ToastContent> content)
    : m_stage(stage), m_queue(queue), m_ignoresMouse(ignoresMouse), m_content(std::move(content)),
      m_outputName(compositorChooses ? QString() : screen.name), m_returnsLeft(mostReturns) {
    layOut(QSizeF(screen.pixelFrame.size()) / screen.pixelRatio, screen.pixelRatio);
    m_stage.add(*this);
}

WaylandToastPanel::~WaylandToastPanel() {
    m_surface.reset();
    m_stage.remove(*this);
}

void WaylandToastPanel::layOut(QSizeF size, double pixelRatio) {
    m_size = size;
    m_place.pixelRatio = pixelRatio;
    m_place.frame = wholePixelFrame(m_content->bounds(size), pixelRatio);
    m_place.input.clear();
    if (!m_ignoresMouse)
        m_place.input = roundedRegion(m_content->cardRect(size).translated(-m_place.frame.topLeft()),
                                      m_content->cardCornerRadius());
}

void WaylandToastPanel::renderContent() {
    const QSize pixels = m_surface->pixels();
    // Where the compositor only knows whole ratios it is larger than the screen's own.
    const double ratio = double(pixels.width()) / m_place.frame.width();
    QImage content = m_content->paint(m_size, ratio);
    content.setDevicePixelRatio(1);
    const QPointF origin = (m_content->bounds(m_size).topLeft() - m_place.frame.topLeft()) * ratio;
    m_image = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    m_image.fill(Qt::transparent);
    QPainter painter(&m_image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(origin.toPoint(), content);
}

void WaylandToastPanel::updateSurface() {
    // One whose time ran out while it was withdrawn does not come back to fade.
    const bool goingAway = m_animation && m_animation->target() <= 0;
    const bool shown = m_ordered && !m_withdrawn && (m_surface || !goingAway);
    if (shown == (m_surface != nullptr))
        return;
    if (!shown) {
        m_surface.reset();
        return;
    }
    const WaylandOutput* const output =
        m_outputName.isEmpty() ? nullptr : m_stage.outputs().named(m_outputName);
    m_surface = std::make_unique<WaylandToastSurface>(
        m_stage, output ? static_cast<wl_output*>(*output) : nullptr, m_place,
        WaylandToastSurface::Events{
            .ready = [this] { put(); },
            .frame = [this] { put(); },
            .entered = [this](const WaylandOutput& entered) { enteredOutput(entered); },
            .closed = [this] { surfaceClosed(); }});
    renderContent();
}

void WaylandToastPanel::outputChanged(const WaylandOutput& output) {
    if (m_surface && output.globalName() == m_entered)
        enteredOutput(output);
}

void WaylandToastPanel::enteredOutput(const WaylandOutput& output) {
    m_entered = output.globalName();
    const QSizeF size = QSizeF(output.pixelSize()) / output.pixelRatio();
    if (size == m_size && output.pixelRatio() == m_place.pixelRatio)
        return;
    layOut(size, output.pixelRatio());
    m_surface->setPlace(m_place);
    renderContent();
    put();
}

void WaylandToastPanel::surfaceClosed() {
    m_surface.reset();
    m_entered = 0;
    if (--m_returnsLeft < 0)
        return;
    // Its output has gone: it comes back where the compositor likes, once that has sorted itself.
    m_outputName.clear();
    m_return = m_queue.after(0, [this] { updateSurface(); });
}

double WaylandToastPanel::presentAlpha() const {
    return m_animation ? m_animation->alpha() : m_alpha;
}

void WaylandToastPanel::put() {
    if (!m_surface || !m_surface->isReady())
        return;
    m_alpha = presentAlpha();
    // The next picture of a fade comes when the compositor wants it.
    if (m_animation)
        m_surface->requestFrame();
    m_surface->show(m_image, m_alpha);
}

void WaylandToastPanel::setAlpha(double alpha) {
    m_animation.reset();
    m_alpha = std::clamp(alpha, 0.0, 1.0);
    put();
}

void WaylandToastPanel::orderFront() {
    m_ordered = true;
    updateSurface();
}

void WaylandToastPanel::animateAlpha(double alpha, double seconds, Easing easing,
                                     std::function<void()> done) {
    m_alpha = presentAlpha();
    m_animation = std::make_unique<ToastAnimation>(m_alpha, alpha, seconds, easing, std::move(done));
    // Not left to the compositor: it wants no pictures of what nobody sees.
    m_animation->timer = m_queue.after(seconds, [this] { finishAnimation(); });
    put();
}

void WaylandToastPanel::finishAnimation() {
    // The callback may close this panel.
    const auto finished = std::exchange(m_animation, nullptr);
    m_alpha = finished->target();
    put();
    if (finished->done)
        finished->done();
}

void WaylandToastPanel::pointerIsOver(bool over) {
    if (!m_content->setHovered(over) || !m_surface)
        return;
    renderContent();
    put();
}

void WaylandToastPanel::pressed(QPointF position) {
    m_content->press(position + m_place.frame.topLeft());
}

void WaylandToastPanel::setWithdrawn(bool withdrawn) {
    m_withdrawn = withdrawn;
    updateSurface();
}

} // namespace framora
