#include "pictures/Drawn.h"
#include "settings/Settings.h"
#include "settings/window/QuickSettingsWindow.h"
#include "support/SettingsPlatform.h"

#include <QQuickView>
#include <QTest>

namespace framora {
namespace {

class SettingsPictures : public testing::Test {
public:
    static void SetUpTestSuite() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }

    SettingsPictures() {
        platform.appearance.reducedMotion = true;
        // What a US keyboard prints on the keys of the stored shortcuts.
        platform.layout.texts = {{21, QStringLiteral("4")}, {17, QStringLiteral("T")}};
        platform.componentVersions.versions = {QStringLiteral("libheif 1.15.1"),
                                               QStringLiteral("FFmpeg 5.1.6")};
    }

    QQuickView& view() { return window->view(); }

    /// Runs `show` in a light and in a dark window.
    void inBothAppearances(const std::function<void()>& show) {
        for (const bool dark : {false, true}) {
            platform.appearance.dark = dark;
            window = std::make_unique<QuickSettingsWindow>(platform.services(), [] {});
            window->makeKeyAndOrderFront();
            if (!windowSize.isEmpty())
                view().resize(windowSize);
            ASSERT_TRUE(QTest::qWaitForWindowActive(&view()));
            settle();
            show();
            window.reset();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    void settle(int milliseconds = 20) {
        QTest::qWait(milliseconds);
        platform.queue.runPending();
    }
    QPoint centreOf(const char* name) {
        QQuickItem* found = drawn::find(view().contentItem(), QString::fromLatin1(name));
        EXPECT_TRUE(found) << name;
        if (!found)
            return {};
        // Into view first, as a person would scroll.
        found->forceActiveFocus(Qt::MouseFocusReason);
        return found->mapToScene({found->width() / 2, found->height() / 2}).toPoint();
    }
    void click(const char* name) {
        QTest::mouseClick(&view(), Qt::LeftButton, {}, centreOf(name));
        leaveControls();
    }
    void leaveControls() {
        QTest::mouseMove(&view(), QPoint(view().width() / 2, 20));
        settle();
    }
    void save(const char* name) {
        settle();
        drawn::save(view(), folder, QLatin1String(name), windowSize.isEmpty() ? QSize(748, 648) : windowSize,
                    platform.appearance.dark);
    }

    drawn::Complaints complaints;
    SettingsPlatform platform;
    QSize windowSize; ///< Empty is the window's own.
    std::unique_ptr<QuickSettingsWindow> window;
    QDir folder = drawn::folder(QStringLiteral("settings"));
};

TEST_F(SettingsPictures, OfTheFormWithEverythingGiven) {
    platform.permissions.trusted = true;
    platform.permissions.recording = true;
    inBothAppearances([this] {
        save("form");
        view().rootObject()->forceActiveFocus();
        QTest::mouseMove(&view(), centreOf("volume.slider"));
        save("form-end-hovered-slider");
        QTest::keyClick(&view(), Qt::Key_Tab, Qt::ShiftModifier);
        leaveControls();
        save("form-end-focused-button");
        click("captureSound");
        settle(250);
        save("form-sounds");
    });
}

TEST_F(SettingsPictures, OfARecordingAndOfAConflict) {
    platform.permissions.trusted = true;
    platform.permissions.recording = true;
    Settings settings;
    settings.tabCaptureHotkey = settings.hotkey;
    settings.save(platform.defaults, platform.notifications);
    inBothAppearances([this] {
        save("shortcuts-conflict");
        click("hotKey.row");
        save("shortcuts-recording");
        platform.keys.pressHere(
            {56, KeyModifier::shift | KeyModifier::control | KeyModifier::option | KeyModifier::command,
             KeyEventType::modifiersChanged});
        save("shortcuts-recording-modifiers");
        platform.keys.pressHere({53, 0});
    });
}

TEST_F(SettingsPictures, OfAKeyOnItsOwn) {
    platform.permissions.trusted = true;
    platform.permissions.recording = true;
    platform.layout.texts[0] = QStringLiteral("a");
    Settings settings;
    settings.hotkey = {0, 0};
    settings.tabCaptureHotkey = {17, 0};
    settings.save(platform.defaults, platform.notifications);
    inBothAppearances([this] { save("shortcuts-bare-key"); });
}

TEST_F(SettingsPictures, OfThePermissions) {
    inBothAppearances([this] {
        platform.permissions = {};
        platform.panes.working.clear();
        platform.notifications.post(notifications::permissionsStatusChanged);
        save("permissions-missing");
        click("accessibility.allow");
        platform.queue.advance(0.6);
        settle(250);
        save("permissions-alert");
        QTest::keyClick(&view(), Qt::Key_Escape);
        settle(250);
        platform.permissions.recording = true;
        platform.queue.advance(1.1);
        save("permissions-one-given");
    });
}

TEST_F(SettingsPictures, OfARefusalThatTheDesktopRemembers) {
    platform.permissions.forget =
        QStringLiteral("flatpak permission-set screenshot screenshot org.framora.Framora yes");
    inBothAppearances([this] {
        save("permissions-denied");
        click("screenRecording.forget.copy");
        save("permissions-denied-copied");
    });
}

TEST_F(SettingsPictures, OfShortcutsThatAreBoundByHand) {
    platform.canHideDockIcon = false; // Such desktops show windows by Wayland.
    platform.shortcuts.way = GlobalShortcuts::Route::byHand;
    platform.handBinding.program = QStringLiteral("/usr/local/bin/framora");
    for (const auto& [kind, name] :
         {std::pair(HandBinding::Kind::sway, "sway"), std::pair(HandBinding::Kind::gnome, "gnome"),
          std::pair(HandBinding::Kind::command, "command")}) {
        platform.handBinding.kind = kind;
        inBothAppearances([this, name = name] {
            platform.permissions = {};
            save(qPrintable(QStringLiteral("by-hand-%1").arg(QLatin1String(name))));
            click("tabCaptureHotKey.guide.line0.copy");
            save(qPrintable(QStringLiteral("by-hand-%1-copied").arg(QLatin1String(name))));
            centreOf("startsAtLogin.switch"); // What stands above it cannot have the focus.
            save(qPrintable(QStringLiteral("by-hand-%1-task-bar").arg(QLatin1String(name))));
        });
    }
}

TEST_F(SettingsPictures, OfShortcutsThatTheDesktopHasTheLastWordOn) {
    platform.permissions.trusted = true;
    platform.permissions.recording = true;
    platform.shortcuts.way = GlobalShortcuts::Route::desktop;
    platform.shortcuts.keys = {{QStringLiteral("capture-area"), QStringLiteral("Meta+Shift+Print")},
                               {QStringLiteral("capture-window"), QString()}};
    inBothAppearances([this] {
        save("desktop-keys");
        platform.shortcuts.configurable = true;
        platform.notifications.post(notifications::shortcutBindingsChanged);
        save("desktop-keys-configurable");
        platform.shortcuts.configurable = false;
    });
    platform.shortcuts.way = GlobalShortcuts::Route::refused;
    inBothAppearances([this] {
        platform.permissions.trusted = false;
        save("desktop-refused");
    });
}

TEST_F(SettingsPictures, OfTheProgramsOwnPane) {
    inBothAppearances([this] {
        click("tab.about");
        save("about");
        click("sidebar.toggle");
        settle(250);
        save("about-without-sidebar");
    });
}

TEST_F(SettingsPictures, OfTheSmallestWindow) {
    windowSize = {480, 360};
    inBothAppearances([this] {
        save("small-permissions");
        centreOf("volume.slider");
        leaveControls();
        save("small-form-end");
        click("tab.about");
        save("small-about");
    });
    platform.shortcuts.way = GlobalShortcuts::Route::byHand;
    platform.handBinding = {HandBinding::Kind::gnome, QStringLiteral("/usr/local/bin/framora")};
    inBothAppearances([this] {
        centreOf("hotKey.guide.line1.copy");
        leaveControls();
        save("small-by-hand");
    });
}

} // namespace
} // namespace framora
