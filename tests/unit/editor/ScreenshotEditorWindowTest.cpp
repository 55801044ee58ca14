#include "unit/editor/EditorWindowFixture.h"

#include "editor/render/WallpaperCache.h"
#include "editor/window/EditorToolbar.h"
#include "platform/Notifications.h"

#include <QPointer>
#include <QQmlEngine>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

namespace framora {
namespace {

TEST_F(EditorWindow, TakesNineTenthsOfTheScreenUpToItsCaps) {
    EXPECT_EQ(ScreenshotEditorWindow::initialSize({1440, 900}), QSize(1296, 810));
    EXPECT_EQ(ScreenshotEditorWindow::initialSize({2560, 1440}), QSize(1600, 1000));
    EXPECT_EQ(ScreenshotEditorWindow::initialSize({1366, 768}), QSize(1229, 691));
}

TEST_F(EditorWindow, OpensInTheMiddleOfTheScreenAndNeverBelowItsMinimum) {
    // The offscreen platform's screen is 800 x 800.
    editor.open(picture(300, 200));
    EXPECT_EQ(window().minimumSize(), QSize(800, 600));
    EXPECT_EQ(window().size(),
              ScreenshotEditorWindow::initialSize(window().screen()->size()).expandedTo({800, 600}));
    const QPoint off = window().geometry().center() - window().screen()->geometry().center();
    EXPECT_LE(off.manhattanLength(), 2);
    EXPECT_EQ(window().title(), QStringLiteral("Framora"));
    EXPECT_TRUE(window().flags() & Qt::FramelessWindowHint);
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(application.activations, 1);
    EXPECT_FALSE(editor.isClosing());
}

TEST_F(EditorWindow, FitsThePictureSoonAfterItOpened) {
    editor.open(picture(3000, 2000));
    queue.advance(0.2);
    const ScreenshotEditorViewModel& model = *session().viewModel();
    EXPECT_EQ(model.canvasSize(), QSizeF(window().width(), window().height() - 52));
    const double room = std::max(window().width() - 344.0 - 40.0, 200.0);
    EXPECT_NEAR(model.config().zoom, room / 3160.0 * 100.0, 1e-9);
}

TEST_F(EditorWindow, NamesItsToolbarItemsAsTheyAreKnown) {
    QStringList rows;
    for (const EditorToolbarItem& item : EditorToolbar::items())
        rows.append(QStringLiteral("%1|%2|%3|%4|%5|%6")
                        .arg(QLatin1String(item.identifier), QLatin1String(item.label),
                             QLatin1String(item.paletteLabel), QLatin1String(item.toolTip),
                             QLatin1String(item.symbol), QLatin1String(item.notification)));
    EXPECT_EQ(
        rows,
        (QStringList{
            u"CopyItem|Copy to Clipboard|Copy to Clipboard|Copy screenshot to clipboard|doc.on.clipboard|"
            "ScreenshotEditorToolbarCopy"_qs,
            u"SaveItem|Save to File|Save to File|Save screenshot to file|square.and.arrow.down|"
            "ScreenshotEditorToolbarSave"_qs,
            u"ResetItem|Reset|Reset Position|Reset position and zoom|arrow.counterclockwise|"
            "ScreenshotEditorToolbarReset"_qs,
            u"ZoomFitItem|Zoom to Fit|Zoom to Fit|Fit screenshot in view|arrow.up.left.and.arrow.down.right|"
            "ScreenshotEditorToolbarZoomFit"_qs,
            u"ZoomActualItem|Actual Size|Actual Size|View at actual size|1.magnifyingglass|"
            "ScreenshotEditorToolbarZoomActual"_qs}));
    EXPECT_EQ(EditorToolbar::defaultIdentifiers(),
              (QStringList{u"flexible"_qs, u"ZoomFitItem"_qs, u"ZoomActualItem"_qs, u""_qs, u"ResetItem"_qs,
                           u""_qs, u"SaveItem"_qs, u"CopyItem"_qs}));
    EXPECT_EQ(EditorToolbar::allowedIdentifiers(),
              (QStringList{u"CopyItem"_qs, u"SaveItem"_qs, u"ResetItem"_qs, u"ZoomFitItem"_qs,
                           u"ZoomActualItem"_qs, u"flexible"_qs, u""_qs}));
}

TEST_F(EditorWindow, EachToolbarActionPostsItsNotification) {
    QStringList posted;
    std::vector<NotificationCenter::Token> tokens;
    for (const EditorToolbarItem& item : EditorToolbar::items())
        tokens.push_back(
            notifications.observe(item.notification, [&posted, name = QString::fromLatin1(item.identifier)] {
                posted.append(name);
            }));
    editor.toolbarCopyAction();
    editor.toolbarSaveAction();
    editor.toolbarResetAction();
    editor.toolbarZoomFitAction();
    editor.toolbarZoomActualAction();
    EXPECT_EQ(posted, (QStringList{u"CopyItem"_qs, u"SaveItem"_qs, u"ResetItem"_qs, u"ZoomFitItem"_qs,
                                   u"ZoomActualItem"_qs}));
}

TEST_F(EditorWindow, CopyWritesThePictureClosesTheWindowAndSaysSoLater) {
    editor.open(picture(60, 40));
    const QByteArray expected =
        encodePng(session().viewModel()->renderFinalImage(), 144.0, raster::PngSpeed::fastest);
    QSignalSpy closed(&editor, &ScreenshotEditorWindow::closed);
    const int managersBefore = toastManagerCount;
    editor.toolbarCopyAction();
    EXPECT_EQ(pasteboard.written, QList<QByteArray>{expected});
    EXPECT_EQ(editor.editorWindow(), nullptr);
    EXPECT_FALSE(editor.isClosing());
    EXPECT_EQ(closed.count(), 1);
    queue.advance(0.29);
    EXPECT_EQ(toastPanels.front(), nullptr);
    queue.advance(0.02);
    EXPECT_EQ(toastManagerCount, managersBefore + 1) << "a manager of its own";
    EXPECT_EQ(frontToast(), QStringLiteral("Copied|doc.on.clipboard.fill|1"));
}

TEST_F(EditorWindow, ACopyThatFailsLeavesTheClipboardAndTheWindow) {
    editor.open(picture(60, 40));
    editor.copy({});
    EXPECT_TRUE(pasteboard.written.isEmpty());
    EXPECT_NE(editor.editorWindow(), nullptr);
    queue.advance(0.5);
    EXPECT_EQ(frontToast(), QString());
}

TEST_F(EditorWindow, CopyFollowedByTheWindowsCloseClosesOnce) {
    editor.open(picture(60, 40));
    QSignalSpy closed(&editor, &ScreenshotEditorWindow::closed);
    QPointer<QQuickView> view = editor.editorWindow();
    editor.toolbarCopyAction();
    ASSERT_TRUE(view) << "still there for the close that comes after";
    view->close();
    editor.close();
    serveDeletions();
    EXPECT_EQ(closed.count(), 1);
    EXPECT_FALSE(view);
}

TEST_F(EditorWindow, TheUsersCloseButtonEndsTheEditorToo) {
    editor.open(picture(60, 40));
    QSignalSpy closed(&editor, &ScreenshotEditorWindow::closed);
    QPointer<EditorSession> held = editor.session();
    window().close();
    EXPECT_EQ(editor.editorWindow(), nullptr);
    EXPECT_EQ(closed.count(), 1);
    serveDeletions();
    EXPECT_FALSE(held);
}

TEST_F(EditorWindow, AWindowThatIsClosingGoesWithItsController) {
    auto other = std::make_unique<ScreenshotEditorWindow>(services());
    other->open(picture(60, 40));
    QPointer<QQuickView> view = other->editorWindow();
    other->close();
    ASSERT_TRUE(view) << "it waits for the next turn";
    other.reset();
    EXPECT_FALSE(view) << "while everything that it needs is there";
}

TEST_F(EditorWindow, ACloseUnderWayKeepsASecondOneFromStarting) {
    editor.open(picture(60, 40));
    editor.setClosing(true);
    editor.close();
    EXPECT_NE(editor.editorWindow(), nullptr);
    editor.setClosing(false);
    editor.close();
    EXPECT_EQ(editor.editorWindow(), nullptr);
    editor.close();
}

TEST_F(EditorWindow, AnEditorThatIsGoneAnswersNoNotification) {
    editor.open(picture(60, 40));
    editor.close();
    editor.open(picture(30, 20));
    editor.toolbarCopyAction();
    EXPECT_EQ(pasteboard.written.size(), 1) << "only the new one copies";
    EXPECT_EQ(QImage::fromData(pasteboard.written[0]).size(), QSize(380, 360));
}

TEST_F(EditorWindow, ReleasesEverythingOnClose) {
    for (int i = 0; i < 20; ++i) {
        editor.open(picture(60, 40));
        QPointer<QQuickView> view = editor.editorWindow();
        QPointer<EditorSession> held = editor.session();
        QPointer<ScreenshotEditorViewModel> model = held->viewModel();
        QPointer<QQuickItem> root = view->rootObject();
        ASSERT_TRUE(root);
        editor.close();
        serveDeletions();
        EXPECT_FALSE(view);
        EXPECT_FALSE(held);
        EXPECT_FALSE(model);
        EXPECT_FALSE(root);
    }
    EXPECT_TRUE(QGuiApplication::allWindows().isEmpty());
    queue.runPending();
    EXPECT_EQ(queue.waitingCount(), 0U);
}

TEST_F(EditorWindow, TheSavedToastOutlivesTheWindow) {
    editor.open(picture(60, 40));
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    editor.toolbarSaveAction();
    EXPECT_EQ(frontToast(), QStringLiteral("Saved|checkmark.circle.fill|1"));
    editor.close();
    serveDeletions();
    EXPECT_EQ(frontToast(), QStringLiteral("Saved|checkmark.circle.fill|1"));
}

TEST_F(EditorWindow, ASaveDialogOutlivesItsEditor) {
    editor.open(picture(60, 40));
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    panels.whileOpen = [this] {
        editor.close();
        serveDeletions();
        editor.open(picture(30, 20));
    };
    editor.toolbarSaveAction();
    EXPECT_EQ(QImage(panels.answer->toLocalFile()).size(), QSize(440, 400))
        << "the picture it was opened for";
    EXPECT_EQ(frontToast(), QStringLiteral("Saved|checkmark.circle.fill|1"));
    EXPECT_NE(editor.editorWindow(), nullptr);
}

TEST_F(EditorWindow, AnImportDialogOutlivesItsEditor) {
    editor.open(picture(60, 40));
    panels.answer = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    panels.whileOpen = [this] {
        editor.close();
        serveDeletions();
    };
    session().importBackgroundImage();
    queue.runPending();
    EXPECT_EQ(editor.editorWindow(), nullptr);
}

TEST_F(EditorWindow, ItsCommandsMinimiseAndZoomTheWindow) {
    notifications.post(notifications::editorMiniaturize);
    editor.open(picture(60, 40));
    notifications.post(notifications::editorZoomWindow);
    EXPECT_EQ(window().visibility(), QWindow::Maximized);
    notifications.post(notifications::editorZoomWindow);
    EXPECT_EQ(window().visibility(), QWindow::Windowed);
    notifications.post(notifications::editorMiniaturize);
    EXPECT_EQ(window().visibility(), QWindow::Minimized);
}

TEST_F(EditorWindow, RaisedItComesOutOfTheTaskBarAsItWas) {
    editor.raise(); // Nothing is open.
    editor.open(picture(60, 40));
    window().showMaximized();
    notifications.post(notifications::editorMiniaturize);
    ASSERT_TRUE(window().windowStates() & Qt::WindowMinimized);
    editor.raise();
    EXPECT_FALSE(window().windowStates() & Qt::WindowMinimized);
    EXPECT_TRUE(window().isVisible());
}

TEST_F(EditorWindow, FollowsTheDesktopsAppearance) {
    editor.open(picture(60, 40));
    EXPECT_EQ(window().rootObject()->property("dark"), false);
    appearance.dark = true;
    appearance.accent = QColor(200, 100, 0);
    notifications.post(notifications::appearanceChanged);
    EXPECT_EQ(window().rootObject()->property("dark"), true);
    EXPECT_EQ(window().rootObject()->property("accent").value<QColor>(), QColor(200, 100, 0));
}

/// Switching tabs keeps every value, and no tab of any background type has a fault of its own.
TEST_F(EditorWindow, EveryTabLoadsWithoutAWarningAndKeepsTheStyle) {
    QStringList warnings;
    editor.open(picture(60, 40));
    QObject::connect(window().engine(), &QQmlEngine::warnings, [&](const QList<QQmlError>& errors) {
        for (const QQmlError& error : errors)
            warnings.append(error.toString());
    });
    ScreenshotEditorViewModel& model = *session().viewModel();
    // Values that no slider would choose, and one that it cannot show.
    for (const auto& [field, value] : {std::pair("mockupBorderSize", 3.3),
                                       {"borderRadius", 21.7},
                                       {"scale", 1.2345},
                                       {"rotationX", -12.3},
                                       {"rotationY", 45.6},
                                       {"padding", 33.3},
                                       {"imageScale", 87.6},
                                       {"gradientConfig.angle", 12.3},
                                       {"gradientConfig.blurAmount", 7.7},
                                       {"gradientConfig.noiseAmount", 12.2},
                                       {"gradientConfig.saturation", 99.9},
                                       {"gradientConfig.brightness", 250.0}})
        ASSERT_TRUE(model.set(QString::fromLatin1(field), value)) << field;
    for (const char* type : {"transparent", "color", "gradient", "image"}) {
        for (const char* mockup : {"defaultStyle", "glassEffect", "border"}) {
            model.set(QStringLiteral("backgroundType"), QString::fromLatin1(type));
            model.set(QStringLiteral("mockupStyle"), QString::fromLatin1(mockup));
            const ScreenshotStyleConfig before = model.config();
            for (const int tab : {0, 1, 2}) {
                session().setProperty("selectedTab", tab);
                QCoreApplication::processEvents();
            }
            EXPECT_EQ(model.config(), before);
        }
    }
    session().colorPanel()->open(QStringLiteral("borderColor"));
    QCoreApplication::processEvents();
    EXPECT_EQ(warnings, QStringList());
}

TEST_F(EditorWindow, AsksForTheWallpapersOnceItHasShownAFrameAndOncePerRun) {
    editor.open(picture(300, 200));
    EXPECT_EQ(background.startedCount, 0) << "the window comes first";
    EXPECT_TRUE(session().viewModel()->isLoadingWallpapers());
    ASSERT_TRUE(QTest::qWaitFor([&] { return background.startedCount > 0; }, 5000));
    EXPECT_TRUE(WallpaperCache::shared().isLoading());

    // A second editor during the scan, which outlives the first.
    editor.close();
    serveDeletions();
    editor.setClosing(false);
    editor.open(picture(300, 200));
    QTest::qWait(50);
    EXPECT_TRUE(session().viewModel()->isLoadingWallpapers());
    background.runPending();
    queue.runPending();
    EXPECT_TRUE(WallpaperCache::shared().isLoaded());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !session().viewModel()->isLoadingWallpapers(); }, 5000));
    EXPECT_EQ(background.startedCount, 1);
    const auto& found = WallpaperCache::shared().wallpapers();
    EXPECT_EQ(session().viewModel()->wallpaperImages().size(), found.size());

    editor.close();
    serveDeletions();
    editor.setClosing(false);
    editor.open(picture(300, 200));
    EXPECT_FALSE(session().viewModel()->isLoadingWallpapers());
}

TEST_F(EditorWindow, SharesWhatIsImportedWithTheNextEditor) {
    const QString path = writePicture(QStringLiteral("import.png"), picture(40, 30));
    editor.open(picture(300, 200));
    panels.answer = QUrl::fromLocalFile(path);
    session().viewModel()->chooseBackgroundImage();
    session().viewModel()->chooseBackgroundImage();
    finishImports();
    ASSERT_FALSE(WallpaperCache::shared().wallpapers().empty());
    EXPECT_EQ(WallpaperCache::shared().wallpapers().front().first, QUrl::fromLocalFile(path));
    EXPECT_EQ(session().viewModel()->wallpaperImages().size(), 2u);
    EXPECT_EQ(WallpaperCache::shared().wallpapers().size(), 1u);
}

} // namespace
} // namespace framora
