#include "desktop/support/FramoraUser.h"
#include "desktop/support/KwinDesktop.h"

#include <QFile>
#include <csignal>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

namespace framora {
namespace {

/// Framora in a Plasma session, where only the compositor sees the keys.
class KwinShortcutsTest : public testing::Test {
protected:
    explicit KwinShortcutsTest(const KwinOptions& options = {}) : desktop(options) {}
    void SetUp() override { launch(); }
    void TearDown() override {
        if (framora)
            framora->end();
        EXPECT_EQ(desktop.leftovers(), QStringList());
    }

    /// Returns when the desktop has the program's shortcuts.
    void launch() {
        framora = &desktop.start(FramoraUser::program(QStringLiteral("framora")));
        ASSERT_TRUE(DesktopSession::waitFor([this] { return boundKeys().contains("capture-window"); }));
    }
    /// What Plasma has bound for the program, as it tells it.
    QByteArray boundKeys() {
        return desktop.run(QStringLiteral("gdbus"),
                           {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
                            QStringLiteral("org.kde.kglobalaccel"), QStringLiteral("--object-path"),
                            QStringLiteral("/component/framora"), QStringLiteral("--method"),
                            QStringLiteral("org.kde.kglobalaccel.Component.allShortcutInfos")});
    }
    /// The captures under way; the program also runs the tool to ask whether it may take pictures.
    std::vector<qint64> captureTools() const {
        std::vector<qint64> tools;
        for (const qint64 pid : desktop.processes()) {
            if (ChildProcess::nameOf(pid) != u"framora-screenc")
                continue;
            QFile file(QStringLiteral("/proc/%1/cmdline").arg(pid));
            if (file.open(QIODevice::ReadOnly) && file.readAll().split('\0').contains("-c"))
                tools.push_back(pid);
        }
        return tools;
    }
    /// Whether that press starts a capture, which is ended again.
    bool startsACapture(std::initializer_list<unsigned> keys) {
        desktop.input().press(keys);
        if (!DesktopSession::waitFor([this] { return !captureTools().empty(); }, 5000))
            return false;
        for (const qint64 pid : captureTools())
            ::kill(static_cast<pid_t>(pid), SIGTERM);
        return DesktopSession::waitFor([this] { return captureTools().empty(); });
    }

    KwinDesktop desktop;
    ChildProcess* framora = nullptr;
};

TEST_F(KwinShortcutsTest, theStoredShortcutsAreBoundUnderTheirNamesAndStartCaptures) {
    const QByteArray bound = boundKeys();
    for (const char* part : {"'capture-area', 'Capture Area'", "'capture-window', 'Capture Window'"})
        EXPECT_TRUE(bound.contains(part)) << bound.toStdString();
    EXPECT_TRUE(startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_4}));
    EXPECT_TRUE(startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_T}));
}

TEST_F(KwinShortcutsTest, otherKeysStartNothing) {
    EXPECT_FALSE(startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_5}));
    EXPECT_FALSE(startsACapture({KEY_LEFTALT, KEY_4}));
}

TEST_F(KwinShortcutsTest, theShortcutsSurviveThePortal) {
    desktop.portal().end();
    ASSERT_TRUE(DesktopSession::waitFor(
        [this] { return !desktop.serviceIsOnBus(QStringLiteral("org.freedesktop.portal.Desktop")); }));
    desktop.startPortal();
    // A press meanwhile may be lost; one of the next is not.
    EXPECT_TRUE(DesktopSession::waitFor(
        [this] {
            return startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_T});
        },
        30000));
}

TEST_F(KwinShortcutsTest, afterTheProgramsEndTheKeysDoNothingAndTheNextStartHasThemAgain) {
    framora->end();
    framora = nullptr;
    EXPECT_FALSE(startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_T}));
    launch();
    EXPECT_TRUE(DesktopSession::waitFor(
        [this] {
            return startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_T});
        },
        30000));
}

class KwinSettingsTest : public KwinShortcutsTest {
protected:
    KwinSettingsTest() : KwinShortcutsTest({.accessibility = true}) {}

    /// Stands in for the desktop's settings program; it writes down its arguments.
    void installSettingsProgram() {
        QFile script(desktop.scratchPath() + QStringLiteral("/systemsettings"));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\necho \"$@\" > '" + QFile::encodeName(told()) + "'\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        desktop.setEnvironmentVariable(QStringLiteral("PATH"),
                                       desktop.scratchPath() + QStringLiteral(":/usr/bin:/bin"));
    }
    QString told() const { return desktop.scratchPath() + QStringLiteral("/told"); }
};

TEST_F(KwinSettingsTest, keysThatPlasmaKeepsFromEarlierAreSaidAndChangedInItsOwnSettings) {
    framora->end();
    installSettingsProgram();
    // Control+Alt+F9 takes an area from now on, as far as Framora is concerned.
    desktop.storeDefaults(
        R"({"Settings":{"hotkey":{"keyCode":101,"modifierFlagsRaw":786432},)"
        R"("tabCaptureHotkey":{"keyCode":17,"modifierFlagsRaw":655360},"showDockIcon":true,)"
        R"("copyToClipboard":true,"soundEffectsEnabled":false,"soundEffectsVolume":0.5,)"
        R"("captureSound":"Frog"}})");
    launch();
    desktop.start(FramoraUser::program(QStringLiteral("framora")), {QStringLiteral("--settings")});
    AccessibleTree controls(desktop.busAddress());
    std::optional<AccessibleNode> remedy;
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        remedy = controls.find(QString(), QStringLiteral("Open Keyboard Settings"));
        return remedy.has_value();
    }));
    EXPECT_TRUE(startsACapture({KEY_LEFTALT, KEY_LEFTSHIFT, KEY_4})) << "the keys of the first time";
    ASSERT_TRUE(controls.press(*remedy));
    QFile arguments(told());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return arguments.size() > 0; }));
    ASSERT_TRUE(arguments.open(QIODevice::ReadOnly));
    EXPECT_EQ(arguments.readAll(), "kcm_keys\n");
}

} // namespace
} // namespace framora
