#pragma once

namespace framora {

/// Where random draws come from; a test passes one that it knows in advance.
class RandomSource {
public:
    virtual ~RandomSource() = default;
    /// Uniform in the closed range [low, high].
    virtual double real(double low, double high) = 0;
    /// Uniform among low, low + 1, ..., high.
    virtual int integer(int low, int high) = 0;
};

/// Draws from the system's generator.
class SystemRandomSource final : public RandomSource {
public:
    double real(double low, double high) override;
    int integer(int low, int high) override;
};

} // namespace framora
