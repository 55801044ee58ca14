#pragma once

#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace framora::raster {

/// Four floats that the compiler keeps in one register: blue, green, red, alpha, premultiplied, 0...1 while
/// composing.
using Float4 = float __attribute__((vector_size(16)));

inline Float4 splat(float value) {
    return Float4{value, value, value, value};
}

inline Float4 min(Float4 a, Float4 b) {
    return a < b ? a : b;
}

inline Float4 max(Float4 a, Float4 b) {
    return a > b ? a : b;
}

/// The channels of a pixel as they are, 0...255.
inline Float4 unpack(std::uint32_t pixel) {
    using Byte16 = std::uint8_t __attribute__((vector_size(16)));
    using Short8 = std::uint16_t __attribute__((vector_size(16)));
    using Int4 = std::int32_t __attribute__((vector_size(16)));
    using Uint4 = std::uint32_t __attribute__((vector_size(16)));
    // Widened by interleaving with zeros, which every processor has an instruction for.
    const Byte16 bytes = reinterpret_cast<Byte16>(Uint4{pixel, 0, 0, 0});
    const Short8 shorts = reinterpret_cast<Short8>(
        __builtin_shufflevector(bytes, Byte16{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    const Int4 words =
        reinterpret_cast<Int4>(__builtin_shufflevector(shorts, Short8{}, 0, 8, 1, 9, 2, 10, 3, 11));
    return __builtin_convertvector(words, Float4);
}

/// Keeps a filtered pixel valid: alpha in 0...limit, colours in 0...alpha.
inline Float4 clampPremultiplied(Float4 pixel, float limit) {
    const float alpha = pixel[3] < 0 ? 0 : pixel[3] > limit ? limit : pixel[3];
    return min(max(pixel, splat(0)), splat(alpha));
}

/// To the nearest of 0...255 in each channel. The channels are 0...1.
inline std::uint32_t pack(Float4 pixel) {
    using Int4 = std::int32_t __attribute__((vector_size(16)));
    const Float4 scaled = min(max(pixel, splat(0)), splat(1)) * splat(255) + splat(0.5f);
    const Int4 whole = __builtin_convertvector(scaled, Int4);
#ifdef __SSE2__
    const __m128i words = reinterpret_cast<__m128i>(whole);
    const __m128i shorts = _mm_packs_epi32(words, words);
    return std::uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(shorts, shorts)));
#else
    return std::uint32_t(whole[0]) | std::uint32_t(whole[1]) << 8 | std::uint32_t(whole[2]) << 16 |
           std::uint32_t(whole[3]) << 24;
#endif
}

/// A colour from components 0...1 that are not premultiplied. What is not finite counts as 0.
inline Float4 premultiplied(double red, double green, double blue, double alpha) {
    const auto unit = [](double value) { return value > 0 ? (value < 1 ? float(value) : 1.0f) : 0.0f; };
    const float a = unit(alpha);
    return Float4{unit(blue) * a, unit(green) * a, unit(red) * a, a};
}

} // namespace framora::raster
