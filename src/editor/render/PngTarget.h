#pragma once

#include <cstdint>
#include <span>

namespace framora {

/// Where a file goes piece by piece. One call at a time, but from changing threads.
class PngTarget {
public:
    virtual ~PngTarget() = default;
    virtual void write(std::span<const std::uint8_t> bytes) = 0;
    /// Forgets what was written: it comes again, from the start.
    virtual void clear() = 0;
};

} // namespace framora
