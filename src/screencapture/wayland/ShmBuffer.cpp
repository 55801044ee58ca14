#include "screencapture/wayland/ShmBuffer.h"

#include <wayland-client-protocol.h>

namespace framora {

ShmBuffer::ShmBuffer(wl_shm* shm, std::unique_ptr<MemoryImage> image, uint32_t format)
    : ShmBuffer(shm, std::move(image), format, 0, 0, 0) {}

ShmBuffer::ShmBuffer(wl_shm* shm, std::unique_ptr<MemoryImage> image, uint32_t format, int width, int height,
                     int stride)
    : m_image(std::move(image)) {
    const int lineBytes = static_cast<int>(m_image->strideBytes());
    if (stride == 0) {
        width = m_image->width();
        height = m_image->height();
        stride = lineBytes;
    }
    wl_shm_pool* pool = wl_shm_create_pool(shm, m_image->fileDescriptor(), lineBytes * m_image->height());
    m_buffer = wl_shm_pool_create_buffer(pool, 0, width, height, stride, format);
    wl_shm_pool_destroy(pool);
    static const wl_buffer_listener listener{
        .release = [](void* data, wl_buffer*) { static_cast<ShmBuffer*>(data)->m_held = false; }};
    wl_buffer_add_listener(m_buffer, &listener, this);
}

ShmBuffer::~ShmBuffer() {
    wl_buffer_destroy(m_buffer);
}

} // namespace framora
