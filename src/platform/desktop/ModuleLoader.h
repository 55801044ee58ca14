#pragma once

namespace framora {

// Modules are parts of the program that not every run needs, kept in shared objects of their own so that they
// cost neither start-up time nor memory before their first use. Each exports one C function that makes its
// object.

/// The function that the module exports under its own name; the module is loaded at the first call and stays.
/// Null, with a warning on standard error, when the installation lacks it.
void* moduleFunction(const char* module, const char* function);

} // namespace framora
