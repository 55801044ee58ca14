#include "editor/render/decoders/BoxSums.h"
#include "editor/render/decoders/CodedColors.h"
#include "editor/render/decoders/DecoderLimits.h"
#include "editor/render/decoders/DecoderOutput.h"
#include "editor/render/decoders/DecoderRequest.h"
#include "editor/render/decoders/PixelPacking.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <libheif/heif.h>
#include <memory>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// framora-heif [BOXWIDTH BOXHEIGHT SECONDS THREADS MEBIBYTES]: the primary picture of the HEIF file in
// standard input, upright, as a DecodedPicture in standard output. A box asks for a reduced one, which may
// come from the file's own thumbnail. Exits with 1 when there is none.

namespace framora {
namespace {

struct HeifFree {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(const heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(const heif_image* image) const { heif_image_release(image); }
    void operator()(heif_color_profile_nclx* profile) const { heif_nclx_color_profile_free(profile); }
};
template <typename T> using Heif = std::unique_ptr<T, HeifFree>;

/// Decoded samples, interleaved.
struct Samples {
    const std::uint8_t* data = nullptr;
    int stride = 0; ///< bytes
    int channels = 3;
    int bits = 8; ///< beyond 8 a sample takes two bytes
    bool isPremultiplied = false;
};

/// One row as straight 16-bit red, green, blue, alpha.
void widenRow(const Samples& samples, int y, std::span<std::uint16_t> rgba) {
    const std::uint8_t* source = samples.data + std::ptrdiff_t(y) * samples.stride;
    const std::uint32_t full = (1u << samples.bits) - 1;
    const std::size_t width = rgba.size() / 4;
    for (std::size_t x = 0; x < width; ++x) {
        std::array<std::uint32_t, 4> pixel{0, 0, 0, 65535};
        for (int channel = 0; channel < samples.channels; ++channel, ++source) {
            std::uint32_t value = *source;
            if (samples.bits > 8)
                value |= std::uint32_t(*++source) << 8;
            pixel[std::size_t(channel)] = (std::min(value, full) * 65535u + full / 2) / full;
        }
        for (std::size_t channel = 0; channel < 3; ++channel) {
            if (samples.isPremultiplied && pixel[3] > 0)
                pixel[channel] = std::min((pixel[channel] * 65535u + pixel[3] / 2) / pixel[3], 65535u);
            rgba[x * 4 + channel] = std::uint16_t(pixel[channel]);
        }
        rgba[x * 4 + 3] = std::uint16_t(pixel[3]);
    }
}

/// The common case, one row of straight bytes that are sRGB already or have a profile of their own.
void packBytes(const Samples& samples, int y, int width, std::uint32_t* pixels) {
    const std::uint8_t* source = samples.data + std::ptrdiff_t(y) * samples.stride;
    for (int x = 0; x < width; ++x, source += samples.channels)
        pixels[x] = packedPixel(source[0], source[1], source[2], samples.channels == 4 ? source[3] : 255);
}

std::vector<std::uint8_t> storedProfile(const heif_image_handle* handle) {
    const heif_color_profile_type type = heif_image_handle_get_color_profile_type(handle);
    if (type != heif_color_profile_type_prof && type != heif_color_profile_type_rICC)
        return {};
    const std::size_t size = heif_image_handle_get_raw_color_profile_size(handle);
    constexpr std::size_t largest = 16 << 20;
    std::vector<std::uint8_t> profile(size <= largest ? size : 0);
    if (profile.empty() ||
        heif_image_handle_get_raw_color_profile(handle, profile.data()).code != heif_error_Ok)
        return {};
    return profile;
}

CodedColors codedColors(const heif_image_handle* handle) {
    heif_color_profile_nclx* stored = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &stored).code != heif_error_Ok || !stored)
        return {1, 13};
    const Heif<heif_color_profile_nclx> profile(stored);
    return {stored->color_primaries, stored->transfer_characteristics};
}

/// Opaque deep samples averaged over squares of `factor` pixels.
std::vector<std::uint8_t> reducedSamples(const Samples& samples, int width, int height, int factor) {
    BoxSums<std::uint16_t> sums(width, samples.channels, factor);
    const int rows = height / factor;
    std::vector<std::uint8_t> reduced(sums.size() * std::size_t(rows) * sizeof(std::uint16_t));
    auto* row = reinterpret_cast<std::uint16_t*>(reduced.data());
    for (int y = 0; y < rows * factor; ++y) {
        // Rows lie on even addresses, in this machine's order of bytes.
        sums.add(reinterpret_cast<const std::uint16_t*>(samples.data + std::ptrdiff_t(y) * samples.stride));
        if (y % factor == factor - 1) {
            sums.take({row, sums.size()});
            row += sums.size();
        }
    }
    return reduced;
}

/// The same of opaque samples of 8 bits that are still apart, red, green and blue: interleaving millions of
/// them takes longer than their means. Empty where the picture is not of that kind.
std::vector<std::uint8_t> reducedPlanes(const heif_image* image, int width, int height, int factor) {
    constexpr std::array channels{heif_channel_R, heif_channel_G, heif_channel_B};
    const std::size_t columns = std::size_t(width / factor);
    const int rows = height / factor;
    std::vector<std::uint8_t> row(columns);
    std::vector<std::uint8_t> reduced(columns * std::size_t(rows) * channels.size());
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        int stride = 0;
        const std::uint8_t* plane = heif_image_get_plane_readonly(image, channels[channel], &stride);
        if (!plane || heif_image_get_bits_per_pixel_range(image, channels[channel]) != 8 ||
            heif_image_get_width(image, channels[channel]) < width ||
            heif_image_get_height(image, channels[channel]) < height)
            return {};
        BoxSums<std::uint8_t> sums(width, 1, factor);
        std::uint8_t* out = reduced.data() + channel;
        for (int y = 0; y < rows * factor; ++y) {
            sums.add(plane + std::ptrdiff_t(y) * stride);
            if (y % factor != factor - 1)
                continue;
            sums.take(row);
            for (const std::uint8_t mean : row) {
                *out = mean;
                out += channels.size();
            }
        }
    }
    return reduced;
}

/// A thumbnail of the file's that fills two thirds of the box: the room is for a reduction, and this one has
/// had its own. Null when there is none. Its shape must be the picture's: some are of an earlier state of it.
Heif<const heif_image_handle> sufficientThumbnail(const heif_image_handle* primary,
                                                  const DecoderRequest& request) {
    const int width = heif_image_handle_get_width(primary);
    const int height = heif_image_handle_get_height(primary);
    constexpr int most = 16;
    std::array<heif_item_id, most> ids{};
    const int count =
        request.wantsReduced() ? heif_image_handle_get_list_of_thumbnail_IDs(primary, ids.data(), most) : 0;
    for (int i = 0; i < count; ++i) {
        heif_image_handle* thumbnail = nullptr;
        if (heif_image_handle_get_thumbnail(primary, ids[std::size_t(i)], &thumbnail).code != heif_error_Ok)
            continue;
        Heif<const heif_image_handle> owned(thumbnail);
        const std::int64_t ownWidth = heif_image_handle_get_width(thumbnail);
        const std::int64_t ownHeight = heif_image_handle_get_height(thumbnail);
        const bool isOfShape = std::abs(ownWidth * height - ownHeight * width) <= std::max(width, height);
        if (isOfShape && ownWidth < width &&
            (ownWidth * 3 >= request.boxWidth * 2 || ownHeight * 3 >= request.boxHeight * 2))
            return owned;
    }
    return nullptr;
}

bool decode(std::span<const std::uint8_t> file, const DecoderRequest& request) {
    const Heif<heif_context> context(heif_context_alloc());
    heif_context_set_maximum_image_size_limit(context.get(), maximumPictureSide);
    heif_context_set_max_decoding_threads(context.get(),
                                          request.threads > 0 ? request.threads : decoderThreads());
    if (heif_context_read_from_memory_without_copy(context.get(), file.data(), file.size(), nullptr).code !=
        heif_error_Ok)
        return false;
    heif_image_handle* whole = nullptr;
    if (heif_context_get_primary_image_handle(context.get(), &whole).code != heif_error_Ok)
        return false;
    const Heif<heif_image_handle> handle(whole);
    const Heif<const heif_image_handle> thumbnail = sufficientThumbnail(whole, request);
    const heif_image_handle* primary = thumbnail ? thumbnail.get() : whole;
    const int claimedWidth = heif_image_handle_get_width(primary);
    const int claimedHeight = heif_image_handle_get_height(primary);
    if (!isWithinPictureBounds(claimedWidth, claimedHeight))
        return false;

    const bool hasAlpha = heif_image_handle_has_alpha_channel(primary);
    const bool isDeep = heif_image_handle_get_luma_bits_per_pixel(primary) > 8;
    const bool isApart = !hasAlpha && !isDeep && request.reduction(claimedWidth, claimedHeight) > 1;
    const heif_chroma layout =
        isApart  ? heif_chroma_444
        : isDeep ? (hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE)
                 : (hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB);
    heif_image* decoded = nullptr;
    if (heif_decode_image(primary, &decoded, heif_colorspace_RGB, layout, nullptr).code != heif_error_Ok ||
        !decoded)
        return false;
    const Heif<heif_image> image(decoded);

    Samples samples;
    const heif_channel channel = isApart ? heif_channel_R : heif_channel_interleaved;
    samples.data = heif_image_get_plane_readonly(decoded, channel, &samples.stride);
    samples.channels = hasAlpha ? 4 : 3;
    samples.bits = isDeep ? heif_image_get_bits_per_pixel_range(decoded, heif_channel_interleaved) : 8;
    samples.isPremultiplied = hasAlpha && heif_image_handle_is_premultiplied_alpha(primary);
    if (!samples.data || samples.bits < 8 || samples.bits > 16)
        return false;

    int width = heif_image_get_width(decoded, channel);
    int height = heif_image_get_height(decoded, channel);
    std::vector<std::uint8_t> reduced;
    // Before its colours are converted, as it is less then.
    const int factor = hasAlpha ? 1 : request.reduction(width, height);
    if (isApart || (isDeep && factor > 1)) {
        reduced = isApart ? reducedPlanes(decoded, width, height, factor)
                          : reducedSamples(samples, width, height, factor);
        if (reduced.empty())
            return false;
        width /= factor;
        height /= factor;
        samples.data = reduced.data();
        samples.stride = width * samples.channels * (samples.bits > 8 ? 2 : 1);
    }

    DecoderOutput output(STDOUT_FILENO, width, height);
    if (!output.isOpen())
        return false;
    // A thumbnail without colours of its own is in the picture's.
    const bool ownColors =
        heif_image_handle_get_color_profile_type(primary) != heif_color_profile_type_not_present;
    const heif_image_handle* colored = ownColors ? primary : whole;
    const std::vector<std::uint8_t> profile = storedProfile(colored);
    const CodedColors colors = profile.empty() ? codedColors(colored) : CodedColors(1, 13);
    std::vector<std::uint16_t> row(std::size_t(output.width()) * 4);
    for (int y = 0; y < output.height(); ++y) {
        if (samples.bits == 8 && !samples.isPremultiplied && colors.isSrgb()) {
            packBytes(samples, y, output.width(), output.row(y));
            continue;
        }
        widenRow(samples, y, row);
        colors.toSrgb(row);
        packRow(row, output.row(y));
    }
    return output.finish(hasAlpha, profile);
}

std::span<const std::uint8_t> mappedFile(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || status.st_size < 1)
        return {};
    void* memory = mmap(nullptr, std::size_t(status.st_size), PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED)
        return {};
    return {static_cast<const std::uint8_t*>(memory), std::size_t(status.st_size)};
}

} // namespace
} // namespace framora

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0)
        return std::printf("libheif %s\n", heif_get_version()) > 0 ? 0 : 1;
    const auto request = framora::DecoderRequest::fromArguments(argc, argv);
    framora::limitDecoder(request.seconds, request.mebibytes);
    const auto file = framora::mappedFile(STDIN_FILENO);
    const bool isDecoded = !file.empty() && framora::decode(file, request);
    _exit(isDecoded ? 0 : 1); // nothing is worth taking down piece by piece
}
