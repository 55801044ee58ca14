#include "desktop/path/FramoraDriver.h"
#include "desktop/support/DisplayWithoutExtension.h"

#include <QElapsedTimer>
#include <QIcon>

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace framora {
namespace {

QString framoraProgram() {
    return FramoraDriver::program(QStringLiteral("framora"));
}

/// Framora itself, started under circumstances that are less than ideal.
class StartTest : public testing::Test {
protected:
    void captureOnce(FramoraDriver& driver) {
        driver.pressAreaShortcut();
        driver.waitForOverlay();
        driver.selectArea(QRect(300, 300, 120, 80));
        driver.waitForToast();
        EXPECT_EQ(driver.desktop().clipboardImage().size(), QSize(120, 80));
    }
};

TEST_F(StartTest, withNeitherTrayNorBusTheShortcutsWork) {
    DesktopOptions options;
    options.sessionBus = false;
    VirtualDesktop desktop(options);
    FramoraDriver driver(desktop);
    driver.launch();
    captureOnce(driver);
}

TEST_F(StartTest, withoutAWindowManagerTheShortcutsWork) {
    DesktopOptions options;
    options.windowManager = WindowManager::none;
    VirtualDesktop desktop(options);
    FramoraDriver driver(desktop);
    driver.launch();
    captureOnce(driver);
}

TEST_F(StartTest, aSecondStartEndsWithZeroAndRaisesWhatIsOpen) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    driver.launch();
    const DesktopWindow editor = driver.captureAndEdit(QRect(200, 200, 300, 200));
    desktop.start(QStringLiteral("xterm"),
                  {QStringLiteral("-xrm"), QStringLiteral("*wmTimeout: 100"), QStringLiteral("-title"),
                   QStringLiteral("Other"), QStringLiteral("-geometry"), QStringLiteral("120x40+100+100")});
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        const auto other = driver.display().windowTitled(QStringLiteral("Other"));
        return other && driver.display().activeWindow() == other->id;
    }));

    ChildProcess& second = desktop.start(framoraProgram());
    ASSERT_TRUE(second.waitForExit());
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return driver.display().activeWindow() == editor.id; }));
    EXPECT_TRUE(driver.framora().isRunning());
}

TEST_F(StartTest, aSecondStartOpensThePreferencesWhenNothingIsOpen) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    driver.launch();
    EXPECT_FALSE(driver.display().windowTitled(QStringLiteral("Preferences")));
    ChildProcess& second = desktop.start(framoraProgram());
    ASSERT_TRUE(second.waitForExit());
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        const auto preferences = driver.display().windowTitled(QStringLiteral("Preferences"));
        return preferences && driver.display().activeWindow() == preferences->id;
    }));
}

TEST_F(StartTest, openingWindowsAgainComplainsOfNothing) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    driver.launch();
    const auto preferences = [&] { return driver.display().windowTitled(QStringLiteral("Preferences")); };
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(desktop.start(framoraProgram(), {QStringLiteral("--settings")}).waitForExit());
        driver.require(QStringLiteral("the preferences"),
                       [&] { return preferences() && driver.display().activeWindow() == preferences()->id; });
        driver.display().key({"Escape"});
        driver.require(QStringLiteral("the preferences going away"), [&] { return !preferences(); });
    }
    driver.captureAndEdit(QRect(200, 200, 300, 200));
    EXPECT_EQ(driver.framora().output(), QByteArray());
}

TEST_F(StartTest, itsWindowsCarryTheIconOfTheDesktopEntry) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    driver.launch();
    ASSERT_TRUE(desktop.start(framoraProgram(), {QStringLiteral("--settings")}).waitForExit());
    std::vector<std::uint32_t> icon;
    driver.require(QStringLiteral("the preferences with an icon"), [&] {
        if (const auto preferences = driver.display().windowTitled(QStringLiteral("Preferences")))
            icon = driver.display().cardinals(preferences->id, "_NET_WM_ICON");
        return icon.size() > 2;
    });
    // The first of its sizes.
    const QSize size{int(icon[0]), int(icon[1])};
    ASSERT_GE(icon.size(), 2 + std::size_t(size.width()) * std::size_t(size.height()));
    const QImage shown(reinterpret_cast<const uchar*>(&icon[2]), size.width(), size.height(),
                       QImage::Format_ARGB32);
    const QImage drawing = QIcon(QStringLiteral(FRAMORA_ICON)).pixmap(size).toImage();
    ASSERT_FALSE(drawing.isNull());
    EXPECT_EQ(shown, drawing.convertToFormat(QImage::Format_ARGB32));
}

TEST_F(StartTest, aDisplayNamedWithItsScreenIsTheSame) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    driver.launch();
    desktop.setEnvironmentVariable(QStringLiteral("DISPLAY"), desktop.displayName() + QStringLiteral(".0"));
    ChildProcess& second = desktop.start(framoraProgram());
    EXPECT_TRUE(second.waitForExit()) << "two programs take the same keys";
    EXPECT_EQ(second.exitCode(), 0);
}

TEST_F(StartTest, aServerThatTellsOfNoClipboardsChangesIsAsked) {
    VirtualDesktop desktop;
    const DisplayWithoutExtension poor(desktop.displayName(), "XFIXES");
    desktop.setEnvironmentVariable(QStringLiteral("DISPLAY"), poor.displayName());
    FramoraDriver driver(desktop);
    ChildProcess& framora = driver.launch();
    for (int capture = 0; capture < 2; ++capture) {
        captureOnce(driver);
        driver.waitForNoToast();
    }
    framora.end(); // Before its display.
}

TEST_F(StartTest, whereTheScreenCannotBeReadAReadableToastSaysSo) {
    DesktopOptions options;
    options.depth = 8;
    VirtualDesktop desktop(options);
    FramoraDriver driver(desktop);
    desktop.storeUnchangedSettings();
    desktop.start(framoraProgram());
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(driver.display().connection())).data;
    std::ptrdiff_t black = 0;
    std::ptrdiff_t white = 0;
    const auto count = [&](QSize size) {
        xcb_get_image_reply_t* const image = xcb_get_image_reply(
            driver.display().connection(),
            xcb_get_image(driver.display().connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root, 0,
                          std::int16_t(size.height() - 200), std::uint16_t(size.width()), 200, ~0U),
            nullptr);
        if (!image)
            return;
        const auto* first = xcb_get_image_data(image);
        const auto* end = first + xcb_get_image_data_length(image);
        black = std::count(first, end, screen.black_pixel);
        white = std::count(first, end, screen.white_pixel);
        std::free(image);
    };
    // The toast is looked at while it stands; one that went before that has a successor. Each press that
    // comes while it stands replaces it.
    QElapsedTimer sincePress;
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        if (const auto toast = driver.toast()) {
            count(toast->geometry.size());
        } else if (!sincePress.isValid() || sincePress.elapsed() > 1000) {
            driver.pressAreaShortcut();
            sincePress.start();
        }
        // The card, of one colour on the other: its text is of the ground's.
        return white > 5000;
    })) << black
        << " black, " << white << " white";
}

TEST_F(StartTest, aCaptureShowsNothingOfAnEarlierToast) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    DesktopDisplay& display = driver.display();
    // A window that has to draw again what the toast covered.
    desktop.start(QStringLiteral("xterm"),
                  {QStringLiteral("-xrm"), QStringLiteral("*wmTimeout: 100"), QStringLiteral("-title"),
                   QStringLiteral("Beneath"), QStringLiteral("-geometry"), QStringLiteral("140x26+150+350"),
                   QStringLiteral("-bg"), QStringLiteral("#1e8c5a")});
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        return display.pixelAt({640, 600}) == QColor(0x1e, 0x8c, 0x5a);
    }));
    driver.launch();
    const QImage before = display.screenshot();
    const QRect card = driver.capture(QRect(20, 20, 120, 80));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display.screenshot(card) != before.copy(card); }));

    driver.pressAreaShortcut();
    driver.waitForOverlay();
    driver.selectArea(card);
    const QImage taken = desktop.clipboardImage().convertToFormat(before.format());
    EXPECT_EQ(taken.size(), card.size());
    EXPECT_EQ(taken, before.copy(card));

    // A cancelled capture brings it back.
    const DesktopWindow toast = driver.waitForToast();
    driver.pressAreaShortcut();
    driver.waitForOverlay();
    EXPECT_FALSE(driver.toast());
    display.key({"Escape"});
    driver.waitForNoOverlay();
    EXPECT_EQ(driver.waitForToast().id, toast.id);
}

TEST_F(StartTest, aKilledFramoraDoesNotKeepTheNextFromStarting) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    driver.launch().kill();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return !driver.framora().isRunning(); }));
    driver.launch();
    captureOnce(driver);
}

TEST_F(StartTest, toldToEndDuringACaptureItTakesTheOverlayAlong) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    ChildProcess& framora = driver.launch();
    driver.pressAreaShortcut();
    driver.waitForOverlay();
    ::kill(static_cast<pid_t>(framora.pid()), SIGTERM);
    EXPECT_TRUE(framora.waitForExit());
    EXPECT_EQ(framora.exitCode(), 0);
    driver.waitForNoOverlay();
}

TEST_F(StartTest, aCommandToQuitIsObeyedDuringACapture) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    ChildProcess& framora = driver.launch();
    driver.pressAreaShortcut();
    driver.waitForOverlay();
    ChildProcess& command =
        desktop.start(FramoraDriver::program(QStringLiteral("framora")), {QStringLiteral("--quit")});
    EXPECT_TRUE(command.waitForExit());
    EXPECT_EQ(command.exitCode(), 0);
    EXPECT_TRUE(framora.waitForExit());
    EXPECT_EQ(framora.exitCode(), 0);
    driver.waitForNoOverlay();
    EXPECT_TRUE(desktop.clipboard().isEmpty());
}

TEST_F(StartTest, toldToEndWithAFileDialogOpenItEnds) {
    DesktopOptions options;
    options.accessibility = true;
    VirtualDesktop desktop(options);
    FramoraDriver driver(desktop);
    ChildProcess& framora = driver.launch();
    const DesktopWindow editor = driver.captureAndEdit(QRect(200, 200, 300, 200));
    driver.clickControl(QStringLiteral("Save to File"));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        const auto active = driver.display().activeWindow();
        return active && active != editor.id;
    }));
    ::kill(static_cast<pid_t>(framora.pid()), SIGTERM);
    EXPECT_TRUE(framora.waitForExit());
    EXPECT_EQ(framora.exitCode(), 0);
}

TEST_F(StartTest, aDamagedStoreGivesTheDefaultsAndStaysAsItIs) {
    VirtualDesktop desktop;
    const QByteArray damaged = "{\"Settings\": {\"hotkey\":";
    desktop.storeDefaults(damaged);
    FramoraDriver driver(desktop);
    driver.launch();
    captureOnce(driver);
    EXPECT_EQ(desktop.storedDefaults(), damaged);
}

TEST_F(StartTest, answersTheShortcutThatIsStored) {
    VirtualDesktop desktop;
    // Control+Super+F9 takes an area.
    desktop.storeDefaults(
        R"({"Settings":{"hotkey":{"keyCode":101,"modifierFlagsRaw":1310720},)"
        R"("tabCaptureHotkey":{"keyCode":17,"modifierFlagsRaw":655360},"showDockIcon":true,)"
        R"("copyToClipboard":true,"soundEffectsEnabled":false,"soundEffectsVolume":0.5,)"
        R"("captureSound":"Frog"}})");
    FramoraDriver driver(desktop);
    desktop.start(framoraProgram());
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        driver.display().key({"Control_L", "Super_L", "F9"});
        return VirtualDesktop::waitFor([&] { return driver.overlay().has_value(); }, 500);
    }));
    driver.display().key({"Escape"});
    driver.waitForNoOverlay();
    driver.pressAreaShortcut();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return driver.overlay().has_value(); }, 700));
}

} // namespace
} // namespace framora
