#pragma once

namespace framora {

/// Gives the calling thread, and the processes it will start, the least claim to processor and disk: whatever
/// somebody waits for goes first.
void lowerThreadPriority();

} // namespace framora
