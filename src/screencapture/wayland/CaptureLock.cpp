#include "screencapture/wayland/CaptureLock.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {

namespace {

/// One name for every session that a user may have open at a time.
std::string lockPath() {
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    const char* display = std::getenv("WAYLAND_DISPLAY");
    if (!folder || *folder != '/' || !display || !*display)
        return {};
    std::string name = display;
    // A display may be given by its whole path.
    const std::string inFolder = std::string(folder) + '/';
    if (name.starts_with(inFolder))
        name.erase(0, inFolder.size());
    std::replace(name.begin(), name.end(), '/', '_');
    return inFolder + "framora-screencapture-" + name + ".lock";
}

bool sameFile(int file, const std::string& path) {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

} // namespace

CaptureLock::CaptureLock() : m_path(lockPath()) {
    while (!m_path.empty()) {
        m_file = open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
        if (m_file < 0)
            return;
        if (flock(m_file, LOCK_EX | LOCK_NB) != 0) {
            m_claimed = errno != EWOULDBLOCK;
            close(m_file);
            m_file = -1;
            return;
        }
        // One that just ended may have removed the name of what was opened here.
        if (sameFile(m_file, m_path))
            return;
        close(m_file);
        m_file = -1;
    }
}

CaptureLock::~CaptureLock() {
    if (m_file < 0)
        return;
    unlink(m_path.c_str());
    close(m_file);
}

} // namespace framora
