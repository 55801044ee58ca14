#include "desktop/path/PathDesktop.h"
#include "support/PrintQt.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

namespace framora {
namespace {

struct TrayCase {
    const char* name;
    TrayHost host;
    bool hostStartsLater;
};

void PrintTo(const TrayCase& tray, std::ostream* out) {
    *out << tray.name;
}

class TrayPathTest : public testing::TestWithParam<TrayCase>, protected PathDesktop {
protected:
    static DesktopOptions options() {
        DesktopOptions options = PathDesktop::options();
        options.accessibility = false;
        options.trayHost = GetParam().hostStartsLater ? TrayHost::none : GetParam().host;
        return options;
    }

    // The screen is bare: what changes on it is the tray's doing.
    TrayPathTest() : PathDesktop(options()) {}

    /// The screen once it has stopped changing.
    QImage restingScreen() {
        QImage last;
        QElapsedTimer since;
        VirtualDesktop::waitFor([&] {
            if (since.isValid() && since.elapsed() < 300)
                return false;
            since.start();
            QImage now = display().screenshot();
            const bool same = now == last;
            last = std::move(now);
            return same;
        });
        return last;
    }

    static QRect difference(const QImage& a, const QImage& b) {
        QRect bounds;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x)
                if (a.pixel(x, y) != b.pixel(x, y))
                    bounds |= QRect(x, y, 1, 1);
        return bounds;
    }

    /// Where Framora's icon appeared: the part of the screen that is its own colour no more.
    QRect trayIcon() {
        if (GetParam().hostStartsLater) {
            m_driver.launch();
            m_desktop.startTrayHost(GetParam().host);
            // The host itself covers the screen's edge: the icon is where it differs from an empty host's
            // look.
            const QImage withIcon = restingScreen();
            m_driver.framora().end();
            return difference(withIcon, restingScreen());
        }
        const QImage without = restingScreen();
        m_driver.launch();
        QRect place;
        VirtualDesktop::waitFor([&] {
            place = difference(without, display().screenshot());
            return !place.isEmpty();
        });
        return difference(without, restingScreen());
    }

    /// Right-clicks the icon and takes the menu's entry of that number, from 0.
    void choose(const QRect& icon, int entry) {
        // A panel that grew for the icon differs all along; the icon itself is at its end.
        const QPoint place(icon.right() - std::min(icon.width(), 24) / 2, icon.center().y());
        const int before = int(display().windows().size());
        display().click(place, DesktopDisplay::Button::right);
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return int(display().windows().size()) > before; }))
            << "no menu at " << place.x() << ", " << place.y();
        restingScreen();
        for (int i = 0; i <= entry; ++i)
            display().key({"Down"});
        display().key({"Return"});
    }
};

TEST_P(TrayPathTest, takesAnAreaFromTheMenu) {
    const QRect icon = trayIcon();
    ASSERT_FALSE(icon.isEmpty());
    if (GetParam().hostStartsLater)
        m_driver.launch();
    restingScreen();
    choose(icon, 0);
    m_driver.waitForOverlay();
    m_driver.selectArea(QRect(400, 300, 200, 120));
    m_driver.waitForInteractiveToast();
    EXPECT_EQ(m_desktop.clipboardImage().size(), QSize(200, 120));
}

TEST_P(TrayPathTest, takesAWindowFromTheMenu) {
    const QRect icon = trayIcon();
    ASSERT_FALSE(icon.isEmpty());
    if (GetParam().hostStartsLater)
        m_driver.launch();
    m_desktop.start(QStringLiteral("xterm"), {QStringLiteral("-xrm"), QStringLiteral("*wmTimeout: 100"),
                                              QStringLiteral("-geometry"), QStringLiteral("60x20+300+200")});
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return display().windowOfClass(QStringLiteral("xterm")).has_value(); }));
    restingScreen();
    const auto window = display().windowOfClass(QStringLiteral("xterm"));
    choose(icon, 1);
    m_driver.waitForOverlay();
    display().click(window->geometry.center());
    m_driver.waitForNoOverlay();
    m_driver.waitForInteractiveToast();
    EXPECT_EQ(m_desktop.clipboardImage().size(), window->frame.size());
}

TEST_P(TrayPathTest, quitsFromTheMenu) {
    const QRect icon = trayIcon();
    ASSERT_FALSE(icon.isEmpty());
    if (GetParam().hostStartsLater)
        m_driver.launch();
    restingScreen();
    choose(icon, 3);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !m_driver.framora().isRunning(); }));
    EXPECT_EQ(m_driver.framora().exitCode(), 0);
}

INSTANTIATE_TEST_SUITE_P(, TrayPathTest,
                         testing::Values(TrayCase{"inAStatusNotifierHost", TrayHost::xfcePanel, false},
                                         TrayCase{"inAnXEmbedTray", TrayHost::tint2, false},
                                         TrayCase{"inAHostThatStartsLater", TrayHost::xfcePanel, true}),
                         [](const auto& test) { return test.param.name; });

} // namespace
} // namespace framora
