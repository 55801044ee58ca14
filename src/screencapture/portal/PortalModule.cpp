#include "screencapture/portal/KwinScreens.h"
#include "screencapture/portal/KwinWindowRoute.h"
#include "screencapture/portal/PortalRoute.h"

namespace framora {

namespace {

class PortalModule final : public BusRoutes {
public:
    std::unique_ptr<CaptureRoute> portal(PortalOptions options) override {
        return std::make_unique<PortalRoute>(std::move(options));
    }
    CaptureResult askPermission(PortalOptions options) override {
        return PortalRoute(std::move(options)).askPermission();
    }
    std::unique_ptr<ScreenFreezer> kwinScreens() override { return KwinScreens::create(); }
    std::unique_ptr<CaptureRoute> kwinWindow() override { return KwinWindowRoute::create(); }
};

} // namespace

} // namespace framora

/// What the tool asks of the module, by this name.
extern "C" __attribute__((visibility("default"))) framora::BusRoutes* framoraBusRoutes() {
    static framora::PortalModule module;
    return &module;
}
