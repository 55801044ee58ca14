#pragma once

#include <functional>

namespace framora::raster {

/// Calls `body(i)` for every i in [0, count), on this thread and on a process-wide set of waiting threads,
/// and returns when all calls have returned. Calls run in no particular order, so each must write its own
/// memory only; then the result does not depend on the number of threads. It may be used from several threads
/// at once and from inside a body. The first exception that a body throws comes
/// out of here when the calls that had begun have returned; there are no others then.
void parallelFor(int count, const std::function<void(int)>& body);

/// Calls `here()` on this thread and `beside()` meanwhile on another one, or afterwards on this one when none
/// is free, and returns when both calls have. Like the calls of parallelFor(), each must write its own memory
/// only. This thread takes part in what `beside()` spreads over threads as soon as `here()` is done. An
/// exception comes out when nobody is at work any more.
void callBeside(const std::function<void()>& here, const std::function<void()>& beside);

/// How many threads one parallelFor may use, the caller included; 0 (the start value) is one for each
/// processor.
void setParallelThreadLimit(int threads);

/// Whether work of this thread may take others along: there is more than one processor, and neither the limit
/// nor a SerialScope forbids it.
bool mayUseThreads();

/// While one lives, every parallelFor of its thread stays on that thread: for work that is one of many at
/// once, or of low priority, and must not take the waiting threads from who needs them now.
class SerialScope {
public:
    SerialScope();
    ~SerialScope();
    SerialScope(const SerialScope&) = delete;
    SerialScope& operator=(const SerialScope&) = delete;
};

} // namespace framora::raster
