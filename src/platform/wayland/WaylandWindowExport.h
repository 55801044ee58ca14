#pragma once

#include <QString>
#include <memory>

class QWindow;

namespace framora {

/// One of our windows as the desktop's portals can name it, so that their dialogs belong to it. The name is
/// good as long as this lives.
class WaylandWindowExport {
public:
    /// Asks the compositor, for a moment at most. Without a window, or where the compositor exports none, the
    /// name is empty.
    explicit WaylandWindowExport(QWindow* window);
    ~WaylandWindowExport();
    WaylandWindowExport(const WaylandWindowExport&) = delete;
    WaylandWindowExport& operator=(const WaylandWindowExport&) = delete;

    /// "wayland:" or, where Qt speaks X11, "x11:" and the window's name there; or empty.
    const QString& portalName() const { return m_portalName; }
    /// Lets what is started with it come to the front in the window's place; empty where there is none.
    const QString& activationToken() const { return m_activationToken; }

private:
    class Exporter;

    QString m_portalName;
    QString m_activationToken;
    std::unique_ptr<Exporter> m_exporter;
};

} // namespace framora
