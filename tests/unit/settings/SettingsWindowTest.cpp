#include "settings/window/QuickSettingsWindow.h"

#include "platform/Localized.h"
#include "platform/ProgramVersion.h"
#include "settings/views/SettingsSession.h"
#include "support/SettingsPlatform.h"
#include "unit/controls/ShownItems.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace framora {
namespace {

class SettingsWindowTest : public testing::Test {
protected:
    SettingsWindowTest() { platform.appearance.reducedMotion = true; } // what scrolls is there at once
    void open() {
        window = std::make_unique<QuickSettingsWindow>(platform.services(), [this] {
            ++closings;
            QTimer::singleShot(0, [this] { window.reset(); });
        });
        window->center();
        window->makeKeyAndOrderFront();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window->view()));
        // What the content does as it comes up is over.
        QCoreApplication::processEvents();
    }
    template <typename Item = QQuickItem> Item* find(const char* name) {
        return itemNamed(window->view().rootObject(), QLatin1String(name));
    }
    QString text(const char* name) {
        const auto* item = find(name);
        return item ? item->property("text").toString() : QStringLiteral("(not there)");
    }
    void click(const char* name) {
        QQuickItem* item = find(name);
        ASSERT_TRUE(item) << name;
        // Into view first, as a person would scroll.
        item->forceActiveFocus(Qt::TabFocusReason);
        QTest::mouseClick(&window->view(), Qt::LeftButton, {},
                          item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
    }
    void press(Qt::Key key) { QTest::keyClick(&window->view(), key); }
    Settings stored() { return Settings::load(platform.defaults); }

    SettingsPlatform platform;
    std::unique_ptr<QuickSettingsWindow> window;
    int closings = 0;
};

TEST_F(SettingsWindowTest, comesUpCentredInItsViewsSizeOverThePreferences) {
    open();
    const QScreen& screen = *window->view().screen();
    EXPECT_EQ(window->view().title(), QStringLiteral("Preferences"));
    EXPECT_EQ(platform.fronted, &window->view());
    EXPECT_LE(std::abs(window->view().frameGeometry().center().x() - screen.availableGeometry().center().x()),
              1);
    EXPECT_EQ(window->view().rootObject()->size(), QSizeF(window->view().size()));
    EXPECT_TRUE(find("hotKey.row"));
}

TEST_F(SettingsWindowTest, theSidebarLeadsToTheVersionAndBackToWhatIsStoredNow) {
    open();
    EXPECT_TRUE(find("showDockIcon.switch")->property("checked").toBool());
    click("tab.about");
    EXPECT_EQ(window->view().title(), QStringLiteral("About"));
    EXPECT_EQ(text("version"), programVersion());
    EXPECT_FALSE(find("hotKey.row"));
    // Somebody else saves while the form is away.
    Settings settings;
    settings.showDockIcon = false;
    settings.soundEffectsVolume = 0.25;
    settings.save(platform.defaults, platform.notifications);
    click("tab.settings");
    EXPECT_EQ(window->view().title(), QStringLiteral("Preferences"));
    EXPECT_FALSE(find("version"));
    EXPECT_FALSE(find("showDockIcon.switch")->property("checked").toBool());
    EXPECT_EQ(text("volume.percent"), QStringLiteral("25%"));
}

TEST_F(SettingsWindowTest, theScrollBarShowsForAMomentThatAPageGoesOnBelow) {
    open();
    const auto shows = [this] {
        const QQuickItem* bar = find("pane.bar");
        return bar && bar->opacity() > 0.5 && bar->width() > 3 && bar->height() > 20;
    };
    const auto isGone = [this] {
        const QQuickItem* bar = find("pane.bar");
        return bar && bar->opacity() == 0;
    };
    EXPECT_TRUE(QTest::qWaitFor(shows));
    EXPECT_TRUE(QTest::qWaitFor(isGone));
    click("tab.about");
    EXPECT_FALSE(QTest::qWaitFor(shows, 100)) << "all of it is in view";
    click("tab.settings");
    EXPECT_TRUE(QTest::qWaitFor(shows));
}

TEST_F(SettingsWindowTest, everySwitchTurnsItsSetting) {
    open();
    click("showDockIcon.switch");
    EXPECT_FALSE(stored().showDockIcon);
    click("copyToClipboard.switch");
    EXPECT_FALSE(stored().copyToClipboard);
    click("soundEnabled.switch");
    EXPECT_FALSE(stored().soundEffectsEnabled);
    click("startsAtLogin.switch");
    EXPECT_TRUE(platform.loginItem.enabled);
    click("showDockIcon.switch");
    EXPECT_TRUE(stored().showDockIcon) << "and back";
    platform.loginItem.isReadOnly = true;
    click("startsAtLogin.switch");
    EXPECT_TRUE(find("startsAtLogin.switch")->property("checked").toBool()) << "what could not be stored";
}

TEST_F(SettingsWindowTest, whereTheTaskBarIsNoChoiceItsSwitchIsOnDeadAndSaysWhy) {
    Settings hidden;
    hidden.showDockIcon = false;
    hidden.save(platform.defaults, platform.notifications);
    platform.canHideDockIcon = false;
    open();
    EXPECT_EQ(find("showDockIcon")->property("description").toString(),
              localized(QStringLiteral("dock.icon.always")));
    EXPECT_TRUE(find("showDockIcon.switch")->property("checked").toBool());
    click("showDockIcon.switch");
    EXPECT_TRUE(find("showDockIcon.switch")->property("checked").toBool());
    EXPECT_FALSE(stored().showDockIcon) << "what another session is to have stays";

    window.reset();
    platform.canHideDockIcon = true;
    open();
    EXPECT_EQ(find("showDockIcon")->property("description").toString(), QString());
    EXPECT_FALSE(find("showDockIcon.switch")->property("checked").toBool());
}

TEST_F(SettingsWindowTest, theVolumeRunsByTheKeyboardToItsEnds) {
    open();
    find("volume.slider")->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_EQ(stored().soundEffectsVolume, 1.0);
    EXPECT_EQ(text("volume.percent"), QStringLiteral("100%"));
    press(Qt::Key_Left);
    EXPECT_EQ(text("volume.percent"), QStringLiteral("99%"));
    press(Qt::Key_Home);
    EXPECT_EQ(stored().soundEffectsVolume, 0.0);
}

TEST_F(SettingsWindowTest, theSoundIsChosenAndTried) {
    open();
    find("captureSound")->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    EXPECT_EQ(stored().captureSound, CaptureSound::funk) << "the one after Frog";
    click("testSound");
    EXPECT_EQ(platform.played, (std::vector<std::pair<CaptureSound, float>>{{CaptureSound::funk, 0.5f}}));
}

TEST_F(SettingsWindowTest, aRowRecordsByClickSpaceAndReturn) {
    open();
    click("hotKey.row");
    EXPECT_EQ(platform.keys.recordings.size(), 1u);
    platform.keys.pressHere({53, 0});
    EXPECT_TRUE(platform.keys.recordings.empty());

    find("tabCaptureHotKey.row")->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(platform.keys.recordings.size(), 1u);
    platform.keys.pressHere({53, 0});
    QTest::keyPress(&window->view(), Qt::Key_Return);
    EXPECT_TRUE(platform.keys.recordings.empty()) << "held down, it would be recorded itself";
    QTest::keyRelease(&window->view(), Qt::Key_Return);
    EXPECT_EQ(platform.keys.recordings.size(), 1u);
    platform.keys.pressHere({7, KeyModifier::control});
    EXPECT_EQ(stored().tabCaptureHotkey, (HotkeyConfiguration{7, KeyModifier::control}));
}

TEST_F(SettingsWindowTest, theTabKeyGoesThroughEveryControlAndKeepsItInView) {
    open();
    window->view().resize(window->view().width(), 420);
    std::set<QString> reached;
    for (int presses = 0; presses < 40; ++presses) {
        press(Qt::Key_Tab);
        QQuickItem* item = window->view().activeFocusItem();
        ASSERT_TRUE(item);
        if (item->objectName().isEmpty())
            continue;
        reached.insert(item->objectName());
        const QRectF place = item->mapRectToScene(item->boundingRect());
        EXPECT_TRUE(QRectF(0, 0, window->view().width(), window->view().height()).contains(place))
            << item->objectName().toStdString();
    }
    for (const char* name :
         {"window.close", "sidebar.toggle", "tab.settings", "tab.about", "hotKey.row", "tabCaptureHotKey.row",
          "showDockIcon.switch", "copyToClipboard.switch", "startsAtLogin.switch", "soundEnabled.switch",
          "captureSound", "testSound", "volume.slider", "accessibility.allow"})
        EXPECT_TRUE(reached.contains(QLatin1String(name))) << name;
}

TEST_F(SettingsWindowTest, aPressIntoALineOfTextLeavesItWhereItIs) {
    platform.permissions.forget = QStringLiteral("busctl --user call");
    open();
    platform.queue.advance(1.1);
    window->view().resize(window->view().width(), 420);
    QTest::qWait(50);
    const QQuickItem& row = *find("screenRecording.forget");
    ASSERT_TRUE(row.isVisible());
    QQuickItem* text = nullptr;
    for (QQuickItem* child : row.childItems())
        if (child->inherits("QQuickTextEdit"))
            text = child;
    ASSERT_TRUE(text);
    QQuickItem& pane = *find("pane");
    // Its upper edge lies at the pane's.
    pane.setProperty("contentY", text->mapToItem(&pane, QPointF(0, -2)).y());
    const double before = pane.property("contentY").toDouble();
    ASSERT_GT(before, 0);
    QTest::mousePress(&window->view(), Qt::LeftButton, {}, text->mapToScene({4, 4}).toPoint());
    EXPECT_TRUE(text->hasActiveFocus());
    EXPECT_EQ(pane.property("contentY").toDouble(), before);
    QTest::mouseRelease(&window->view(), Qt::LeftButton, {}, text->mapToScene({4, 4}).toPoint());
}

TEST_F(SettingsWindowTest, escapeClosesItInATurnOfItsOwn) {
    open();
    press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return closings == 1; }));
    EXPECT_FALSE(window);
}

TEST_F(SettingsWindowTest, closingWhileItRecordsLeavesNoMonitor) {
    open();
    click("hotKey.row");
    ASSERT_EQ(platform.keys.recordings.size(), 1u);
    click("window.close");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window; }));
    EXPECT_TRUE(platform.keys.recordings.empty());
}

TEST_F(SettingsWindowTest, leavingThePaneWhileItRecordsLeavesNoMonitor) {
    open();
    click("hotKey.row");
    ASSERT_EQ(platform.keys.recordings.size(), 1u);
    click("tab.about");
    EXPECT_TRUE(QTest::qWaitFor([&] { return platform.keys.recordings.empty(); }));
}

TEST_F(SettingsWindowTest, aStoredDenialComesWithALineToCopy) {
    open();
    ASSERT_TRUE(find("screenRecording.forget"));
    EXPECT_FALSE(find("screenRecording.forget")->isVisible());
    platform.permissions.forget = QStringLiteral(
        "busctl --user call org.freedesktop.impl.portal.PermissionStore "
        "/org/freedesktop/impl/portal/PermissionStore org.freedesktop.impl.portal.PermissionStore "
        "DeletePermission sss screenshot screenshot org.framora.Framora");
    platform.queue.advance(1.1);
    EXPECT_TRUE(find("screenRecording.forget")->isVisible());
    click("screenRecording.forget.copy");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), platform.permissions.forget);
    platform.permissions.recording = true;
    platform.queue.advance(1.1);
    EXPECT_FALSE(find("screenRecording.forget")->isVisible());
}

TEST_F(SettingsWindowTest, thePermissionsShowTheirStateWhileTheyAreOnScreen) {
    platform.permissions.recording = true;
    open();
    ASSERT_TRUE(find("accessibility.allow"));
    EXPECT_TRUE(find("accessibility.allow")->isVisible());
    EXPECT_TRUE(find("screenRecording.granted")->isVisible());
    click("accessibility.allow");
    platform.queue.advance(0.6);
    EXPECT_EQ(platform.panes.tried, (std::vector<std::string>{"page accessibility"}));
    platform.permissions.trusted = true;
    platform.queue.advance(1);
    EXPECT_FALSE(find("accessibility.allow")->isVisible());
    EXPECT_TRUE(find("accessibility.granted")->isVisible());
    click("tab.about");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const int checks = platform.permissions.checks;
    platform.notifications.post(notifications::permissionsStatusChanged);
    platform.queue.advance(5);
    EXPECT_EQ(platform.permissions.checks, checks) << "off screen nothing is asked";
    click("tab.settings");
    EXPECT_FALSE(find("accessibility.allow")) << "there was nothing missing as the form was made";
}

TEST_F(SettingsWindowTest, theAlertHasOneButtonThatPutsItAway) {
    platform.panes.working.clear();
    open();
    click("accessibility.allow");
    platform.queue.advance(0.6);
    QQuickItem* overlay = window->view().contentItem();
    const auto ok = [&]() -> QQuickItem* { return itemNamed(overlay, QStringLiteral("alert.ok")); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return ok() && ok()->isVisible() && ok()->hasActiveFocus(); }));
    const QQuickItem& alert = *ok()->parentItem()->parentItem();
    EXPECT_EQ(
        shownTexts(alert),
        (QStringList{QStringLiteral("Permissions Required"),
                     QStringLiteral("Framora needs accessibility permissions to function. Please allow the "
                                    "app in System Settings > Privacy & Security > Accessibility."),
                     QStringLiteral("OK")}));
    EXPECT_EQ(shownBelow(alert, "QQuickAbstractButton", "text").size(), 1);
    press(Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !ok() || !ok()->isVisible(); }));
    EXPECT_EQ(closings, 0);
}

TEST_F(SettingsWindowTest, theDetailsForAReportAreCopied) {
    platform.componentVersions.versions = {QStringLiteral("libheif 1.2.3"), QStringLiteral("FFmpeg 4.5")};
    open();
    click("tab.about");
    QCoreApplication::processEvents();
    click("copyDetails");
    const QStringList lines = QGuiApplication::clipboard()->text().split(u'\n');
    ASSERT_GE(lines.size(), 5);
    EXPECT_EQ(lines[0], QStringLiteral("Framora ") + programVersion());
    EXPECT_EQ(lines[1], QStringLiteral("Qt ") + QLatin1String(qVersion()));
    EXPECT_EQ(lines[2], QStringLiteral("libheif 1.2.3"));
    EXPECT_EQ(lines[3], QStringLiteral("FFmpeg 4.5"));
    EXPECT_EQ(text("details"), lines.join(u'\n'));
}

TEST_F(SettingsWindowTest, followsTheDesktopsLook) {
    open();
    platform.appearance.dark = true;
    platform.appearance.accent = Qt::red;
    platform.notifications.post(notifications::appearanceChanged);
    EXPECT_TRUE(window->view().rootObject()->property("dark").toBool());
    EXPECT_EQ(window->view().rootObject()->property("accent").value<QColor>(), QColor(Qt::red));
}

TEST_F(SettingsWindowTest, openedAndClosedFiftyTimesItLeavesNothingBehind) {
    for (int round = 0; round < 50; ++round) {
        open();
        QPointer<QQuickView> view = &window->view();
        QPointer<QQmlEngine> engine = view->engine();
        if (round % 2)
            click("tab.about");
        else
            click("hotKey.row");
        window->view().close();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window; }));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_FALSE(view);
        EXPECT_FALSE(engine);
        EXPECT_TRUE(platform.keys.recordings.empty());
    }
    EXPECT_EQ(closings, 50);
    EXPECT_TRUE(QGuiApplication::topLevelWindows().isEmpty());
    platform.queue.runPending();
    EXPECT_EQ(platform.queue.waitingCount(), 0u) << "no timer runs on";
    const int checks = platform.permissions.checks;
    platform.notifications.post(notifications::applicationDidBecomeActive);
    platform.queue.advance(3);
    EXPECT_EQ(platform.permissions.checks, checks) << "nobody listens any more";
}

} // namespace
} // namespace framora
