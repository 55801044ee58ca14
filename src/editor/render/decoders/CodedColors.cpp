#include "editor/render/decoders/CodedColors.h"

#include <algorithm>
#include <cmath>

namespace framora {
namespace {

enum Primaries { bt2020 = 9, dciP3 = 11, displayP3 = 12 };
enum Transfer { pq = 16, hlg = 18 };

constexpr std::size_t valueCount = 65536;
/// What 1 stands for in cd/m2: the white of graphics in high-dynamic-range video.
constexpr double referenceWhite = 203.0;
/// The brightest that is told apart, in cd/m2.
constexpr double peak = 1000.0;

double srgbToLinear(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double linearToSrgb(double value) {
    return value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1.0 / 2.4) - 0.055;
}

double pqToLinear(double value) {
    constexpr double m1 = 2610.0 / 16384.0;
    constexpr double m2 = 2523.0 / 32.0;
    constexpr double c1 = 3424.0 / 4096.0;
    constexpr double c2 = 2413.0 / 128.0;
    constexpr double c3 = 2392.0 / 128.0;
    const double power = std::pow(value, 1.0 / m2);
    const double light = std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1.0 / m1);
    return light * 10000.0 / referenceWhite;
}

/// The light of the scene, 0 to 1.
double hlgToScene(double value) {
    constexpr double a = 0.17883277;
    constexpr double b = 1.0 - 4.0 * a;
    const double c = 0.5 - a * std::log(4.0 * a);
    return value <= 0.5 ? value * value / 3.0 : (std::exp((value - c) / a) + b) / 12.0;
}

/// Leaves the lower half alone and bends the rest so that the peak comes to 1.
float rolledOff(float light) {
    constexpr float knee = 0.5f;
    constexpr float range = (float(peak / referenceWhite) - knee) / (1.0f - knee);
    if (light <= knee)
        return light;
    const float above = (light - knee) / (1.0f - knee);
    return std::min(knee + (1.0f - knee) * above * (1.0f + above / (range * range)) / (1.0f + above), 1.0f);
}

} // namespace

CodedColors::CodedColors(int primaries, int transfer)
    : m_isHlg(transfer == hlg), m_isHdr(transfer == hlg || transfer == pq) {
    if (primaries == bt2020) {
        m_toSrgb = {1.660491f,  -0.587641f, -0.072850f, -0.124550f, 1.132900f,
                    -0.008349f, -0.018151f, -0.100579f, 1.118730f};
        m_luminance = {0.2627f, 0.6780f, 0.0593f};
    } else if (primaries == displayP3 || primaries == dciP3) {
        m_toSrgb = {1.224940f, -0.224940f, 0.0f,       -0.042057f, 1.042057f,
                    0.0f,      -0.019638f, -0.078636f, 1.098274f};
        m_luminance = {0.2290f, 0.6917f, 0.0793f};
    } else {
        m_toSrgb = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        m_luminance = {0.2126f, 0.7152f, 0.0722f};
    }
    m_isSrgb = !m_isHdr && m_toSrgb[0] == 1.0f;
    if (m_isSrgb)
        return;

    m_linear.resize(valueCount);
    m_encoded.resize(valueCount);
    for (std::size_t i = 0; i < valueCount; ++i) {
        const double value = double(i) / double(valueCount - 1);
        const double linear = transfer == pq    ? pqToLinear(value)
                              : transfer == hlg ? hlgToScene(value)
                                                : srgbToLinear(value);
        m_linear[i] = float(linear);
        m_encoded[i] = std::uint16_t(std::lround(linearToSrgb(value) * double(valueCount - 1)));
    }
}

void CodedColors::toSrgb(std::span<std::uint16_t> rgba) const {
    if (m_isSrgb)
        return;
    for (std::size_t at = 0; at + 4 <= rgba.size(); at += 4) {
        float red = m_linear[rgba[at]];
        float green = m_linear[rgba[at + 1]];
        float blue = m_linear[rgba[at + 2]];
        if (m_isHlg) { // the display's own curve: brighter scenes gain contrast
            const float luminance = m_luminance[0] * red + m_luminance[1] * green + m_luminance[2] * blue;
            const float gain = float(peak / referenceWhite) * std::pow(luminance, 0.2f);
            red *= gain;
            green *= gain;
            blue *= gain;
        }
        if (m_isHdr) {
            const float brightest = std::max({red, green, blue});
            const float gain = brightest > 0 ? rolledOff(brightest) / brightest : 1.0f;
            red *= gain;
            green *= gain;
            blue *= gain;
        }
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const float* row = m_toSrgb.data() + channel * 3;
            const float light = std::clamp(row[0] * red + row[1] * green + row[2] * blue, 0.0f, 1.0f);
            rgba[at + channel] = m_encoded[std::size_t(light * float(valueCount - 1) + 0.5f)];
        }
    }
}

} // namespace framora
