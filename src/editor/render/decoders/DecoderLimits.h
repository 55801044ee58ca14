#pragma once

namespace framora {

/// How long a decoder may take, in seconds.
inline constexpr unsigned decoderSeconds = 20;

/// The first thing a decoder does: bounds its memory and its time and ties its life to the program that waits
/// for it. Beyond a bound it dies, which that program takes as "no picture". `isOneOfMany`: a smaller bound,
/// as several run beside each other.
void limitDecoder(unsigned seconds = decoderSeconds, bool isOneOfMany = false);

/// How many threads a decoder may use: each of them may hold pictures of its own.
int decoderThreads();

} // namespace framora
