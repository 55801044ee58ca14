#pragma once

#include <chrono>
#include <stop_token>

namespace framora {

/// How far a decoder within this process may go.
struct DecodingBounds {
    std::chrono::milliseconds patience{20'000}; ///< Processor time of the thread that decodes.
    std::stop_token stop = {};
};

/// Says when a decoder that began with this object, on its thread, has gone far enough.
class DecodingWatch {
public:
    explicit DecodingWatch(const DecodingBounds& bounds);

    /// Once it is, it stays so. A stop is seen at once, the time in every eighth call; cheap enough for a
    /// row.
    bool isOver();

private:
    DecodingBounds m_bounds;
    std::chrono::nanoseconds m_start;
    unsigned m_calls = 0;
    bool m_isOver = false;
};

} // namespace framora
