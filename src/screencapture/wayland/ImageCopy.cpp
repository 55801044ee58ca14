#include "screencapture/wayland/ImageCopy.h"

#include "screencapture/wayland/OutputCopies.h"
#include "screencapture/wayland/PanelBuffer.h"

#include <wayland-client-protocol.h>
#include <wayland-protocols/ext-image-capture-source-v1.h>
#include <wayland-protocols/ext-image-copy-capture-v1.h>

namespace framora {

namespace {

/// One session, and one frame of it: what the session asks of a buffer comes first.
class SessionCopy : public OutputCopy {
public:
    SessionCopy(ext_image_copy_capture_manager_v1* manager,
                ext_output_image_capture_source_manager_v1* sources, wl_shm* shm, const Output& output)
        : m_shm(shm), m_output(output), m_transform(output.transform) {
        static const ext_image_copy_capture_session_v1_listener listener{
            .buffer_size =
                [](void* data, ext_image_copy_capture_session_v1*, uint32_t width, uint32_t height) {
                    auto& self = *static_cast<SessionCopy*>(data);
                    self.m_width = width;
                    self.m_height = height;
                },
            .shm_format =
                [](void* data, ext_image_copy_capture_session_v1*, uint32_t format) {
                    static_cast<SessionCopy*>(data)->m_formats.push_back(format);
                },
            .dmabuf_device = [](void*, ext_image_copy_capture_session_v1*, wl_array*) {},
            .dmabuf_format = [](void*, ext_image_copy_capture_session_v1*, uint32_t, wl_array*) {},
            .done = [](void* data,
                       ext_image_copy_capture_session_v1*) { static_cast<SessionCopy*>(data)->capture(); },
            .stopped =
                [](void* data, ext_image_copy_capture_session_v1*) {
                    auto& self = *static_cast<SessionCopy*>(data);
                    self.m_failed = !self.m_ready;
                },
        };
        ext_image_capture_source_v1* const source =
            ext_output_image_capture_source_manager_v1_create_source(sources, output.handle);
        // No option: without the pointer.
        m_session = ext_image_copy_capture_manager_v1_create_session(manager, source, 0);
        ext_image_capture_source_v1_destroy(source);
        ext_image_copy_capture_session_v1_add_listener(m_session, &listener, this);
    }
    ~SessionCopy() override {
        if (m_frame)
            ext_image_copy_capture_frame_v1_destroy(m_frame);
        ext_image_copy_capture_session_v1_destroy(m_session);
    }
    SessionCopy(const SessionCopy&) = delete;
    SessionCopy& operator=(const SessionCopy&) = delete;

    bool settled() const override { return m_ready || m_failed; }
    bool ready() const override { return m_ready; }
    std::unique_ptr<PixelImage> take() override {
        return m_ready ? m_buffer.takeUpright(m_output, m_transform) : nullptr;
    }

private:
    /// What a buffer must be like is known. Told again when it changes: the first copy is the one that
    /// counts.
    void capture() {
        static const ext_image_copy_capture_frame_v1_listener listener{
            .transform =
                [](void* data, ext_image_copy_capture_frame_v1*, uint32_t transform) {
                    static_cast<SessionCopy*>(data)->m_transform = static_cast<int>(transform);
                },
            .damage = [](void*, ext_image_copy_capture_frame_v1*, int32_t, int32_t, int32_t, int32_t) {},
            .presentation_time = [](void*, ext_image_copy_capture_frame_v1*, uint32_t, uint32_t, uint32_t) {},
            .ready =
                [](void* data, ext_image_copy_capture_frame_v1*) {
                    static_cast<SessionCopy*>(data)->m_ready = true;
                },
            .failed = [](void* data, ext_image_copy_capture_frame_v1*,
                         uint32_t) { static_cast<SessionCopy*>(data)->m_failed = true; },
        };
        if (m_frame || m_failed)
            return;
        for (const uint32_t format : m_formats)
            m_buffer.offer(format, m_width, m_height, 0);
        wl_buffer* const buffer = m_buffer.allocate(m_shm);
        if (!buffer) {
            m_failed = true;
            return;
        }
        m_frame = ext_image_copy_capture_session_v1_create_frame(m_session);
        ext_image_copy_capture_frame_v1_add_listener(m_frame, &listener, this);
        ext_image_copy_capture_frame_v1_attach_buffer(m_frame, buffer);
        ext_image_copy_capture_frame_v1_damage_buffer(m_frame, 0, 0, m_buffer.width(), m_buffer.height());
        ext_image_copy_capture_frame_v1_capture(m_frame);
        m_buffer.touch();
    }

    wl_shm* m_shm;
    const Output& m_output;
    int m_transform;
    ext_image_copy_capture_session_v1* m_session = nullptr;
    ext_image_copy_capture_frame_v1* m_frame = nullptr;
    std::vector<uint32_t> m_formats;
    uint32_t m_width = 0; // pixels of the panel
    uint32_t m_height = 0;
    PanelBuffer m_buffer;
    bool m_ready = false;
    bool m_failed = false;
};

} // namespace

ImageCopy::ImageCopy(WaylandConnection& connection)
    : m_connection(connection), m_shm(connection.bind<wl_shm>(wl_shm_interface, 1)),
      m_sources(connection.bind<ext_output_image_capture_source_manager_v1>(
          ext_output_image_capture_source_manager_v1_interface, 1)),
      m_manager(connection.bind<ext_image_copy_capture_manager_v1>(
          ext_image_copy_capture_manager_v1_interface, 1)) {}

ImageCopy::~ImageCopy() {
    if (m_manager)
        ext_image_copy_capture_manager_v1_destroy(m_manager);
    if (m_sources)
        ext_output_image_capture_source_manager_v1_destroy(m_sources);
    if (m_shm)
        wl_shm_destroy(m_shm);
}

bool ImageCopy::offeredBy(const WaylandConnection& connection) {
    return connection.offers(ext_image_copy_capture_manager_v1_interface) &&
           connection.offers(ext_output_image_capture_source_manager_v1_interface) &&
           connection.offers(wl_shm_interface);
}

std::vector<std::unique_ptr<PixelImage>> ImageCopy::freeze(std::span<const Output> outputs) {
    if (!m_manager || !m_sources || !m_shm)
        return {};
    return copyOutputs(m_connection, outputs, [this](const Output& output) {
        return std::make_unique<SessionCopy>(m_manager, m_sources, m_shm, output);
    });
}

} // namespace framora
