#include "screencapture/portal/KwinScreens.h"

#include "screencapture/portal/KwinScreenshots.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace framora {

std::unique_ptr<KwinScreens> KwinScreens::create() {
    SessionBus bus;
    return KwinScreenshots(bus).permitted() ? std::make_unique<KwinScreens>() : nullptr;
}

std::vector<std::unique_ptr<PixelImage>> KwinScreens::freeze(std::span<const Output> outputs) {
    SessionBus bus;
    if (!bus.valid())
        return {};
    KwinScreenshots kwin(bus);
    // All are asked for before the first is read: they show the same moment as nearly as KWin can.
    std::vector<KwinScreenshots::Picture> pictures(outputs.size()); // They stay where they are.
    for (std::size_t i = 0; i < outputs.size(); ++i)
        if (outputs[i].name.empty() || !kwin.requestOutput(outputs[i].name, pictures[i]))
            return {};
    if (!kwin.receive(pictures))
        return {};
    std::vector<std::unique_ptr<PixelImage>> images;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto [width, height] = std::pair(outputs[i].pixelWidth, outputs[i].pixelHeight);
        const bool isShown = pictures[i].isWhole();
        // What has no picture beside one that has is switched off: it shows black.
        images.push_back(isShown ? fitted(pictures[i].take(), width, height)
                                 : MemoryImage::create(width, height));
        if (!images.back())
            return {};
    }
    return images;
}

std::unique_ptr<MemoryImage> fitted(std::unique_ptr<MemoryImage> image, int width, int height) {
    if (!image || (image->width() == width && image->height() == height))
        return image;
    if (std::abs(image->width() - width) > 1 || std::abs(image->height() - height) > 1)
        return nullptr;
    auto result = MemoryImage::create(width, height);
    for (int y = 0; result && y < height; ++y) {
        const uint32_t* const from = image->row(std::min(y, image->height() - 1));
        uint32_t* const to = result->row(y);
        std::copy_n(from, std::min(width, image->width()), to);
        to[width - 1] = from[std::min(width, image->width()) - 1];
    }
    return result;
}

} // namespace framora
