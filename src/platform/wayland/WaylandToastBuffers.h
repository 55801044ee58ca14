#pragma once

#include <QImage>
#include <QSize>
#include <memory>
#include <vector>
#include <wayland-client.h>

namespace framora {

/// Memory that is shared with the compositor: pictures of one size that take turns.
class WaylandToastBuffers {
public:
    class Buffer {
    public:
        Buffer(wl_shm* shm, QSize pixels);
        ~Buffer();
        Buffer(const Buffer&) = delete;
        Buffer& operator=(const Buffer&) = delete;

        /// Premultiplied ARGB on the shared memory; null where there is none to be had.
        QImage& image() { return m_image; }
        operator wl_buffer*() const { return m_buffer; }
        bool isFree() const { return !m_isShown; }
        /// The compositor has it until it says otherwise.
        void setShown() { m_isShown = true; }

    private:
        static const wl_buffer_listener listener;

        wl_buffer* m_buffer = nullptr;
        void* m_memory = nullptr;
        std::size_t m_bytes;
        QImage m_image;
        bool m_isShown = false;
    };

    /// The compositor's memory manager outlives this.
    WaylandToastBuffers(wl_shm* shm, QSize pixels) : m_shm(shm), m_pixels(pixels) {}

    QSize pixels() const { return m_pixels; }
    /// One that may be written to; null while the compositor holds all there may be.
    Buffer* next();

private:
    wl_shm* m_shm;
    QSize m_pixels;
    std::vector<std::unique_ptr<Buffer>> m_buffers;
};

} // namespace framora
