#include "desktop/path/DemoDesktop.h"
#include "desktop/path/FramoraDriver.h"
#include "support/PrintQt.h"

#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// What a process holds, and how often it wakes.
struct Holdings {
    qint64 residentKilobytes = 0;
    int descriptors = 0;
    int windows = 0;
    std::size_t processes = 0;
    qint64 wakeUps = 0; ///< While it rests: every running timer adds to it.
};

qint64 contextSwitches(qint64 pid) {
    QFile file(QStringLiteral("/proc/%1/status").arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("voluntary_ctxt_switches:"))
            return line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
    return 0;
}

TEST(EndurancePathTest, fiftyCapturesLeaveNothingBehind) {
    VirtualDesktop desktop;
    FramoraDriver driver(desktop);
    DesktopDisplay& display = desktop.display();
    display.setWallpaper(demoWallpaper(display.size()));
    driver.launch();

    const auto capture = [&](int number) {
        const QSize size(300 + number, 200 + number);
        driver.capture(QRect(QPoint(100, 100), size));
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return desktop.clipboardImage().size() == size; }))
            << number;
    };
    const auto measure = [&] {
        driver.waitForNoToast();
        Holdings holdings;
        holdings.residentKilobytes = driver.framora().residentKilobytes();
        holdings.descriptors = driver.framora().openDescriptors();
        holdings.windows = display.windowCount();
        holdings.processes = desktop.processes().size();
        // The least of several looks: what wakes the process now and then does not count. Each lasts long
        // enough for a timer of several seconds that every capture leaves behind to come due often.
        holdings.wakeUps = std::numeric_limits<qint64>::max();
        for (int look = 0; look < 3; ++look) {
            const qint64 before = contextSwitches(driver.framora().pid());
            VirtualDesktop::waitFor([] { return false; }, 2000);
            holdings.wakeUps = std::min(holdings.wakeUps, contextSwitches(driver.framora().pid()) - before);
        }
        return holdings;
    };

    for (int number = 1; number <= 5; ++number)
        ASSERT_NO_FATAL_FAILURE(capture(number));
    const Holdings early = measure();
    for (int number = 6; number <= 50; ++number)
        ASSERT_NO_FATAL_FAILURE(capture(number));
    const Holdings late = measure();

    EXPECT_LE(late.residentKilobytes, early.residentKilobytes * 110 / 100);
    EXPECT_EQ(late.descriptors, early.descriptors);
    EXPECT_EQ(late.windows, early.windows);
    EXPECT_EQ(late.processes, early.processes) << "one program serves the clipboard, the others have gone";
    EXPECT_LE(late.wakeUps, early.wakeUps + 3);
    RecordProperty("residentKilobytesAfter5", int(early.residentKilobytes));
    RecordProperty("residentKilobytesAfter50", int(late.residentKilobytes));
}

TEST(EndurancePathTest, editorsThatCloseGiveTheirMemoryBack) {
    DesktopOptions options;
    options.accessibility = true;
    VirtualDesktop desktop(options);
    FramoraDriver driver(desktop);
    desktop.display().setWallpaper(demoWallpaper(options.size));
    driver.launch();
    const auto edit = [&] {
        const DesktopWindow editor = driver.captureAndEdit(QRect(100, 100, 400, 300));
        driver.control(QStringLiteral("Save to File"));
        desktop.display().requestClose(editor.id);
        driver.waitForNoEditor();
    };
    // The allocator's pools, one a thread, fill by and by.
    for (int i = 0; i < 12; ++i)
        edit();
    const qint64 early = driver.framora().residentKilobytes();
    const int descriptors = driver.framora().openDescriptors();
    for (int i = 0; i < 6; ++i)
        edit();
    EXPECT_LE(driver.framora().residentKilobytes(), early * 110 / 100);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return driver.framora().openDescriptors() <= descriptors; }))
        << driver.framora().openDescriptors() << " against " << descriptors;
}

} // namespace
} // namespace framora
