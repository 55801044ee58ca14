#include "screencapture/wayland/Screencopy.h"

#include "screencapture/wayland/OutputCopies.h"
#include "screencapture/wayland/PanelBuffer.h"

#include <wayland-client-protocol.h>
#include <wayland-protocols/wlr-screencopy-unstable-v1.h>

namespace framora {

namespace {

class Frame : public OutputCopy {
public:
    Frame(zwlr_screencopy_manager_v1* manager, wl_shm* shm, const Output& output)
        : m_shm(shm), m_output(output),
          m_frame(zwlr_screencopy_manager_v1_capture_output(manager, 0, output.handle)) {
        static const zwlr_screencopy_frame_v1_listener listener{
            .buffer =
                [](void* data, zwlr_screencopy_frame_v1* frame, uint32_t format, uint32_t width,
                   uint32_t height, uint32_t stride) {
                    auto& self = *static_cast<Frame*>(data);
                    if (stride > 0)
                        self.m_buffer.offer(format, width, height, stride);
                    // Older versions offer one format and say no more.
                    if (zwlr_screencopy_frame_v1_get_version(frame) <
                        ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
                        self.copy();
                },
            .flags =
                [](void* data, zwlr_screencopy_frame_v1*, uint32_t flags) {
                    static_cast<Frame*>(data)->m_buffer.setBottomUp(flags &
                                                                    ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT);
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
    ~Frame() override { zwlr_screencopy_frame_v1_destroy(m_frame); }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    bool settled() const override { return m_ready || m_failed; }
    bool ready() const override { return m_ready && !m_failed; }
    std::unique_ptr<PixelImage> take() override {
        return ready() ? m_buffer.takeUpright(m_output, m_output.transform) : nullptr;
    }

private:
    void copy() {
        wl_buffer* const buffer = m_copying ? nullptr : m_buffer.allocate(m_shm);
        if (!buffer) {
            m_failed = true;
            return;
        }
        m_copying = true;
        zwlr_screencopy_frame_v1_copy(m_frame, buffer);
        m_buffer.touch();
    }

    wl_shm* m_shm;
    const Output& m_output;
    zwlr_screencopy_frame_v1* m_frame;
    PanelBuffer m_buffer;
    bool m_copying = false;
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
    return copyOutputs(m_connection, outputs, [this](const Output& output) {
        return std::make_unique<Frame>(m_manager, m_shm, output);
    });
}

} // namespace framora
