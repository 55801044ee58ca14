#include "unit/controls/ShownItems.h"
#include "unit/editor/EditorWindowFixture.h"

#include "editor/views/ScreenshotPreviewCanvas.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <memory>
#include <tuple>

namespace framora {
namespace {

/// The whole editor under keys, pointer and things that are dropped on it.
class EditorInput : public EditorWindow {
public:
    void open(const QImage& image = picture(200, 100)) {
        editor.open(image);
        window().requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        queue.advance(0.2);
    }
    ScreenshotEditorViewModel& model() { return *session().viewModel(); }
    ScreenshotPreviewCanvas& canvas() {
        return *window().rootObject()->findChild<ScreenshotPreviewCanvas*>();
    }
    QPoint middle() {
        return canvas().mapToScene(QPointF(canvas().width(), canvas().height()) / 2).toPoint();
    }
    QQuickItem* item(const QString& name) { return itemNamed(window().contentItem(), name); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&window(), key, modifiers);
    }

    /// Whether the window would take a drop of these files at that place.
    bool dragOver(const QList<QUrl>& urls, QPoint at) {
        mime = std::make_unique<QMimeData>();
        mime->setUrls(urls);
        QDragEnterEvent enter(at, Qt::CopyAction, mime.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, mime.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &move);
        return move.isAccepted();
    }
    bool drop(const QList<QUrl>& urls, QPoint at) {
        dragOver(urls, at);
        QDropEvent event(at, Qt::CopyAction, mime.get(), Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &event);
        return event.isAccepted();
    }
    QUrl sea() {
        return QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(30, 20, Qt::blue)));
    }
    QUrl notes() {
        QFile file(files.filePath(QStringLiteral("notes.png")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("no picture at all");
        return QUrl::fromLocalFile(file.fileName());
    }

private:
    std::unique_ptr<QMimeData> mime;
};

TEST_F(EditorInput, KeysUndoAndRedo) {
    open();
    model().set(QStringLiteral("padding"), 10.0);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model().config().padding, 80);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(model().config().padding, 10);
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(model().config().padding, 10);
}

TEST_F(EditorInput, ButtonsUndoAndRedoAndAreDisabledWhenThereIsNothing) {
    open();
    EXPECT_FALSE(item(QStringLiteral("undo"))->isEnabled());
    EXPECT_FALSE(item(QStringLiteral("redo"))->isEnabled());
    model().set(QStringLiteral("padding"), 10.0);
    EXPECT_TRUE(item(QStringLiteral("undo"))->isEnabled());
    const auto click = [&](const char* name) {
        const QQuickItem* button = item(QLatin1String(name));
        QTest::mouseClick(&window(), Qt::LeftButton, {},
                          button->mapToScene({button->width() / 2, button->height() / 2}).toPoint());
    };
    click("undo");
    EXPECT_EQ(model().config().padding, 80);
    EXPECT_FALSE(item(QStringLiteral("undo"))->isEnabled());
    click("redo");
    EXPECT_EQ(model().config().padding, 10);
}

TEST_F(EditorInput, UndoWaitsForTheEndOfADrag) {
    open();
    model().set(QStringLiteral("padding"), 10.0);
    QTest::mousePress(&window(), Qt::LeftButton, {}, middle());
    QTest::mouseMove(&window(), middle() + QPoint(10, 0));
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model().config().padding, 10);
    QTest::mouseRelease(&window(), Qt::LeftButton, {}, middle() + QPoint(10, 0));
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model().config().screenshotOffset, (Size{0, 0}));
    EXPECT_EQ(model().config().padding, 10);
    EXPECT_EQ(model().offset(), QSizeF(0, 0));
}

TEST_F(EditorInput, EscapePutsADragBackAndClosesTheWindowOnlyAfterThat) {
    open();
    QTest::mousePress(&window(), Qt::LeftButton, {}, middle());
    QTest::mouseMove(&window(), middle() + QPoint(30, 20));
    EXPECT_EQ(model().offset(), QSizeF(30, 20));
    key(Qt::Key_Escape);
    EXPECT_EQ(model().offset(), QSizeF(0, 0));
    EXPECT_EQ(session().property("isDraggingScreenshot"), false);
    QTest::mouseRelease(&window(), Qt::LeftButton, {}, middle() + QPoint(30, 20));
    EXPECT_EQ(model().config().screenshotOffset, (Size{0, 0}));
    EXPECT_FALSE(model().canUndo());
    ASSERT_NE(editor.editorWindow(), nullptr);
    key(Qt::Key_Escape);
    EXPECT_EQ(editor.editorWindow(), nullptr);
}

TEST_F(EditorInput, ThePositionShownFollowsADrag) {
    open();
    session().setProperty("selectedTab", 2);
    const auto shows = [this](const char* position) {
        const QQuickItem* text = itemNamed(window().contentItem(), QStringLiteral("position.text"));
        return text && text->property("text").toString() == QLatin1String(position);
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return shows("0, 0"); }));
    for (const auto& [start, moved, released] :
         {std::tuple(QPoint(0, 0), "30, 20", "40, 20"), {QPoint(40, 20), "70, 40", "80, 40"}}) {
        QTest::mousePress(&window(), Qt::LeftButton, {}, middle() + start);
        QTest::mouseMove(&window(), middle() + start + QPoint(30, 20));
        EXPECT_TRUE(shows(moved));
        QTest::mouseMove(&window(), middle() + start + QPoint(40, 20));
        QTest::mouseRelease(&window(), Qt::LeftButton, {}, middle() + start + QPoint(40, 20));
        EXPECT_TRUE(shows(released));
    }
    QTest::mousePress(&window(), Qt::LeftButton, {}, middle());
    QTest::mouseMove(&window(), middle() + QPoint(-9, 0));
    EXPECT_TRUE(shows("71, 40"));
    key(Qt::Key_Escape);
    EXPECT_TRUE(shows("80, 40"));
}

TEST_F(EditorInput, TheSpaceBarHeldTurnsADragIntoAPan) {
    open();
    model().zoomTo(300);
    const QPointF before = canvas().viewport().canvasCentre();
    QTest::keyPress(&window(), Qt::Key_Space);
    EXPECT_TRUE(canvas().panKeyHeld());
    QTest::mousePress(&window(), Qt::LeftButton, {}, middle());
    QTest::mouseMove(&window(), middle() + QPoint(15, 25));
    QTest::mouseRelease(&window(), Qt::LeftButton, {}, middle() + QPoint(15, 25));
    QTest::keyRelease(&window(), Qt::Key_Space);
    EXPECT_FALSE(canvas().panKeyHeld());
    EXPECT_EQ(canvas().viewport().canvasCentre(), before + QPointF(15, 25));
    EXPECT_EQ(model().config().screenshotOffset, (Size{0, 0}));
    EXPECT_EQ(model().config().zoom, 300);
}

TEST_F(EditorInput, TheSpaceBarBelongsToAButtonThatHasTheKeys) {
    open();
    model().set(QStringLiteral("padding"), 10.0);
    item(QStringLiteral("undo"))->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyPress(&window(), Qt::Key_Space);
    EXPECT_FALSE(canvas().panKeyHeld());
    QTest::keyRelease(&window(), Qt::Key_Space);
    EXPECT_EQ(model().config().padding, 80) << "it was pressed";
}

TEST_F(EditorInput, TabReachesTheCanvasAndArrowsNudgeFromThere) {
    open();
    for (int i = 0; i < 60 && !canvas().hasActiveFocus(); ++i)
        key(Qt::Key_Tab);
    ASSERT_TRUE(canvas().hasActiveFocus());
    EXPECT_TRUE(item(QStringLiteral("canvas.focus"))->isVisible());
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(model().config().screenshotOffset, (Size{2, -10}));
    EXPECT_EQ(model().lastOffset(), QSizeF(2, -10));
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model().config().screenshotOffset, (Size{0, 0})) << "one burst, one step";
    key(Qt::Key_Tab);
    EXPECT_FALSE(item(QStringLiteral("canvas.focus"))->isVisible());
}

TEST_F(EditorInput, TheWheelOverTheCanvasZoomsTheModel) {
    open();
    const double before = model().config().zoom;
    QWheelEvent event(QPointF(middle()), window().mapToGlobal(QPointF(middle())), {}, {0, 120}, Qt::NoButton,
                      {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window(), &event);
    EXPECT_NEAR(model().config().zoom, before * 1.2, 1e-9);
    EXPECT_FALSE(model().canUndo());
}

TEST_F(EditorInput, FittingBringsTheCanvasBackToTheMiddle) {
    open();
    const double fitted = model().config().zoom;
    for (const int notch : {480, -480}) {
        const QPointF at = QPointF(middle()) + QPointF(notch > 0 ? 60 : -40, 30);
        QWheelEvent event(at, window().mapToGlobal(at), {}, {0, notch}, Qt::NoButton, {}, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(&window(), &event);
    }
    EXPECT_NEAR(model().config().zoom, fitted, 1e-9);
    const QPointF centre = QPointF(canvas().width(), canvas().height()) / 2;
    EXPECT_NE(canvas().viewport().canvasCentre(), centre);
    key(Qt::Key_0, Qt::ControlModifier);
    queue.advance(0.2);
    EXPECT_EQ(canvas().viewport().canvasCentre(), centre);
}

TEST_F(EditorInput, TheZoomShownGoesToActualSizeAndBackToWhatFits) {
    open(picture(3000, 2000));
    const double fitted = model().config().zoom;
    ASSERT_LT(fitted, 50);
    QQuickItem* button = item(QStringLiteral("zoom.text"));
    ASSERT_TRUE(button);
    EXPECT_EQ(button->property("text"), QStringLiteral("%1%").arg(qRound(fitted)));
    const auto click = [&] {
        QTest::mouseClick(&window(), Qt::LeftButton, {},
                          button->mapToScene({button->width() / 2, button->height() / 2}).toPoint());
        queue.advance(0.2);
    };
    click();
    EXPECT_EQ(model().config().zoom, 100);
    click();
    EXPECT_EQ(model().config().zoom, fitted);
}

TEST_F(EditorInput, APictureDroppedOnTheCanvasBecomesTheBackground) {
    open();
    model().set(QStringLiteral("backgroundType"), QStringLiteral("color"));
    QQuickItem* highlight = item(QStringLiteral("canvas.drop.highlight"));
    ASSERT_TRUE(highlight);
    const QUrl url = sea();
    EXPECT_TRUE(dragOver({url}, middle()));
    EXPECT_TRUE(highlight->isVisible());
    EXPECT_TRUE(drop({url}, middle()));
    finishImports();
    EXPECT_FALSE(highlight->isVisible());
    EXPECT_EQ(model().backgroundType(), QStringLiteral("image"));
    EXPECT_EQ(model().config().backgroundImageURL, url);
    EXPECT_EQ(model().selectedWallpaperURL(), url);
    EXPECT_EQ(model().wallpaperURLs().first(), url);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(model().backgroundType(), QStringLiteral("color"));
}

TEST_F(EditorInput, APictureDroppedOnTheWallpapersIsImported) {
    addTexture();
    open();
    model().set(QStringLiteral("backgroundType"), QStringLiteral("image"));
    QCoreApplication::processEvents();
    const QQuickItem* grid = item(QStringLiteral("wallpapers.drop"));
    ASSERT_TRUE(grid);
    const QUrl url = sea();
    EXPECT_TRUE(drop({notes(), url}, grid->mapToScene({40, 20}).toPoint()));
    finishImports();
    EXPECT_EQ(model().config().backgroundImageURL, url) << "the first that can be read";
    EXPECT_EQ(model().wallpaperURLs().size(), 2);
}

TEST_F(EditorInput, WhatIsNoPictureOfThisComputerChangesNothing) {
    open();
    const ScreenshotStyleConfig before = model().config();
    EXPECT_FALSE(dragOver({QUrl(QStringLiteral("https://example.org/a.png"))}, middle()));
    EXPECT_FALSE(item(QStringLiteral("canvas.drop.highlight"))->isVisible());
    EXPECT_FALSE(drop({QUrl(QStringLiteral("https://example.org/a.png"))}, middle()));
    EXPECT_EQ(background.startedCount, 0);
    // Which of these is one shows when it is read.
    drop({notes()}, middle());
    drop({QUrl::fromLocalFile(files.path())}, middle());
    EXPECT_EQ(background.startedCount, 2);
    finishImports();
    EXPECT_EQ(model().config(), before);
    EXPECT_FALSE(model().canUndo());
}

TEST_F(EditorInput, ATextFieldKeepsTheKeysOfEditingToItself) {
    open();
    model().set(QStringLiteral("backgroundType"), QStringLiteral("color"));
    session().colorPanel()->open(QStringLiteral("borderColor"));
    QCoreApplication::processEvents();
    auto* field = window().rootObject()->findChild<QQuickItem*>(QStringLiteral("colorPanel.hex"));
    if (field && !field->inherits("QQuickTextInput"))
        field = field->findChild<QQuickItem*>(QStringLiteral("colorPanel.hex"));
    ASSERT_TRUE(field && field->inherits("QQuickTextInput"));
    field->forceActiveFocus(Qt::TabFocusReason);
    const ScreenshotStyleConfig before = model().config();
    key(Qt::Key_C, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Y, Qt::ControlModifier);
    queue.runPending();
    EXPECT_EQ(model().config(), before);
    EXPECT_TRUE(pasteboard.written.isEmpty());
    ASSERT_NE(editor.editorWindow(), nullptr);
    key(Qt::Key_Escape);
    QCoreApplication::processEvents();
    ASSERT_NE(editor.editorWindow(), nullptr) << "leaving the field is not leaving the editor";
    EXPECT_FALSE(session().colorPanel()->isOpen());
    QTest::keyPress(&window(), Qt::Key_Space);
    EXPECT_TRUE(canvas().panKeyHeld()) << "the keys did not go with the field";
    QTest::keyRelease(&window(), Qt::Key_Space);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(model().config(), before);
}

} // namespace
} // namespace framora
