#include "editor/render/CompositionRasterizer.h"
#include "unit/render/TestPictures.h"

#include <QFont>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <numbers>

namespace framora {
namespace {

using raster::Homography;
using raster::Vec2;

// Patterns as fine as a picture can hold, drawn small and tilted. What the output cannot hold must become its
// mean; where it is folded down instead, it shows as waves that were never there.

constexpr int side = 320;

QImage greys(const std::function<double(int, int)>& value) {
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int grey = int(std::lround(255 * value(x, y)));
            image.setPixel(x, y, qRgb(grey, grey, grey));
        }
    return image;
}

/// Rings whose waves reach half a cycle a pixel at the edge.
QImage zonePlate() {
    return greys([](int x, int y) {
        const double dx = x + 0.5 - side / 2.0;
        const double dy = y + 0.5 - side / 2.0;
        const double radius = std::hypot(dx, dy);
        return radius > side / 2.0 ? 0.5 : 0.5 + 0.5 * std::cos(std::numbers::pi / side * radius * radius);
    });
}

QImage grid(int pitch) {
    return greys([pitch](int x, int y) { return x % pitch == 0 || y % pitch == 0 ? 0.0 : 1.0; });
}

QImage checks() {
    return greys([](int x, int y) { return (x + y) % 2; });
}

QImage fineText() {
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::white);
    QFont font(QStringLiteral("Inter"));
    font.setPixelSize(7);
    QPainter painter(&image);
    painter.setFont(font);
    for (int y = 7; y < side + 7; y += 7)
        painter.drawText(-(y * 13 % 40), y,
                         QString(QStringLiteral("illicit minimum llll |||| ")).repeated(6));
    return image;
}

struct Greys {
    int width = 0;
    int height = 0;
    std::vector<double> values; ///< 0...255

    double& at(int x, int y) { return values[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    double at(int x, int y) const { return values[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
};

Greys empty(int width, int height) {
    return {width, height, std::vector<double>(std::size_t(width) * std::size_t(height), 0.0)};
}

/// A picture drawn by the program, and its map.
struct Drawing {
    QImage source;
    Greys greys;
    Homography toSource; ///< From output pixels to the source's.

    /// The source's grey, with its edge repeated.
    double pixel(double x, double y) const {
        const int column = std::clamp(int(std::floor(x)), 0, side - 1);
        const int row = std::clamp(int(std::floor(y)), 0, side - 1);
        return reinterpret_cast<const QRgb*>(source.constScanLine(row))[column] & 255;
    }
    bool isInside(int x, int y, double margin) const {
        for (const double dx : {-margin, margin})
            for (const double dy : {-margin, margin}) {
                const Vec2 at = toSource.map({x + 0.5 + dx, y + 0.5 + dy});
                if (!(at.x > 0 && at.y > 0 && at.x < side && at.y < side &&
                      toSource.depth({x + 0.5 + dx, y + 0.5 + dy}) > 0))
                    return false;
            }
        return true;
    }
};

Drawing draw(const QImage& source, double rotation, double tiltX, double tiltY) {
    Composition composition;
    composition.image = source;
    composition.config = bareStyle();
    composition.config.imageScale = 40;
    composition.config.rotation = rotation;
    composition.config.rotationX = tiltX;
    composition.config.rotationY = tiltY;
    composition.isRendering = true;
    const CompositionRasterizer::Viewport viewport{QSize(160, 160), 1, QPointF(80.3, 79.6)};
    CompositionRasterizer rasterizer;
    const QImage image = rasterizer.draw(composition, viewport);
    Drawing drawing{source, empty(160, 160), {}};
    drawing.toSource = Homography::translation(side / 2.0, side / 2.0) *
                       rasterizer.layers(composition, viewport).front().placement.toLocal();
    for (int y = 0; y < 160; ++y)
        for (int x = 0; x < 160; ++x)
            drawing.greys.at(x, y) = qGreen(image.pixel(x, y));
    return drawing;
}

/// What an output of so many pixels can hold of the source: the mean of very many points under a window of
/// two pixels to each side, which leaves next to nothing above half a cycle a pixel.
Greys ideal(const Drawing& drawing) {
    constexpr int perPixel = 10;
    constexpr int reach = 2 * perPixel;
    std::array<double, 2 * reach> window{};
    double sum = 0;
    for (int i = 0; i < 2 * reach; ++i) {
        const double t = 2 * std::numbers::pi * (i + 0.5) / (2 * reach);
        sum += window[std::size_t(i)] = 0.42 - 0.5 * std::cos(t) + 0.08 * std::cos(2 * t);
    }
    Greys result = empty(drawing.greys.width, drawing.greys.height);
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x) {
            if (!drawing.isInside(x, y, 2))
                continue;
            double mean = 0;
            for (int j = 0; j < 2 * reach; ++j)
                for (int i = 0; i < 2 * reach; ++i) {
                    const Vec2 at = drawing.toSource.map(
                        {x + 0.5 + (i + 0.5 - reach) / perPixel, y + 0.5 + (j + 0.5 - reach) / perPixel});
                    mean += drawing.pixel(at.x, at.y) * window[std::size_t(i)] * window[std::size_t(j)];
                }
            result.at(x, y) = mean / (sum * sum);
        }
    return result;
}

/// What sampling at the middle of each pixel gives: of the nearest source pixel, or between the nearest four.
Greys sampled(const Drawing& drawing, bool isBilinear) {
    Greys result = empty(drawing.greys.width, drawing.greys.height);
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x) {
            const Vec2 at = drawing.toSource.map({x + 0.5, y + 0.5});
            if (!isBilinear) {
                result.at(x, y) = drawing.pixel(at.x, at.y);
                continue;
            }
            const double left = at.x - 0.5 - std::floor(at.x - 0.5);
            const double top = at.y - 0.5 - std::floor(at.y - 0.5);
            const auto row = [&](double v) {
                return drawing.pixel(at.x - 0.5, v) * (1 - left) + drawing.pixel(at.x + 0.5, v) * left;
            };
            result.at(x, y) = row(at.y - 0.5) * (1 - top) + row(at.y + 0.5) * top;
        }
    return result;
}

/// The root of the mean square of what differs from the ideal in waves of some pixels and longer: those that
/// the eye takes for a pattern. In steps of 255.
double moire(const Drawing& drawing, const Greys& seen, const Greys& wanted) {
    constexpr double deviation = 1.5;
    constexpr int reach = 5;
    double sum = 0;
    int count = 0;
    for (int y = 0; y < seen.height; ++y)
        for (int x = 0; x < seen.width; ++x) {
            if (!drawing.isInside(x, y, reach + 3))
                continue;
            double mean = 0;
            double total = 0;
            for (int dy = -reach; dy <= reach; ++dy)
                for (int dx = -reach; dx <= reach; ++dx) {
                    const double weight = std::exp(-(dx * dx + dy * dy) / (2 * deviation * deviation));
                    mean += weight * (seen.at(x + dx, y + dy) - wanted.at(x + dx, y + dy));
                    total += weight;
                }
            sum += mean / total * mean / total;
            ++count;
        }
    EXPECT_GT(count, 500);
    return std::sqrt(sum / count);
}

struct Pattern {
    const char* name;
    QImage (*make)();
    double most; ///< Of what is taken for moire, in steps.
};
void PrintTo(const Pattern& pattern, std::ostream* out) {
    *out << pattern.name;
}

class Moire : public testing::TestWithParam<Pattern> {};

TEST_P(Moire, IsNowhereInAPictureDrawnSmallAndTilted) {
    const QImage source = GetParam().make();
    double nearest = 0;
    double bilinear = 0;
    for (const auto& [rotation, tiltX, tiltY] : {std::array{0.0, 0.0, 0.0},
                                                 {0.0, 60.0, 0.0},
                                                 {0.0, 0.0, -60.0},
                                                 {12.0, 60.0, 0.0},
                                                 {-33.0, 40.0, 50.0}}) {
        SCOPED_TRACE(testing::Message() << "turned " << rotation << ", tilted " << tiltX << ", " << tiltY);
        const Drawing drawing = draw(source, rotation, tiltX, tiltY);
        const Greys wanted = ideal(drawing);
        EXPECT_LT(moire(drawing, drawing.greys, wanted), GetParam().most);
        nearest = std::max(nearest, moire(drawing, sampled(drawing, false), wanted));
        bilinear = std::max(bilinear, moire(drawing, sampled(drawing, true), wanted));
    }
    // The measure sees what simple sampling does.
    EXPECT_GT(nearest, 2 * GetParam().most);
    EXPECT_GT(bilinear, 2 * GetParam().most);
}

// Grids are the worst that there is: all their energy lies in a few waves.
INSTANTIATE_TEST_SUITE_P(Patterns, Moire,
                         testing::Values(Pattern{"zone plate", zonePlate, 1.5},
                                         Pattern{"fine text", fineText, 2.0}, Pattern{"checks", checks, 3.0},
                                         Pattern{"grid of two", [] { return grid(2); }, 4.0},
                                         Pattern{"grid of three", [] { return grid(3); }, 4.0}));

/// The waves of the zone plate that are finer than twice what the output can hold leave nothing but grey.
TEST(ZonePlate, TurnsWavesFarAboveTheLimitIntoTheirMean) {
    const QImage source = zonePlate();
    for (const auto& [rotation, tiltX, tiltY] :
         {std::array{0.0, 0.0, 0.0}, {0.0, 60.0, 0.0}, {0.0, 0.0, 60.0}, {20.0, 60.0, 0.0}}) {
        const Drawing drawing = draw(source, rotation, tiltX, tiltY);
        double sum = 0;
        int count = 0;
        for (int y = 0; y < drawing.greys.height; ++y)
            for (int x = 0; x < drawing.greys.width; ++x) {
                const Vec2 middle{x + 0.5, y + 0.5};
                const Vec2 at = drawing.toSource.map(middle);
                const double dx = at.x - side / 2.0;
                const double dy = at.y - side / 2.0;
                // Cycles a source pixel, and by the map's slopes cycles an output pixel.
                const Vec2 wave{dx / side, dy / side};
                const Vec2 right = drawing.toSource.map({middle.x + 1e-3, middle.y});
                const Vec2 below = drawing.toSource.map({middle.x, middle.y + 1e-3});
                const double across = (wave.x * (right.x - at.x) + wave.y * (right.y - at.y)) / 1e-3;
                const double down = (wave.x * (below.x - at.x) + wave.y * (below.y - at.y)) / 1e-3;
                if (std::hypot(across, down) < 1 || std::hypot(dx, dy) > side / 2.0 - 12)
                    continue;
                const double off = drawing.greys.at(x, y) - 127.5;
                sum += off * off;
                ++count;
            }
        ASSERT_GT(count, 100);
        EXPECT_LT(std::sqrt(sum / count), 2.0) << rotation << ", " << tiltX << ", " << tiltY;
    }
}

} // namespace
} // namespace framora
