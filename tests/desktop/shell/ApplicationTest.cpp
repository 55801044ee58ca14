#include "desktop/shell/ShellDesktop.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace framora {
namespace {

class ApplicationTest : public testing::TestWithParam<WindowManager> {
protected:
    static DesktopOptions options() {
        DesktopOptions options;
        options.windowManager = GetParam();
        return options;
    }
    DesktopDisplay& display() { return shell.display(); }

    std::uint32_t openWindow() {
        return shell.ask(QStringLiteral("window Own"), QStringLiteral("window")).section(u' ', 1).toUInt();
    }
    bool skipsTaskBar(std::uint32_t window) {
        const auto states = display().cardinals(window, "_NET_WM_STATE");
        return std::ranges::count(states, display().atom("_NET_WM_STATE_SKIP_TASKBAR")) > 0;
    }
    bool soon(const std::function<bool()>& condition) { return VirtualDesktop::waitFor(condition, 5000); }
    void policy(const char* name) {
        shell.ask(QStringLiteral("policy ") + QLatin1String(name), QStringLiteral("policy"));
    }

    ShellDesktop shell{options()};
};

TEST_P(ApplicationTest, anAccessorysWindowsSkipTheTaskBarAlsoThoseThatComeLater) {
    policy("accessory");
    const auto first = openWindow();
    EXPECT_TRUE(soon([&] { return skipsTaskBar(first); }));
    shell.tell(QStringLiteral("close"));
    const auto second = openWindow();
    EXPECT_TRUE(soon([&] { return skipsTaskBar(second); }));
}

TEST_P(ApplicationTest, theOpenWindowFollowsAChangeOfThePolicy) {
    policy("regular");
    const auto window = openWindow();
    ASSERT_TRUE(soon([&] { return display().activeWindow() == window; }));
    EXPECT_FALSE(skipsTaskBar(window));
    policy("accessory");
    EXPECT_TRUE(soon([&] { return skipsTaskBar(window); }));
    policy("regular");
    EXPECT_TRUE(soon([&] { return !skipsTaskBar(window); }));
}

TEST_P(ApplicationTest, activatingBringsTheWindowOverTheOneThatIsInUse) {
    const auto window = openWindow();
    ASSERT_TRUE(soon([&] { return display().activeWindow() == window; }));
    ASSERT_FALSE(shell.next(QStringLiteral("active")).isEmpty());
    const DesktopWindow terminal = shell.openTerminal();
    // A click in the other window, where it is not covered, makes its user time the latest.
    display().click(terminal.geometry.bottomLeft() + QPoint(8, -8));
    ASSERT_TRUE(soon([&] { return display().activeWindow() == terminal.id; }));
    ASSERT_FALSE(shell.next(QStringLiteral("inactive")).isEmpty());

    shell.tell(QStringLiteral("activate"));
    EXPECT_TRUE(soon([&] { return display().activeWindow() == window; }));
    EXPECT_FALSE(shell.next(QStringLiteral("active")).isEmpty()) << "becoming active is announced";
    const auto windows = display().windows();
    const auto place = [&](std::uint32_t id) { return std::ranges::find(windows, id, &DesktopWindow::id); };
    EXPECT_GT(place(window), place(terminal.id)) << "it stands above";
}

TEST_P(ApplicationTest, activatingBringsTheWindowThatWasNamedNotTheOneThatWasInUse) {
    const auto window = openWindow();
    ASSERT_TRUE(soon([&] { return display().activeWindow() == window; }));
    const auto other =
        shell.ask(QStringLiteral("dialogue"), QStringLiteral("dialogue")).section(u' ', 1).toUInt();
    ASSERT_TRUE(soon([&] { return display().activeWindow() == other; }));
    shell.tell(QStringLiteral("front"));
    EXPECT_TRUE(soon([&] { return display().activeWindow() == window; }));
}

INSTANTIATE_TEST_SUITE_P(, ApplicationTest, testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto& run) {
                             return run.param == WindowManager::openbox ? "openbox" : "xfwm4";
                         });

} // namespace
} // namespace framora
