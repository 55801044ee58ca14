#pragma once

#include "screencapture/CaptureRoute.h"
#include "screencapture/SelectionModel.h"
#include "screencapture/wayland/OutputList.h"
#include "screencapture/wayland/OverlaySurface.h"
#include "screencapture/wayland/PixelSpace.h"
#include "screencapture/wayland/PointerPictures.h"
#include "screencapture/wayland/ScreenFreezer.h"
#include "screencapture/wayland/SeatInput.h"
#include "screencapture/wayland/WindowSource.h"

#include <memory>
#include <optional>
#include <vector>

namespace framora {

class WaylandConnection;

/// The capture with our own overlay on layer-shell surfaces, one per output, each in its own device pixels.
///
/// The selection lives in the pixels of one output, the one under the pointer; while a drag lasts, of the one
/// where it began.
class OverlayCapture : public CaptureRoute, public InputSink {
public:
    /// All outlive the capture. `windows` is null where the compositor tells nothing about them: such a
    /// capture runs in area mode only.
    OverlayCapture(WaylandConnection& connection, ScreenFreezer& freezer, WindowSource* windows);
    ~OverlayCapture() override;

    /// Whether the compositor has what the overlay is made of.
    static bool possibleOn(const WaylandConnection& connection);

    CaptureResult run(CaptureMode mode) override;

private:
    void pointerEntered(wl_surface* surface, double x, double y) override;
    void pointerMoved(double x, double y) override;
    void pointerLeft() override;
    void buttonChanged(SelectionModel::Button button, bool pressed) override;
    void keyHeldBefore(uint32_t code) override;
    void keyChanged(uint32_t code, SelectionModel::Key meaning, bool pressed) override;

    std::optional<CaptureResult> begin(CaptureMode mode);
    bool listWindows();
    /// Until something ended the capture; nothing when the user chose.
    std::optional<CaptureResult> loop();
    /// The choice as a PNG file, made when nothing is on screen any more.
    CaptureResult taken();
    CaptureResult connectionLost() const;
    bool changedOnScreen() const;
    void goTo(std::size_t output);
    void decide(SelectionModel::Outcome outcome);
    void modeMayHaveChanged();
    void showPointer();
    void updateScenes();
    OverlayScene scene(std::size_t output) const;
    void describeWindow(OverlayScene& scene, std::size_t output) const;
    void describeSelection(OverlayScene& scene, std::size_t output) const;
    Point logicalPointer() const;
    bool warmUp();
    void endOnScreen();

    WaylandConnection& m_connection;
    ScreenFreezer& m_freezer;
    WindowSource* m_windowSource;
    OverlayGlobals m_globals;
    std::unique_ptr<OutputList> m_outputList;
    std::vector<Output> m_outputs;
    std::vector<std::unique_ptr<PixelImage>> m_frozen;
    std::vector<std::unique_ptr<OverlaySurface>> m_surfaces;
    std::optional<SeatInput> m_input;
    std::optional<PointerPictures> m_pointers;
    std::optional<PixelSpace> m_space;
    std::optional<SelectionModel> m_model;
    CaptureMode m_mode = CaptureMode::Area;
    WindowStack m_windows;
    /// Where the pointer is: an output, and the place on it in its logical pixels.
    std::optional<std::size_t> m_under;
    double m_x = 0;
    double m_y = 0;
    std::optional<SelectionModel::Outcome> m_decided;
    Rect m_chosen; // in m_space
};

} // namespace framora
