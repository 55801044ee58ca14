#include "editor/render/raster/PngReader.h"

#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/PngEncoder.h"
#include "editor/render/raster/PngUnfilter.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <zlib.h>

namespace framora::raster {
namespace {

using Bytes = std::vector<std::uint8_t>;

void append32(Bytes& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(std::uint8_t(value >> shift));
}

Bytes chunk(const std::string& type, const Bytes& content) {
    Bytes bytes;
    append32(bytes, std::uint32_t(content.size()));
    bytes.insert(bytes.end(), type.begin(), type.end());
    bytes.insert(bytes.end(), content.begin(), content.end());
    append32(bytes, std::uint32_t(crc32(0, bytes.data() + 4, uInt(bytes.size() - 4))));
    return bytes;
}

/// A picture whose rows take the filters in turn, in a file put together here.
struct MadePng {
    int width = 37;
    int height = 29;
    std::uint8_t depth = 8;
    std::uint8_t colourType = 2;
    std::uint8_t interlacing = 0;
    std::size_t pieceBytes = 100; ///< Of each IDAT.
    int compression = 6;
    std::vector<std::pair<std::string, Bytes>> beforeData = {};
    std::vector<std::pair<std::string, Bytes>> betweenData = {};
    int surplusBytes = 0; ///< Of rows; negative: missing.

    std::size_t pixelBytes() const { return colourType == 6 ? 4 : 3; }

    Bytes samples() const {
        std::mt19937 random(7);
        Bytes bytes(std::size_t(width) * std::size_t(height) * pixelBytes());
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = std::uint8_t(i / 5 + random() % 9);
        return bytes;
    }

    Bytes rows() const {
        const Bytes all = samples();
        const std::size_t size = std::size_t(width) * pixelBytes();
        Bytes filtered;
        Bytes above(4 + size + pngRowPadding);
        for (int y = 0; y < height; ++y) {
            Bytes now(above.size());
            std::copy_n(all.begin() + std::ptrdiff_t(size) * y, size, now.begin() + 4);
            Bytes out(size + pngRowPadding);
            const auto filter = PngFilter(std::size_t(y) % pngFilterCount);
            plain::applyPngFilter(filter, {now.data() + 4, above.data() + 4, size, pixelBytes()}, out.data());
            filtered.push_back(std::uint8_t(filter));
            filtered.insert(filtered.end(), out.begin(), out.begin() + std::ptrdiff_t(size));
            above = now;
        }
        filtered.resize(filtered.size() + std::size_t(surplusBytes));
        return filtered;
    }

    Bytes file() const { return fileOf(rows()); }

    Bytes fileOf(const Bytes& filtered) const {
        uLongf length = compressBound(uLong(filtered.size()));
        Bytes packed(length);
        compress2(packed.data(), &length, filtered.data(), uLong(filtered.size()), compression);
        packed.resize(length);
        return fileAround(packed);
    }

    Bytes fileAround(const Bytes& packed) const {
        Bytes bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
        const auto add = [&](const std::string& type, const Bytes& content) {
            const Bytes added = chunk(type, content);
            bytes.insert(bytes.end(), added.begin(), added.end());
        };
        Bytes header;
        append32(header, std::uint32_t(width));
        append32(header, std::uint32_t(height));
        header.insert(header.end(), {depth, colourType, 0, 0, interlacing});
        add("IHDR", header);
        for (const auto& [type, content] : beforeData)
            add(type, content);
        for (std::size_t at = 0; at < packed.size(); at += pieceBytes) {
            const std::size_t end = std::min(packed.size(), at + pieceBytes);
            add("IDAT", Bytes(packed.begin() + std::ptrdiff_t(at), packed.begin() + std::ptrdiff_t(end)));
            if (at == 0)
                for (const auto& [type, content] : betweenData)
                    add(type, content);
        }
        add("IEND", {});
        return bytes;
    }

    std::vector<std::uint32_t> pixels() const {
        Bytes all = samples();
        std::vector<std::uint32_t> result(std::size_t(width) * std::size_t(height));
        (colourType == 6 ? plain::unpackRgba : plain::unpackRgb)(all.data(), result.size(), result.data());
        return result;
    }
};

/// Empty when it is not plain or does not decode.
std::vector<std::uint32_t> read(const Bytes& file) {
    const auto png = plainPng(file);
    if (!png)
        return {};
    PixelBuffer buffer = PixelBuffer::create(png->width, png->height);
    if (!decodePlainPng(*png, buffer.mutableView()))
        return {};
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < png->height; ++y)
        pixels.insert(pixels.end(), buffer.view().row(y), buffer.view().row(y) + png->width);
    return pixels;
}

TEST(PngReader, ReadsEveryFilterInPiecesOfAnySize) {
    for (const std::uint8_t colourType : {2, 6})
        for (const int width : {1, 2, 5, 37, 301})
            for (const std::size_t piece : {1, 7, 100, 1 << 20})
                for (const int compression : {0, 1, 9}) {
                    MadePng png;
                    png.colourType = colourType;
                    png.width = width;
                    png.pieceBytes = piece;
                    png.compression = compression;
                    ASSERT_EQ(read(png.file()), png.pixels())
                        << width << " pixels wide, colour type " << int(colourType) << ", pieces of " << piece
                        << ", compression " << compression;
                }
}

TEST(PngReader, ReadsRowsThatAreLongerThanABand) {
    MadePng png;
    png.width = 120'000;
    png.height = 7;
    EXPECT_EQ(read(png.file()), png.pixels());
}

TEST(PngReader, HandsOutRowsInTheirOrderUntilItIsEnded) {
    MadePng png;
    png.width = 333;
    png.height = 50;
    const Bytes file = png.file();
    const auto plain = plainPng(file);
    ASSERT_TRUE(plain);
    std::vector<std::uint32_t> pixels;
    const auto take = [&](int y, const std::uint32_t* row) {
        EXPECT_EQ(pixels.size(), std::size_t(y) * 333);
        pixels.insert(pixels.end(), row, row + 333);
        return true;
    };
    EXPECT_TRUE(decodePlainPngRows(*plain, take));
    EXPECT_EQ(pixels, png.pixels());
    int rows = 0;
    EXPECT_FALSE(decodePlainPngRows(*plain, [&](int, const std::uint32_t*) { return ++rows < 7; }));
    EXPECT_EQ(rows, 7);
    PixelBuffer buffer = PixelBuffer::create(333, 50);
    EXPECT_FALSE(decodePlainPng(*plain, buffer.mutableView(), [](int y) { return y < 7; }));
    EXPECT_TRUE(decodePlainPng(*plain, buffer.mutableView(), [](int) { return true; }));
}

TEST(PngReader, DecodesALargePictureOnTwoThreadsAsOnOne) {
    // Some megabytes, so that bands are decompressed ahead.
    MadePng png;
    png.width = 1701;
    png.height = 1203;
    png.pieceBytes = 50'000;
    const Bytes file = png.file();
    const std::vector<std::uint32_t> expected = png.pixels();
    for (const int threads : {2, 1}) {
        setParallelThreadLimit(threads);
        EXPECT_TRUE(read(file) == expected) << threads << " threads";

        // Ended after any band, or cut off.
        auto plain = plainPng(file);
        ASSERT_TRUE(plain);
        PixelBuffer buffer = PixelBuffer::create(png.width, png.height);
        for (const int last : {0, 1, 51, 52, 600, 1201, 1202})
            EXPECT_FALSE(decodePlainPng(*plain, buffer.mutableView(), [&](int y) { return y != last; }))
                << last;
        while (!plain->data.empty()) {
            plain->data.resize(plain->data.size() / 2);
            EXPECT_FALSE(decodePlainPng(*plain, buffer.mutableView(), [](int) { return true; }));
        }
    }
    setParallelThreadLimit(0);
}

TEST(PngReader, ReadsWhatIsWrittenHere) {
    PixelBuffer picture = PixelBuffer::create(640, 480);
    std::mt19937 random(3);
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 640; ++x)
            picture.mutableView().row(y)[x] = 0xff000000u | std::uint32_t(x * y) | random() % 4;
    std::vector<std::uint32_t> expected;
    for (int y = 0; y < 480; ++y)
        expected.insert(expected.end(), picture.view().row(y), picture.view().row(y) + 640);
    for (const PngSpeed speed : {PngSpeed::compact, PngSpeed::fastest})
        EXPECT_EQ(read(encodePng(picture.view(), 5669, speed)), expected);
}

TEST(PngReader, LeavesOtherKindsToOthers) {
    const auto isPlain = [](const MadePng& png) { return plainPng(png.file()).has_value(); };
    EXPECT_TRUE(isPlain({}));
    for (const std::uint8_t colourType : {0, 3, 4})
        EXPECT_FALSE(isPlain({.colourType = colourType})) << int(colourType);
    EXPECT_FALSE(isPlain({.depth = 16}));
    EXPECT_FALSE(isPlain({.interlacing = 1}));
    EXPECT_FALSE(isPlain({.width = 0}));
    for (const char* type : {"tRNS", "iCCP", "cICP", "eXIf", "gAMA", "cHRM", "PLTE", "NEWS"})
        EXPECT_FALSE(isPlain({.beforeData = {{type, {1, 2, 3}}}})) << type;
    for (const char* type : {"sRGB", "pHYs", "tEXt", "tIME", "neWs"})
        EXPECT_TRUE(isPlain({.beforeData = {{type, {1, 2, 3}}}})) << type;
    EXPECT_TRUE(isPlain({.beforeData = {{"gAMA", {0, 0, 1, 1}}, {"sRGB", {0}}}})) << "sRGB says it all";
    EXPECT_TRUE(isPlain({.beforeData = {{"gAMA", {0, 0, 0xb1, 0x8f}}}})) << "what is written for sRGB";
    EXPECT_TRUE(isPlain({.beforeData = {{"gAMA", {0, 0, 0xb1, 0x8e}}}})) << "rounded";
    EXPECT_FALSE(isPlain({.beforeData = {{"gAMA", {0, 0, 0xc3, 0x50}}}}));
    EXPECT_FALSE(isPlain({.beforeData = {{"gAMA", {0, 0xb1, 0x8f, 0}}}}));
    EXPECT_FALSE(isPlain({.betweenData = {{"tEXt", {1}}}})) << "the data must be in one piece";
    EXPECT_FALSE(plainPng({}));
    EXPECT_FALSE(plainPng(Bytes{'G', 'I', 'F', '8', '9', 'a', 0, 0, 0, 0, 0}));
}

TEST(PngReader, RefusesAFileThatEndsAnywhereBeforeItsEnd) {
    const Bytes whole = MadePng{.width = 9, .height = 6}.file();
    for (std::size_t size = 0; size < whole.size(); ++size)
        ASSERT_FALSE(plainPng(std::span(whole).first(size))) << size << " bytes of " << whole.size();
}

TEST(PngReader, RefusesAByteThatHasChanged) {
    const Bytes whole = MadePng{.width = 9, .height = 6}.file();
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Bytes damaged = whole;
        damaged[i] ^= 0x10;
        ASSERT_TRUE(read(damaged).empty()) << "byte " << i;
    }
}

TEST(PngReader, RefusesDamageUnderRightChecksumsOfTheChunks) {
    const MadePng png{.width = 40, .height = 30};
    const Bytes rows = png.rows();
    uLongf length = compressBound(uLong(rows.size()));
    Bytes packed(length);
    compress2(packed.data(), &length, rows.data(), uLong(rows.size()), 6);
    packed.resize(length);
    ASSERT_EQ(read(png.fileAround(packed)), png.pixels());
    const std::vector<std::uint32_t> expected = png.pixels();
    // Bits that say nothing about the pixels, in the stream's header and behind its end, may change.
    std::size_t harmless = 0;
    for (std::size_t i = 0; i < packed.size(); ++i)
        for (const std::uint8_t bit : {0x01, 0x80}) {
            Bytes damaged = packed;
            damaged[i] ^= bit;
            const std::vector<std::uint32_t> pixels = read(png.fileAround(damaged));
            ASSERT_TRUE(pixels.empty() || pixels == expected) << "byte " << i << ", bit " << int(bit);
            harmless += !pixels.empty();
        }
    EXPECT_LE(harmless, 5u);
    for (std::size_t size = 0; size < packed.size(); ++size)
        ASSERT_TRUE(
            read(png.fileAround(Bytes(packed.begin(), packed.begin() + std::ptrdiff_t(size)))).empty())
            << size << " bytes of " << packed.size();
}

TEST(PngReader, RefusesRowsTooFewOrTooManyAndUnknownFilters) {
    for (const int surplus : {-200, -1, 1, 5, 100'000}) {
        MadePng png;
        png.surplusBytes = surplus;
        EXPECT_TRUE(read(png.file()).empty()) << surplus;
    }
    const MadePng png;
    Bytes rows = png.rows();
    rows[0] = 5;
    EXPECT_TRUE(read(png.fileOf(rows)).empty());
}

TEST(PngReader, RefusesAsManyRowsAsThereCanBeWhereThereAreNone) {
    // By itself and with another thread that decompresses ahead.
    for (const int threads : {0, 1}) {
        setParallelThreadLimit(threads);
        for (const int height : {std::numeric_limits<int>::max(), std::numeric_limits<int>::max() - 70'000}) {
            MadePng png;
            png.width = 1;
            png.height = height;
            const Bytes file = png.fileOf({});
            const auto plain = plainPng(file);
            ASSERT_TRUE(plain);
            EXPECT_EQ(plain->height, height);
            EXPECT_FALSE(decodePlainPngRows(*plain, [](int, const std::uint32_t*) { return true; }));
        }
    }
    setParallelThreadLimit(0);
}

TEST(PngReader, RefusesATargetOfAnotherSize) {
    const Bytes file = MadePng{}.file();
    const auto png = plainPng(file);
    ASSERT_TRUE(png);
    PixelBuffer other = PixelBuffer::create(36, 29);
    EXPECT_FALSE(decodePlainPng(*png, other.mutableView()));
}

} // namespace
} // namespace framora::raster
