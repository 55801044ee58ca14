#include "desktop/support/SwayDesktop.h"
#include "desktop/support/PaintedSurface.h"

#include <QFile>
#include <gtest/gtest.h>

namespace framora {
namespace {

SwayOptions mixedOutputs() {
    SwayOptions options;
    options.outputs = {{{800, 600}, 1, {0, 0}, QStringLiteral("normal")},
                       {{1600, 1200}, 2, {800, 0}, QStringLiteral("normal")},
                       {{900, 600}, 1.5, {0, 600}, QStringLiteral("normal")},
                       {{640, 400}, 1, {600, 600}, QStringLiteral("90")}};
    return options;
}

TEST(SwayDesktopTest, showsAPicturePixelForPixelAtEveryScaleAndTurn) {
    const SwayOptions options = mixedOutputs();
    SwayDesktop desktop(options);
    std::vector<std::unique_ptr<PaintedSurface>> backgrounds;
    for (int index = 0; index < int(options.outputs.size()); ++index) {
        const SwayOutput& output = options.outputs[std::size_t(index)];
        const QRect area = desktop.outputArea(index);
        EXPECT_EQ(area.topLeft(), output.position);
        backgrounds.push_back(std::make_unique<PaintedSurface>(
            desktop.waylandDisplay(),
            PaintedSurface::Options{PaintedSurface::pattern(area.size() * output.scale, index),
                                    area.size(),
                                    {},
                                    desktop.outputName(index)}));
        EXPECT_TRUE(SwayDesktop::waitFor([&] {
            return desktop.screenshot(index) == backgrounds.back()->picture();
        })) << index;
    }
}

TEST(SwayDesktopTest, putsAWindowInItsPlaceAndClicksIntoIt) {
    SwayDesktop desktop(mixedOutputs());
    const QSize size(300, 200);
    PaintedSurface window(desktop.waylandDisplay(),
                          {PaintedSurface::pattern(size * 2), size, QStringLiteral("a window"), {}});
    const QRect place({900, 100}, size);
    desktop.place(desktop.window(QStringLiteral("a window")).value(), place);
    const QImage screen = desktop.settledScreenshot(1);
    EXPECT_TRUE(screen.copy(QRect(QPoint(200, 200), size * 2)) == window.picture());
    desktop.input().click({950.5, 130});
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return !window.clicks().empty(); }));
    EXPECT_EQ(window.clicks(), std::vector<QPointF>({QPointF(50.5, 30)}));
}

TEST(SwayDesktopTest, typesIntoAnXProgramAndServesItsClipboard) {
    SwayOptions options;
    options.xwayland = true;
    SwayDesktop desktop(options);
    const QString typed = desktop.scratchPath() + QStringLiteral("/typed");
    desktop.start(QStringLiteral("xterm"), {QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"),
                                            QStringLiteral("read line; echo \"$line\" > ") + typed});
    ASSERT_TRUE(SwayDesktop::waitFor([&] {
        const auto windows = desktop.windows();
        return windows.size() == 1 && windows[0].xClass == QStringLiteral("XTerm") && windows[0].focused;
    }));
    desktop.input().type(QStringLiteral("Framora (Wayland)\n"));
    EXPECT_TRUE(SwayDesktop::waitFor([&] {
        QFile file(typed);
        return file.open(QIODevice::ReadOnly) && file.readAll() == "Framora (Wayland)\n";
    }));

    EXPECT_TRUE(desktop.clipboardTypes().isEmpty());
    desktop.setClipboard("words", QStringLiteral("text/plain"));
    EXPECT_EQ(desktop.clipboard(QStringLiteral("text/plain")), "words");
    EXPECT_TRUE(desktop.clipboardTypes().contains(QStringLiteral("text/plain")));
}

TEST(SwayDesktopTest, tellsWhatIsLeftAndLeavesNothingItself) {
    std::vector<qint64> processes;
    {
        SwayOptions options;
        options.accessibility = true;
        SwayDesktop desktop(options);
        EXPECT_EQ(desktop.leftovers(), QStringList());
        QFile forgotten(desktop.temporaryPath() + QStringLiteral("/forgotten"));
        ASSERT_TRUE(forgotten.open(QIODevice::WriteOnly));
        desktop.run(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("setsid sleep 1000 >&2 &")});
        const QStringList left = desktop.leftovers(300);
        ASSERT_EQ(left.size(), 2) << left.join(QLatin1Char('\n')).toStdString();
        EXPECT_TRUE(left[0].endsWith(QStringLiteral("sleep")));
        EXPECT_EQ(left[1], forgotten.fileName());
        processes = desktop.processes();
    }
    for (const qint64 pid : processes)
        EXPECT_TRUE(SwayDesktop::waitFor([&] { return ChildProcess::nameOf(pid).isEmpty(); }, 3000))
            << ChildProcess::nameOf(pid).toStdString();
}

} // namespace
} // namespace framora
