#include "editor/render/decoders/DecoderRequest.h"

#include "editor/render/decoders/DecodedPicture.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace framora {
namespace {

template <typename Number> void take(const char* text, Number least, Number most, Number& value) {
    Number given = 0;
    const char* end = text + std::strlen(text);
    const auto [parsed, error] = std::from_chars(text, end, given);
    if (error == std::errc() && parsed == end && given >= least && given <= most)
        value = given;
}

} // namespace

int DecoderRequest::reduction(int width, int height) const {
    constexpr int most = 64; // a sum of that many squared 16-bit values stays within 32 bits
    return wantsReduced() ? std::clamp(std::max(width / boxWidth, height / boxHeight), 1, most) : 1;
}

DecoderRequest DecoderRequest::fromArguments(int count, const char* const* arguments) {
    DecoderRequest request;
    if (count < 6)
        return request;
    take(arguments[1], 0, maximumPictureSide, request.boxWidth);
    take(arguments[2], 0, maximumPictureSide, request.boxHeight);
    take(arguments[3], 1u, decoderSeconds, request.seconds);
    take(arguments[4], 0, decoderThreads(), request.threads);
    take(arguments[5], 1u, decoderMebibytes, request.mebibytes);
    return request;
}

} // namespace framora
