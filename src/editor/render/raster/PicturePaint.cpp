#include "editor/render/raster/PicturePaint.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

Homography fromSource(PixelView picture, double width, double height, const Homography& toOutput) {
    return toOutput * Homography::scaling(width / picture.width, height / picture.height) *
           Homography::translation(-picture.width / 2.0, -picture.height / 2.0);
}

/// The kernel of one axis: source s lies at output s * scale + offset. It covers the picture's own pixels.
ResampleKernel axisKernel(double scale, double offset, int sourceSize, int outputSize) {
    const double end = sourceSize * scale + offset;
    const int first = int(std::clamp(std::floor(offset) - 1, 0.0, double(outputSize)));
    const int last = int(std::clamp(std::ceil(end) + 1, double(first), double(outputSize)));
    return ResampleKernel(1 / scale, -offset / scale, sourceSize, first, last);
}

} // namespace

PicturePaint::PicturePaint(std::shared_ptr<const PicturePyramid> picture, double width, double height,
                           const Homography& toOutput, int outputWidth, int outputHeight)
    : m_picture(std::move(picture)),
      m_projective(*m_picture, fromSource(m_picture->picture(), width, height, toOutput).inverse()) {
    const PixelView pixels = m_picture->picture();
    const Homography map = fromSource(pixels, width, height, toOutput);
    const bool isUpright = map.isAffine() && map(0, 1) == 0 && map(1, 0) == 0 && map(2, 2) == 1;
    if (isUpright && map(0, 0) > 0 && map(1, 1) > 0)
        m_separable.emplace(pixels, axisKernel(map(0, 0), map(0, 2), pixels.width, outputWidth),
                            axisKernel(map(1, 1), map(1, 2), pixels.height, outputHeight));
}

void PicturePaint::shade(int x, int y, int count, Float4* out) const {
    if (m_separable)
        m_separable->read(x, y, count, out);
    else
        m_projective.read(x, y, count, out);
    for (int i = 0; i < count; ++i)
        out[i] *= splat(1.0f / 255);
}

} // namespace framora::raster
