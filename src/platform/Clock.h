#pragma once

namespace framora {

class Clock {
public:
    virtual ~Clock() = default;
    /// Wall-clock time in seconds since 1970-01-01 00:00 UTC, with its fraction.
    virtual double secondsSince1970() const = 0;
};

} // namespace framora
