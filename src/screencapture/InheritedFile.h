#pragma once

namespace framora {

/// The open descriptor, above the three standard ones, that an environment variable names; -1 when it is not
/// set or names none.
int inheritedFile(const char* variable);

} // namespace framora
