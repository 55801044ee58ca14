#include "desktop/path/PathDesktop.h"
#include "support/PrintQt.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace framora {
namespace {

/// What comes in while a capture is on screen.
class OpenCapturePathTest : public testing::Test, protected PathDesktop {
protected:
    bool preferencesAreOpen() { return display().windowTitled(QStringLiteral("Preferences")).has_value(); }
    /// Starts the program again; it hands over to the one that runs, and ends.
    void startAgain() {
        ChildProcess& second = m_desktop.start(FramoraDriver::program(QStringLiteral("framora")));
        EXPECT_TRUE(second.waitForExit());
        EXPECT_EQ(second.exitCode(), 0) << second.output().toStdString();
    }

    /// Gives a window at the screen's origin a press of the primary button, wherever the pointer is.
    void deliverPress(std::uint32_t window, const QPoint& position) {
        xcb_button_press_event_t press{};
        press.response_type = XCB_BUTTON_PRESS;
        press.detail = XCB_BUTTON_INDEX_1;
        press.root = display().root();
        press.event = window;
        press.root_x = press.event_x = std::int16_t(position.x());
        press.root_y = press.event_y = std::int16_t(position.y());
        press.same_screen = 1;
        xcb_send_event(display().connection(), 0, window, XCB_EVENT_MASK_BUTTON_PRESS,
                       reinterpret_cast<const char*>(&press));
        xcb_flush(display().connection());
    }
};

TEST_F(OpenCapturePathTest, aSecondCaptureCannotStart) {
    m_driver.launch();
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    ASSERT_EQ(m_driver.captureTools().size(), 1U);
    m_driver.pressAreaShortcut();
    m_driver.pressWindowShortcut();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.captureTools().size() > 1; }, 500));
    display().key({"Escape"});
    m_driver.waitForNoOverlay();
    // And what was pressed meanwhile does not start one afterwards.
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.overlay().has_value(); }, 700));
}

TEST_F(OpenCapturePathTest, aSecondStartOfTheProgramIsDropped) {
    m_driver.launch();
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    startAgain();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return preferencesAreOpen(); }, 700));
    EXPECT_TRUE(m_driver.overlay()) << "the capture goes on";
    m_driver.selectArea(QRect(300, 300, 100, 80));
    m_driver.waitForInteractiveToast();
    EXPECT_EQ(m_desktop.clipboardImage().size(), QSize(100, 80));
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return preferencesAreOpen(); }, 700))
        << "nor is it made up for afterwards";

    // At any other time it brings the preferences.
    startAgain();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return preferencesAreOpen(); }));
}

TEST_F(OpenCapturePathTest, aCaptureEndsThePickingOfAColourAndIsTaken) {
    const auto loupe = [&] {
        const auto windows = display().windows();
        return std::any_of(windows.begin(), windows.end(), [](const DesktopWindow& each) {
            return each.overrideRedirect && each.geometry.size() == QSize(136, 164);
        });
    };
    m_driver.launch();
    m_driver.captureAndEdit(QRect(300, 300, 100, 80));
    m_driver.showTab(QStringLiteral("Appearance"));
    m_driver.clickControl(QStringLiteral("Border"));
    m_driver.clickControl(QStringLiteral("Color"), QStringLiteral("push button"));
    const QString eyedropper = QStringLiteral("Pick a color from the screen");
    m_driver.clickControl(eyedropper);
    ASSERT_TRUE(VirtualDesktop::waitFor(loupe));
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    EXPECT_FALSE(loupe());
    m_driver.selectArea(QRect(200, 200, 130, 90));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return m_desktop.clipboardImage().size() == QSize(130, 90); }));
    // Nothing was picked, and the next picking can begin.
    m_driver.clickControl(eyedropper);
    EXPECT_TRUE(VirtualDesktop::waitFor(loupe));
}

TEST_F(OpenCapturePathTest, aClickOnAToastReplacesTheEditorThatIsOpen) {
    m_driver.launch();
    const std::uint32_t first = m_driver.captureAndEdit(QRect(200, 200, 300, 200)).id;
    const QRect area(500, 300, 120, 90);
    display().click(m_driver.capture(area).center());
    const auto editors = [&] {
        const auto windows = display().windows();
        return std::count_if(windows.begin(), windows.end(), [](const DesktopWindow& each) {
            return !each.overrideRedirect && each.title == QStringLiteral("Framora");
        });
    };
    ASSERT_TRUE(VirtualDesktop::waitFor([&] {
        const auto editor = m_driver.editor();
        return editor && editor->id != first && editors() == 1;
    }));
    m_driver.save(scratch("second.png"));
    // A new editor's picture has 80 points around it, and two pixels a point.
    EXPECT_EQ(QImage(scratch("second.png")).size(), 2 * (area.size() + QSize(160, 160)));
}

TEST_F(OpenCapturePathTest, aClickOnAToastThatTheCaptureOvertookOpensTheEditorAfterIt) {
    m_driver.launch();
    const QRect area(200, 200, 300, 200);
    const QRect card = m_driver.capture(area);
    const std::uint32_t toast = m_driver.waitForToast().id;
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    // The pointer is the tool's now. A click that came just before may still be on its way.
    deliverPress(toast, card.center());
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.editor().has_value(); }, 1500));
    EXPECT_TRUE(m_driver.overlay());
    m_driver.selectArea(QRect(500, 300, 120, 90));

    m_driver.waitForEditor();
    EXPECT_EQ(m_desktop.clipboardImage().size(), QSize(120, 90)) << "the new capture came through";
    m_driver.save(scratch("clicked.png"));
    EXPECT_EQ(QImage(scratch("clicked.png")).size(), 2 * (area.size() + QSize(160, 160)))
        << "the picture of the toast that was clicked";
}

} // namespace
} // namespace framora
