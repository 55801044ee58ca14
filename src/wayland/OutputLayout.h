#pragma once

namespace framora {

/// What a compositor tells of one output.
struct OutputFacts {
    int pixelWidth = 0; ///< As it is looked at, after rotation; 0 while it is not known.
    int pixelHeight = 0;
    int x = 0; ///< Its place in the compositor's space.
    int y = 0;
    int width = 0; ///< Its size there; 0 where the compositor tells none.
    int height = 0;
    int wholeScale = 1; ///< wl_output.scale: rounded up where the true one is no whole number.
};

/// One output in the compositor's logical space, where scaled outputs are as large as they seem.
struct OutputLayout {
    int x = 0;
    int y = 0;
    int width = 0; ///< 0 only where the output has no pixels.
    int height = 0;
    double ratio = 1; ///< Device pixels a logical one, fractions included.
};

OutputLayout outputLayout(const OutputFacts& facts);

/// The scale that a compositor gave an output of this size in device and in logical pixels. A logical size is
/// whole, cut or rounded, so that the quotient alone is not exact: of the scales that give this size the
/// plainest is taken, a multiple of 1/4, of 1/20, of 1/12 or of 1/120, and the quotient where there is none.
/// 1 when a side is not positive.
double outputRatio(int pixelWidth, int pixelHeight, int logicalWidth, int logicalHeight);

} // namespace framora
