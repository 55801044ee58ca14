#include "editor/render/DecodingWatch.h"

#include <ctime>

namespace framora {
namespace {

std::chrono::nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

DecodingWatch::DecodingWatch(const DecodingBounds& bounds) : m_bounds(bounds), m_start(threadTime()) {}

bool DecodingWatch::isOver() {
    constexpr unsigned callsBetweenTimes =
        8; // a look at the time takes as long as some kilobytes of a picture
    m_isOver = m_isOver || m_bounds.stop.stop_requested() ||
               (++m_calls % callsBetweenTimes == 0 && threadTime() - m_start > m_bounds.patience);
    return m_isOver;
}

} // namespace framora
