#pragma once

#include "platform/Clock.h"

#include <chrono>

namespace framora {

class SystemClock final : public Clock {
public:
    double secondsSince1970() const override {
        return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    }
};

} // namespace framora
