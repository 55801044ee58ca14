#pragma once

namespace framora {

class SoundOutput;

/// What the sound module exports; the caller owns the result.
using MakeSoundOutput = SoundOutput*();
inline constexpr char makeSoundOutputName[] = "framora_makeSoundOutput";

} // namespace framora
