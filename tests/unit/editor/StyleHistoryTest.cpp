#include "unit/editor/ModelFixture.h"

#include "editor/model/StyleHistory.h"

#include <QSignalSpy>

namespace framora {
namespace {

/// A style with the history that its owner would keep.
class History : public testing::Test {
public:
    void write(const QString& field, auto change) {
        StyleHistory::State next = state;
        change(next);
        history.record(state, next, field, now);
        state = next;
    }
    void pad(double padding, const QString& field = QStringLiteral("padding")) {
        write(field, [&](StyleHistory::State& next) { next.config.padding = padding; });
    }
    bool undo() {
        const auto back = history.undo(state);
        state = back.value_or(state);
        return back.has_value();
    }
    bool redo() {
        const auto forth = history.redo(state);
        state = forth.value_or(state);
        return forth.has_value();
    }

    StyleHistory history;
    StyleHistory::State state{ScreenshotStyleConfig::shared(), {}, {}};
    double now = 1000;
};

TEST_F(History, IsEmptyAtFirst) {
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(history.canRedo());
    EXPECT_FALSE(undo());
    EXPECT_FALSE(redo());
}

TEST_F(History, GoesBackAndForthStepByStep) {
    pad(10, {});
    pad(20, {});
    EXPECT_TRUE(undo());
    EXPECT_EQ(state.config.padding, 10);
    EXPECT_TRUE(undo());
    EXPECT_EQ(state.config.padding, 80);
    EXPECT_FALSE(undo());
    EXPECT_TRUE(redo());
    EXPECT_TRUE(redo());
    EXPECT_EQ(state.config.padding, 20);
    EXPECT_FALSE(redo());
}

TEST_F(History, ANewChangeEndsWhatCouldBeRedone) {
    pad(10, {});
    undo();
    pad(20, {});
    EXPECT_FALSE(history.canRedo());
    undo();
    EXPECT_EQ(state.config.padding, 80);
}

TEST_F(History, EqualStatesAndTheZoomMakeNoStep) {
    pad(80);
    write(QStringLiteral("zoom"), [](auto& next) { next.config.zoom = 55; });
    EXPECT_FALSE(history.canUndo());
    pad(10);
    EXPECT_TRUE(history.canUndo());
}

TEST_F(History, TheHighlightedWallpaperIsPartOfAStep) {
    const QUrl sea(QStringLiteral("file:///sea.png"));
    write({}, [&](auto& next) { next.selectedWallpaperURL = sea; });
    EXPECT_TRUE(undo());
    EXPECT_TRUE(state.selectedWallpaperURL.isEmpty());
    EXPECT_TRUE(redo());
    EXPECT_EQ(state.selectedWallpaperURL, sea);
}

TEST_F(History, QuickWritesOfOneFieldAreOneStep) {
    for (int i = 1; i <= 10; ++i) {
        pad(i);
        now += 0.5;
    }
    EXPECT_TRUE(undo());
    EXPECT_EQ(state.config.padding, 80);
    EXPECT_FALSE(history.canUndo());
    EXPECT_TRUE(redo());
    EXPECT_EQ(state.config.padding, 10);
}

TEST_F(History, APauseOrAnotherFieldBeginsANewStep) {
    pad(10);
    now += 0.9;
    pad(20);
    write(QStringLiteral("rotationX"), [](auto& next) { next.config.rotationX = 5; });
    pad(30);
    for (const double padding : {20.0, 20.0, 10.0, 80.0}) {
        EXPECT_TRUE(undo());
        EXPECT_EQ(state.config.padding, padding);
    }
    EXPECT_FALSE(history.canUndo());
}

TEST_F(History, AClockThatIsSetBackJoinsNothing) {
    pad(10);
    now -= 3600;
    pad(20);
    undo();
    EXPECT_EQ(state.config.padding, 10);
}

TEST_F(History, AGestureIsOneStepHoweverLongItTakes) {
    history.beginEdit(QStringLiteral("padding"));
    for (int i = 1; i <= 10; ++i) {
        pad(i);
        now += 5;
    }
    history.endEdit();
    undo();
    EXPECT_EQ(state.config.padding, 80);
}

TEST_F(History, TwoGesturesAreTwoStepsHoweverSoonTheyFollow) {
    for (const double padding : {10.0, 20.0}) {
        history.beginEdit(QStringLiteral("padding"));
        pad(padding);
        history.endEdit();
    }
    pad(30);
    for (const double padding : {20.0, 10.0, 80.0}) {
        undo();
        EXPECT_EQ(state.config.padding, padding);
    }
}

TEST_F(History, AWriteOfAnotherFieldEndsAGestureThatNobodyEnded) {
    history.beginEdit(QStringLiteral("padding"));
    pad(10);
    write(QStringLiteral("rotationX"), [](auto& next) { next.config.rotationX = 5; });
    now += 5;
    pad(20);
    now += 5;
    pad(30);
    undo();
    EXPECT_EQ(state.config.padding, 20);
}

TEST_F(History, ADragBackToWhereItBeganLeavesNoStep) {
    history.beginEdit(QStringLiteral("padding"));
    pad(10);
    pad(80);
    EXPECT_FALSE(history.canUndo());
    pad(12);
    history.endEdit();
    EXPECT_TRUE(undo());
    EXPECT_EQ(state.config.padding, 80);
    EXPECT_FALSE(history.canUndo());
}

TEST_F(History, ADragBackToWhereItBeganKeepsWhatCanBeRedone) {
    pad(10, {});
    undo();
    for (int i = 0; i < 2; ++i) {
        history.beginEdit(QStringLiteral("padding"));
        pad(20);
        EXPECT_FALSE(history.canRedo());
        pad(30);
        pad(80);
        EXPECT_TRUE(history.canRedo());
        history.endEdit();
    }
    EXPECT_TRUE(redo());
    EXPECT_EQ(state.config.padding, 10);
    EXPECT_FALSE(history.canRedo());
}

TEST_F(History, AStepThatStaysEndsWhatCouldBeRedoneForGood) {
    pad(10, {});
    undo();
    history.beginEdit(QStringLiteral("padding"));
    pad(20);
    history.endEdit();
    pad(80);
    EXPECT_FALSE(history.canRedo()) << "a step of its own, back to the same padding";
    EXPECT_TRUE(undo());
    EXPECT_EQ(state.config.padding, 20);
}

TEST_F(History, AnUndoEndsTheBurstBeforeIt) {
    pad(10);
    pad(20);
    undo();
    pad(30);
    undo();
    EXPECT_EQ(state.config.padding, 80);
    EXPECT_FALSE(history.canUndo());
}

TEST_F(History, HoldsABoundedNumberOfSteps) {
    for (int i = 1; i <= 1000; ++i)
        pad(i, {});
    int steps = 0;
    while (undo())
        ++steps;
    EXPECT_EQ(steps, int(StyleHistory::capacity));
    EXPECT_EQ(state.config.padding, 1000 - int(StyleHistory::capacity)) << "the oldest went";
}

using UndoingTheModel = ModelFixture;

TEST_F(UndoingTheModel, DoesNotGoBehindTheTextureItStartedWith) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    EXPECT_FALSE(model->canUndo());
    model->undo();
    EXPECT_EQ(model->selectedWallpaperURL(), QUrl::fromLocalFile(texturePath));
}

TEST_F(UndoingTheModel, BringsBackHighlightAndPictureTogether) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    const QUrl texture = QUrl::fromLocalFile(texturePath);
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    model->importBackgroundImage(sea);
    finishImports();
    model->undo();
    EXPECT_EQ(model->selectedWallpaperURL(), texture);
    EXPECT_EQ(model->config().backgroundImageURL, texture);
    EXPECT_EQ(model->wallpaperImages().size(), 2U) << "what was imported stays on offer";
    model->redo();
    EXPECT_EQ(model->selectedWallpaperURL(), sea);
    EXPECT_EQ(model->config().backgroundImageURL, sea);
}

TEST_F(UndoingTheModel, LeavesTheZoomAlone) {
    const auto model = makeModel(picture(20, 10));
    model->setCanvasSize({400, 100});
    model->zoomIn();
    model->fitToWindow();
    queue.advance(0.2);
    EXPECT_FALSE(model->canUndo());
    model->set(QStringLiteral("padding"), 10.0);
    model->zoomTo(250);
    model->undo();
    EXPECT_EQ(model->config().padding, 80);
    EXPECT_EQ(model->config().zoom, 250);
    model->zoomIn();
    model->redo();
    EXPECT_EQ(model->config().padding, 10);
    EXPECT_EQ(model->config().zoom, 300);
}

/// What the editor view does around the drag: it moves `offset` along and asks for the new place at the end.
TEST_F(UndoingTheModel, PutsADraggedScreenshotBackWithItsOffsets) {
    const auto model = makeModel(picture(20, 10));
    const auto drag = [&](QSizeF by) {
        model->setOffset(model->lastOffset() + by);
        const Size at = model->config().screenshotOffset;
        model->setScreenshotOffset(QSizeF(at.width, at.height) + by);
        model->setLastOffset(model->offset());
    };
    drag({30, -10});
    drag({5, 5});
    model->undo();
    EXPECT_EQ(model->config().screenshotOffset, (Size{30, -10}));
    EXPECT_EQ(model->offset(), QSizeF(30, -10));
    EXPECT_EQ(model->lastOffset(), QSizeF(30, -10));
    model->undo();
    EXPECT_EQ(model->config().screenshotOffset, (Size{0, 0}));
    EXPECT_EQ(model->lastOffset(), QSizeF(0, 0));
    model->redo();
    model->redo();
    EXPECT_EQ(model->config().screenshotOffset, (Size{35, -5}));
    EXPECT_EQ(model->lastOffset(), QSizeF(35, -5));
}

TEST_F(UndoingTheModel, ABurstOfNudgesIsOneStep) {
    const auto model = makeModel(picture(20, 10));
    for (int i = 0; i < 5; ++i) {
        model->nudgeScreenshot({1, 0});
        queue.advance(0.1);
    }
    queue.advance(2);
    model->nudgeScreenshot({0, 10});
    EXPECT_EQ(model->config().screenshotOffset, (Size{5, 10}));
    EXPECT_EQ(model->offset(), QSizeF(5, 10));
    model->undo();
    EXPECT_EQ(model->config().screenshotOffset, (Size{5, 0}));
    EXPECT_EQ(model->lastOffset(), QSizeF(5, 0));
    model->undo();
    EXPECT_EQ(model->config().screenshotOffset, (Size{0, 0}));
    EXPECT_FALSE(model->canUndo());
}

TEST_F(UndoingTheModel, ASliderIsOneStepFromPressToRelease) {
    const auto model = makeModel(picture(20, 10));
    model->beginEdit(QStringLiteral("gradientConfig.angle"));
    for (int i = 0; i < 20; ++i) {
        model->set(QStringLiteral("gradientConfig.angle"), i * 3.0);
        queue.advance(1);
    }
    model->endEdit();
    model->undo();
    EXPECT_EQ(model->config(), ScreenshotStyleConfig::shared());
}

TEST_F(UndoingTheModel, ChoicesAndQuarterTurnsAreAStepEach) {
    const auto model = makeModel(picture(20, 10));
    for (const double degrees : {90.0, 180.0, 270.0})
        model->set(QStringLiteral("rotation"), degrees);
    for (const char* type : {"color", "gradient", "transparent"})
        model->set(QStringLiteral("backgroundType"), QString::fromLatin1(type));
    model->undo();
    EXPECT_EQ(model->backgroundType(), QStringLiteral("gradient"));
    model->undo();
    model->undo();
    model->undo();
    EXPECT_EQ(model->config().rotation, 180);
}

TEST_F(UndoingTheModel, EveryCommandThatChangesTheStyleIsAStep) {
    addTexture();
    const auto model = makeModel(picture(20, 10));
    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    const std::vector<std::function<void()>> commands{
        [&] { model->set(QStringLiteral("mockupStyle"), QStringLiteral("border")); },
        [&] { model->selectBorderStyle(QStringLiteral("round")); },
        [&] { model->set(QStringLiteral("rotation"), 90.0); },
        [&] { model->resetDisposition(); },
        [&] { model->selectMagicPreset(1); },
        [&] { model->pickCustomColor(Qt::red); },
        [&] { model->selectGradientPreset(3); },
        [&] { model->randomizeGradient(); },
        [&] { model->selectSocialPreset(2); },
        [&] { model->importBackgroundImage(sea); },
        [&] { model->selectWallpaper(QUrl::fromLocalFile(texturePath)); },
        [&] { model->dropBackgroundImages({sea}); },
        [&] {
            model->setScreenshotOffset({4, 5});
        },
    };
    std::vector<ScreenshotStyleConfig> states{model->config()};
    for (std::size_t i = 0; i < commands.size(); ++i) {
        commands[i]();
        finishImports();
        EXPECT_NE(model->config(), states.back()) << i;
        states.push_back(model->config());
    }
    for (std::size_t i = states.size() - 1; i-- > 0;) {
        model->undo();
        EXPECT_EQ(model->config(), states[i]) << i;
    }
    EXPECT_FALSE(model->canUndo());
    for (std::size_t i = 1; i < states.size(); ++i) {
        model->redo();
        EXPECT_EQ(model->config(), states[i]) << i;
    }
    EXPECT_FALSE(model->canRedo());
}

TEST_F(UndoingTheModel, TellsWhenThereIsSomethingToUndo) {
    const auto model = makeModel(picture(20, 10));
    QSignalSpy changes(model.get(), &ScreenshotEditorViewModel::historyChanged);
    model->set(QStringLiteral("padding"), 10.0);
    EXPECT_GE(changes.count(), 1);
    EXPECT_TRUE(model->canUndo());
    changes.clear();
    model->undo();
    EXPECT_GE(changes.count(), 1);
    EXPECT_FALSE(model->canUndo());
    EXPECT_TRUE(model->canRedo());
}

TEST_F(UndoingTheModel, ADropTakesItsFirstPictureAndShowsIt) {
    const auto model = makeModel(picture(20, 10));
    model->set(QStringLiteral("backgroundType"), QStringLiteral("color"));
    QFile text(files.filePath(QStringLiteral("notes.txt")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture");
    text.close();
    const QUrl notes = QUrl::fromLocalFile(text.fileName());
    const QUrl far(QStringLiteral("https://example.org/far.png"));
    const ScreenshotStyleConfig before = model->config();
    EXPECT_FALSE(model->dropBackgroundImages({}));
    EXPECT_FALSE(model->dropBackgroundImages({far}));
    EXPECT_EQ(background.startedCount, 0);
    EXPECT_TRUE(model->dropBackgroundImages({notes, far})) << "what is in it shows later";
    finishImports();
    EXPECT_EQ(model->config(), before);
    EXPECT_TRUE(model->wallpaperImages().empty());

    const QUrl sea = QUrl::fromLocalFile(writePicture(QStringLiteral("sea.png"), picture(10, 10)));
    const QUrl sky = QUrl::fromLocalFile(writePicture(QStringLiteral("sky.png"), picture(10, 10)));
    EXPECT_TRUE(model->dropBackgroundImages({notes, far, sea, sky}));
    finishImports();
    EXPECT_EQ(model->config().backgroundImageURL, sea);
    EXPECT_EQ(model->backgroundType(), QStringLiteral("image"));
    EXPECT_EQ(model->selectedWallpaperURL(), sea);
    EXPECT_EQ(model->wallpaperURLs(), QList<QUrl>{sea});
    EXPECT_EQ(shared, QList<QUrl>{sea});
    model->undo();
    EXPECT_EQ(model->config(), before) << "one step";
}

} // namespace
} // namespace framora
