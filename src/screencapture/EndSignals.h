#pragma once

namespace framora {

// What a process is told by that it should end: SIGTERM, SIGINT and SIGHUP.

/// From now on they are not obeyed: the user has chosen, and the picture is a moment away from the clipboard.
/// Whoever cannot wait that long kills.
void ignoreEndSignals();
/// They end the process again.
void obeyEndSignals();

} // namespace framora
