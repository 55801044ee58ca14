#pragma once

namespace framora {

/// The scale that a compositor gave an output of this size in device and in logical pixels. A logical size is
/// whole, so that the quotient alone is not exact: the plainest scale is taken that gives this size, a
/// multiple of a quarter, then of 1/120. 1 when a side is not positive.
double outputScale(int pixelWidth, int pixelHeight, int logicalWidth, int logicalHeight);

} // namespace framora
