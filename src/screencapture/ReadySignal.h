#pragma once

namespace framora {

/// Tells the program that started the tool, through the descriptor in FRAMORA_READY_FD, that there is a route
/// and that the user is about to see it. Counts once; nothing happens where the variable is not set.
void announceReady();

} // namespace framora
