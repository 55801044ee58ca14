#pragma once

#include "platform/Screens.h"

namespace framora {

/// The screens that the test says.
class FixedScreens final : public Screens {
public:
    explicit FixedScreens(std::vector<Screen> all = {Screen{QRect(0, 0, 1920, 1080), 1.0}})
        : list(std::move(all)) {}
    std::vector<Screen> screens() override { return list; }

    std::optional<Screen> screenInUse() override {
        return inUse < list.size() ? std::optional(list[inUse]) : std::nullopt;
    }

    std::vector<Screen> list;
    std::size_t inUse = 0;
};

} // namespace framora
