#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace framora {

/// The path in a "file:" URI of this machine, percent-decoded; nothing when it is another kind of URI, not
/// absolute or malformed.
std::optional<std::string> pathOfFileUri(std::string_view uri);

/// A file that another program made for us alone. It stays until remove(): while its picture is nowhere else,
/// it is the user's only copy.
class HandedFile {
public:
    /// Past any picture of a desktop.
    static constexpr std::size_t kLargest = std::size_t{512} << 20;

    /// Reads the file: nothing but a regular one, not through a link at its end.
    explicit HandedFile(std::string path);

    const std::vector<uint8_t>& bytes() const { return m_bytes; }
    std::vector<uint8_t> takeBytes() { return std::move(m_bytes); }
    /// Why there are no bytes; empty otherwise.
    const std::string& failure() const { return m_failure; }
    /// Removes the regular file of that path unread.
    static void removeUnread(const std::string& path);
    /// Removes the file that was read, and no other one that took its name meanwhile.
    void remove() const;

private:
    std::string m_path;
    std::vector<uint8_t> m_bytes;
    std::string m_failure;
    dev_t m_device = 0;
    ino_t m_number = 0; ///< 0 where no regular file was opened
};

} // namespace framora
