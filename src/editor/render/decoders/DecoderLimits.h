#pragma once

namespace framora {

/// How long a decoder may take, in seconds.
inline constexpr unsigned decoderSeconds = 20;

/// The memory that a decoder may take beside the picture it hands over, in MiB.
inline constexpr unsigned decoderMebibytes = 2048;

/// The first thing a decoder does: bounds its memory and its time and ties its life to the program that waits
/// for it. Beyond a bound it dies, which that program takes as "no picture".
void limitDecoder(unsigned seconds = decoderSeconds, unsigned mebibytes = decoderMebibytes);

/// How many threads a decoder may use: each of them may hold pictures of its own.
int decoderThreads();

} // namespace framora
