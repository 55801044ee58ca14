#pragma once

#include <string>

namespace framora {

/// Marks this process as the one capture of a Wayland session, for as long as it lives.
class CaptureLock {
public:
    CaptureLock();
    ~CaptureLock();
    CaptureLock(const CaptureLock&) = delete;
    CaptureLock& operator=(const CaptureLock&) = delete;

    /// False when another capture is open. True also where there is no folder for the mark.
    bool claimed() const { return m_claimed; }

private:
    std::string m_path;
    int m_file = -1;
    bool m_claimed = true;
};

} // namespace framora
