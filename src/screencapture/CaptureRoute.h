#pragma once

#include "screencapture/CaptureMode.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace framora {

/// What a route came to.
struct CaptureResult {
    enum class Outcome {
        Captured,
        Cancelled,
        NotHere, ///< This desktop does not offer the route, and the user has seen nothing: the next one may.
        Failed,
    };

    Outcome outcome = Outcome::NotHere;
    std::vector<uint8_t> png; ///< a whole PNG file after Captured
    std::string why;          ///< one line after NotHere and Failed
    /// Called, where it is set, when the clipboard has the picture: what else held it may go.
    std::function<void()> whenSafe = {};

    static CaptureResult captured(std::vector<uint8_t> png) {
        return {Outcome::Captured, std::move(png), {}, {}};
    }
    static CaptureResult cancelled() { return {Outcome::Cancelled, {}, {}, {}}; }
    static CaptureResult notHere(std::string why) { return {Outcome::NotHere, {}, std::move(why), {}}; }
    static CaptureResult failed(std::string why) { return {Outcome::Failed, {}, std::move(why), {}}; }
};

/// One way in which a desktop lets the user take a picture.
class CaptureRoute {
public:
    virtual ~CaptureRoute() = default;

    /// Runs until the user chose or cancelled. Calls announceReady() when it is about to show or ask
    /// something; nothing of it is left on screen afterwards.
    virtual CaptureResult run(CaptureMode mode) = 0;
};

} // namespace framora
