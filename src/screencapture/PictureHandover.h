#pragma once

#include <cstdint>
#include <span>

namespace framora {

/// Gives a PNG file to the program that started the tool, through the descriptor in FRAMORA_PICTURE_FD, for
/// desktops where the tool cannot own a clipboard. False when there is no such descriptor or it takes no
/// bytes.
bool handToProgram(std::span<const uint8_t> png);

} // namespace framora
