#include "desktop/screencapture/PaintedWindow.h"
#include "desktop/wayland/path/FramoraOnSway.h"

#include <QColorSpace>

namespace framora {
namespace {

QImage pixels(const QImage& image) {
    QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    plain.setColorSpace({});
    return plain;
}

/// X programs and Wayland programs on one desktop.
class XwaylandPathTest : public testing::Test {
protected:
    static SwayOptions options() {
        SwayOptions options = FramoraOnSway::options();
        options.xwayland = true;
        return options;
    }

    /// A window of an X program, painted and in its place.
    std::unique_ptr<PaintedWindow> showXWindow(const QRect& place) {
        PaintedWindow::Options painted;
        painted.geometry = place;
        auto window = std::make_unique<PaintedWindow>(
            path.desktop().environment().value(QStringLiteral("DISPLAY")), painted);
        path.require(QStringLiteral("the X window"),
                     [&] { return path.desktop().window(QStringLiteral("painted 1")).has_value(); });
        path.desktop().place(*path.desktop().window(QStringLiteral("painted 1")), place);
        path.require(QStringLiteral("the X window's pixels"), [&] {
            return path.desktop().screenshot().copy(place) ==
                   pixels(window->picture()).convertToFormat(QImage::Format_RGB32);
        });
        return window;
    }

    FramoraOnSway path{options()};
};

TEST_F(XwaylandPathTest, takesAnXProgramsWindowAndAnAreaAcrossBoth) {
    const QRect place(300, 200, 320, 240);
    const auto window = showXWindow(place);
    path.launch();
    path.openCapture(QStringLiteral("--capture-window"));
    path.input().click(place.center());
    path.waitForNoCapture();
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(window->picture()));
    const QRect area(250, 150, 200, 150);
    const QImage screen = path.desktop().screenshot().copy(area);
    path.openCapture();
    path.selectArea(area);
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(screen));
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(XwaylandPathTest, handsOverToTheCompositorWhereItsWindowsAreX) {
    path.desktop().setEnvironmentVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    path.launch();
    const QRect area(200, 160, 320, 200);
    const QRect card = path.capture(area);
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(path.backgroundPixels(area)));
    path.input().click(card.topLeft() - QPoint(40, 10));
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return path.background().clicks().size() == 1; }));
    path.input().click(card.center());
    path.waitForEditor();
    EXPECT_TRUE(path.editor()->appId.isEmpty()) << "an X window";
    const QImage saved = path.save(path.desktop().scratchPath() + QStringLiteral("/saved.png"));
    EXPECT_EQ(saved.size(), 2 * (area.size() + QSize(160, 160)));
    path.clickControl(QStringLiteral("Copy to Clipboard"));
    path.waitForNoEditor();
    EXPECT_TRUE(
        SwayDesktop::waitFor([&] { return pixels(path.desktop().clipboardImage()) == pixels(saved); }));
    path.quit();
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(saved)) << "after Framora has ended";
    EXPECT_TRUE(path.leavesNothing());
}

TEST_F(XwaylandPathTest, withoutAWaylandDisplayXWindowsAreTakenByTheServersOwnMeans) {
    const QRect place(300, 200, 320, 240);
    const auto window = showXWindow(place);
    path.unset(QStringLiteral("WAYLAND_DISPLAY"));
    path.unset(QStringLiteral("SWAYSOCK"));
    path.launch();
    path.openCapture(QStringLiteral("--capture-window"));
    path.input().click(place.center());
    path.waitForNoCapture();
    ASSERT_TRUE(SwayDesktop::waitFor([&] { return !path.desktop().clipboard().isEmpty(); }));
    EXPECT_TRUE(pixels(path.desktop().clipboardImage()) == pixels(window->picture()));
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

/// Height in pixels of the button "Copy to Clipboard", the only blue thing at the editor's top right.
int copyButtonHeight(const QImage& screen, const QRect& editor) {
    int rows = 0;
    for (int y = editor.top(); y < editor.top() + 120; ++y)
        for (int x = editor.center().x(); x < editor.right(); ++x) {
            const QColor colour = screen.pixelColor(x, y);
            if (colour.blue() > 200 && colour.red() < 80 && colour.green() < 140) {
                ++rows;
                break;
            }
        }
    return rows;
}

TEST(XMonitorsTest, theToastAndTheEditorHaveTheRatioOfTheirOwnMonitor) {
    SwayOptions options = FramoraOnSway::options();
    options.outputs.push_back({{1280, 800}, 1, {1280, 0}, QStringLiteral("normal")});
    options.xwayland = true;
    FramoraOnSway path(options);
    // An X session whose second monitor is a fine one, as Plasma tells its programs.
    path.unset(QStringLiteral("WAYLAND_DISPLAY"));
    path.unset(QStringLiteral("SWAYSOCK"));
    path.desktop().setEnvironmentVariable(QStringLiteral("QT_SCREEN_SCALE_FACTORS"),
                                          QStringLiteral("XWAYLAND0=1;XWAYLAND1=2"));
    path.launch();
    path.openCapture();
    path.selectArea({100, 100, 300, 200});
    const QRect card = path.waitForToast();
    EXPECT_LT(card.height(), 200) << "with its shadow, in single pixels on the first monitor";
    // An X server tells a window of the pointer before it tells of the press.
    path.input().moveTo(card.center() + QPoint(1, 0));
    path.input().click(card.center());
    const SwayWindow editor = path.waitForEditor();
    int height = 0;
    ASSERT_TRUE(SwayDesktop::waitFor(
        [&] { return (height = copyButtonHeight(path.desktop().screenshot(0), editor.content)) > 20; }));
    const QRect there = editor.content.translated(1280, 0);
    path.desktop().place(editor, there);
    EXPECT_TRUE(SwayDesktop::waitFor([&] {
        return copyButtonHeight(path.desktop().screenshot(1), editor.content) == 2 * height;
    })) << copyButtonHeight(path.desktop().screenshot(1), editor.content)
        << " pixels high on the fine monitor, " << height << " on the other";
    path.quit();
    EXPECT_TRUE(path.leavesNothing());
}

} // namespace
} // namespace framora
