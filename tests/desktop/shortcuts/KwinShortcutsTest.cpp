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
    static QString program(const char* name) {
        return QStringLiteral(FRAMORA_PROGRAM_FOLDER "/") + QString::fromLatin1(name);
    }

    void SetUp() override { launch(); }
    void TearDown() override {
        if (framora)
            framora->end();
        EXPECT_EQ(desktop.leftovers(), QStringList());
    }

    /// Returns when the desktop has the program's shortcuts.
    void launch() {
        framora = &desktop.start(program("framora"));
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

} // namespace
} // namespace framora
