#include "editor/render/decoders/DecoderLimits.h"
#include "editor/render/decoders/DecoderRequest.h"
#include "editor/render/decoders/FrameConverter.h"
#include "editor/render/decoders/VideoFile.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>
#include <utility>

// framora-video-still [BOXWIDTH BOXHEIGHT SECONDS THREADS MEBIBYTES]: one frame of the video in standard
// input as a DecodedPicture in standard output: the one that is shown at one second, else the first; with a
// box, scaled down into it. Exits with 1 when there is none.

namespace framora {
namespace {

constexpr std::int64_t stillTime = 1'000'000; // microseconds

/// Reads on from where the video stands, up to the frame that is shown at the time; null when none is.
/// `first`, when given, receives the first frame met where none is.
Av<AVFrame> frameShownAt(std::int64_t time, VideoFile& video, Av<AVFrame>* first) {
    Av<AVFrame> latest;
    while (Av<AVFrame> frame = video.nextFrame()) {
        if (video.compareStart(*frame, time) > 0) {
            if (!latest && first && !*first)
                *first = std::move(frame);
            return latest;
        }
        if (first && !*first)
            first->reset(av_frame_clone(frame.get()));
        latest = std::move(frame);
    }
    return latest && video.compareEnd(*latest, time) > 0 ? std::move(latest) : nullptr;
}

bool decode(const DecoderRequest& request) {
    const auto write = [&request](const VideoFile& video, AVFrame& frame) {
        return request.wantsReduced()
                   ? writeStill(video, frame, STDOUT_FILENO, request.boxWidth, request.boxHeight)
                   : writeStill(video, frame, STDOUT_FILENO);
    };
    {
        VideoFile video(STDIN_FILENO, request);
        if (!video.isOpen())
            return false;
        if (video.seek(stillTime))
            if (const Av<AVFrame> frame = frameShownAt(stillTime, video, nullptr))
                return write(video, *frame);
    }
    // The clip is shorter, or its index leads astray: from the start.
    VideoFile video(STDIN_FILENO, request);
    Av<AVFrame> first;
    if (!video.isOpen())
        return false;
    if (const Av<AVFrame> frame = frameShownAt(stillTime, video, &first))
        return write(video, *frame);
    return first && write(video, *first);
}

} // namespace
} // namespace framora

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0)
        return std::printf("FFmpeg %s\n", av_version_info()) > 0 ? 0 : 1;
    const auto request = framora::DecoderRequest::fromArguments(argc, argv);
    framora::limitDecoder(request.seconds, request.mebibytes);
    av_log_set_level(AV_LOG_QUIET);
    _exit(framora::decode(request) ? 0 : 1); // nothing is worth taking down piece by piece
}
