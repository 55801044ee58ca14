#include "screencapture/portal/KwinScreens.h"

#include "screencapture/portal/KwinScreenshots.h"

#include <algorithm>

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
    std::vector<std::unique_ptr<PixelImage>> images;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        // It comes with the next frame of the output.
        if (kwin.waitForAnswer(pictures[i], SessionBus::kReplyTime) != SessionBus::Turn::Condition ||
            !kwin.readPixels(pictures[i]))
            return {};
        auto image = pictures[i].unpack();
        if (!image || image->width() != outputs[i].pixelWidth || image->height() != outputs[i].pixelHeight)
            return {};
        images.push_back(std::move(image));
    }
    return images;
}

} // namespace framora
