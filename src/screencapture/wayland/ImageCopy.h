#pragma once

#include "screencapture/wayland/ScreenFreezer.h"

struct ext_image_copy_capture_manager_v1;
struct ext_output_image_capture_source_manager_v1;
struct wl_shm;

namespace framora {

class WaylandConnection;

/// Frozen outputs by ext-image-copy-capture, for compositors without screencopy.
class ImageCopy : public ScreenFreezer {
public:
    explicit ImageCopy(WaylandConnection& connection);
    ~ImageCopy() override;

    static bool offeredBy(const WaylandConnection& connection);

    std::vector<std::unique_ptr<PixelImage>> freeze(std::span<const Output> outputs) override;

private:
    WaylandConnection& m_connection;
    wl_shm* m_shm;
    ext_output_image_capture_source_manager_v1* m_sources;
    ext_image_copy_capture_manager_v1* m_manager;
};

} // namespace framora
