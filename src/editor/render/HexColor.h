#pragma once

#include "editor/model/Color.h"

#include <QStringView>

namespace framora {

/// Reads RGB, RRGGBB or AARRGGBB after trimming everything but letters and digits from both ends. Never
/// fails: any other length is opaque black, and a non-hexadecimal character ends the number where it stands.
Color parseHexColor(QStringView text);

} // namespace framora
