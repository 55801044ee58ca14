#include "unit/editor/ModelFixture.h"

#include "editor/views/EditorSession.h"
#include "editor/views/Presets.h"
#include "platform/Notifications.h"

#include <QSignalSpy>

namespace framora {
namespace {

class Session : public ModelFixture {
public:
    Session() { start(picture(60, 40)); }

    void start(const QImage& image) {
        session = std::make_unique<EditorSession>(
            makeModel(image), notifications, QVariantList(),
            EditorSession::Actions{[this](const QImage& copiedImage) { copied.append(copiedImage); },
                                   [this] { ++closeCount; },
                                   [this](const QString& identifier) { triggered.append(identifier); },
                                   [this](std::function<void()> work) { queue.async(std::move(work)); }});
    }
    ScreenshotEditorViewModel& model() { return *session->viewModel(); }

    NotificationCenter notifications;
    QList<QImage> copied;
    int closeCount = 0;
    QStringList triggered;
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
