#include "editor/render/SrgbPicture.h"

#include <QColorSpace>
#include <cmath>

namespace framora {
namespace {

/// Whether a picture's numbers are those of sRGB. Many programs say so in a PNG by nothing but the gamma and
/// the primaries that the standard has for readers without sRGB; a profile always has a name.
bool meansSrgb(const QColorSpace& space) {
    const QColorSpace srgb(QColorSpace::SRgb);
    if (!space.isValid() || space == srgb)
        return true;
    constexpr double gamma = 1 / 0.45455;
    constexpr double rounding = 0.003; // of a gamma written with three digits
    return space.transferFunction() == QColorSpace::TransferFunction::Gamma &&
           std::abs(space.gamma() - gamma) < rounding && space.description().isEmpty() &&
           space.withTransferFunction(QColorSpace::TransferFunction::SRgb) == srgb;
}

} // namespace

QImage srgbPicture(QImage&& image) {
    if (!meansSrgb(image.colorSpace()))
        image.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    image.setColorSpace(QColorSpace());
    return std::move(image);
}

} // namespace framora
