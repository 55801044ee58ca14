#include "screencapture/ServerImage.h"

#include "screencapture/XConnection.h"

#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/shm.h>
#include <vector>

namespace framora {

namespace {

// What goes through the connection at a time when memory is not shared.
constexpr std::size_t kBandBytes = std::size_t{4} << 20;

} // namespace

std::unique_ptr<ServerImage> ServerImage::create(const XConnection& connection, int width, int height) {
    constexpr int kMostPixels = 32767; // the protocol's
    if (width < 1 || height < 1 || width > kMostPixels || height > kMostPixels)
        return nullptr;
    std::unique_ptr<ServerImage> image(new ServerImage(connection, width, height));
    if (!image->allocate())
        return nullptr;
    return image;
}

bool ServerImage::allocate() {
    const std::size_t size = byteCount();
    // Not by file descriptor: servers there are die when a client is killed right after it has passed one.
    const int shared = m_connection.hasSharedMemory() ? shmget(IPC_PRIVATE, size, IPC_CREAT | 0600) : -1;
    if (shared >= 0) {
        void* memory = shmat(shared, nullptr, 0);
        // Marked at once, so that it is gone with its last user however this program ends.
        shmctl(shared, IPC_RMID, nullptr);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system has no other name for this failure.
        if (memory != reinterpret_cast<void*>(-1)) {
            const xcb_shm_seg_t segment = xcb_generate_id(m_connection);
            // A server elsewhere cannot attach it.
            if (m_connection.succeeded(
                    xcb_shm_attach_checked(m_connection, segment, static_cast<uint32_t>(shared), 0))) {
                m_segment = segment;
                m_pixels = static_cast<uint32_t*>(memory);
                m_sharedMemory = true;
                return true;
            }
            shmdt(memory);
        }
    }
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return false;
    m_pixels = static_cast<uint32_t*>(memory);
    return true;
}

ServerImage::~ServerImage() {
    if (m_segment)
        xcb_shm_detach(m_connection, m_segment);
    abandon();
}

void ServerImage::abandon() {
    if (m_pixels && m_sharedMemory)
        shmdt(m_pixels);
    else if (m_pixels)
        munmap(m_pixels, byteCount());
    m_pixels = nullptr;
    m_segment = XCB_NONE;
}

bool ServerImage::read(xcb_drawable_t drawable, const PixelFormat& format) {
    if (!format.supported())
        return false;
    if (m_segment && format.native()) {
        const auto cookie =
            xcb_shm_get_image(m_connection, drawable, 0, 0, static_cast<uint16_t>(m_width),
                              static_cast<uint16_t>(m_height), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment, 0);
        if (m_connection.reply(cookie, xcb_shm_get_image_reply))
            return true;
    }
    const std::size_t stride = format.stride(m_width);
    const int bandRows = static_cast<int>(std::max<std::size_t>(1, kBandBytes / stride));
    for (int y = 0; y < m_height; y += bandRows) {
        const int rows = std::min(bandRows, m_height - y);
        const auto band = m_connection.reply(
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, 0, static_cast<int16_t>(y),
                          static_cast<uint16_t>(m_width), static_cast<uint16_t>(rows), ~0U),
            xcb_get_image_reply);
        if (!band || static_cast<std::size_t>(xcb_get_image_data_length(band.get())) <
                         stride * static_cast<std::size_t>(rows))
            return false;
        const uint8_t* data = xcb_get_image_data(band.get());
        for (int i = 0; i < rows; ++i)
            format.toBgra(data + stride * static_cast<std::size_t>(i), m_width, row(y + i));
    }
    return true;
}

bool ServerImage::put(xcb_drawable_t drawable, xcb_gcontext_t gc, int depth, const PixelFormat& format,
                      const Rect& asked, bool notify) const {
    const Rect part = asked.intersected({0, 0, m_width, m_height});
    if (part.empty())
        return false;
    if (m_segment && format.native()) {
        xcb_shm_put_image(
            m_connection, drawable, gc, static_cast<uint16_t>(m_width), static_cast<uint16_t>(m_height),
            static_cast<uint16_t>(part.x), static_cast<uint16_t>(part.y), static_cast<uint16_t>(part.width),
            static_cast<uint16_t>(part.height), static_cast<int16_t>(part.x), static_cast<int16_t>(part.y),
            static_cast<uint8_t>(depth), XCB_IMAGE_FORMAT_Z_PIXMAP, notify, m_segment, 0);
        return notify;
    }
    const std::size_t stride = format.stride(part.width);
    const std::size_t most =
        std::min(kBandBytes, std::size_t{xcb_get_maximum_request_length(m_connection)} * 4 - 64);
    const int bandRows = static_cast<int>(std::max<std::size_t>(1, most / stride));
    std::vector<uint8_t> band(stride * static_cast<std::size_t>(std::min(bandRows, part.height)));
    for (int y = part.y; y < part.bottom(); y += bandRows) {
        const int rows = std::min(bandRows, part.bottom() - y);
        for (int i = 0; i < rows; ++i)
            format.fromBgra(row(y + i) + part.x, part.width,
                            band.data() + stride * static_cast<std::size_t>(i));
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, gc,
                      static_cast<uint16_t>(part.width), static_cast<uint16_t>(rows),
                      static_cast<int16_t>(part.x), static_cast<int16_t>(y), 0, static_cast<uint8_t>(depth),
                      static_cast<uint32_t>(stride * static_cast<std::size_t>(rows)), band.data());
    }
    return false;
}

} // namespace framora
