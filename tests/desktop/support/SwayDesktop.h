#pragma once

#include "desktop/support/DesktopSession.h"
#include "desktop/support/SwayIpc.h"
#include "desktop/support/VirtualInput.h"

#include <QImage>
#include <QJsonObject>
#include <QRect>

#include <memory>
#include <optional>
#include <vector>

namespace framora {

struct SwayOutput {
    QSize mode{1280, 800}; ///< Device pixels before the transform.
    double scale = 1;
    QPoint position{}; ///< Logical, of the top left corner in the layout, which starts at 0, 0.
    QString transform = QStringLiteral("normal"); ///< "90", "flipped", ... as sway names it.
};

struct SwayOptions {
    std::vector<SwayOutput> outputs{SwayOutput()};
    bool xwayland = false;
    bool sessionBus = true;
    bool accessibility = false; ///< The bus on which AccessibleTree finds controls.
};

/// A window as the compositor tells of it.
struct SwayWindow {
    qint64 id = 0; ///< For a command: "[con_id=...]".
    qint64 pid = 0;
    QString title;
    QString appId;  ///< Empty for an X11 window.
    QString xClass; ///< WM_CLASS of an X11 window.
    QRect frame;    ///< Logical, with the compositor's title bar and border.
    QRect content;  ///< Logical, of the window itself.
    QString output;
    bool focused = false;
    bool fullScreen = false;
    bool visible = false;
};

/// A whole wlroots desktop without a screen: sway in memory, as an ordinary user also when the tests run as
/// root. Windows float without borders where a test puts them. Coordinates are logical ones of the layout
/// unless they are said to be device pixels.
class SwayDesktop : public DesktopSession {
public:
    /// Returns when everything asked for answers; throws std::runtime_error when something does not come up.
    explicit SwayDesktop(const SwayOptions& options = {});
    ~SwayDesktop();

    VirtualInput& input() { return *m_input; }
    /// Of the compositor's socket, an absolute path.
    QString waylandDisplay() const { return m_waylandDisplay; }

    /// Name of the output at this place of SwayOptions::outputs.
    QString outputName(int index) const;
    QRect outputArea(int index);

    /// What the output shows, in its device pixels and upright. A pointer that a program has set is in it,
    /// the compositor's own is not.
    QImage screenshot(int output = 0);
    /// The same when nothing on it changes any more.
    QImage settledScreenshot(int output = 0);

    /// Throws std::runtime_error when sway refuses the command.
    void command(const QString& text);
    QJsonObject tree();
    /// Windows of programs, layer surfaces are none.
    std::vector<SwayWindow> windows();
    /// The first whose title or application id contains the text, case and all.
    std::optional<SwayWindow> window(const QString& text);
    /// Puts a window's content there and returns when it is.
    void place(const SwayWindow& window, const QRect& content);
    void focus(const SwayWindow& window);
    void close(const SwayWindow& window);

    /// The clipboard as that type; empty when nobody owns it or serves the type.
    QByteArray clipboard(const QString& type = QStringLiteral("image/png"));
    QImage clipboardImage();
    QStringList clipboardTypes();
    /// Becomes the clipboard's owner through another program, which serves it until another owner comes.
    ChildProcess& setClipboard(const QByteArray& bytes, const QString& type);

private:
    void startCompositor(const SwayOptions& options);
    QString swayPath(const char* name = "") const;

    QString m_waylandDisplay;
    std::vector<QString> m_outputs;
    std::unique_ptr<SwayIpc> m_ipc;
    std::unique_ptr<VirtualInput> m_input;
};

} // namespace framora
