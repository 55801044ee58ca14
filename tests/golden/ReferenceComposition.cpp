#include "golden/ReferenceComposition.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <thread>

namespace framora::golden {
namespace {

constexpr unsigned fineSamples = 256;
constexpr unsigned coarseSamples = 64;
constexpr unsigned firstSamples = 4;

struct Mean {
    Sample color{0.0, 0.0, 0.0, 0.0};
    unsigned layers = 0; ///< that any of the points lies in
    bool isEven = false; ///< no outline passes, and the colour hardly changes
};

template <class Row> void forEachRow(int rows, const Row& row) {
    const int threads = std::max(1, int(std::thread::hardware_concurrency()));
    std::vector<std::jthread> workers;
    workers.reserve(std::size_t(threads));
    for (int start = 0; start < threads; ++start)
        workers.emplace_back([&row, start, rows, threads] {
            for (int y = start; y < rows; y += threads)
                row(y);
        });
}

/// The places of a pixel's points, 0...1. No two lie in one row or column, so that an upright edge is met as
/// exactly as a slanted one.
std::pair<double, double> samplePlace(unsigned index, unsigned count) {
    double reversed = 0.0;
    double digit = 0.5;
    for (unsigned bits = index; bits > 0; bits >>= 1, digit /= 2.0)
        reversed += digit * (bits & 1);
    return {(index + 0.5) / count, reversed + 0.5 / count};
}

double radians(double degrees) {
    return degrees * std::numbers::pi / 180.0;
}

Sample premultiplied(const Color& color) {
    return {color.red * color.alpha, color.green * color.alpha, color.blue * color.alpha, color.alpha};
}

Sample over(const Sample& top, const Sample& below) {
    Sample result;
    for (std::size_t i = 0; i < 4; ++i)
        result[i] = top[i] + below[i] * (1.0 - top[3]);
    return result;
}

/// A rectangle around the origin with continuous corners: a superellipse in a box at each corner that begins
/// a bit before the arc of `radius` would and passes through the middle of that arc.
bool isInside(double x, double y, double width, double height, double radius) {
    const double halfWidth = width / 2.0;
    const double halfHeight = height / 2.0;
    if (std::abs(x) > halfWidth || std::abs(y) > halfHeight)
        return false;
    const double halfSide = std::min(halfWidth, halfHeight);
    const double r = std::clamp(radius, 0.0, halfSide);
    if (r == 0.0)
        return true;
    const double box = std::min(1.28 * r, halfSide);
    const double exponent = std::numbers::ln2 / -std::log(1.0 - (1.0 - std::numbers::sqrt2 / 2.0) * r / box);
    const double dx = std::abs(x) - (halfWidth - box);
    const double dy = std::abs(y) - (halfHeight - box);
    return dx <= 0.0 || dy <= 0.0 || std::pow(dx / box, exponent) + std::pow(dy / box, exponent) <= 1.0;
}

/// Evenly spaced stops, mixed with their alpha multiplied in; before the first and behind the last their own
/// colour.
Color atStop(const std::vector<Color>& stops, double t) {
    if (stops.size() == 1)
        return stops.front();
    const double place = std::clamp(t, 0.0, 1.0) * double(stops.size() - 1);
    const auto first = std::min(std::size_t(place), stops.size() - 2);
    const double share = place - double(first);
    const Color& a = stops[first];
    const Color& b = stops[first + 1];
    const double alpha = a.alpha + (b.alpha - a.alpha) * share;
    if (alpha == 0.0)
        return Color::clear();
    const auto mix = [&](double from, double to) {
        return (from * a.alpha * (1.0 - share) + to * b.alpha * share) / alpha;
    };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue), alpha};
}

double linearPlace(double x, double y, double width, double height, double angle) {
    const double sine = std::sin(radians(angle));
    const double cosine = std::cos(radians(angle));
    const double length = std::abs(width * sine) + std::abs(height * cosine);
    return (x * sine - y * cosine) / length + 0.5;
}

Color gradientColor(const SimpleGradientConfig& gradient, double x, double y, double width, double height) {
    std::vector<Color> stops{gradient.color1, gradient.color2};
    if (gradient.useThreeColors)
        stops.push_back(gradient.color3);
    switch (gradient.style) {
    case GradientStyle::linear:
        return atStop(stops, linearPlace(x, y, width, height, gradient.angle));
    case GradientStyle::radial:
        return atStop(stops, std::hypot(x, y) / std::hypot(width / 2.0, height / 2.0));
    case GradientStyle::angular: {
        stops.push_back(gradient.color1);
        const double turns = (std::atan2(x, -y) - radians(gradient.angle)) / (2.0 * std::numbers::pi);
        return atStop(stops, turns - std::floor(turns));
    }
    }
    return {};
}

Color adjusted(const Color& color, const SimpleGradientConfig& adjustment) {
    const double saturation = adjustment.saturation / 100.0;
    const double brightness = (adjustment.brightness - 100.0) / 100.0;
    const double luma = 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
    const auto component = [=](double value) {
        return std::clamp(luma + (value - luma) * saturation + brightness, 0.0, 1.0);
    };
    return {component(color.red), component(color.green), component(color.blue), color.alpha};
}

/// Of `top` over `below`, both premultiplied, with the overlay mode: where both are, the lower colour decides
/// whether they multiply or screen.
Sample overlaid(const Sample& top, const Sample& below) {
    Sample result;
    result[3] = top[3] + below[3] - top[3] * below[3];
    for (std::size_t i = 0; i < 3; ++i) {
        const double source = top[3] > 0.0 ? top[i] / top[3] : 0.0;
        const double backdrop = below[3] > 0.0 ? below[i] / below[3] : 0.0;
        const double both =
            backdrop <= 0.5 ? 2.0 * backdrop * source : 1.0 - 2.0 * (1.0 - backdrop) * (1.0 - source);
        result[i] = top[i] * (1.0 - below[3]) + below[i] * (1.0 - top[3]) + top[3] * below[3] * both;
    }
    return result;
}

/// Whether a point of the canvas, from its top left corner, lies in a stripe: a line 20 wide that falls at 45
/// degrees. They meet a horizontal 40 apart, the first one in the bottom left corner.
bool isInStripe(double x, double y, double height) {
    const double along = x - y + height;
    const double nearest = 40.0 * std::round(along / 40.0);
    return std::abs(along - nearest) / std::numbers::sqrt2 <= 10.0;
}

} // namespace

ReferenceComposition::ReferenceComposition(ScreenshotStyleConfig style, SmoothPicture screenshot,
                                           std::optional<SmoothPicture> background)
    : m_style(std::move(style)), m_screenshot(screenshot), m_background(background) {
    const bool isFramed = m_style.showMockup && m_style.mockupStyle != MockupStyle::defaultStyle;
    const double room = isFramed ? 6.0 * m_style.mockupBorderSize : 0.0;
    m_mockupPadding = isFramed ? 3.0 * m_style.mockupBorderSize : 0.0;

    const double width = m_screenshot.widthInPoints() + 2.0 * m_style.padding;
    const double height = m_screenshot.heightInPoints() + 2.0 * m_style.padding;
    m_canvasWidth = width + room;
    m_canvasHeight = height + room;
    m_factor = m_style.scale * m_style.imageScale / 100.0;
    if (m_style.selectedSocialPreset) {
        m_canvasWidth = m_style.selectedSocialPreset->width;
        m_canvasHeight = m_style.selectedSocialPreset->height;
        m_factor *= std::min({(m_canvasWidth - 40.0) / width, (m_canvasHeight - 40.0) / height, 1.0});
    }
    if (m_style.gradientConfig.blurAmount > 0.0 && m_style.backgroundType != BackgroundType::transparent)
        blurBackground(m_style.gradientConfig.blurAmount);
}

/// The Gaussian is a sum over points much closer than its deviation; beyond the canvas the point on its edge
/// that is nearest stands for all. A picture ends with the middles of its outermost pixels: nothing is known
/// of it further out. Between the points of the result there is nothing left but slopes.
void ReferenceComposition::blurBackground(double deviation) {
    constexpr int pointsInDeviation = 8;
    constexpr int reach = 5 * pointsInDeviation;
    constexpr int subSamples = 2; // a side: what has edges is met where they are
    Lattice& lattice = m_blurred;
    lattice.step = deviation / pointsInDeviation;
    lattice.width = int(std::ceil(m_canvasWidth / lattice.step)) + 1;
    lattice.height = int(std::ceil(m_canvasHeight / lattice.step)) + 1;
    const auto wide = std::size_t(lattice.width + 2 * reach);
    const auto high = std::size_t(lattice.height + 2 * reach);

    const bool isPicture = m_style.backgroundType == BackgroundType::image && m_background;
    const double insetX = isPicture ? m_canvasWidth / (2.0 * m_background->widthInPixels()) : 0.0;
    const double insetY = isPicture ? m_canvasHeight / (2.0 * m_background->heightInPixels()) : 0.0;
    std::vector<Sample> around(wide * high, Sample{0.0, 0.0, 0.0, 0.0});
    for (std::size_t row = 0; row < high; ++row)
        for (std::size_t column = 0; column < wide; ++column)
            for (int part = 0; part < subSamples * subSamples; ++part) {
                const double dx = (part % subSamples + 0.5) / subSamples - 0.5;
                const double dy = (part / subSamples + 0.5) / subSamples - 0.5;
                const double x = (double(column) - reach + dx) * lattice.step;
                const double y = (double(row) - reach + dy) * lattice.step;
                const Sample sample =
                    background(std::clamp(x, insetX, m_canvasWidth - insetX) - m_canvasWidth / 2.0,
                               std::clamp(y, insetY, m_canvasHeight - insetY) - m_canvasHeight / 2.0);
                for (std::size_t c = 0; c < 4; ++c)
                    around[row * wide + column][c] += sample[c] / (subSamples * subSamples);
            }

    std::vector<double> weights;
    double total = 0.0;
    for (int i = -reach; i <= reach; ++i) {
        weights.push_back(std::exp(-0.5 * i * i / double(pointsInDeviation * pointsInDeviation)));
        total += weights.back();
    }
    const auto blurredAt = [&](const std::vector<Sample>& from, std::size_t first, std::size_t stride) {
        Sample sum{0.0, 0.0, 0.0, 0.0};
        for (std::size_t i = 0; i < weights.size(); ++i)
            for (std::size_t c = 0; c < 4; ++c)
                sum[c] += from[first + i * stride][c] * weights[i] / total;
        return sum;
    };
    std::vector<Sample> across;
    for (std::size_t row = 0; row < high; ++row)
        for (std::size_t column = 0; column < std::size_t(lattice.width); ++column)
            across.push_back(blurredAt(around, row * wide + column, 1));
    for (std::size_t row = 0; row < std::size_t(lattice.height); ++row)
        for (std::size_t column = 0; column < std::size_t(lattice.width); ++column)
            lattice.samples.push_back(
                blurredAt(across, row * std::size_t(lattice.width) + column, std::size_t(lattice.width)));
}

Sample ReferenceComposition::blurredBackground(double x, double y) const {
    const double column =
        std::clamp((x + m_canvasWidth / 2.0) / m_blurred.step, 0.0, m_blurred.width - 1.001);
    const double row = std::clamp((y + m_canvasHeight / 2.0) / m_blurred.step, 0.0, m_blurred.height - 1.001);
    const std::size_t first = std::size_t(row) * std::size_t(m_blurred.width) + std::size_t(column);
    const double right = column - std::floor(column);
    const double down = row - std::floor(row);
    const auto width = std::size_t(m_blurred.width);
    Sample sample;
    for (std::size_t c = 0; c < 4; ++c) {
        const auto value = [&](std::size_t offset) { return m_blurred.samples[first + offset][c]; };
        sample[c] = (value(0) * (1.0 - right) + value(1) * right) * (1.0 - down) +
                    (value(width) * (1.0 - right) + value(width + 1) * right) * down;
    }
    return sample;
}

std::optional<std::pair<double, double>> ReferenceComposition::toScreenshot(double x, double y) const {
    x -= m_style.screenshotOffset.width;
    y -= m_style.screenshotOffset.height;
    if (m_style.rotationX != 0.0 || m_style.rotationY != 0.0) {
        // How far the eye stands: the longer side of the untransformed layer.
        const double eye = std::max(m_screenshot.widthInPoints() + 2.0 * m_mockupPadding,
                                    m_screenshot.heightInPoints() + 2.0 * m_mockupPadding);
        // A point before the tilt about the vertical axis comes nearer by -x sin, and is magnified by
        // eye / (eye - nearer).
        const double sineY = std::sin(radians(m_style.rotationY));
        const double beforeY = x * eye / (eye * std::cos(radians(m_style.rotationY)) - x * sineY);
        const double distanceY = eye + beforeY * sineY;
        if (distanceY <= 0.0)
            return std::nullopt;
        x = beforeY;
        y *= distanceY / eye;
        // About the horizontal axis it comes nearer by y sin.
        const double sineX = std::sin(radians(m_style.rotationX));
        const double beforeX = y * eye / (eye * std::cos(radians(m_style.rotationX)) + y * sineX);
        const double distanceX = eye - beforeX * sineX;
        if (distanceX <= 0.0)
            return std::nullopt;
        y = beforeX;
        x *= distanceX / eye;
    }
    const double cosine = std::cos(radians(m_style.rotation));
    const double sine = std::sin(radians(m_style.rotation));
    return std::pair((x * cosine + y * sine) / m_factor, (-x * sine + y * cosine) / m_factor);
}

Sample ReferenceComposition::background(double x, double y) const {
    switch (m_style.backgroundType) {
    case BackgroundType::transparent:
        break;
    case BackgroundType::color: {
        Color color = m_style.customColor;
        if (m_style.selectedSolidColor)
            color = m_style.selectedSolidColor->color;
        else if (m_style.selectedGradient)
            color = atStop({m_style.selectedGradient->colors.begin(), m_style.selectedGradient->colors.end()},
                           linearPlace(x, y, m_canvasWidth, m_canvasHeight, m_style.selectedGradient->angle));
        else if (m_style.selectedMagicPreset)
            color = m_style.selectedMagicPreset->colors.first();
        return premultiplied(adjusted(color, m_style.gradientConfig));
    }
    case BackgroundType::gradient:
        return premultiplied(
            adjusted(gradientColor(m_style.gradientConfig, x, y, m_canvasWidth, m_canvasHeight),
                     m_style.gradientConfig));
    case BackgroundType::image:
        if (m_background)
            return m_background->at(x / m_canvasWidth + 0.5, y / m_canvasHeight + 0.5);
        break;
    }
    return {0.0, 0.0, 0.0, 0.0};
}

void ReferenceComposition::addScene(Hit& hit, double x, double y) const {
    if (!m_style.selectedShadowScene || !isOnCanvas(x, y))
        return;
    const double right = x + m_canvasWidth / 2.0;
    const double down = y + m_canvasHeight / 2.0;
    Sample scene{0.0, 0.0, 0.0, 0.0};
    if (isInStripe(right, down, m_canvasHeight)) {
        scene = {1.0, 1.0, 1.0, 1.0};
        hit.layers |= 8;
    } else if (const QList<Color>& colors = m_style.selectedShadowScene->colors; !colors.isEmpty()) {
        // How far along the line from the top left to the bottom right corner.
        const double place = (right * m_canvasWidth + down * m_canvasHeight) /
                             (m_canvasWidth * m_canvasWidth + m_canvasHeight * m_canvasHeight);
        std::vector<Color> faint(colors.begin(), colors.end());
        for (Color& color : faint)
            color.alpha *= 0.3;
        scene = premultiplied(atStop(faint, place));
    }
    for (double& component : scene)
        component *= m_style.shadowSceneOpacity / 100.0;
    if (m_style.shadowSceneMode == ShadowSceneMode::overlay)
        hit.sceneAbove = scene;
    else
        hit.color = over(scene, hit.color);
}

bool ReferenceComposition::isOnCanvas(double x, double y) const {
    return std::abs(x) <= m_canvasWidth / 2.0 && std::abs(y) <= m_canvasHeight / 2.0;
}

ReferenceComposition::Hit ReferenceComposition::at(double x, double y) const {
    Hit hit{{0.0, 0.0, 0.0, 0.0}, 0, {}};
    if (isOnCanvas(x, y)) {
        hit.color = m_blurred.samples.empty() ? background(x, y) : blurredBackground(x, y);
        hit.layers |= 1;
    }
    if (m_style.shadowSceneMode == ShadowSceneMode::underlay)
        addScene(hit, x, y);
    addScreenshot(hit, x, y);
    if (m_style.shadowSceneMode == ShadowSceneMode::overlay)
        addScene(hit, x, y);
    return hit;
}

void ReferenceComposition::addScreenshot(Hit& hit, double x, double y) const {
    const auto place = toScreenshot(x, y);
    if (!place)
        return;
    const auto [u, v] = *place;
    const double width = m_screenshot.widthInPoints();
    const double height = m_screenshot.heightInPoints();
    const bool hasBorder = m_style.showMockup && m_style.mockupStyle == MockupStyle::border;
    if (hasBorder && isInside(u, v, width + 2.0 * m_mockupPadding, height + 2.0 * m_mockupPadding,
                              m_style.borderRadius + m_mockupPadding / 2.0)) {
        hit.color = over(premultiplied(m_style.borderColor), hit.color);
        hit.layers |= 2;
    }
    if (isInside(u, v, width, height, m_style.showMockup ? m_style.borderRadius : 0.0)) {
        hit.color = over(m_screenshot.at(u / width + 0.5, v / height + 0.5), hit.color);
        hit.layers |= 4;
    }
}

ReferenceComposition::Picture ReferenceComposition::frame(double pixelsPerPoint) const {
    const bool isFramed = m_style.showMockup && m_style.mockupStyle != MockupStyle::defaultStyle;
    const double room = 2.0 * m_style.padding + (isFramed ? 6.0 * m_style.mockupBorderSize : 0.0);
    const double width = m_screenshot.widthInPoints() + room;
    const double height = m_screenshot.heightInPoints() + room;
    const double cosine = std::abs(std::cos(radians(m_style.rotation)));
    const double sine = std::abs(std::sin(radians(m_style.rotation)));
    const double scale = m_style.scale * pixelsPerPoint;

    Picture picture;
    picture.size = QSize(int(std::lround((width * cosine + height * sine) * scale)),
                         int(std::lround((width * sine + height * cosine) * scale)));
    picture.pixels.resize(std::size_t(picture.size.width()) * std::size_t(picture.size.height()));

    const auto mean = [&](int px, int py, unsigned samples) {
        Mean result;
        // The overlay mode mixes a scene with the picture under it, as far as the scene reaches.
        Sample under{0.0, 0.0, 0.0, 0.0};
        Sample scene{0.0, 0.0, 0.0, 0.0};
        unsigned underScene = 0;
        unsigned seen = 0;
        unsigned common = ~0u;
        Sample least{1.0, 1.0, 1.0, 1.0};
        Sample most{0.0, 0.0, 0.0, 0.0};
        for (unsigned i = 0; i < samples; ++i) {
            const auto [u, v] = samplePlace(i, samples);
            const Hit hit = at((px + u - picture.size.width() / 2.0) / pixelsPerPoint,
                               (py + v - picture.size.height() / 2.0) / pixelsPerPoint);
            seen |= hit.layers;
            common &= hit.layers;
            underScene += hit.sceneAbove.has_value();
            const Sample alone = hit.sceneAbove ? overlaid(*hit.sceneAbove, hit.color) : hit.color;
            for (std::size_t c = 0; c < 4; ++c) {
                if (hit.sceneAbove) {
                    under[c] += hit.color[c];
                    scene[c] += (*hit.sceneAbove)[c];
                } else {
                    result.color[c] += hit.color[c] * 255.0 / samples;
                }
                least[c] = std::min(least[c], alone[c]);
                most[c] = std::max(most[c], alone[c]);
            }
        }
        if (underScene > 0) {
            for (std::size_t c = 0; c < 4; ++c) {
                under[c] /= underScene;
                scene[c] /= underScene;
            }
            const Sample mixed = overlaid(scene, under);
            for (std::size_t c = 0; c < 4; ++c)
                result.color[c] += mixed[c] * 255.0 * underScene / samples;
        }
        result.layers = seen;
        result.isEven = seen == common;
        for (std::size_t c = 0; c < 4; ++c)
            result.isEven = result.isEven && most[c] - least[c] < 8.0 / 255.0;
        return result;
    };

    // A first look tells where outlines pass: between a pixel's own points or to a neighbour's.
    const int wide = picture.size.width();
    const int high = picture.size.height();
    std::vector<Mean> first(picture.pixels.size());
    const auto looked = [&](int px, int py) -> Mean& {
        return first[std::size_t(py) * std::size_t(wide) + std::size_t(px)];
    };
    forEachRow(high, [&](int py) {
        for (int px = 0; px < wide; ++px)
            looked(px, py) = mean(px, py, firstSamples);
    });
    forEachRow(high, [&](int py) {
        for (int px = 0; px < wide; ++px) {
            Mean pixel = looked(px, py);
            // At the frame's own edge there is no neighbour to tell of an outline.
            bool isAlone = pixel.isEven && px > 0 && py > 0 && px < wide - 1 && py < high - 1;
            for (int y = std::max(py - 1, 0); y <= std::min(py + 1, high - 1); ++y)
                for (int x = std::max(px - 1, 0); x <= std::min(px + 1, wide - 1); ++x)
                    isAlone = isAlone && looked(x, y).isEven && looked(x, y).layers == pixel.layers;
            if (!isAlone)
                pixel = mean(px, py, coarseSamples);
            if (!isAlone && !pixel.isEven)
                pixel = mean(px, py, fineSamples);
            picture.pixels[std::size_t(py) * std::size_t(wide) + std::size_t(px)] = pixel.color;
        }
    });
    return picture;
}

} // namespace framora::golden
