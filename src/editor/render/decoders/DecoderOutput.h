#pragma once

#include "editor/render/decoders/DecodedPicture.h"

#include <cstdint>
#include <span>

namespace framora {

/// The picture that a decoder hands over, written in place into the memory file behind a descriptor.
class DecoderOutput {
public:
    /// Room for a picture of this size; isOpen() says whether there is. It is not yet handed over.
    DecoderOutput(int descriptor, int width, int height);
    ~DecoderOutput();
    DecoderOutput(const DecoderOutput&) = delete;
    DecoderOutput& operator=(const DecoderOutput&) = delete;

    bool isOpen() const { return m_memory != nullptr; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    std::uint32_t* row(int y);

    /// Hands the picture over. False when the profile does not fit.
    bool finish(bool hasAlpha, std::span<const std::uint8_t> profile = {});

private:
    int m_descriptor;
    int m_width;
    int m_height;
    std::size_t m_bytes = 0;
    std::uint8_t* m_memory = nullptr;
};

} // namespace framora
