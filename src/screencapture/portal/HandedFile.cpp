#include "screencapture/portal/HandedFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {

namespace {

int hexDigit(char letter) {
    if (letter >= '0' && letter <= '9')
        return letter - '0';
    letter |= 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

bool readInto(std::vector<uint8_t>& bytes, int file) {
    std::size_t have = 0;
    while (have < bytes.size()) {
        const ssize_t count = read(file, bytes.data() + have, bytes.size() - have);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        have += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

std::optional<std::string> pathOfFileUri(std::string_view uri) {
    constexpr std::string_view kScheme = "file:";
    if (!uri.starts_with(kScheme))
        return std::nullopt;
    uri.remove_prefix(kScheme.size());
    if (uri.starts_with("//")) {
        const std::size_t slash = uri.find('/', 2);
        if (slash == std::string_view::npos)
            return std::nullopt;
        const std::string_view host = uri.substr(2, slash - 2);
        if (!host.empty() && host != "localhost")
            return std::nullopt;
        uri.remove_prefix(slash);
    }
    if (!uri.starts_with('/'))
        return std::nullopt;
    std::string path;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        char letter = uri[i];
        if (letter == '?' || letter == '#')
            return std::nullopt;
        if (letter == '%') {
            const int high = i + 2 < uri.size() ? hexDigit(uri[i + 1]) : -1;
            const int low = i + 2 < uri.size() ? hexDigit(uri[i + 2]) : -1;
            if (high < 0 || low < 0)
                return std::nullopt;
            letter = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (letter == '\0')
            return std::nullopt;
        path += letter;
    }
    return path;
}

HandedFile::HandedFile(std::string path) : m_path(std::move(path)) {
    // Not blocking: a pipe under that name would otherwise hold us until somebody writes.
    const int file = open(m_path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) {
        m_failure =
            errno == ENOENT ? "the desktop's picture is gone" : "the desktop's picture cannot be read";
    } else if (!S_ISREG(status.st_mode)) {
        m_failure = "the desktop's picture is no file";
    } else {
        m_device = status.st_dev;
        m_number = status.st_ino;
        if (status.st_size <= 0) {
            m_failure = "the desktop's picture is empty";
        } else if (static_cast<std::size_t>(status.st_size) > kLargest) {
            m_failure = "the desktop's picture is too large";
        } else if (m_bytes.resize(static_cast<std::size_t>(status.st_size)); !readInto(m_bytes, file)) {
            m_bytes.clear();
            m_failure = "the desktop's picture cannot be read";
        }
    }
    if (!m_failure.empty())
        m_failure += ": " + m_path;
    if (file >= 0)
        close(file);
}

void HandedFile::removeUnread(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
        unlink(path.c_str());
}

void HandedFile::remove() const {
    struct stat named {};
    if (m_number != 0 && lstat(m_path.c_str(), &named) == 0 && named.st_dev == m_device &&
        named.st_ino == m_number)
        unlink(m_path.c_str());
}

} // namespace framora
