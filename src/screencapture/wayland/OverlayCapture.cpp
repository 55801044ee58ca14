#include "screencapture/wayland/OverlayCapture.h"

#include "editor/render/raster/PngEncoder.h"
#include "screencapture/EndSignals.h"
#include "screencapture/ReadySignal.h"
#include "screencapture/wayland/PictureCut.h"
#include "screencapture/wayland/WaylandConnection.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <wayland-client-protocol.h>
#include <wayland-protocols/viewporter.h>
#include <wayland-protocols/wlr-layer-shell-unstable-v1.h>

namespace framora {

namespace {

constexpr std::chrono::milliseconds kConfigurePatience{2000};

long area(const Rect& r) {
    return r.empty() ? 0 : static_cast<long>(r.width) * r.height;
}

} // namespace

OverlayCapture::OverlayCapture(WaylandConnection& connection, ScreenFreezer& freezer, WindowSource* windows)
    : m_connection(connection), m_freezer(freezer), m_windowSource(windows) {
    m_globals.compositor = connection.bind<wl_compositor>(wl_compositor_interface, 4);
    m_globals.shm = connection.bind<wl_shm>(wl_shm_interface, 1);
    m_globals.layerShell = connection.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 4);
    m_globals.viewporter = connection.bind<wp_viewporter>(wp_viewporter_interface, 1);
}

OverlayCapture::~OverlayCapture() {
    endOnScreen();
    m_pointers.reset();
    m_input.reset();
    m_outputList.reset();
    if (m_globals.viewporter)
        wp_viewporter_destroy(m_globals.viewporter);
    if (m_globals.layerShell)
        wl_proxy_destroy(reinterpret_cast<wl_proxy*>(m_globals.layerShell)); // its destructor is of version 3
    if (m_globals.shm)
        wl_shm_destroy(m_globals.shm);
    if (m_globals.compositor)
        wl_compositor_destroy(m_globals.compositor);
}

bool OverlayCapture::possibleOn(const WaylandConnection& connection) {
    return connection.offers(wl_compositor_interface) && connection.offers(wl_shm_interface) &&
           connection.offers(wl_seat_interface) && connection.offers(zwlr_layer_shell_v1_interface);
}

CaptureResult OverlayCapture::run(CaptureMode mode) {
    auto ended = begin(mode);
    if (!ended)
        ended = loop();
    if (!ended)
        ignoreEndSignals();
    endOnScreen();
    return ended ? std::move(*ended) : taken();
}

CaptureResult OverlayCapture::connectionLost() const {
    return CaptureResult::failed("the compositor is gone");
}

std::optional<CaptureResult> OverlayCapture::begin(CaptureMode mode) {
    m_mode = mode;
    m_outputList = std::make_unique<OutputList>(m_connection);
    m_input.emplace(m_connection, *this);
    if (!m_connection.roundtrip())
        return m_connection.valid() ? CaptureResult::failed("the compositor does not answer")
                                    : connectionLost();
    m_outputs = m_outputList->take();
    if (m_outputs.empty())
        return CaptureResult::failed("the session has no output");
    if (!m_input->hasDevice())
        return CaptureResult::notHere("there is neither a pointer nor a keyboard");
    // Their sizes come while the outputs are copied; they are not seen before their first picture.
    for (const Output& output : m_outputs)
        m_surfaces.push_back(std::make_unique<OverlaySurface>(m_globals, output));
    // Memory comes slowly, page by page: all of it while the compositor is busy.
    std::vector<std::unique_ptr<MemoryImage>> memory(m_outputs.size());
    {
        const std::jthread touching([this, &memory] {
            try {
                for (std::size_t i = 0; i < memory.size(); ++i) {
                    memory[i] = MemoryImage::createShared(m_outputs[i].pixelWidth, m_outputs[i].pixelHeight);
                    if (memory[i])
                        memory[i]->touch();
                }
            } catch (const std::bad_alloc&) {
                // What is missing is seen below.
            }
        });
        m_frozen = m_freezer.freeze(m_outputs);
    }
    if (!m_connection.valid())
        return connectionLost();
    if (m_frozen.size() != m_outputs.size())
        return CaptureResult::notHere("the outputs cannot be copied");
    for (std::size_t i = 0; i < m_surfaces.size(); ++i) {
        if (!memory[i])
            return CaptureResult::failed("out of memory");
        m_surfaces[i]->adopt(std::move(memory[i]));
    }
    if (!m_connection.dispatchUntil(
            [this] {
                return std::all_of(m_surfaces.begin(), m_surfaces.end(),
                                   [](const auto& s) { return s->configured() || s->lost(); });
            },
            kConfigurePatience))
        return m_connection.valid() ? CaptureResult::notHere("the compositor shows no overlay")
                                    : connectionLost();
    if (changedOnScreen())
        return CaptureResult::cancelled();
    m_space.emplace(m_outputs, 0);
    m_model.emplace(mode, m_space->monitors(), Point{});
    m_model->setWindowsKnown(m_windowSource != nullptr);
    m_pointers.emplace(m_globals);
    if (mode == CaptureMode::Window && !listWindows())
        return CaptureResult::notHere("the compositor does not tell where its windows are");
    announceReady();
    for (std::size_t i = 0; i < m_surfaces.size(); ++i) {
        m_surfaces[i]->show(*m_frozen[i], boundingBox(PixelSpace(m_outputs, i).monitors()));
        // The compositor shows it while the next one is painted, and while the font is loaded.
        wl_display_flush(m_connection);
    }
    return std::nullopt;
}

bool OverlayCapture::listWindows() {
    auto windows = m_windowSource ? m_windowSource->windows() : std::nullopt;
    if (windows)
        m_windows = std::move(*windows);
    return windows.has_value();
}

void OverlayCapture::endOnScreen() {
    m_surfaces.clear();
    if (m_connection.valid())
        wl_display_flush(m_connection);
}

bool OverlayCapture::changedOnScreen() const {
    return m_outputList->changed() || std::any_of(m_surfaces.begin(), m_surfaces.end(),
                                                  [](const auto& surface) { return surface->lost(); });
}

std::optional<CaptureResult> OverlayCapture::loop() {
    while (m_connection.valid()) {
        // A screen that changes makes the frozen picture a lie.
        if (m_decided == SelectionModel::Outcome::Cancel || changedOnScreen())
            return CaptureResult::cancelled();
        if (m_decided == SelectionModel::Outcome::CaptureArea)
            return std::nullopt;
        updateScenes();
        wl_display_flush(m_connection);
        // Everything that has arrived first: a fast pointer is drawn where it is, not where it was.
        const bool idle = !warmUp();
        if (!m_connection.dispatch(idle ? -1 : 0))
            break;
    }
    return connectionLost();
}

bool OverlayCapture::warmUp() {
    // One thing at a time, between which events are looked at.
    for (const auto& surface : m_surfaces)
        if (surface->warmUp())
            return true;
    m_input->warmUp();
    return false;
}

CaptureResult OverlayCapture::taken() {
    const auto picture = cutPicture(*m_space, m_outputs, m_frozen, m_chosen);
    if (!picture)
        return CaptureResult::failed("the picture is too large for the memory there is");
    const raster::PixelView view{reinterpret_cast<const std::byte*>(picture->row(0)), picture->width(),
                                 picture->height(), static_cast<std::ptrdiff_t>(picture->strideBytes())};
    auto png =
        raster::encodePng(view, raster::pixelsPerMetre(72 * m_space->scale()), raster::PngSpeed::fastest);
    if (png.empty())
        return CaptureResult::failed("the picture is too large for the memory there is");
    return CaptureResult::captured(std::move(png));
}

void OverlayCapture::pointerEntered(wl_surface* surface, double x, double y) {
    const auto entered = std::find_if(m_surfaces.begin(), m_surfaces.end(),
                                      [surface](const auto& s) { return s->surface() == surface; });
    if (entered == m_surfaces.end() || !m_model)
        return;
    m_under = static_cast<std::size_t>(entered - m_surfaces.begin());
    m_x = x;
    m_y = y;
    if (!m_model->dragging())
        goTo(*m_under);
    else
        decide(m_model->pointerMoved(m_space->pixelAt(*m_under, m_x, m_y)));
    showPointer();
}

void OverlayCapture::goTo(std::size_t output) {
    if (m_space->home() != output)
        m_space.emplace(m_outputs, output);
    m_model->setSpace(m_space->monitors(), m_space->pixelAt(output, m_x, m_y));
}

void OverlayCapture::pointerMoved(double x, double y) {
    if (!m_under)
        return;
    m_x = x;
    m_y = y;
    decide(m_model->pointerMoved(m_space->pixelAt(*m_under, x, y)));
}

void OverlayCapture::pointerLeft() {
    m_under.reset();
}

void OverlayCapture::buttonChanged(SelectionModel::Button button, bool pressed) {
    if (!m_under)
        return;
    const Point at = m_space->pixelAt(*m_under, m_x, m_y);
    decide(pressed ? m_model->buttonPressed(button, at) : m_model->buttonReleased(button, at));
    // A drag may have ended without an area, on another output than it began.
    if (!m_decided && !m_model->dragging() && m_space->home() != *m_under)
        goTo(*m_under);
}

void OverlayCapture::keyHeldBefore(uint32_t code) {
    if (m_model)
        m_model->keyHeldAtStart(static_cast<int>(code));
}

void OverlayCapture::keyChanged(uint32_t code, SelectionModel::Key meaning, bool pressed) {
    if (!m_model)
        return;
    const int number = static_cast<int>(code);
    decide(pressed ? m_model->keyPressed(meaning, number) : m_model->keyReleased(meaning, number));
}

void OverlayCapture::decide(SelectionModel::Outcome outcome) {
    using Outcome = SelectionModel::Outcome;
    if (m_decided)
        return;
    switch (outcome) {
    case Outcome::Cancel:
        m_decided = Outcome::Cancel;
        break;
    case Outcome::CaptureArea:
        m_chosen = m_model->selection();
        m_decided = Outcome::CaptureArea;
        break;
    case Outcome::CaptureWindow: {
        const int window = m_under ? m_windows.at(logicalPointer()) : -1;
        if (window < 0)
            break;
        // In the pixels of the output that shows most of it.
        const Rect& box = m_windows.windows()[static_cast<std::size_t>(window)];
        const auto most =
            std::max_element(m_outputs.begin(), m_outputs.end(), [&box](const Output& a, const Output& b) {
                return area(box.intersected(a.logical)) < area(box.intersected(b.logical));
            });
        m_space.emplace(m_outputs, static_cast<std::size_t>(most - m_outputs.begin()));
        m_chosen = inPixelsOf(*most, box);
        m_decided = Outcome::CaptureArea;
        break;
    }
    case Outcome::None:
        modeMayHaveChanged();
        break;
    }
}

void OverlayCapture::modeMayHaveChanged() {
    if (m_model->mode() == m_mode)
        return;
    m_mode = m_model->mode();
    if (m_mode == CaptureMode::Window)
        listWindows();
    showPointer();
}

void OverlayCapture::showPointer() {
    if (m_under)
        m_pointers->show(*m_input, m_mode, m_outputs[*m_under].scale);
}

Point OverlayCapture::logicalPointer() const {
    const Rect& output = m_outputs[*m_under].logical;
    return {output.x + static_cast<int>(std::floor(m_x)), output.y + static_cast<int>(std::floor(m_y))};
}

void OverlayCapture::updateScenes() {
    for (std::size_t i = 0; i < m_surfaces.size(); ++i) {
        m_surfaces[i]->setScene(scene(i));
        m_surfaces[i]->flush();
    }
}

OverlayScene OverlayCapture::scene(std::size_t output) const {
    OverlayScene scene;
    if (m_mode == CaptureMode::Window)
        describeWindow(scene, output);
    else
        describeSelection(scene, output);
    return scene;
}

void OverlayCapture::describeWindow(OverlayScene& scene, std::size_t output) const {
    const int window = m_under ? m_windows.at(logicalPointer()) : -1;
    if (window < 0)
        return;
    const Output& on = m_outputs[output];
    const Rect box = inPixelsOf(on, m_windows.windows()[static_cast<std::size_t>(window)]);
    if (!box.intersects({0, 0, on.pixelWidth, on.pixelHeight}))
        return;
    scene.highlight = box;
    for (const Rect& part : m_windows.inView(window))
        scene.inView.push_back(inPixelsOf(on, part));
}

void OverlayCapture::describeSelection(OverlayScene& scene, std::size_t output) const {
    const Rect selection = m_model->selection();
    // Where the label and the guides stand; a drag's pointer is told on the output where it began.
    const Rect monitor = m_model->monitorUnderPointer();
    const bool pointed = monitor == m_space->monitors()[output];
    scene.selection = m_space->onOutput(selection, output);
    if (!pointed)
        return;
    if (!selection.empty())
        scene.label =
            m_surfaces[output]->labelFor(scene.selection, m_space->onOutput(m_model->activeCorner(), output),
                                         selection.width, selection.height);
    else if (m_under)
        scene.guides =
            OverlayScene::Guides{m_space->onOutput(m_model->pointer(), output),
                                 {0, 0, m_outputs[output].pixelWidth, m_outputs[output].pixelHeight}};
}

} // namespace framora
