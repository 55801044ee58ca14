#include "unit/editor/ModelFixture.h"

#include "editor/model/RecentColors.h"
#include "editor/views/EditorSession.h"
#include "editor/views/Presets.h"
#include "platform/Notifications.h"
#include "support/MemoryDefaults.h"

#include <QSignalSpy>

namespace framora {
namespace {

class Session : public ModelFixture {
public:
    Session() { start(picture(60, 40)); }

    void start(const QImage& image) {
        session = std::make_unique<EditorSession>(
            makeModel(image), notifications, QVariantList(),
            EditorSession::Actions{
                [this](const QImage& copiedImage) { copied.append(copiedImage); },
                [this] { ++closeCount; },
                [this](const QString& identifier) { triggered.append(identifier); },
                [this](std::function<void()> work) { queue.async(std::move(work)); },
                {},
                {},
                [this](ScreenColorPicker::Picked answer) { asked.push_back(std::move(answer)); }},
            recentColors);
    }
    ScreenshotEditorViewModel& model() { return *session->viewModel(); }

    NotificationCenter notifications;
    QList<QImage> copied;
    int closeCount = 0;
    QStringList triggered;
    std::vector<ScreenColorPicker::Picked> asked;
    MemoryDefaults defaults;
    RecentColors recentColors{&defaults};
    std::unique_ptr<EditorSession> session;
};

TEST_F(Session, StartsOnTheSecondTabWithItsSidebarShown) {
    EXPECT_EQ(session->property("selectedTab"), 1);
    EXPECT_EQ(session->property("sidebarVisible"), true);
    EXPECT_EQ(session->property("isDraggingScreenshot"), false);
}

TEST_F(Session, ACopyNotificationHandsOverTheRenderedPicture) {
    notifications.post(notifications::editorToolbarCopy);
    ASSERT_EQ(copied.size(), 1);
    EXPECT_EQ(copied[0], model().renderFinalImage());
}

TEST_F(Session, ACopyNotificationWithoutAPictureCallsNothing) {
    change(model(), [](auto& config) { config.scale = 0; });
    notifications.post(notifications::editorToolbarCopy);
    EXPECT_TRUE(copied.isEmpty());
}

TEST_F(Session, AnswersEveryNotificationOfTheToolbar) {
    panels.answer = QUrl::fromLocalFile(files.filePath(QStringLiteral("out.png")));
    notifications.post(notifications::editorToolbarSave);
    EXPECT_EQ(panels.saveCount, 1);
    change(model(), [](auto& config) {
        config.rotation = 90;
        config.zoom = 50;
    });
    notifications.post(notifications::editorToolbarReset);
    EXPECT_EQ(model().config().rotation, 0);
    notifications.post(notifications::editorToolbarZoomActual);
    EXPECT_EQ(model().config().zoom, 100);
    model().setCanvasSize({400, 100});
    notifications.post(notifications::editorToolbarZoomFit);
    queue.advance(0.1);
    EXPECT_LT(model().config().zoom, 100);
}

TEST_F(Session, StopsAnsweringWhenItsWindowGoes) {
    session->endObserving();
    notifications.post(notifications::editorToolbarCopy);
    EXPECT_TRUE(copied.isEmpty());
}

TEST_F(Session, PostsTheWindowsCommands) {
    QStringList posted;
    const auto first =
        notifications.observe(notifications::editorMiniaturize, [&] { posted.append(u"minimize"_qs); });
    const auto second =
        notifications.observe(notifications::editorZoomWindow, [&] { posted.append(u"zoom"_qs); });
    session->miniaturize();
    session->zoomWindow();
    session->close();
    session->triggerToolbarItem(u"CopyItem"_qs);
    EXPECT_TRUE(triggered.isEmpty()) << "not out of a view's own handler";
    queue.runPending();
    EXPECT_EQ(posted, (QStringList{u"minimize"_qs, u"zoom"_qs}));
    EXPECT_EQ(closeCount, 1);
    EXPECT_EQ(triggered, QStringList{u"CopyItem"_qs});
}

TEST_F(Session, ImportsInALaterTurnUnlessTheEditorIsGoneByThen) {
    panels.answer = QUrl::fromLocalFile(writePicture(u"sea.png"_qs, picture(10, 10)));
    session->importBackgroundImage();
    EXPECT_TRUE(model().wallpaperImages().empty());
    queue.runPending();
    finishImports();
    EXPECT_EQ(model().wallpaperImages().size(), 1U);
    panels.openMessage.clear();
    session->importBackgroundImage();
    session.reset();
    queue.runPending();
    EXPECT_TRUE(panels.openMessage.isEmpty());
}

TEST_F(Session, TheColourPanelOpensOnWhiteForAClearColour) {
    ColorPanelBridge& panel = *session->colorPanel();
    model().selectMagicPreset(0);
    panel.open(u"customColor"_qs);
    EXPECT_TRUE(panel.isOpen());
    EXPECT_EQ(panel.color(), QColor(Qt::white));
    EXPECT_EQ(model().magicPresetIndex(), 0) << "opening chooses nothing";
}

TEST_F(Session, TheColourPanelReportsEveryChangeAsItHappens) {
    ColorPanelBridge& panel = *session->colorPanel();
    model().selectMagicPreset(0);
    panel.open(u"customColor"_qs);
    panel.setColor(QColor(1, 2, 3));
    EXPECT_EQ(model().customColor(), QColor(1, 2, 3));
    EXPECT_EQ(model().magicPresetIndex(), -1);
    panel.setHsv(0, 1, 1);
    EXPECT_EQ(model().customColor(), QColor(Qt::red));
}

TEST_F(Session, OneColourPanelServesEveryColourInTurn) {
    ColorPanelBridge& panel = *session->colorPanel();
    const ScreenshotStyleConfig before = model().config();
    panel.open(u"borderColor"_qs);
    EXPECT_EQ(panel.color(), QColor(0x2d, 0x2d, 0x2d));
    panel.open(u"gradientConfig.color2"_qs);
    panel.setColor(Qt::green);
    EXPECT_EQ(model().gradientColor2(), QColor(Qt::green));
    EXPECT_EQ(model().config().borderColor, before.borderColor);
    panel.close();
    panel.setColor(Qt::blue);
    EXPECT_EQ(model().gradientColor2(), QColor(Qt::green));
    panel.open(u"padding"_qs);
    EXPECT_FALSE(panel.isOpen()) << "not a colour";
}

TEST_F(Session, AGreyKeepsThePanelsHue) {
    ColorPanelBridge& panel = *session->colorPanel();
    panel.open(u"borderColor"_qs);
    panel.setHsv(0.6, 1, 1);
    panel.setColor(QColor(80, 80, 80));
    EXPECT_NEAR(panel.hue(), 0.6, 1e-9);
    EXPECT_EQ(model().borderColor(), QColor(80, 80, 80));
}

TEST_F(Session, AColourIsRecentOnceItsPanelIsLeft) {
    ColorPanelBridge& panel = *session->colorPanel();
    QSignalSpy changes(&panel, &ColorPanelBridge::recentColorsChanged);
    panel.open(u"borderColor"_qs);
    panel.setColor(Qt::red);
    panel.setColor(Qt::green);
    EXPECT_EQ(panel.recentColors(), QStringList()) << "not every one on the way";
    panel.open(u"customColor"_qs);
    EXPECT_EQ(panel.recentColors(), QStringList{u"#00ff00"_qs});
    panel.setColor(Qt::blue);
    panel.close();
    EXPECT_EQ(panel.recentColors(), (QStringList{u"#0000ff"_qs, u"#00ff00"_qs}));
    EXPECT_EQ(changes.size(), 2);
}

TEST_F(Session, AColourThatIsOnlyLookedAtIsNotRecent) {
    ColorPanelBridge& panel = *session->colorPanel();
    panel.open(u"borderColor"_qs);
    panel.close();
    panel.open(u"borderColor"_qs);
    panel.setColor(Qt::red);
    model().undo();
    panel.close();
    EXPECT_EQ(panel.recentColors(), QStringList());
}

TEST_F(Session, OnlyThePanelsOwnChoicesAreRecent) {
    ColorPanelBridge& panel = *session->colorPanel();
    panel.open(u"borderColor"_qs);
    model().set(u"borderColor"_qs, QColor(1, 2, 3));
    ASSERT_EQ(panel.color(), QColor(1, 2, 3));
    panel.close();
    EXPECT_EQ(panel.recentColors(), QStringList());
    panel.open(u"borderColor"_qs);
    panel.setColor(Qt::red);
    model().set(u"borderColor"_qs, QColor(4, 5, 6));
    panel.close();
    EXPECT_EQ(panel.recentColors(), QStringList()) << "it shows another one by now";
    panel.open(u"borderColor"_qs);
    model().set(u"borderColor"_qs, QColor(7, 8, 9));
    panel.setColor(Qt::green);
    panel.close();
    EXPECT_EQ(panel.recentColors(), QStringList{u"#00ff00"_qs});
}

TEST_F(Session, RecentColoursOutliveTheEditor) {
    session->colorPanel()->open(u"borderColor"_qs);
    session->colorPanel()->setColor(Qt::red);
    session.reset();
    start(picture(60, 40));
    EXPECT_EQ(session->colorPanel()->recentColors(), QStringList{u"#ff0000"_qs});
}

TEST_F(Session, TheScreensColourGoesWhereThePanelEdits) {
    ColorPanelBridge& panel = *session->colorPanel();
    EXPECT_FALSE(panel.canPickFromScreen());
    session->setCanPickFromScreen(true);
    EXPECT_TRUE(panel.canPickFromScreen());
    panel.pickFromScreen();
    EXPECT_TRUE(asked.empty()) << "there is no panel";
    panel.open(u"borderColor"_qs);
    panel.pickFromScreen();
    panel.pickFromScreen();
    ASSERT_EQ(asked.size(), 1U) << "one at a time";
    EXPECT_TRUE(panel.isPickingFromScreen());
    asked[0](QColor(12, 34, 56));
    EXPECT_FALSE(panel.isPickingFromScreen());
    EXPECT_EQ(model().borderColor(), QColor(12, 34, 56));
    EXPECT_EQ(panel.recentColors(), QStringList{u"#0c2238"_qs});
    model().undo();
    EXPECT_EQ(model().borderColor(), QColor(0x2d, 0x2d, 0x2d)) << "one step";
}

TEST_F(Session, NoPixelNoColour) {
    ColorPanelBridge& panel = *session->colorPanel();
    session->setCanPickFromScreen(true);
    panel.open(u"borderColor"_qs);
    panel.pickFromScreen();
    asked[0](std::nullopt);
    EXPECT_FALSE(panel.isPickingFromScreen());
    EXPECT_FALSE(model().canUndo());
    panel.pickFromScreen();
    panel.open(u"customColor"_qs);
    asked[1](QColor(Qt::red));
    EXPECT_EQ(model().customColor(), QColor(Qt::white)) << "it was meant for another field";
    panel.pickFromScreen();
    session.reset();
    asked[2](QColor(Qt::red));
}

TEST(RecentColors, AreTheLastEightWithTheNewestFirstAndNoneTwice) {
    RecentColors recent(nullptr);
    for (int i = 0; i < 10; ++i)
        recent.add(QColor(i, 0, 0));
    ASSERT_EQ(recent.names().size(), 8);
    EXPECT_EQ(recent.names().first(), u"#090000"_qs);
    EXPECT_EQ(recent.names().last(), u"#020000"_qs);
    recent.add(QColor(4, 0, 0));
    EXPECT_EQ(recent.names().size(), 8);
    EXPECT_EQ(recent.names().first(), u"#040000"_qs);
    EXPECT_EQ(recent.names().count(u"#040000"_qs), 1);
    recent.add(QColor(0, 0, 0, 0));
    EXPECT_EQ(recent.names().first(), u"#040000"_qs) << "a clear one is none";
}

TEST(RecentColors, ComeBackInTheNextRun) {
    MemoryDefaults defaults;
    defaults.values["Settings"] = "{}";
    RecentColors(&defaults).add(QColor(1, 2, 3));
    RecentColors(&defaults).add(QColor(4, 5, 6));
    EXPECT_EQ(RecentColors(&defaults).names(), (QStringList{u"#040506"_qs, u"#010203"_qs}));
    EXPECT_EQ(defaults.values["Settings"], "{}");
}

TEST(RecentColors, TakeNothingOddFromTheStore) {
    MemoryDefaults defaults;
    for (const char* odd :
         {"", "null", "{}", "[1, \"no colour\", \"#80ff0000\", [], \"#010203\", \"#010203\"]"}) {
        defaults.values[RecentColors::key] = odd;
        const QStringList names = RecentColors(&defaults).names();
        EXPECT_EQ(names, odd[0] == '[' ? QStringList{u"#010203"_qs} : QStringList()) << odd;
    }
}

TEST(Presets, GroupTheExportSizesByPlatformInTheirOrder) {
    const QVariantList platforms = Presets().socialPlatforms();
    QStringList names;
    int count = 0;
    for (const QVariant& platform : platforms) {
        names.append(platform.toMap()[u"platform"_qs].toString());
        for (const QVariant& preset : platform.toMap()[u"presets"_qs].toList())
            EXPECT_EQ(preset.toMap()[u"index"_qs].toInt(), count++);
    }
    EXPECT_EQ(count, 18);
    EXPECT_EQ(names, (QStringList{u"Twitter"_qs, u"YouTube"_qs, u"Instagram"_qs, u"Pinterest"_qs,
                                  u"Dribbble"_qs, u"LinkedIn"_qs, u"Standard"_qs}));
}

TEST(Presets, ShowTheColoursInUse) {
    const QVariantList gradients = Presets().gradientPresets();
    ASSERT_EQ(gradients.size(), 5);
    EXPECT_EQ(gradients[0].toMap()[u"colors"_qs].toList().size(), 2);
    EXPECT_EQ(gradients[4].toMap()[u"colors"_qs].toList().size(), 3);
    EXPECT_EQ(Presets().magicPresets().size(), 5);
}

} // namespace
} // namespace framora
