#pragma once

namespace framora {

/// Whether the session's desktop goes by that name, be it as one of several; upper and lower case are alike.
bool isCurrentDesktop(const char* name);

} // namespace framora
