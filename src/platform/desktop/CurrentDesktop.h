#pragma once

#include "platform/HandBinding.h"

namespace framora {

/// Whether the session's desktop goes by that name, be it as one of several; upper and lower case are alike.
bool isCurrentDesktop(const char* name);

/// How this session's users put this program on a key.
HandBinding handBindingOfDesktop();

} // namespace framora
