#pragma once

#include "editor/render/decoders/VideoFile.h"

namespace framora {

/// No still is larger than this; larger videos are scaled down into it.
inline constexpr int maximumStillWidth = 3840;
inline constexpr int maximumStillHeight = 2160;

/// Writes the frame as a DecodedPicture to the descriptor: square pixels, turned and mirrored as the track
/// says, in sRGB, scaled down into `boxWidth` x `boxHeight`. False when that cannot be done.
bool writeStill(const VideoFile& video, AVFrame& frame, int descriptor, int boxWidth = maximumStillWidth,
                int boxHeight = maximumStillHeight);

} // namespace framora
