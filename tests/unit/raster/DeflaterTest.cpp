#include "editor/render/raster/Deflater.h"
#include "editor/render/raster/HuffmanCode.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <zlib.h>

namespace framora::raster {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes inflated(const Bytes& stream, std::size_t expected) {
    Bytes out(expected + 1);
    z_stream z{};
    inflateInit2(&z, -15);
    z.next_in = const_cast<Bytef*>(stream.data());
    z.avail_in = uInt(stream.size());
    z.next_out = out.data();
    z.avail_out = uInt(out.size());
    const int result = inflate(&z, Z_FINISH);
    EXPECT_EQ(result, Z_STREAM_END) << (z.msg ? z.msg : "");
    EXPECT_EQ(z.avail_in, 0u) << "bytes behind the end";
    out.resize(z.total_out);
    inflateEnd(&z);
    return out;
}

/// The bytes as one stream of pieces, each on a Deflater of its own that knows the window before.
Bytes deflated(const Bytes& data, std::size_t piece) {
    Bytes stream;
    std::size_t begin = 0;
    do {
        const std::size_t window = std::min<std::size_t>(begin, deflate::windowSize);
        const std::size_t end = std::min(data.size(), begin + piece);
        Deflater().compress(std::span(data).subspan(begin - window, end - begin + window), window,
                            end == data.size(), stream);
        begin = end;
    } while (begin < data.size());
    return stream;
}

enum class Kind { zeros, noise, fewValues, runs, repeats, ramps };

Bytes make(Kind kind, std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    std::uint8_t run = 0;
    for (std::size_t i = 0; i < size; ++i)
        switch (kind) {
        case Kind::zeros:
            break;
        case Kind::noise:
            bytes[i] = std::uint8_t(random());
            break;
        case Kind::fewValues:
            bytes[i] = std::uint8_t(random() % 3 + 200);
            break;
        case Kind::runs:
            if (random() % 200 == 0)
                run = std::uint8_t(random());
            bytes[i] = run;
            break;
        case Kind::repeats: {
            const std::size_t distance = 1 + seed * 7919 % 40000;
            bytes[i] = i < distance || random() % 90 == 0 ? std::uint8_t(random()) : bytes[i - distance];
            break;
        }
        case Kind::ramps:
            bytes[i] = std::uint8_t(i * i / 5000 + random() % 2);
            break;
        }
    return bytes;
}

TEST(Deflater, GivesBackEveryKindOfBytesInPiecesOfAnySize) {
    for (const Kind kind :
         {Kind::zeros, Kind::noise, Kind::fewValues, Kind::runs, Kind::repeats, Kind::ramps})
        for (const std::size_t size : {0, 1, 2, 3, 4, 5, 7, 8, 257, 258, 259, 1000, 32768, 70000, 200000})
            for (const std::size_t piece : {1000000, 50000, 4099}) {
                SCOPED_TRACE(testing::Message()
                             << "kind " << int(kind) << ", " << size << " bytes by " << piece);
                const Bytes data = make(kind, size, unsigned(size + piece));
                ASSERT_EQ(inflated(deflated(data, piece), size), data);
            }
}

TEST(Deflater, FindsRepeatsAsFarBackAsTheWindowReaches) {
    const Bytes noise = make(Kind::noise, 32768, 4);
    Bytes twice = noise;
    twice.insert(twice.end(), noise.begin(), noise.end());
    const Bytes stream = deflated(twice, 32768); // the second half is a piece of its own
    EXPECT_LT(stream.size(), 34500u);
    EXPECT_EQ(inflated(stream, twice.size()), twice);
}

TEST(Deflater, TakesHardlyMoreThanTheBytesOfNoise) {
    const Bytes noise = make(Kind::noise, 1000000, 2);
    EXPECT_LT(deflated(noise, 1000000).size(), noise.size() + noise.size() / 1000);
}

TEST(Deflater, IsNoLargerThanZlibOnWhatFilteredRowsLookLike) {
    for (const Kind kind : {Kind::zeros, Kind::runs, Kind::noise, Kind::repeats}) {
        const Bytes data = make(kind, 300000, 1);
        Bytes usual(compressBound(uLong(data.size())));
        uLongf size = uLongf(usual.size());
        ASSERT_EQ(compress2(usual.data(), &size, data.data(), uLong(data.size()), 6), Z_OK);
        EXPECT_LE(deflated(data, 1 << 20).size(), size) << int(kind);
    }
}

TEST(HuffmanCode, KeepsToTheLimitAndUsesEveryCode) {
    std::mt19937 random(9);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::uint32_t> counts(1 + random() % 286);
        for (std::size_t i = 0; i < counts.size(); ++i) // ever steeper, up to powers that would need 31 bits
            counts[i] = random() % 4 == 0 ? 0 : 1 + (random() >> (round % 3 == 0 ? 1 : i % 31));
        counts.resize(std::max<std::size_t>(counts.size(), 2));
        std::vector<std::uint8_t> lengths(counts.size());
        const int limit = round % 2 ? 15 : 9;
        chooseCodeLengths(counts, limit, lengths);
        double claimed = 0;
        std::size_t used = 0;
        for (std::size_t i = 0; i < counts.size(); ++i) {
            ASSERT_LE(lengths[i], limit);
            ASSERT_TRUE(counts[i] == 0 || lengths[i] > 0);
            if (lengths[i] > 0) {
                claimed += std::pow(0.5, lengths[i]);
                ++used;
            }
        }
        ASSERT_GE(used, 2u);
        ASSERT_EQ(claimed, 1.0) << "the code is complete";
    }
}

TEST(DeflateSymbols, SayWhatAnIdealCodeWouldTake) {
    std::mt19937 random(5);
    for (const unsigned most : {1u, 2u, 300u, 3000u, 1u << 20}) {
        DeflateSymbols symbols;
        double expected = 0;
        const auto fill = [&](auto& counts) {
            double total = 0;
            for (std::uint32_t& count : counts)
                total += count = random() % (most + 1);
            for (const std::uint32_t count : counts)
                expected += count > 0 ? count * std::log2(total / count) : 0;
        };
        fill(symbols.literals);
        fill(symbols.distances);
        EXPECT_NEAR(double(symbols.entropy()) / DeflateSymbols::entropyUnits, expected, expected / 1000)
            << most;
    }
    EXPECT_EQ(DeflateSymbols().entropy(), 0u);
}

} // namespace
} // namespace framora::raster
