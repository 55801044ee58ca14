#include "desktop/path/FramoraDriver.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The program's commands by the ways that a desktop without its shortcuts has: the session bus, the command
/// line, the desktop entry.
class CommandsTest : public testing::Test {
protected:
    static QString program() { return FramoraDriver::program(QStringLiteral("framora")); }

    void TearDown() override {
        for (ChildProcess* start : starts)
            start->end();
        EXPECT_EQ(desktop.leftovers(), QStringList());
    }
    ChildProcess& start(const QStringList& arguments = {}) {
        starts.push_back(&desktop.start(program(), arguments));
        return *starts.back();
    }
    /// Runs a start that only tells the program, to its end.
    int tell(const QStringList& arguments) {
        ChildProcess& child = start(arguments);
        EXPECT_TRUE(child.waitForExit());
        return child.exitCode();
    }
    void launch() {
        start();
        ASSERT_TRUE(waitForName());
    }
    bool waitForName() {
        return VirtualDesktop::waitFor(
            [this] { return desktop.serviceIsOnBus(QStringLiteral("org.framora.Framora")); });
    }
    /// What the call returns; empty when it fails.
    QByteArray call(const QString& method, const QStringList& arguments) {
        return desktop.run(QStringLiteral("gdbus"),
                           QStringList{QStringLiteral("call"), QStringLiteral("--session"),
                                       QStringLiteral("--dest"), QStringLiteral("org.framora.Framora"),
                                       QStringLiteral("--object-path"),
                                       QStringLiteral("/org/framora/Framora"), QStringLiteral("--method"),
                                       QStringLiteral("org.freedesktop.Application.") + method} +
                               arguments);
    }
    QByteArray callAction(const char* name) {
        return call(QStringLiteral("ActivateAction"),
                    {QString::fromLatin1(name), QStringLiteral("[]"), QStringLiteral("{}")});
    }
    bool settingsAreOpen() {
        return desktop.display().windowTitled(QStringLiteral("Preferences")).has_value();
    }
    bool settingsOpen() {
        return VirtualDesktop::waitFor([this] { return settingsAreOpen(); });
    }
    void cancelTheCapture() {
        driver.waitForOverlay();
        desktop.display().key({"Escape"});
        driver.waitForNoOverlay();
        // Commands are obeyed again once the tool has ended.
        EXPECT_TRUE(VirtualDesktop::waitFor([this] {
            const auto running = desktop.processes();
            return std::none_of(running.begin(), running.end(), [](qint64 pid) {
                return ChildProcess::nameOf(pid).startsWith(QStringLiteral("framora-screen"));
            });
        }));
    }

    VirtualDesktop desktop;
    FramoraDriver driver{desktop};
    std::vector<ChildProcess*> starts;
};

TEST_F(CommandsTest, theBussActionsAreTheMenusCommands) {
    launch();
    EXPECT_EQ(callAction("capture-area"), "()\n");
    cancelTheCapture();
    EXPECT_EQ(callAction("capture-window"), "()\n");
    cancelTheCapture();
    EXPECT_FALSE(settingsAreOpen());
    EXPECT_EQ(callAction("settings"), "()\n");
    EXPECT_TRUE(settingsOpen());
    EXPECT_EQ(callAction("quit"), "()\n");
    EXPECT_TRUE(starts.front()->waitForExit());
}

TEST_F(CommandsTest, toActivateItIsToStartItAgain) {
    launch();
    EXPECT_EQ(call(QStringLiteral("Activate"), {QStringLiteral("{'activation-token': <'abc'>}")}), "()\n");
    EXPECT_TRUE(settingsOpen());
}

TEST_F(CommandsTest, toOpenFilesIsNoMoreThanThat) {
    launch();
    EXPECT_EQ(call(QStringLiteral("Open"), {QStringLiteral("['file:///etc/passwd']"), QStringLiteral("{}")}),
              "()\n");
    EXPECT_TRUE(settingsOpen());
}

TEST_F(CommandsTest, anUnknownActionIsRefused) {
    launch();
    EXPECT_EQ(callAction("fly"), "");
    EXPECT_EQ(callAction("activate"), "");
    EXPECT_TRUE(starts.front()->isRunning());
}

TEST_F(CommandsTest, whileACaptureHasTheScreenNothingElseHappens) {
    launch();
    callAction("capture-area");
    driver.waitForOverlay();
    callAction("settings");
    callAction("capture-window");
    EXPECT_EQ(tell({QStringLiteral("--settings")}), 0);
    EXPECT_EQ(tell({}), 0);
    EXPECT_EQ(ChildProcess::childrenOf(starts.front()->pid()).size(), 1U) << "the one capture tool";
    cancelTheCapture();
    EXPECT_FALSE(VirtualDesktop::waitFor([this] { return settingsAreOpen() || driver.overlay(); }, 700))
        << "what was asked meanwhile is forgotten";
}

TEST_F(CommandsTest, theCommandLineTellsTheProgramThatRuns) {
    launch();
    EXPECT_EQ(tell({QStringLiteral("--capture-area")}), 0);
    cancelTheCapture();
    EXPECT_EQ(tell({QStringLiteral("--capture-window")}), 0);
    cancelTheCapture();
    EXPECT_EQ(tell({QStringLiteral("--settings")}), 0);
    EXPECT_TRUE(settingsOpen());
    EXPECT_EQ(tell({QStringLiteral("--quit")}), 0);
    EXPECT_TRUE(starts.front()->waitForExit());
}

TEST_F(CommandsTest, orItStartsTheProgramAndDoesIt) {
    start({QStringLiteral("--capture-area")});
    cancelTheCapture();
    EXPECT_TRUE(starts.front()->isRunning());
    EXPECT_EQ(tell({QStringLiteral("--settings")}), 0);
    EXPECT_TRUE(settingsOpen());
}

TEST_F(CommandsTest, toQuitWhatDoesNotRunStartsNothing) {
    EXPECT_EQ(tell({QStringLiteral("--quit")}), 0);
    EXPECT_FALSE(desktop.serviceIsOnBus(QStringLiteral("org.framora.Framora")));
}

TEST_F(CommandsTest, whatCannotBeUnderstoodIsSaidAndNothingStarted) {
    EXPECT_EQ(tell({QStringLiteral("--fly")}), 2);
    EXPECT_TRUE(starts.back()->output().contains("--fly"));
    EXPECT_EQ(tell({QStringLiteral("picture.png")}), 2);
    EXPECT_EQ(tell({QStringLiteral("--capture-area"), QStringLiteral("--settings")}), 2);
    EXPECT_EQ(tell({QStringLiteral("--version")}), 0);
    EXPECT_TRUE(starts.back()->output().startsWith("framora "));
    EXPECT_EQ(tell({QStringLiteral("--help")}), 0);
    EXPECT_TRUE(starts.back()->output().contains("--capture-window"));
}

TEST_F(CommandsTest, withoutATrayTheProgramIsReachedByStartingItAgain) {
    launch(); // This desktop has no tray host.
    EXPECT_EQ(tell({}), 0);
    EXPECT_TRUE(settingsOpen());
}

TEST_F(CommandsTest, withoutABusTheCommandLineWorksAllTheSame) {
    desktop.setEnvironmentVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                                   QStringLiteral("unix:path=/nowhere"));
    start({QStringLiteral("--settings")});
    EXPECT_TRUE(settingsOpen());
    EXPECT_EQ(tell({QStringLiteral("--capture-area")}), 0);
    cancelTheCapture();
}

/// The program as it is installed, called by its id while it does not run.
class InstalledCommandsTest : public CommandsTest {
protected:
    static void SetUpTestSuite() {
        tree = std::make_unique<QTemporaryDir>();
        QProcess install;
        install.start(QStringLiteral("cmake"),
                      {QStringLiteral("--install"), QStringLiteral(FRAMORA_BUILD_FOLDER),
                       QStringLiteral("--prefix"), tree->path()});
        ASSERT_TRUE(install.waitForFinished(60000));
        ASSERT_EQ(install.exitCode(), 0);
    }
    static void TearDownTestSuite() { tree.reset(); }

    /// As the login does: the bus finds the installation's service, and what it starts finds the display.
    void SetUp() override {
        // Entries name programs without their folders.
        desktop.setEnvironmentVariable(QStringLiteral("PATH"),
                                       tree->path() + QStringLiteral("/bin:/usr/bin:/bin"));
        const QString service = QStringLiteral("/org.framora.Framora.service");
        ASSERT_TRUE(QFile::link(tree->path() + QStringLiteral("/share/dbus-1/services") + service,
                                desktop.runtimePath() + QStringLiteral("/services") + service));
        QStringList names;
        for (const QString& name : desktop.environment().keys())
            names << name;
        desktop.run(QStringLiteral("dbus-update-activation-environment"), names);
        desktop.run(QStringLiteral("gdbus"),
                    {QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("--object-path"),
                     QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("--method"),
                     QStringLiteral("org.freedesktop.DBus.ReloadConfig")});
    }
    void TearDown() override {
        callAction("quit");
        EXPECT_TRUE(VirtualDesktop::waitFor([this] { return !isRunning(); }));
        CommandsTest::TearDown();
    }
    bool isRunning() const { return desktop.serviceIsOnBus(QStringLiteral("org.framora.Framora")); }

    static std::unique_ptr<QTemporaryDir> tree;
};

std::unique_ptr<QTemporaryDir> InstalledCommandsTest::tree;

TEST_F(InstalledCommandsTest, anActionStartsTheProgramAndIsDone) {
    EXPECT_EQ(callAction("capture-area"), "()\n");
    cancelTheCapture();
    EXPECT_FALSE(settingsAreOpen());
}

TEST_F(InstalledCommandsTest, itsEntryStartsItAndTheNextTimeOpensTheSettings) {
    const QString entry = tree->path() + QStringLiteral("/share/applications/org.framora.Framora.desktop");
    const auto launchEntry = [&] { desktop.run(QStringLiteral("gio"), {QStringLiteral("launch"), entry}); };
    launchEntry();
    ASSERT_TRUE(waitForName());
    EXPECT_FALSE(VirtualDesktop::waitFor([this] { return settingsAreOpen(); }, 1000))
        << "the first time is a start like any other";
    launchEntry();
    EXPECT_TRUE(settingsOpen());
}

TEST_F(InstalledCommandsTest, withoutABusItsEntryStartsItByItsCommandLine) {
    desktop.setEnvironmentVariable(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                                   QStringLiteral("unix:path=/nowhere"));
    const QString entry = tree->path() + QStringLiteral("/share/applications/org.framora.Framora.desktop");
    desktop.run(QStringLiteral("gio"), {QStringLiteral("launch"), entry});
    const auto runs = [this] {
        return std::ranges::any_of(
            desktop.processes(), [](qint64 process) { return ChildProcess::nameOf(process) == u"framora"; });
    };
    EXPECT_TRUE(VirtualDesktop::waitFor(runs));
    // It hears of its end as soon as it listens.
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        desktop.run(tree->path() + QStringLiteral("/bin/framora"), {QStringLiteral("--quit")});
        return !runs();
    }));
}

} // namespace
} // namespace framora
