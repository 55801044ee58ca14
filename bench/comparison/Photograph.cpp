#include "Photograph.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace framora::comparison {
namespace {

/// A number in [0, 1) for a point of a grid.
float chance(int x, int y, std::uint32_t seed) {
    std::uint32_t h = std::uint32_t(x) * 0x8da6b343u ^ std::uint32_t(y) * 0xd8163841u ^ seed * 0xcb1ab31fu;
    h = (h ^ h >> 15) * 0x2c1b3c6du;
    h = (h ^ h >> 12) * 0x297a2d39u;
    return float((h ^ h >> 15) >> 8) / 16777216.0f;
}

float smooth(float t) {
    return t * t * (3 - 2 * t);
}

/// Soft hills of about one unit.
float noise(float x, float y, std::uint32_t seed) {
    const float left = std::floor(x);
    const float top = std::floor(y);
    const int column = int(left);
    const int row = int(top);
    const float across = smooth(x - left);
    const float down = smooth(y - top);
    const float above = std::lerp(chance(column, row, seed), chance(column + 1, row, seed), across);
    const float below = std::lerp(chance(column, row + 1, seed), chance(column + 1, row + 1, seed), across);
    return std::lerp(above, below, down);
}

/// Hills upon hills, each half as large and half as high.
float layeredNoise(float x, float y, int octaves, std::uint32_t seed) {
    float sum = 0;
    float height = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += height * noise(x, y, seed + std::uint32_t(i));
        x *= 2;
        y *= 2;
        height /= 2;
    }
    return sum;
}

struct Shade {
    float red, green, blue;
};

Shade mix(const Shade& a, const Shade& b, float t) {
    return {std::lerp(a.red, b.red, t), std::lerp(a.green, b.green, t), std::lerp(a.blue, b.blue, t)};
}

constexpr int ridgeCount = 4;

/// x and y run over a picture of the height 1.
Shade landscape(float x, float y, const float (&ridges)[ridgeCount]) {
    const float cloud = std::clamp(layeredNoise(x * 2.5f, y * 6, 6, 11) * 2.6f - 1.1f, 0.0f, 1.0f);
    const Shade sky = mix({0.29f, 0.47f, 0.74f}, {0.96f, 0.79f, 0.62f}, std::min(1.0f, y * 1.7f));
    Shade shade = mix(sky, {0.98f, 0.95f, 0.93f}, cloud * 0.8f);
    for (int i = 0; i < ridgeCount; ++i) {
        if (y < ridges[i])
            continue;
        const float nearness = float(i + 1) / ridgeCount;
        const float texture = layeredNoise(x * 40 * (1 + nearness), y * 60, 5, 31 + std::uint32_t(i) * 16);
        const Shade far{0.55f, 0.60f, 0.70f};
        const Shade near{0.13f, 0.20f, 0.11f};
        shade = mix(far, near, nearness);
        const float light = 0.55f + 0.9f * texture;
        shade = {shade.red * light, shade.green * light, shade.blue * light};
    }
    return shade;
}

} // namespace

QImage makePhotograph(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    const float unit = 1.0f / float(size.height());
    for (int column = 0; column < size.width(); ++column) {
        const float x = float(column) * unit;
        float ridges[ridgeCount];
        for (int i = 0; i < ridgeCount; ++i)
            ridges[i] = 0.32f + 0.16f * float(i) + 0.3f * (layeredNoise(x * 3, float(i), 8, 71) - 0.5f);
        for (int row = 0; row < size.height(); ++row) {
            const Shade shade = landscape(x, float(row) * unit, ridges);
            const float grain = (chance(column, row, 5) + chance(column, row, 6) - 1) * 0.025f;
            const auto level = [grain](float value) {
                return int(std::lround(std::clamp(value + grain, 0.0f, 1.0f) * 255));
            };
            image.setPixel(column, row, qRgb(level(shade.red), level(shade.green), level(shade.blue)));
        }
    }
    return image;
}

} // namespace framora::comparison
