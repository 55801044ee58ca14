#include "editor/window/ScreenshotEditorWindow.h"

#include "controls/Controls.h"
#include "editor/model/RandomSource.h"
#include "editor/model/ScreenshotEditorViewModel.h"
#include "editor/render/ComposedPng.h"
#include "editor/render/PictureFile.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/WallpaperCache.h"
#include "editor/views/EditorSession.h"
#include "editor/views/EditorViews.h"
#include "editor/window/EditorToolbar.h"
#include "feedback/ToastManager.h"
#include "platform/Application.h"
#include "platform/Localized.h"
#include "platform/MainQueue.h"
#include "platform/Notifications.h"
#include "platform/Pasteboard.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDir>
#include <QEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>
#include <algorithm>
#include <future>
#include <malloc.h>

namespace framora {
namespace {

std::function<ScreenshotEditorWindow::Services()>& sharedServices() {
    static std::function<ScreenshotEditorWindow::Services()> services;
    return services;
}

const QScreen& mainScreen() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        qFatal("ScreenshotEditorWindow: there is no screen");
    return *screen;
}

} // namespace

ScreenshotEditorWindow::ScreenshotEditorWindow(Services services)
    : m_services(std::move(services)), m_random(std::make_unique<SystemRandomSource>()),
      m_recentColors(m_services.defaults), m_sharedPictures(m_services.mainQueue) {
    const auto observe = [this](const char* name, auto handler) {
        m_observers.push_back(m_services.notifications.observe(name, handler));
    };
    observe(notifications::editorMiniaturize, [this] { handleMiniaturize(); });
    observe(notifications::editorZoomWindow, [this] { handleZoomWindow(); });
    observe(notifications::appearanceChanged, [this] {
        if (m_editorWindow)
            showLook(m_editorWindow->rootObject(), m_services.appearance);
    });
    WallpaperCache::provide(
        {m_services.backgroundQueue, m_services.desktopPictures, WallpaperFolders::inHome(QDir::homePath())});
}

ScreenshotEditorWindow::~ScreenshotEditorWindow() {
    // Views are bound to their sessions, and what follows them goes through the services.
    m_editorWindow.reset();
    for (const QPointer<QQuickView>& window : m_leaving)
        delete window;
    WallpaperCache::withdraw();
}

void ScreenshotEditorWindow::provide(std::function<Services()> services) {
    sharedServices() = std::move(services);
}

ScreenshotEditorWindow& ScreenshotEditorWindow::shared() {
    static QPointer<ScreenshotEditorWindow> instance;
    if (!instance) {
        if (!sharedServices())
            qFatal("ScreenshotEditorWindow: shared() before provide()");
        instance = new ScreenshotEditorWindow(sharedServices()());
        // While the application object still lives: the windows and toasts need it.
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, instance,
                [] { delete instance; });
    }
    return *instance;
}

QSize ScreenshotEditorWindow::initialSize(QSizeF screenSize) {
    return {int(std::min(0.9 * screenSize.width(), 1600.0)),
            int(std::min(0.9 * screenSize.height(), 1000.0))};
}

void ScreenshotEditorWindow::open(const QImage& image) {
    const QScreen& screen = mainScreen();

    // The texture is decoded while the views are loaded.
    auto texture = std::async(
        std::launch::async, [&resources = m_services.resources] { return StartupTexture::load(resources); });

    m_editorWindow = std::make_unique<QQuickView>();
    QQuickView& window = *m_editorWindow;
    window.setFlags(Qt::Window | Qt::FramelessWindowHint);
    window.setTitle(QStringLiteral("Framora"));
    window.setResizeMode(QQuickView::SizeRootObjectToView);
    window.setMinimumSize(minimumSize);
    window.resize(initialSize(screen.size()).expandedTo(minimumSize));
    QRect frame({0, 0}, window.size());
    frame.moveCenter(screen.geometry().center());
    window.setPosition(frame.topLeft());
    window.installEventFilter(this);

    registerEditorViews(*window.engine());
    const QUrl source(QStringLiteral("qrc:/framora/qml/Framora/Editor/ScreenshotEditorView.qml"));
    auto* component = new QQmlComponent(window.engine(), source, &window);

    m_session = makeSession(image, [&texture] { return texture.get(); });
    QVariantMap properties = lookOf(m_services.appearance);
    properties.insert(QStringLiteral("session"), QVariant::fromValue(m_session.get()));
    QObject* root = component->createWithInitialProperties(properties);
    if (!root)
        qFatal("ScreenshotEditorWindow: %s", qPrintable(component->errorString()));
    window.setContent(source, component, root);
    m_session->viewModel()->setLoadingWallpapers(!WallpaperCache::shared().isLoaded());
    // The window comes first.
    connect(&window, &QQuickWindow::frameSwapped, this, &ScreenshotEditorWindow::loadWallpapers,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
    querySharing();
    queryColorPicker();
    window.show();
    window.requestActivate();
    m_services.application.activate();
    Q_EMIT opened();
}

std::unique_ptr<EditorSession>
ScreenshotEditorWindow::makeSession(const QImage& image,
                                    std::function<std::optional<StartupTexture>()> startupTexture) {
    m_savedToast = m_services.makeToastManager();
    ScreenshotEditorViewModel::Services modelServices{
        m_services.mainQueue,
        m_services.backgroundQueue,
        m_services.clock,
        m_services.filePanels,
        m_services.resources,
        *m_random,
        [](const Composition& composition) { return composedPng(composition).value_or(QByteArray()); },
        [this](const QString& message, const QString& icon, bool success) {
            m_savedToast->show(message, icon, success);
        },
        [](const Wallpaper& wallpaper) { WallpaperCache::shared().insert(wallpaper); },
        std::move(startupTexture),
    };
    return std::make_unique<EditorSession>(
        std::make_unique<ScreenshotEditorViewModel>(image, std::move(modelServices)),
        m_services.notifications, EditorToolbar::defaultItems(),
        EditorSession::Actions{
            [self = QPointer(this)](const QImage& picture) {
                if (self)
                    self->copy(picture);
            },
            [self = QPointer(this)] {
                if (self)
                    self->close();
            },
            [self = QPointer(this)](const QString& identifier) {
                if (self)
                    self->performToolbarItem(identifier);
            },
            [&queue = m_services.mainQueue](std::function<void()> work) { queue.async(std::move(work)); },
            [self = QPointer(this)](const QImage& picture) {
                if (self)
                    self->share(picture, [&](Sharing& sharing, const QString& path, const auto& finished) {
                        sharing.openWith(path, self->editorWindow(), finished);
                    });
            },
            [self = QPointer(this)](const QImage& picture) {
                if (self)
                    self->share(picture, [&](Sharing& sharing, const QString& path, const auto& finished) {
                        sharing.composeMail(path, QStringLiteral("Screenshot"), self->editorWindow(),
                                            finished);
                    });
            },
            [self = QPointer(this)](ScreenColorPicker::Picked picked) {
                if (self)
                    self->pickColor(std::move(picked));
            },
        },
        m_recentColors);
}

void ScreenshotEditorWindow::queryColorPicker() {
    if (m_services.colorPicker)
        m_services.colorPicker->queryAvailable([session = QPointer(m_session.get())](bool available) {
            if (session)
                session->setCanPickFromScreen(available);
        });
}

void ScreenshotEditorWindow::pickColor(ScreenColorPicker::Picked picked) {
    const ScreenColorPicker::Failed failed = [self = QPointer(this), picked] {
        picked(std::nullopt);
        if (self && self->m_savedToast)
            self->m_savedToast->show(localized(QStringLiteral("eyedropper.failed")),
                                     QStringLiteral("xmark.circle.fill"), false);
    };
    m_services.colorPicker->pick(editorWindow(), picked, failed);
}

void ScreenshotEditorWindow::querySharing() {
    if (m_services.sharing)
        m_services.sharing->queryAbilities(
            [session = QPointer(m_session.get())](Sharing::Abilities abilities) {
                if (session)
                    session->setSharing(abilities);
            });
}

void ScreenshotEditorWindow::share(const QImage& picture, const ShareWith& shareWith) {
    const auto path = m_sharedPictures.add(encodePng(picture, exportDotsPerInch, raster::PngSpeed::fastest));
    const Sharing::Finished finished = [self = QPointer(this), path](Sharing::Outcome outcome) {
        if (!self || outcome == Sharing::Outcome::taken)
            return;
        if (path)
            self->m_sharedPictures.remove(*path);
        if (outcome == Sharing::Outcome::failed)
            self->m_savedToast->show(localized(QStringLiteral("share.failed")),
                                     QStringLiteral("xmark.circle.fill"), false);
    };
    if (path && m_services.sharing)
        shareWith(*m_services.sharing, *path, finished);
    else
        finished(Sharing::Outcome::failed);
}

void ScreenshotEditorWindow::loadWallpapers() {
    if (!m_session)
        return;
    WallpaperCache::shared().load([model = QPointer(m_session->viewModel())] {
        if (!model)
            return;
        model->mergeWallpapers(WallpaperCache::shared().wallpapers());
        model->setLoadingWallpapers(false);
    });
}

void ScreenshotEditorWindow::copy(const QImage& image) {
    const QByteArray png = encodePng(image, exportDotsPerInch, raster::PngSpeed::fastest);
    // What the clipboard holds may be the capture itself.
    if (png.isEmpty())
        return;
    m_services.pasteboard.writePng(png);
    close();
    m_copiedToastDelay = m_services.mainQueue.after(0.3, [this] {
        m_copiedToast = m_services.makeToastManager();
        m_copiedToast->show(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), true);
    });
}

void ScreenshotEditorWindow::raise() {
    if (!m_editorWindow)
        return;
    m_editorWindow->setWindowStates(m_editorWindow->windowStates() & ~Qt::WindowMinimized);
    m_editorWindow->show();
    m_editorWindow->raise();
    m_editorWindow->requestActivate();
}

void ScreenshotEditorWindow::close() {
    finishClosing(true);
}

void ScreenshotEditorWindow::finishClosing(bool orderOut) {
    if (m_isClosing || !m_editorWindow)
        return;
    m_isClosing = true;
    m_editorWindow->removeEventFilter(this);
    if (m_services.colorPicker)
        m_services.colorPicker->cancel();
    if (orderOut)
        m_editorWindow->hide();
    // The close may come out of the window's own handlers, so the window goes with the next turn of the event
    // loop, and what its view is bound to goes after it.
    m_session->endObserving();
    QQuickView* window = m_editorWindow.release();
    connect(window, &QObject::destroyed,
            [session = std::shared_ptr<EditorSession>(std::move(m_session)), &queue = m_services.mainQueue] {
                Q_UNUSED(session)
                // A resident program gives back what a whole window took; malloc would keep most of it.
                queue.async([] { malloc_trim(0); });
            });
    std::erase_if(m_leaving, [](const QPointer<QQuickView>& each) { return !each; });
    m_leaving.emplace_back(window);
    window->deleteLater();
    m_isClosing = false;
    Q_EMIT closed();
}

bool ScreenshotEditorWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_editorWindow.get() && event->type() == QEvent::Close)
        finishClosing(false);
    return QObject::eventFilter(watched, event);
}

void ScreenshotEditorWindow::performToolbarItem(const QString& identifier) {
    if (const EditorToolbarItem* item = EditorToolbar::item(identifier))
        m_services.notifications.post(item->notification);
}

void ScreenshotEditorWindow::toolbarCopyAction() {
    performToolbarItem(QStringLiteral("CopyItem"));
}
void ScreenshotEditorWindow::toolbarSaveAction() {
    performToolbarItem(QStringLiteral("SaveItem"));
}
void ScreenshotEditorWindow::toolbarResetAction() {
    performToolbarItem(QStringLiteral("ResetItem"));
}
void ScreenshotEditorWindow::toolbarZoomFitAction() {
    performToolbarItem(QStringLiteral("ZoomFitItem"));
}
void ScreenshotEditorWindow::toolbarZoomActualAction() {
    performToolbarItem(QStringLiteral("ZoomActualItem"));
}

void ScreenshotEditorWindow::handleMiniaturize() {
    if (m_editorWindow)
        m_editorWindow->showMinimized();
}

void ScreenshotEditorWindow::handleZoomWindow() {
    if (!m_editorWindow)
        return;
    if (m_editorWindow->visibility() == QWindow::Maximized)
        m_editorWindow->showNormal();
    else
        m_editorWindow->showMaximized();
}

} // namespace framora
