#pragma once

#include "screencapture/wayland/ScreenFreezer.h"

struct wl_shm;
struct zwlr_screencopy_manager_v1;

namespace framora {

class WaylandConnection;

/// Frozen outputs by the compositor's own copies, all asked for at once.
class Screencopy : public ScreenFreezer {
public:
    explicit Screencopy(WaylandConnection& connection);
    ~Screencopy() override;

    static bool offeredBy(const WaylandConnection& connection);

    std::vector<std::unique_ptr<PixelImage>> freeze(std::span<const Output> outputs) override;

private:
    WaylandConnection& m_connection;
    wl_shm* m_shm;
    zwlr_screencopy_manager_v1* m_manager;
};

} // namespace framora
