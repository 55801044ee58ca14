#pragma once

#include <QString>
#include <functional>
#include <memory>

class QWindow;

namespace framora {

/// One of our windows as the desktop's portals name it, so that their dialogs belong to it; empty where they
/// have no name for it. Good as long as it is held.
using PortalWindowName = std::shared_ptr<const QString>;
using NamePortalWindow = std::function<PortalWindowName(QWindow*)>;

/// Of a window that an X server shows, or of none.
PortalWindowName x11PortalWindowName(QWindow* window);

} // namespace framora
