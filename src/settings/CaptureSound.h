#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace framora {

/// The sounds a capture can make.
enum class CaptureSound { hero, submarine, blow, frog, funk, sosumi, basso, pop };

inline constexpr std::array allCaptureSounds{
    CaptureSound::hero, CaptureSound::submarine, CaptureSound::blow,  CaptureSound::frog,
    CaptureSound::funk, CaptureSound::sosumi,    CaptureSound::basso, CaptureSound::pop};

/// The stored text, which is also the name shown and the sound file's base name.
constexpr std::string_view rawValue(CaptureSound sound) {
    constexpr std::array<std::string_view, allCaptureSounds.size()> names{
        "Hero", "Submarine", "Blow", "Frog", "Funk", "Sosumi", "Basso", "Pop"};
    return names[static_cast<std::size_t>(sound)];
}

/// Nothing for any other text; upper and lower case differ.
constexpr std::optional<CaptureSound> captureSoundFromRawValue(std::string_view text) {
    for (const auto sound : allCaptureSounds) {
        if (rawValue(sound) == text)
            return sound;
    }
    return std::nullopt;
}

} // namespace framora
