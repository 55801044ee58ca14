#pragma once

namespace framora {

/// The name by which desktops and their buses know the program; its desktop entry is named the same.
inline constexpr char applicationId[] = "org.framora.Framora";

} // namespace framora
