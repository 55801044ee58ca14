#pragma once

#include "editor/model/RecentColors.h"
#include "editor/window/EditorServices.h"
#include "editor/window/SharedPictures.h"
#include "platform/NotificationCenter.h"
#include "platform/ScreenColorPicker.h"
#include "platform/Sharing.h"

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QSizeF>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QQuickView;

namespace framora {

class EditorSession;
class RandomSource;
struct StartupTexture;
class ToastManager;
class WorkItem;

/// The one controller of the editor window: opens it for a captured picture, relays its toolbar and window
/// commands through notifications, copies the finished picture and closes it.
///
/// The window has no title bar of the desktop's; its view draws one header and posts the window's commands.
class ScreenshotEditorWindow final : public QObject {
    Q_OBJECT

public:
    using Services = EditorServices;

    explicit ScreenshotEditorWindow(Services services);
    ~ScreenshotEditorWindow() override;

    /// Says what shared() is made of; called once, before it.
    static void provide(std::function<Services()> services);
    /// The process's one instance, made at the first call and gone when the application quits.
    static ScreenshotEditorWindow& shared();

    /// Of the content, in points, on a screen of `screenSize` points.
    static QSize initialSize(QSizeF screenSize);
    static constexpr QSize minimumSize{800, 600};

    /// The open window; null when there is none.
    QQuickView* editorWindow() const { return m_editorWindow.get(); }
    /// The open window's state; null when there is none.
    EditorSession* session() const { return m_session.get(); }
    bool isClosing() const { return m_isClosing; }
    void setClosing(bool closing) { m_isClosing = closing; }

    /// Shows the editor for `image`. The caller has closed an open window and set isClosing to false.
    void open(const QImage& image);
    /// Brings the open window forward, out of the task bar if it is minimised; nothing when none is open.
    void raise();
    /// Puts the picture on the clipboard, closes the window, and says so 0.3 s later. Nothing when the
    /// picture is null or memory is too short to write it.
    void copy(const QImage& image);
    /// Closes the window once; nothing while a close is under way or when none is open.
    void close();

    void toolbarCopyAction();
    void toolbarSaveAction();
    void toolbarResetAction();
    void toolbarZoomFitAction();
    void toolbarZoomActualAction();

Q_SIGNALS:
    void opened();
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<EditorSession> makeSession(const QImage& image,
                                               std::function<std::optional<StartupTexture>()> startupTexture);
    void performToolbarItem(const QString& identifier);
    void handleMiniaturize();
    void handleZoomWindow();
    void finishClosing(bool orderOut);
    /// Asks the desktop for its ways to share; the session hears of them.
    void querySharing();
    void queryColorPicker();
    /// A failure is said by a toast; `picked` is told of no colour then.
    void pickColor(ScreenColorPicker::Picked picked);
    using ShareWith = std::function<void(Sharing&, const QString& path, const Sharing::Finished&)>;
    /// Writes the picture to a file for other programs and hands it over; a failure is said by a toast.
    void share(const QImage& picture, const ShareWith& shareWith);
    /// Asks the shared cache, whose scan starts with the first editor.
    void loadWallpapers();

    Services m_services;
    std::unique_ptr<RandomSource> m_random;
    RecentColors m_recentColors;
    std::unique_ptr<QQuickView> m_editorWindow;
    std::unique_ptr<EditorSession> m_session;
    /// Closed, and going with the next turn of the event loop.
    std::vector<QPointer<QQuickView>> m_leaving;
    bool m_isClosing = false;
    SharedPictures m_sharedPictures;
    std::unique_ptr<ToastManager> m_savedToast;
    std::unique_ptr<ToastManager> m_copiedToast;
    std::unique_ptr<WorkItem> m_copiedToastDelay;
    std::vector<NotificationCenter::Token> m_observers;
};

} // namespace framora
