#pragma once

namespace framora {

class RandomSource;
struct SimpleGradientConfig;

/// Gives the gradient three related colours and an angle of a multiple of 45 degrees; leaves the rest of it.
/// The order of the draws is part of the behaviour.
void randomizeGradient(SimpleGradientConfig& gradient, RandomSource& random);

} // namespace framora
