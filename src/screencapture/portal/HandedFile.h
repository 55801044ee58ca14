#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace framora {

/// The path in a "file:" URI of this machine, percent-decoded; nothing when it is another kind of URI, not
/// absolute or malformed.
std::optional<std::string> pathOfFileUri(std::string_view uri);

/// A file that another program made for us alone.
struct HandedFile {
    /// Past any picture of a desktop.
    static constexpr std::size_t kLargest = std::size_t{512} << 20;

    std::vector<uint8_t> bytes;
    std::string failure; ///< why there are no bytes; empty otherwise

    /// Reads the file and removes it, also when it is empty or too large: nothing but a regular file, not
    /// through a link at its end, and no other one that took its name meanwhile.
    static HandedFile take(const std::string& path);
};

} // namespace framora
