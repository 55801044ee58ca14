#include "screencapture/wayland/Screencopy.h"

#include "screencapture/wayland/ShmBuffer.h"
#include "screencapture/wayland/UprightPixels.h"
#include "screencapture/wayland/WaylandConnection.h"

#include <algorithm>
#include <wayland-client-protocol.h>
#include <wayland-protocols/wlr-screencopy-unstable-v1.h>

namespace framora {

namespace {

constexpr std::chrono::milliseconds kPatience{3000};
// An output may change under a copy; the second is of what it became.
constexpr int kTries = 2;

/// The copy of one output on its way.
class Frame {
public:
    Frame(zwlr_screencopy_manager_v1* manager, wl_shm* shm, const Output& output)
        : m_shm(shm), m_output(output),
          m_frame(zwlr_screencopy_manager_v1_capture_output(manager, 0, output.handle)) {
        static const zwlr_screencopy_frame_v1_listener listener{
            .buffer =
                [](void* data, zwlr_screencopy_frame_v1* frame, uint32_t format, uint32_t width,
                   uint32_t height, uint32_t stride) {
                    auto& self = *static_cast<Frame*>(data);
                    self.offered(format, width, height, stride);
                    // Older versions offer one format and say no more.
                    if (zwlr_screencopy_frame_v1_get_version(frame) <
                        ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
                        self.copy();
                },
            .flags =
                [](void* data, zwlr_screencopy_frame_v1*, uint32_t flags) {
                    static_cast<Frame*>(data)->m_bottomUp = flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT;
                },
            .ready = [](void* data, zwlr_screencopy_frame_v1*, uint32_t, uint32_t,
                        uint32_t) { static_cast<Frame*>(data)->m_ready = true; },
            .failed = [](void* data,
                         zwlr_screencopy_frame_v1*) { static_cast<Frame*>(data)->m_failed = true; },
            .damage = [](void*, zwlr_screencopy_frame_v1*, uint32_t, uint32_t, uint32_t, uint32_t) {},
            .linux_dmabuf = [](void*, zwlr_screencopy_frame_v1*, uint32_t, uint32_t, uint32_t) {},
            .buffer_done = [](void* data, zwlr_screencopy_frame_v1*) { static_cast<Frame*>(data)->copy(); },
        };
        zwlr_screencopy_frame_v1_add_listener(m_frame, &listener, this);
    }
    ~Frame() { zwlr_screencopy_frame_v1_destroy(m_frame); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    bool settled() const { return m_ready || m_failed; }

    /// Null when the copy failed or is not of the output's size.
    std::unique_ptr<PixelImage> take() {
        if (!m_ready || m_failed)
            return nullptr;
        const bool onItsSide = m_output.transform % 2 == 1;
        if ((onItsSide ? m_height : m_width) != m_output.pixelWidth ||
            (onItsSide ? m_width : m_height) != m_output.pixelHeight)
            return nullptr;
        auto filled = m_buffer->takeImage();
        if (m_format->native() && !m_bottomUp && m_output.transform == WL_OUTPUT_TRANSFORM_NORMAL &&
            m_stride == m_width * 4)
            return filled;
        auto upright = MemoryImage::create(m_output.pixelWidth, m_output.pixelHeight);
        if (upright)
            copyUpright({reinterpret_cast<const uint8_t*>(filled->row(0)), m_width, m_height,
                         static_cast<std::size_t>(m_stride), *m_format, m_bottomUp, m_output.transform},
                        *upright);
        return upright;
    }

private:
    void offered(uint32_t format, uint32_t width, uint32_t height, uint32_t stride) {
        const auto layout = shmPixelFormat(format);
        constexpr uint32_t kMost = 32767;
        if (m_format || !layout || width > kMost || height > kMost || stride > 4 * kMost ||
            uint64_t{stride} * height > INT32_MAX ||
            stride < width * static_cast<uint32_t>(layout->bitsPerPixel) / 8)
            return;
        m_format = layout;
        m_shmFormat = format;
        m_width = static_cast<int>(width);
        m_height = static_cast<int>(height);
        m_stride = static_cast<int>(stride);
    }

    void copy() {
        auto image = m_format ? MemoryImage::createShared((m_stride + 3) / 4, m_height) : nullptr;
        if (!image || m_buffer) {
            m_failed = true;
            return;
        }
        m_buffer =
            std::make_unique<ShmBuffer>(m_shm, std::move(image), m_shmFormat, m_width, m_height, m_stride);
        zwlr_screencopy_frame_v1_copy(m_frame, *m_buffer);
        m_buffer->image().touch();
    }

    wl_shm* m_shm;
    const Output& m_output;
    zwlr_screencopy_frame_v1* m_frame;
    std::unique_ptr<ShmBuffer> m_buffer;
    std::optional<PixelFormat> m_format;
    uint32_t m_shmFormat = 0;
    int m_width = 0;
    int m_height = 0;
    int m_stride = 0;
    bool m_bottomUp = false;
    bool m_ready = false;
    bool m_failed = false;
};

} // namespace

Screencopy::Screencopy(WaylandConnection& connection)
    : m_connection(connection), m_shm(connection.bind<wl_shm>(wl_shm_interface, 1)),
      m_manager(connection.bind<zwlr_screencopy_manager_v1>(zwlr_screencopy_manager_v1_interface, 3)) {}

Screencopy::~Screencopy() {
    if (m_manager)
        zwlr_screencopy_manager_v1_destroy(m_manager);
    if (m_shm)
        wl_shm_destroy(m_shm);
}

bool Screencopy::offeredBy(const WaylandConnection& connection) {
    return connection.offers(zwlr_screencopy_manager_v1_interface) && connection.offers(wl_shm_interface);
}

std::vector<std::unique_ptr<PixelImage>> Screencopy::freeze(std::span<const Output> outputs) {
    if (!m_manager || !m_shm)
        return {};
    std::vector<std::unique_ptr<PixelImage>> images(outputs.size());
    for (int i = 0; i < kTries; ++i) {
        std::vector<std::unique_ptr<Frame>> frames(outputs.size());
        for (std::size_t k = 0; k < outputs.size(); ++k)
            if (!images[k])
                frames[k] = std::make_unique<Frame>(m_manager, m_shm, outputs[k]);
        const bool answered = m_connection.dispatchUntil(
            [&frames] {
                return std::all_of(frames.begin(), frames.end(),
                                   [](const auto& frame) { return !frame || frame->settled(); });
            },
            kPatience);
        if (!answered)
            return {};
        for (std::size_t k = 0; k < outputs.size(); ++k)
            if (frames[k])
                images[k] = frames[k]->take();
        if (std::all_of(images.begin(), images.end(), [](const auto& image) { return image != nullptr; }))
            return images;
    }
    if (std::none_of(images.begin(), images.end(), [](const auto& image) { return image != nullptr; }))
        return {};
    // An output that is switched off, beside one that is not: it shows black.
    for (std::size_t k = 0; k < outputs.size(); ++k)
        if (!images[k] && !(images[k] = MemoryImage::create(outputs[k].pixelWidth, outputs[k].pixelHeight)))
            return {};
    return images;
}

} // namespace framora
