#include "screencapture/wayland/OutputCopies.h"

#include "screencapture/MemoryImage.h"

#include <algorithm>

namespace framora {

namespace {

constexpr std::chrono::milliseconds kPatience{3000};
// For the others once one is there: an output that is switched off may never answer.
constexpr std::chrono::milliseconds kStragglersPatience{500};
// An output may change under a copy; the second is of what it became.
constexpr int kTries = 2;

bool isThere(const std::unique_ptr<PixelImage>& image) {
    return image != nullptr;
}

} // namespace

std::vector<std::unique_ptr<PixelImage>>
copyOutputs(WaylandConnection& connection, std::span<const Output> outputs,
            const std::function<std::unique_ptr<OutputCopy>(const Output&)>& begin) {
    std::vector<std::unique_ptr<PixelImage>> images(outputs.size());
    for (int i = 0; i < kTries && !std::all_of(images.begin(), images.end(), isThere); ++i) {
        std::vector<std::unique_ptr<OutputCopy>> copies(outputs.size());
        for (std::size_t k = 0; k < outputs.size(); ++k)
            if (!images[k])
                copies[k] = begin(outputs[k]);
        const auto settled = [&copies] {
            return std::all_of(copies.begin(), copies.end(),
                               [](const auto& copy) { return !copy || copy->settled(); });
        };
        const auto oneIsThere = [&] {
            return settled() || std::any_of(images.begin(), images.end(), isThere) ||
                   std::any_of(copies.begin(), copies.end(),
                               [](const auto& copy) { return copy && copy->ready(); });
        };
        if (!connection.dispatchUntil(oneIsThere, kPatience))
            return {};
        connection.dispatchUntil(settled, kStragglersPatience);
        if (!connection.valid())
            return {};
        for (std::size_t k = 0; k < outputs.size(); ++k)
            if (copies[k])
                images[k] = copies[k]->take();
    }
    if (std::none_of(images.begin(), images.end(), isThere))
        return {};
    for (std::size_t k = 0; k < outputs.size(); ++k)
        if (!images[k] && !(images[k] = MemoryImage::create(outputs[k].pixelWidth, outputs[k].pixelHeight)))
            return {};
    return images;
}

} // namespace framora
