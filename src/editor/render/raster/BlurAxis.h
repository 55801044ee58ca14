#pragma once

#include "editor/render/raster/BlurTaps.h"

namespace framora::raster {

/// How one side of a canvas is taken apart for a Gaussian blur.
///
/// The canvas is cut into cells of at most half the blur's deviation. A cell is not a mean but a
/// smooth bump (a quadratic B-spline) over three of them, so that no fine pattern turns into a coarse one.
/// The cells are blurred, and a cubic B-spline through them gives the pixels. Both splines blur as well; the
/// cells get what they leave. Altogether that is the Gaussian, to within an eighth of a step of 255 at worst.
///
/// `padding` cells on either side stand for what lies beyond the canvas, where its edge repeats.
class BlurAxis {
public:
    static constexpr int padding = 2;
    /// Below this deviation, in pixels, cells would be no larger than pixels.
    static constexpr double leastDeviation = 4;

    /// A side of `length` pixels, above 0, for a blur of `deviation` pixels, leastDeviation or more. All
    /// deviations from one power of two to the next share their cells.
    BlurAxis(double length, double deviation);

    bool operator==(const BlurAxis&) const = default;

    double length() const { return m_length; }
    /// The canvas is known at so many places, about its pixels, evenly spaced over its length.
    int samples() const { return m_samples; }
    /// The length of a cell, in pixels.
    double cell() const { return m_length / m_cells; }
    /// The cells, padding included.
    int cells() const { return m_cells + 2 * padding; }
    /// From samples to cells. `samplesOf`, if any, says what the samples are made of: then it is from those.
    BlurTaps reducing(const ResampleKernel* samplesOf, int largestShift) const;
    /// From cells to cells. The two splines make up what is missing to `deviation` pixels.
    BlurTaps blurring(double deviation) const;
    /// From cells to the centres of `count` steps from 0 on, each `step` pixels long, where the canvas starts
    /// at the pixel `start`. What lies beyond the canvas gets what its edge gets.
    BlurTaps restoring(double start, int count, int step = 1) const;

private:
    double m_length;
    int m_samples;
    int m_cells; ///< Without padding.
};

} // namespace framora::raster
