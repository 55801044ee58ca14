#include "platform/desktop/pictures/DesktopSettingsPlace.h"
#include "platform/desktop/pictures/PicturePackage.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class PlasmaPictures : public testing::Test {
protected:
    PlasmaPictures() {
        place.configFolder = folder.filePath(text("config"));
        place.dataFolders = {folder.filePath(text("data"))};
        place.screens = {{QRect(0, 0, 1920, 1080), 1, text("HDMI-1")},
                         {QRect(1920, 0, 1080, 1920), 1, text("DP-2")}};
        package(text("data/wallpapers/Next"),
                {"images/1080x1920.png", "images/1920x1080.png", "images/5120x2880.png",
                 "images_dark/1080x1920.png", "images_dark/5120x2880.png"});
    }

    QString write(const QString& name, const QByteArray& bytes) const {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    void package(const QString& name, std::initializer_list<const char*> pictures) const {
        for (const char* picture : pictures)
            write(name + text("/contents/") + text(picture), "x");
    }
    void applets(const QByteArray& bytes) const {
        write(text("config/plasma-org.kde.plasma.desktop-appletsrc"), bytes);
    }
    /// Below the test's folder where they lie in it.
    QStringList pictures() const {
        QStringList all;
        for (const QUrl& url : plasmaPictures(place))
            all.append(url.toLocalFile().replace(folder.path() + u'/', QString()));
        return all;
    }
    static QByteArray desktop(int number, int screen, const QByteArray& image,
                              const QByteArray& activity = "1111-2222") {
        const QByteArray group = "[Containments][" + QByteArray::number(number) + "]";
        return group + "\nactivityId=" + activity +
               "\nformfactor=0\nlastScreen=" + QByteArray::number(screen) +
               "\nplugin=org.kde.plasma.folder\nwallpaperplugin=org.kde.image\n\n" + group +
               "[Wallpaper][org.kde.image][General]\nFillMode=2\n" +
               (image.isEmpty() ? "" : "Image=" + image + "\n") + "\n";
    }

    QTemporaryDir folder;
    DesktopSettingsPlace place;
};

TEST_F(PlasmaPictures, AreOnePerScreenInScreenOrder) {
    applets("[ActionPlugins][0]\nRightButton;NoModifier=org.kde.contextmenu\n\n" +
            desktop(20, 1, "/pictures/tall.jpg") + desktop(1, 0, "file:///pictures/a%20b.jpg") +
            "[Containments][2]\nformfactor=2\nlastScreen=0\nplugin=org.kde.panel\n");
    EXPECT_EQ(pictures(), QStringList({text("/pictures/a b.jpg"), text("/pictures/tall.jpg")}));
}

TEST_F(PlasmaPictures, ArePreferablyOfTheActivityInFront) {
    applets(desktop(1, 0, "/pictures/other.jpg", "other") + desktop(2, 0, "/pictures/front.jpg", "front"));
    EXPECT_EQ(pictures(), QStringList(text("/pictures/other.jpg")));
    write(text("config/kactivitymanagerdrc"), "[activities]\nfront=Work\n\n[main]\ncurrentActivity=front\n");
    EXPECT_EQ(pictures(), QStringList(text("/pictures/front.jpg")));
}

TEST_F(PlasmaPictures, OfAPackageSuitTheScreenAndTheColourScheme) {
    const QByteArray next = QFile::encodeName(folder.filePath(text("data/wallpapers/Next/")));
    applets(desktop(1, 0, "file://" + next) + desktop(2, 1, next));
    EXPECT_EQ(pictures(), QStringList({text("data/wallpapers/Next/contents/images/1920x1080.png"),
                                       text("data/wallpapers/Next/contents/images/1080x1920.png")}));
    write(text("config/kdeglobals"), "[Colors:Window]\nBackgroundNormal=42,46,50\n");
    EXPECT_EQ(pictures(), QStringList({text("data/wallpapers/Next/contents/images_dark/5120x2880.png"),
                                       text("data/wallpapers/Next/contents/images_dark/1080x1920.png")}));
    write(text("config/kdeglobals"), "[Colors:Window]\nBackgroundNormal=239,240,241\n");
    EXPECT_TRUE(pictures().first().contains(text("/images/")));
}

TEST_F(PlasmaPictures, ThatNobodyChoseAreTheLooksOwn) {
    applets(desktop(1, 0, ""));
    EXPECT_EQ(pictures(), QStringList(text("data/wallpapers/Next/contents/images/1920x1080.png")));
    package(text("data/wallpapers/Autumn"), {"images/3840x2160.jpg"});
    write(text("config/kdeglobals"), "[KDE]\nLookAndFeelPackage=org.example.look\n");
    write(text("data/plasma/look-and-feel/org.example.look/contents/defaults"),
          "[kdeglobals][KDE]\nwidgetStyle=Breeze\n\n[Wallpaper]\nImage=Autumn\n");
    EXPECT_EQ(pictures(), QStringList(text("data/wallpapers/Autumn/contents/images/3840x2160.jpg")));
}

TEST_F(PlasmaPictures, OfASlideShowIsTheOneShownAndOfAColourNone) {
    QByteArray slides = desktop(1, 0, "/pictures/slide.jpg");
    slides.replace("org.kde.image", "org.kde.slideshow");
    QByteArray color = desktop(2, 1, "/pictures/hidden.jpg");
    color.replace("wallpaperplugin=org.kde.image", "wallpaperplugin=org.kde.color");
    applets(slides + color);
    EXPECT_EQ(pictures(), QStringList(text("/pictures/slide.jpg")));
}

TEST_F(PlasmaPictures, AreNoneWhereNothingIsConfigured) {
    EXPECT_EQ(pictures(), QStringList());
    applets("[Containments][1\nImage=x\n=\n[]\n");
    EXPECT_EQ(pictures(), QStringList());
}

TEST_F(PlasmaPictures, APackageGivesTheNearestShapeThenTheNearestSizeNotBelow) {
    package(text("p"),
            {"images/1024x768.png", "images/1280x720.png", "images/1920x1080.png", "images/3840x2160.png"});
    const auto best = [&](int width, int height) {
        return QFileInfo(pictureOfPackage(folder.filePath(text("p")), QSize(width, height), false))
            .fileName();
    };
    EXPECT_EQ(best(1920, 1080), text("1920x1080.png"));
    EXPECT_EQ(best(2560, 1440), text("3840x2160.png"));
    EXPECT_EQ(best(7680, 4320), text("3840x2160.png"));
    EXPECT_EQ(best(800, 600), text("1024x768.png"));
    EXPECT_EQ(best(0, 0), text("1024x768.png"));
    EXPECT_EQ(pictureOfPackage(folder.filePath(text("missing")), QSize(1, 1), true), QString());
}

} // namespace
} // namespace framora
