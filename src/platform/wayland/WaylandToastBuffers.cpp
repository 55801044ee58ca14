#include "platform/wayland/WaylandToastBuffers.h"

#include "platform/desktop/MemoryFile.h"

#include <algorithm>
#include <sys/mman.h>
#include <unistd.h>

namespace framora {

namespace {
constexpr std::size_t mostBuffers = 4;
constexpr int bytesOfPixel = 4;
} // namespace

const wl_buffer_listener WaylandToastBuffers::Buffer::listener{
    [](void* data, wl_buffer*) { static_cast<Buffer*>(data)->m_isShown = false; }};

WaylandToastBuffers::Buffer::Buffer(wl_shm* shm, QSize pixels)
    : m_bytes(std::size_t(pixels.width()) * std::size_t(pixels.height()) * bytesOfPixel) {
    const MemoryFile file("framora-toast");
    if (file.descriptor() < 0 || ftruncate(file.descriptor(), off_t(m_bytes)) != 0)
        return;
    void* const memory = mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file.descriptor(), 0);
    if (memory == MAP_FAILED)
        return;
    m_memory = memory;
    const int stride = pixels.width() * bytesOfPixel;
    m_image = QImage(static_cast<uchar*>(memory), pixels.width(), pixels.height(), stride,
                     QImage::Format_ARGB32_Premultiplied);
    wl_shm_pool* const pool = wl_shm_create_pool(shm, file.descriptor(), std::int32_t(m_bytes));
    m_buffer =
        wl_shm_pool_create_buffer(pool, 0, pixels.width(), pixels.height(), stride, WL_SHM_FORMAT_ARGB8888);
    wl_shm_pool_destroy(pool);
    wl_buffer_add_listener(m_buffer, &listener, this);
}

WaylandToastBuffers::Buffer::~Buffer() {
    if (m_buffer)
        wl_buffer_destroy(m_buffer);
    m_image = {};
    if (m_memory)
        munmap(m_memory, m_bytes);
}

WaylandToastBuffers::Buffer* WaylandToastBuffers::next() {
    const auto free = std::ranges::find_if(m_buffers, [](const auto& buffer) { return buffer->isFree(); });
    if (free != m_buffers.end())
        return free->get();
    if (m_buffers.size() >= mostBuffers)
        return nullptr;
    auto buffer = std::make_unique<Buffer>(m_shm, m_pixels);
    if (buffer->image().isNull())
        return nullptr;
    m_buffers.push_back(std::move(buffer));
    return m_buffers.back().get();
}

} // namespace framora
