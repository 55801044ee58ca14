#include "desktop/path/PathDesktop.h"
#include "support/PrintQt.h"

#include <QColorSpace>
#include <QFile>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// Points around the picture that a new editor starts with.
constexpr int defaultPadding = 80;
/// Export pixels a point.
constexpr int exportScale = 2;

QSize exportSize(QSize picture, int mockupMargin = 0) {
    const int around = 2 * defaultPadding + mockupMargin;
    return exportScale * (picture + QSize(around, around));
}

struct PathCase {
    const char* name;
    WindowManager windowManager;
    bool compositor;
};

void PrintTo(const PathCase& desktop, std::ostream* out) {
    *out << desktop.name;
}

class PathTest : public testing::TestWithParam<PathCase>, protected PathDesktop {
protected:
    static DesktopOptions options() {
        DesktopOptions options = PathDesktop::options();
        options.windowManager = GetParam().windowManager;
        options.compositor = GetParam().compositor;
        return options;
    }

    PathTest() : PathDesktop(options()) {
        // It stays as it is: what the shortcuts type into it is not shown.
        const QString script =
            QStringLiteral("stty -echo; ls -l /usr; touch '%1'; exec sleep 100000").arg(scratch("shown"));
        m_desktop.start(QStringLiteral("xterm"),
                        {QStringLiteral("-xrm"), QStringLiteral("*wmTimeout: 100"),
                         QStringLiteral("-geometry"), QStringLiteral("80x24+100+100"), QStringLiteral("-e"),
                         QStringLiteral("sh"), QStringLiteral("-c"), script});
    }

    DesktopWindow terminal() {
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            const auto window = display().windowOfClass(QStringLiteral("xterm"));
            return window && display().activeWindow() == window->id && QFile::exists(scratch("shown"));
        }));
        return display().windowOfClass(QStringLiteral("xterm")).value_or(DesktopWindow());
    }

    /// What the editor saves now.
    QImage saved(const char* name) {
        m_driver.save(scratch(name));
        return QImage(scratch(name));
    }
};

TEST_P(PathTest, leadsFromTheAreaShortcutToASavedPicture) {
    m_driver.launch();
    terminal();
    const QRect area(300, 200, 420, 260);
    // The window manager may still be drawing the frame.
    QImage shown;
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        const QImage earlier = std::exchange(shown, display().screenshot(area));
        return !VirtualDesktop::waitFor([&] { return display().screenshot(area) != shown; }, 150) &&
               earlier == shown;
    }));
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    m_driver.selectArea(area);
    const QRect card = m_driver.waitForInteractiveToast();
    QImage taken = m_desktop.clipboardImage().convertToFormat(QImage::Format_RGB32);
    taken.setColorSpace({});
    EXPECT_TRUE(taken == shown) << "the picture is what was on the screen";

    display().click(card.center());
    m_driver.waitForEditor();
    m_driver.clickControl(QStringLiteral("Actual Size"));
    m_driver.showTab(QStringLiteral("Appearance"));
    m_driver.clickControl(QStringLiteral("Border"));
    const QImage undragged = saved("undragged.png");
    m_driver.waitForNoToast();
    const QRect canvas = m_driver.control(QStringLiteral("Preview")).area;
    const QImage before = display().screenshot(canvas);
    // At 100 percent a pixel of the drag is a point of the picture.
    const QPoint drag(60, 30);
    display().drag(canvas.center(), canvas.center() + drag);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().screenshot(canvas) != before; }))
        << "the preview follows";

    const QImage picture = saved("area.png");
    // The border adds three times its size of 3 points on each side.
    EXPECT_EQ(picture.size(), exportSize(area.size(), 18));
    EXPECT_EQ(picture.size(), undragged.size());
    QRect middle(QPoint(), exportScale * area.size() / 2);
    middle.moveCenter(undragged.rect().center());
    EXPECT_TRUE(picture.copy(middle.translated(exportScale * drag)) == undragged.copy(middle))
        << "the screenshot has gone where it was dragged";
    EXPECT_TRUE(m_driver.editor()) << "saving leaves the editor open";
}

TEST_P(PathTest, leadsFromTheWindowShortcutToASavedPicture) {
    m_driver.launch();
    const DesktopWindow window = terminal();
    m_driver.pressWindowShortcut();
    m_driver.waitForOverlay();
    display().click(window.geometry.center());
    m_driver.waitForNoOverlay();
    const QRect card = m_driver.waitForInteractiveToast();
    const QImage taken = m_desktop.clipboardImage();
    EXPECT_EQ(taken.size(), window.frame.size()) << "the window whole, with its frame";

    display().click(card.center());
    m_driver.waitForEditor();
    m_driver.showTab(QStringLiteral("Appearance"));
    m_driver.clickControl(QStringLiteral("Sharp"));
    EXPECT_EQ(saved("window.png").size(), exportSize(taken.size()));
}

INSTANTIATE_TEST_SUITE_P(, PathTest,
                         testing::Values(PathCase{"withoutCompositor", WindowManager::openbox, false},
                                         PathCase{"withCompositor", WindowManager::openbox, true},
                                         PathCase{"underAnotherWindowManager", WindowManager::xfwm4, false}),
                         [](const auto& test) { return test.param.name; });

} // namespace
} // namespace framora
