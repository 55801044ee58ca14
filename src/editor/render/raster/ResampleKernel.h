#pragma once

#include <vector>

namespace framora::raster {

/// For every output position along one axis, the source positions it mixes and by how much.
///
/// Magnifying and one to one it interpolates (Catmull-Rom); where one output step spans more than one source
/// step the same curve is stretched over them, and a little further, so that detail too fine for the output
/// becomes its mean instead of a pattern. Positions outside the source repeat its edge.
class ResampleKernel {
public:
    struct Taps {
        int first = 0;
        int count = 0;
        const float* weights = nullptr; ///< Their sum is 1.
    };

    ResampleKernel() = default;
    /// Output position o (its middle is o + 0.5) lies at source coordinate (o + 0.5) * step + origin, where
    /// the first source pixel runs from 0 to 1. Covers the outputs [firstOutput, endOutput). `step` is above
    /// 0.
    ResampleKernel(double step, double origin, int sourceSize, int firstOutput, int endOutput);

    Taps taps(int output) const;
    /// The outputs that it covers: [firstOutput, endOutput).
    int firstOutput() const { return m_firstOutput; }
    int endOutput() const { return m_firstOutput + int(m_entries.size()); }

private:
    struct Entry {
        int first;
        int count;
        std::size_t weights;
    };
    int m_firstOutput = 0;
    std::vector<Entry> m_entries;
    std::vector<float> m_weights;
};

/// How many source pixels the cubic's unit is stretched over where an output step spans `step` of them. It is
/// a little more than the step: at the output's finest detail the kernel then passes a third, and a tenth of
/// what is a quarter finer. It sets in gradually, so that zooming shows no jump.
double stretchedWidth(double step);

/// The interpolating cubic of support 2; 1 at 0, 0 at the other whole numbers.
double catmullRom(double x);

} // namespace framora::raster
