#include "editor/render/decoders/FrameConverter.h"

#include "editor/render/decoders/CodedColors.h"
#include "editor/render/decoders/DecoderOutput.h"
#include "editor/render/decoders/PixelPacking.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

extern "C" {
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace framora {
namespace {

/// How the track lays the frame out; first exchanged, then mirrored.
struct Orientation {
    bool exchangesAxes = false;
    bool mirrorsX = false;
    bool mirrorsY = false;
};

struct Size {
    int width = 0;
    int height = 0;
};

struct SwsFree {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

/// The nearest of the eight upright ones. The matrix maps (x, y) to (m0 x + m3 y, m1 x + m4 y), y down.
Orientation orientation(const AVStream* stream) {
    std::size_t size = 0;
    const auto* matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size));
    if (!matrix || size < 9 * sizeof(std::int32_t))
        return {};
    const auto magnitude = [matrix](int i) { return std::abs(double(matrix[i])); };
    if (magnitude(1) + magnitude(3) > magnitude(0) + magnitude(4))
        return {true, matrix[3] < 0, matrix[1] < 0};
    return {false, matrix[0] < 0, matrix[4] < 0};
}

/// The size before it is turned, in square pixels, such that the turned one is within the box.
Size stillSize(const VideoFile& video, AVFrame& frame, bool exchangesAxes, Size box) {
    double width = frame.width;
    const double height = frame.height;
    const AVRational aspect = av_guess_sample_aspect_ratio(video.format(), video.stream(), &frame);
    constexpr double mostStretched = 16.0;
    const double stretch = aspect.num > 0 && aspect.den > 0 ? av_q2d(aspect) : 1.0;
    if (stretch <= mostStretched && stretch >= 1.0 / mostStretched)
        width *= stretch;
    const double fit = exchangesAxes ? std::min(box.width / height, box.height / width)
                                     : std::min(box.width / width, box.height / height);
    const double scale = std::min(fit, 1.0);
    const int bound = exchangesAxes ? box.height : box.width;
    const int otherBound = exchangesAxes ? box.width : box.height;
    return {std::clamp(int(std::lround(width * scale)), 1, bound),
            std::clamp(int(std::lround(height * scale)), 1, otherBound)};
}

/// Unlabelled video is coded as the size it is made for: high definition by BT.709, smaller by BT.601.
int matrixTable(const AVFrame& frame) {
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return SWS_CS_ITU601;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default:
        return frame.width >= 1280 || frame.height >= 720 ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

bool isFullRange(const AVFrame& frame) {
    const char* name = av_get_pix_fmt_name(AVPixelFormat(frame.format));
    return frame.color_range == AVCOL_RANGE_JPEG || (name && std::string_view(name).starts_with("yuvj"));
}

/// The frame scaled, as straight 16-bit red, green, blue, alpha; empty on failure.
std::vector<std::uint16_t> scaledRgba(const AVFrame& frame, Size size) {
    // The slow paths of the scaler: chroma is interpolated, and nothing is rounded twice.
    constexpr int flags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;
    const std::unique_ptr<SwsContext, SwsFree> scaler(
        sws_getContext(frame.width, frame.height, AVPixelFormat(frame.format), size.width, size.height,
                       AV_PIX_FMT_RGBA64LE, flags, nullptr, nullptr, nullptr));
    if (!scaler)
        return {};
    const int* table = sws_getCoefficients(matrixTable(frame));
    // Refused where both sides are RGB: there is nothing to set then.
    sws_setColorspaceDetails(scaler.get(), table, isFullRange(frame), table, 1, 0, 1 << 16, 1 << 16);

    constexpr std::size_t alignment = 32; // pixels; the scaler writes whole vectors
    const std::size_t rowPixels = (std::size_t(size.width) + alignment - 1) / alignment * alignment;
    std::vector<std::uint16_t> rgba(rowPixels * 4 * std::size_t(size.height) + alignment * 4);
    std::uint8_t* planes[4] = {reinterpret_cast<std::uint8_t*>(rgba.data()), nullptr, nullptr, nullptr};
    const int strides[4] = {int(rowPixels * 8), 0, 0, 0};
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) != size.height)
        return {};
    // Close the rows up.
    for (int y = 1; y < size.height; ++y)
        std::copy_n(rgba.data() + std::size_t(y) * rowPixels * 4, std::size_t(size.width) * 4,
                    rgba.data() + std::size_t(y) * std::size_t(size.width) * 4);
    rgba.resize(std::size_t(size.width) * std::size_t(size.height) * 4);
    return rgba;
}

void turnInto(DecoderOutput& output, const std::vector<std::uint32_t>& pixels, Size size, Orientation turn) {
    for (int y = 0; y < output.height(); ++y) {
        std::uint32_t* row = output.row(y);
        for (int x = 0; x < output.width(); ++x) {
            const int unmirroredX = turn.mirrorsX ? output.width() - 1 - x : x;
            const int unmirroredY = turn.mirrorsY ? output.height() - 1 - y : y;
            const int sourceX = turn.exchangesAxes ? unmirroredY : unmirroredX;
            const int sourceY = turn.exchangesAxes ? unmirroredX : unmirroredY;
            row[x] = pixels[std::size_t(sourceY) * std::size_t(size.width) + std::size_t(sourceX)];
        }
    }
}

} // namespace

bool writeStill(const VideoFile& video, AVFrame& frame, int descriptor, int boxWidth, int boxHeight) {
    const Orientation turn = orientation(video.stream());
    if (frame.width < 1 || frame.height < 1)
        return false;
    const Size size = stillSize(video, frame, turn.exchangesAxes, {boxWidth, boxHeight});
    std::vector<std::uint16_t> rgba = scaledRgba(frame, size);
    if (rgba.empty())
        return false;
    CodedColors(frame.color_primaries, frame.color_trc).toSrgb(rgba);
    std::vector<std::uint32_t> pixels(std::size_t(size.width) * std::size_t(size.height));
    packRow(rgba, pixels.data());

    DecoderOutput output(descriptor, turn.exchangesAxes ? size.height : size.width,
                         turn.exchangesAxes ? size.width : size.height);
    if (!output.isOpen())
        return false;
    turnInto(output, pixels, size, turn);
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(AVPixelFormat(frame.format));
    return output.finish(format && format->flags & AV_PIX_FMT_FLAG_ALPHA);
}

} // namespace framora
