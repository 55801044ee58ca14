#include "editor/render/decoders/DecoderOutput.h"

#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace framora {

DecoderOutput::DecoderOutput(int descriptor, int width, int height)
    : m_descriptor(descriptor), m_width(width), m_height(height) {
    if (width < 1 || height < 1 || !isWithinPictureBounds(width, height))
        return;
    m_bytes = DecodedPicture::pixelsOffset + DecodedPicture::pixelBytes(width, height);
    if (ftruncate(descriptor, off_t(m_bytes)) != 0)
        return;
    void* memory = mmap(nullptr, m_bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (memory != MAP_FAILED)
        m_memory = static_cast<std::uint8_t*>(memory);
}

DecoderOutput::~DecoderOutput() {
    if (m_memory)
        munmap(m_memory, m_bytes);
}

std::uint32_t* DecoderOutput::row(int y) {
    return reinterpret_cast<std::uint32_t*>(m_memory + DecodedPicture::pixelsOffset) +
           std::size_t(y) * std::size_t(m_width);
}

bool DecoderOutput::finish(bool hasAlpha, std::span<const std::uint8_t> profile) {
    if (!profile.empty() &&
        pwrite(m_descriptor, profile.data(), profile.size(), off_t(m_bytes)) != ssize_t(profile.size()))
        return false;
    const DecodedPicture picture{DecodedPicture::finished, m_width, m_height, hasAlpha,
                                 std::uint32_t(profile.size())};
    std::memcpy(m_memory, &picture, sizeof picture);
    return true;
}

} // namespace framora
