#pragma once

#include "Workloads.h"

namespace framora::comparison {

/// Reads the screenshot and, when wanted, the photograph, which is made and kept in `folder` at first use.
/// Ends the program with a line of why when the screenshot cannot be read or has another size.
Inputs readInputs(const QString& screenshotPath, const QString& folder, bool withPhotograph);

} // namespace framora::comparison
