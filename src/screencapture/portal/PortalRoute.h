#pragma once

#include "screencapture/BusRoutes.h"

namespace framora {

/// A picture through the desktop's Screenshot portal: the desktop's own dialog, or the shell's, lets the user
/// choose, and leaves a file that we read and remove.
class PortalRoute : public CaptureRoute {
public:
    explicit PortalRoute(PortalOptions options) : m_options(std::move(options)) {}

    CaptureResult run(CaptureMode mode) override;

    /// Has the desktop ask the user for the permission by a picture that nobody sees: Captured, without a
    /// picture, when it is given.
    CaptureResult askPermission();

private:
    PortalOptions m_options;
};

} // namespace framora
