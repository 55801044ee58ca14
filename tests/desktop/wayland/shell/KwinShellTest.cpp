#include "desktop/feedback/TimerQueue.h"
#include "desktop/support/FramoraUser.h"
#include "desktop/support/KwinDesktop.h"
#include "desktop/support/PaintedSurface.h"
#include "feedback/ToastManager.h"
#include "platform/wayland/WaylandPasteboard.h"
#include "platform/wayland/WaylandScreens.h"
#include "platform/wayland/WaylandToastPanels.h"
#include "support/FixedAppearance.h"

#include <QBuffer>
#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

const QColor ground(30, 140, 90);

/// The same parts of the program on KWin.
class KwinShellTest : public testing::TestWithParam<double> {
protected:
    KwinShellTest() {
        KwinOptions options;
        options.scale = GetParam();
        options.portal = false;
        desktop.emplace(options);
        const auto environment = desktop->environment();
        for (const QString& name : environment.keys())
            qputenv(name.toLatin1().constData(), environment.value(name).toLocal8Bit());
        qputenv("WAYLAND_DISPLAY", desktop->socketPath().toLocal8Bit());
        connection.emplace();
        connection->listen();
        outputs.emplace(*connection);
        screens.emplace(*connection, *outputs);
        panels.emplace(*connection, *outputs, queue, [this](const QString& token) { tokens.append(token); });
        manager.emplace(ToastServices{queue, *panels, *screens, appearance,
                                      [this](const QImage& image) { edited.push_back(image.size()); }});
        QImage picture((QSizeF(1280, 800) * GetParam()).toSize(), QImage::Format_RGB32);
        picture.fill(ground);
        PaintedSurface::Options behind;
        behind.picture = picture;
        behind.size = {1280, 800};
        behind.output = screens->screens().front().name;
        behindAll = std::make_unique<PaintedSurface>(desktop->socketPath(), behind);
        EXPECT_TRUE(
            DesktopSession::waitFor([&] { return desktop->screenshot().pixelColor(4, 4) == ground; }));
    }
    ~KwinShellTest() override { qunsetenv("WAYLAND_DISPLAY"); }

    /// The card's own near-white pixels.
    QRect cardArea() {
        const QImage seen = desktop->screenshot();
        QRect area;
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x)
                if (seen.pixelColor(x, y).lightness() > 248)
                    area |= QRect(x, y, 1, 1);
        return area;
    }

    std::optional<KwinDesktop> desktop;
    std::unique_ptr<PaintedSurface> behindAll;
    TimerQueue queue;
    FixedAppearance appearance;
    std::optional<WaylandConnection> connection;
    std::optional<WaylandOutputs> outputs;
    std::optional<WaylandScreens> screens;
    std::optional<WaylandToastPanels> panels;
    std::optional<ToastManager> manager;
    QStringList tokens;
    std::vector<QSize> edited;
};

INSTANTIATE_TEST_SUITE_P(, KwinShellTest, testing::Values(1.0, 1.5),
                         [](const auto& run) { return "scale" + std::to_string(int(run.param * 100)); });

TEST_P(KwinShellTest, aToastStandsInItsPlaceAndTakesTheClickOnItsCardAlone) {
    const double ratio = GetParam();
    ASSERT_EQ(screens->screens().front().pixelRatio, ratio);
    QImage picture(800, 500, QImage::Format_RGB32);
    picture.fill(QColor(220, 90, 60));
    manager->showInteractive(QStringLiteral("Copied"), QStringLiteral("doc.on.clipboard.fill"), picture);
    ASSERT_TRUE(DesktopSession::waitFor([&] { return cardArea().height() > 60 * ratio; }));
    const QRect card = cardArea();
    EXPECT_NEAR(card.center().x(), 640 * ratio, 2 * ratio);
    EXPECT_NEAR(800 * ratio - card.bottom(), 80 * ratio, 2 * ratio);
    desktop->input().click(QPointF(card.left() - 12, card.center().y()) / ratio);
    EXPECT_TRUE(DesktopSession::waitFor([&] { return behindAll->clicks().size() == 1; }));
    desktop->input().click(QPointF(card.center()) / ratio);
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !edited.empty(); }));
    EXPECT_EQ(behindAll->clicks().size(), 1u);
    ASSERT_EQ(tokens.size(), 1);
    EXPECT_FALSE(tokens.front().isEmpty());
    EXPECT_TRUE(DesktopSession::waitFor([&] { return !manager->isShowing(); }));
}

TEST_P(KwinShellTest, theSettingsWindowIsItsOwnFrameAlone) {
    ChildProcess& program =
        desktop->start(FramoraUser::program(QStringLiteral("framora")), {QStringLiteral("--settings")});
    const auto seenArea = [&] {
        const QImage seen = desktop->screenshot();
        QRect area;
        for (int y = 0; y < seen.height(); ++y)
            for (int x = 0; x < seen.width(); ++x)
                if (seen.pixelColor(x, y) != ground)
                    area |= QRect(x, y, 1, 1);
        return area;
    };
    QRect last;
    int same = 0;
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        const QRect now = seenArea();
        same = now == last && now.width() > 400 ? same + 1 : 0;
        last = now;
        return same > 3;
    })) << program.output().toStdString();
    const QImage seen = desktop->screenshot();
    if (const QString folder = qEnvironmentVariable("FRAMORA_PICTURES_FOLDER"); !folder.isEmpty())
        seen.save(QStringLiteral("%1/kwin-settings-%2.png").arg(folder).arg(GetParam()));
    // The sidebar reaches the window's upper edge: no bar of the compositor's stands above it.
    const QRect frame = last;
    const QColor sidebar = seen.pixelColor(frame.left() + int(40 * GetParam()), frame.center().y());
    EXPECT_EQ(seen.pixelColor(frame.left() + int(60 * GetParam()), frame.top() + int(4 * GetParam())),
              sidebar);
}

TEST_P(KwinShellTest, theClipboardIsCountedReadAndWritten) {
    WaylandPasteboard pasteboard(*connection, WaylandClipboard::make(*connection),
                                 [](const QByteArray& file) { return QImage::fromData(file); });
    const auto before = pasteboard.changeCount();
    const QImage picture = PaintedSurface::pattern({200, 100});
    QByteArray png;
    QBuffer buffer(&png);
    picture.save(&buffer, "PNG");
    pasteboard.writePng(png);
    EXPECT_GT(pasteboard.changeCount(), before);
    EXPECT_EQ(pasteboard.readImage().convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_EQ(desktop->run(QStringLiteral("timeout"),
                           {QStringLiteral("10"), QStringLiteral("wl-paste"), QStringLiteral("--no-newline"),
                            QStringLiteral("--type"), QStringLiteral("image/png")}),
              png);
    const auto written = pasteboard.changeCount();
    desktop->run(QStringLiteral("wl-copy"), {QStringLiteral("words")});
    EXPECT_TRUE(DesktopSession::waitFor([&] { return pasteboard.changeCount() > written; }));
    EXPECT_TRUE(pasteboard.readImage().isNull());
    EXPECT_EQ(desktop->leftovers().filter(QStringLiteral("framora")), QStringList());
}

} // namespace
} // namespace framora
