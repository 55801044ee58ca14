#pragma once

#include <QUrl>
#include <functional>
#include <stop_token>
#include <vector>

namespace framora {

/// The pictures that the desktop shows behind its windows.
class DesktopPictures {
public:
    /// Reads the desktop's settings: one file a screen, in the order of Screens, none for a screen that has
    /// no picture. A file need not exist. For any thread; may take some tens of milliseconds, or some seconds
    /// where the desktop's settings do not answer, which `stop` cuts short.
    using Lookup = std::function<std::vector<QUrl>(const std::stop_token& stop)>;

    virtual ~DesktopPictures() = default;
    /// On the main thread: a lookup for the screens there are now.
    virtual Lookup lookup() = 0;
};

} // namespace framora
