#include "editor/render/raster/ShearedBlock.h"

#include "editor/render/raster/SourceBox.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace framora::raster {
namespace {

/// The library's rounding is a call. The values fit an int.
std::int32_t toNearest(double value) {
    constexpr std::int64_t positive = std::int64_t(1) << 40;
    return std::int32_t(std::int64_t(value + double(positive) + 0.5) - positive);
}

/// Fills `pixels` with columns of a picture from (firstColumn, firstRow) on; beyond it its edge repeats.
void widenColumnBox(PixelView picture, int firstColumn, int firstRow, const ColumnBox& box,
                    MixPixel* pixels) {
    const int left = std::clamp(-firstColumn, 0, box.columns - 1);
    const int from = std::clamp(firstColumn + left, 0, picture.width - 1);
    const int count = std::clamp(picture.width - from, 1, box.columns - left);
    const auto column = [&](int index) { return pixels + std::ptrdiff_t(index) * box.rows; };
    const std::uint32_t* rows[ColumnBox::mostRows];
    for (int y = 0; y < box.rows; ++y)
        rows[y] = picture.row(std::clamp(firstRow + y, 0, picture.height - 1)) + from;
    widenColumns(rows, std::size_t(box.rows), std::size_t(count), column(left));
    for (int x = 0; x < left; ++x)
        std::copy_n(column(left), box.rows, column(x));
    for (int x = left + count; x < box.columns; ++x)
        std::copy_n(column(left + count - 1), box.rows, column(x));
}

/// What two boxes that overlap have in common.
TileRect intersection(const TileRect& one, const TileRect& other) {
    const int x = std::max(one.x, other.x);
    const int y = std::max(one.y, other.y);
    return {x, y, std::min(one.x + one.width, other.x + other.width) - x,
            std::min(one.y + one.height, other.y + other.height) - y};
}

/// Has the columns [first, end) of a row fetched, as far as the picture reaches.
void fetch(PixelView picture, int row, int first, int end) {
    constexpr int line = 64 / int(sizeof(std::uint32_t));
    if (row < 0 || row >= picture.height)
        return;
    const std::uint32_t* pixels = picture.row(row);
    for (int x = std::max(first, 0); x < std::min(end, picture.width); x += line)
        __builtin_prefetch(pixels + x);
}

} // namespace

ShearedBlock::ShearedBlock(PixelView picture, const Homography& toPicture, const TileRect& block, int most)
    : m_picture(picture), m_toPicture(toPicture), m_block(block), m_most(most),
      m_box(neighbours(picture, toPicture, block, 0)) {}

Vec2 ShearedBlock::reach(int y) const {
    const Vec2 left = m_toPicture.map({double(m_block.x), double(y)});
    const Vec2 right = m_toPicture.map({double(m_block.x + m_block.width), double(y)});
    return {std::abs(right.x - left.x), std::abs(right.y - left.y)};
}

std::optional<ShearedBlock> ShearedBlock::make(PixelView picture, const Homography& toPicture,
                                               const TileRect& block, int most) {
    ShearedBlock made(picture, toPicture, block, most);
    const Vec2 top = made.reach(block.y);
    const Vec2 bottom = made.reach(block.y + block.height);
    const auto isNear = [](double across, double along) { return along > 0 && across <= steepest * along; };
    made.m_isTurned = top.y > top.x;
    if (made.m_isTurned ? !(isNear(top.x, top.y) && isNear(bottom.x, bottom.y))
                        : !(isNear(top.y, top.x) && isNear(bottom.y, bottom.x)))
        return std::nullopt;
    if (std::max(made.m_box.width, made.m_box.height) > ColumnBox::mostColumns ||
        made.m_box.area() > ColumnBox::mostPixels)
        return std::nullopt;
    made.m_toBox = Homography::translation(-1.5 - made.m_box.x, -1.5 - made.m_box.y) * toPicture *
                   Homography::translation(block.x + 0.5, block.y + 0.5);
    if (made.m_isTurned)
        made.m_toBox = Homography({0, 1, 0, 1, 0, 0, 0, 0, 1}) * made.m_toBox;
    return made;
}

void ShearedBlock::describe(int y, ShearedRow& row) const {
    const int down = y - m_block.y;
    const int width = m_block.width;
    const auto start = [&](int index) { return m_toBox(index, 2) + m_toBox(index, 1) * down; };
    const double near = 1 / start(2);
    const double x = start(0) * near;
    const double lineY = start(1) * near;
    const double stepX = m_toBox(0, 0) * near;
    const double stepY = m_toBox(1, 0) * near;
    const double stepW = m_toBox(2, 0) * near;
    // How far the right end is from the left one, both times its depth.
    const double wide = (stepX - x * stepW) * width;
    const double high = (stepY - lineY * stepW) * width;
    const double slope = std::clamp(high / wide, -1.0, 1.0);
    // Column 0 is the second one of the place before it; halves of a phase round up.
    const double line = std::clamp(lineY - slope * (x + 1), -512.0, 512.0);
    constexpr double phase = double(CubicTaps::phases) * (1 << ShearedRow::lineBits);
    row.x = float(x);
    row.stepX = float(stepX);
    row.stepW = float(stepW);
    row.downX = float(m_toBox(0, 1) * near);
    row.downW = float(m_toBox(2, 1) * near);
    row.line = toNearest(line * phase) + (1 << (ShearedRow::lineBits - 1));
    row.lineStep = toNearest(slope * phase);
    row.square = row.squareStep = 0;
    if (m_most > 0) {
        const double downX = m_toBox(0, 1) * near;
        const double downY = m_toBox(1, 1) * near;
        const double downW = m_toBox(2, 1) * near;
        // What a pixel extends over beside the line.
        const auto square = [&](int right) {
            const double depth = 1 + stepW * right;
            const double column = (x + stepX * right) / depth;
            const double at = lineY + slope * (column - x);
            const double extent = (downY - at * downW - slope * (downX - column * downW)) / depth;
            return extent * extent;
        };
        const double left = square(0);
        const double squareStep = (square(width) - left) * (1 + stepW * width) / wide;
        row.square = float(left - squareStep * (x + 1));
        row.squareStep = float(squareStep);
    }
}

void ShearedBlock::read(int y, int skipped, int count, Float4* out) const {
    ColumnBox box{nullptr, m_box.width, m_box.height};
    if (m_isTurned)
        std::swap(box.columns, box.rows);
    ShearedRow described;
    describe(y, described);
    const plain::ShearedPlaces places = plain::placeSheared(
        box, described, {std::size_t(skipped), std::size_t(skipped + count), 0, 0, m_most});
    const auto pixel = [&](int column, int row) {
        if (m_isTurned)
            std::swap(column, row);
        return unpack(m_picture.row(std::clamp(
            m_box.y + row, 0, m_picture.height - 1))[std::clamp(m_box.x + column, 0, m_picture.width - 1)]);
    };
    const auto weights = [](std::int32_t entry) { return CubicTaps::weights() + std::ptrdiff_t(entry) * 4; };
    for (int i = skipped; i < skipped + count; ++i) {
        Float4 total = splat(0);
        for (int tap = 0; tap < 4; ++tap) {
            const int column = places.columns[i] + tap;
            const std::int16_t* down = weights(places.down[column]);
            Float4 sum = splat(0);
            for (int j = 0; j < 4; ++j)
                sum += pixel(column, places.rows[column] + j) * splat(down[j]);
            total += sum * splat(weights(places.across[i])[tap]);
        }
        constexpr float one = float(CubicTaps::one) * float(CubicTaps::one);
        *out++ = clampPremultiplied(total * splat(1 / one), 255);
    }
}

void ShearedBlock::fetchNext(const TileRect& part, const TileRect& read) const {
    const Vec2 here = m_toPicture.map({double(part.x), double(part.y)});
    const Vec2 next = m_toPicture.map({double(part.x + part.width), double(part.y)});
    const int right = int(next.x - here.x);
    const int down = int(next.y - here.y);
    const int end = read.x + read.width;
    for (int y = read.y + down; y < read.y + down + read.height; ++y) {
        const bool isNew = y < read.y || y >= read.y + read.height;
        if (isNew)
            fetch(m_picture, y, read.x + right, end + right);
        else if (right > 0)
            fetch(m_picture, y, end, end + right);
        else
            fetch(m_picture, y, read.x + right, read.x);
    }
}

void ShearedBlock::mix(const TileRect& part, MixPixel* out, int stride) const {
    const TileRect read = intersection(neighbours(m_picture, m_toPicture, part, 0), m_box);
    ColumnBox box{nullptr, read.width, read.height}; // Never larger than the block's: what make() allowed.
    // Places are told from the block's corner, so that they come out alike for any part of it.
    const auto skipped = std::size_t(part.x - m_block.x);
    ShearedPart sheared{skipped, skipped + std::size_t(part.width), read.x - m_box.x, read.y - m_box.y,
                        m_most};
    if (m_isTurned) {
        std::swap(box.columns, box.rows);
        std::swap(sheared.column, sheared.row);
    }
    thread_local std::vector<MixPixel> pixels;
    pixels.resize(
        std::max(pixels.size(), std::size_t(box.columns + ColumnBox::slack) * std::size_t(box.rows)));
    if (m_isTurned)
        widenBox(m_picture, read.x, read.y, {nullptr, read.width, read.height}, pixels.data());
    else
        widenColumnBox(m_picture, read.x, read.y, box, pixels.data());
    box.pixels = pixels.data();
    fetchNext(part, read);
    for (int y = 0; y < part.height;) {
        ShearedRow rows[mostShearedRows];
        const int count = std::min(int(mostShearedRows), part.height - y);
        for (int i = 0; i < count; ++i)
            describe(part.y + y + i, rows[i]);
        interpolateSheared(box, rows, std::size_t(count), sheared, out + std::ptrdiff_t(y) * stride, stride);
        y += count;
    }
}

} // namespace framora::raster
