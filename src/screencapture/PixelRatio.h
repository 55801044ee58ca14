#pragma once

#include <string_view>

namespace framora {

/// The device pixels a point has, from the text of the root window's RESOURCE_MANAGER: Xft.dpi / 96, rounded
/// to a quarter, 1...8. 1 when the text has no such resource or its value is no number.
double pixelRatioFromResources(std::string_view resources);

} // namespace framora
