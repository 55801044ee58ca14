#include "screencapture/MemoryImage.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace framora {

namespace {

bool sidesAreRight(int width, int height) {
    constexpr int kMostPixels = 32767;
    return width >= 1 && height >= 1 && width <= kMostPixels && height <= kMostPixels;
}

} // namespace

MemoryImage::MemoryImage(int width, int height, int file) : PixelImage(width, height), m_file(file) {
    const int sharing = file < 0 ? MAP_PRIVATE | MAP_ANONYMOUS : MAP_SHARED;
    void* memory = mmap(nullptr, byteCount(), PROT_READ | PROT_WRITE, sharing, file, 0);
    if (memory != MAP_FAILED)
        m_pixels = static_cast<uint32_t*>(memory);
}

MemoryImage::~MemoryImage() {
    if (m_pixels)
        munmap(m_pixels, byteCount());
    if (m_file >= 0)
        close(m_file);
}

std::unique_ptr<MemoryImage> MemoryImage::create(int width, int height) {
    if (!sidesAreRight(width, height))
        return nullptr;
    std::unique_ptr<MemoryImage> image(new MemoryImage(width, height, -1));
    return image->m_pixels ? std::move(image) : nullptr;
}

std::unique_ptr<MemoryImage> MemoryImage::createShared(int width, int height) {
    if (!sidesAreRight(width, height))
        return nullptr;
    const int file = memfd_create("framora-pixels", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (file < 0)
        return nullptr;
    const auto size = static_cast<off_t>(width) * height * 4;
    if (ftruncate(file, size) != 0) {
        close(file);
        return nullptr;
    }
    // What never shrinks cannot end the compositor that reads it.
    fcntl(file, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_SEAL);
    std::unique_ptr<MemoryImage> image(new MemoryImage(width, height, file));
    return image->m_pixels ? std::move(image) : nullptr;
}

void MemoryImage::touch() {
    // Older systems refuse: the memory then comes when it is written.
    madvise(m_pixels, byteCount(), MADV_POPULATE_WRITE);
}

} // namespace framora
