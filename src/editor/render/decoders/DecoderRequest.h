#pragma once

#include "editor/render/decoders/DecoderLimits.h"

namespace framora {

/// What a decoder is asked for: its arguments, or none of them for all of the picture.
struct DecoderRequest {
    /// A box in pixels; the picture may be reduced as far as it still fills the box in one direction, and is
    /// not enlarged. 0 x 0: as it is.
    int boxWidth = 0;
    int boxHeight = 0;
    unsigned seconds = decoderSeconds; ///< More than these it may not take.
    int threads = 0;                   ///< 0: as many as a decoder has by itself.
    /// The memory that it may take, in MiB; beyond it, it dies. One of many gets less than one by itself.
    unsigned mebibytes = decoderMebibytes;

    bool wantsReduced() const { return boxWidth > 0 && boxHeight > 0; }
    /// By how much each side of a picture may be divided in whole pixels; 1 or more.
    int reduction(int width, int height) const;

    /// From BOXWIDTH BOXHEIGHT SECONDS THREADS MEBIBYTES; what is missing or out of range stays as above.
    static DecoderRequest fromArguments(int count, const char* const* arguments);
};

} // namespace framora
