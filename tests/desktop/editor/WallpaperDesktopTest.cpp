#include "desktop/editor/EditorDesktop.h"

#include <QDir>
#include <QImageWriter>

namespace framora {
namespace {

/// An editor on a machine with wallpapers: one that the desktop shows and two in the user's pictures.
class WallpapersOnTheDesktop : public EditorDesktop {
protected:
    WallpapersOnTheDesktop() {
        write(desktop.homePath() + QStringLiteral("/Pictures/a green.tiff"), green);
        write(desktop.homePath() + QStringLiteral("/Pictures/walls/b.tiff"), blue);
        write(desktop.homePath() + QStringLiteral("/Pictures/Screenshots/c.tiff"), red);
        const QString shown = scratch("shown.tiff");
        write(shown, red);
        desktop.setEnvironmentVariable(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("LXQt"));
        const QString settings = desktop.configPath() + QStringLiteral("/pcmanfm-qt/lxqt/settings.conf");
        EXPECT_TRUE(QDir().mkpath(QFileInfo(settings).path()));
        QFile file(settings);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop]\nWallpaper=" + shown.toUtf8() + "\nWallpaperMode=zoom\n");
    }

    /// Large enough to count, however plain.
    static void write(const QString& path, const QColor& color) {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QImage image(320, 200, QImage::Format_RGB32);
        image.fill(color);
        QImageWriter writer(path, "tiff");
        writer.setCompression(0);
        EXPECT_TRUE(writer.write(image)) << path.toStdString();
        EXPECT_GT(QFileInfo(path).size(), 100'000);
    }

    bool shows(const QPoint& at, const QColor& color) {
        return VirtualDesktop::waitFor([&] {
            const QColor found = display().pixelAt(at);
            return std::abs(found.red() - color.red()) + std::abs(found.green() - color.green()) +
                       std::abs(found.blue() - color.blue()) <
                   12;
        });
    }

    const QColor red{200, 40, 50};
    const QColor green{40, 160, 70};
    const QColor blue{30, 70, 190};
};

TEST_F(WallpapersOnTheDesktop, AreOfferedAfterTheFirstFrameAndAClickDrawsOneBehindTheScreenshot) {
    open();
    // The first is the picture that the editor starts with.
    ASSERT_TRUE(VirtualDesktop::waitFor(
        [&] { return ask(QStringLiteral("where wallpaper.3"), QStringLiteral("at ")) != u"nowhere"; }, 20000))
        << transcript().toStdString();
    EXPECT_EQ(ask(QStringLiteral("where wallpaper.4"), QStringLiteral("at ")), QStringLiteral("nowhere"))
        << "what lies among the screenshots is none";
    EXPECT_TRUE(shows(place("wallpaper.1").center(), red)) << "what the desktop shows comes first";
    EXPECT_TRUE(shows(place("wallpaper.2").center(), green));
    EXPECT_TRUE(shows(place("wallpaper.3").center(), blue));

    const QPoint corner = place("canvas").center() + QPoint(-260, -210);
    click("wallpaper.3");
    EXPECT_TRUE(shows(corner, blue));
    click("wallpaper.1");
    EXPECT_TRUE(shows(corner, red));
    EXPECT_TRUE(waitForField(QStringLiteral("selectedWallpaperURL"),
                             QUrl::fromLocalFile(scratch("shown.tiff")).toString()));
}

TEST_F(WallpapersOnTheDesktop, AreTheSameForTheNextEditorAtOnce) {
    open();
    const auto hasAll = [&] {
        return ask(QStringLiteral("where wallpaper.3"), QStringLiteral("at ")) != u"nowhere";
    };
    ASSERT_TRUE(VirtualDesktop::waitFor(hasAll, 20000));
    ASSERT_TRUE(QDir(desktop.homePath() + QStringLiteral("/Pictures")).removeRecursively());
    ask(QStringLiteral("close"), QStringLiteral("closed"));
    ask(QStringLiteral("open ") + picturePath, QStringLiteral("first-frame"));
    EXPECT_TRUE(VirtualDesktop::waitFor(hasAll)) << "nobody looks at the folders again in this run";
}

} // namespace
} // namespace framora
