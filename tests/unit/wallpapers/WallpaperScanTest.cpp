#include "unit/wallpapers/WallpaperFixture.h"

#include <QRegularExpression>
#include <sys/stat.h>
#include <unistd.h>

namespace framora {
namespace {

constexpr qint64 enough = 100'001;

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class WallpaperScanOf : public WallpaperFixture {
protected:
    /// Puts so many pictures into a folder, as links of the same bytes: each a file of its own.
    void fill(const QString& folder, int count) const {
        const QString first = put(folder + text("/0000.jpg"), enough);
        for (int i = 1; i < count; ++i) {
            const QString name = text("%1/%2.jpg").arg(folder).arg(i, 4, 10, QLatin1Char('0'));
            ASSERT_EQ(link(QFile::encodeName(first).constData(), QFile::encodeName(path(name)).constData()),
                      0);
        }
    }
};

TEST_F(WallpaperScanOf, FoldersGoesThroughThemInTheirOrderAndByPathWithin) {
    const QStringList names{
        text("home/Library/Desktop Pictures/z.jpg"),
        text("home/Pictures/a.jpg"),
        text("home/Pictures/b/a.png"),
        text("home/Pictures/c.heic"),
        text("System/Library/Desktop Pictures/a.heif"),
        text("Library/Desktop Pictures/a.tiff"),
        text("System/Library/ExtensionKit/Extensions/NeptuneOneWallpaper.appex/Contents/"
             "Resources/a.webp"),
        text("System/Library/AssetsV2/com_apple_MobileAsset_DesktopPicture/a.jpeg"),
        text("Library/Application Support/com.apple.idleassetsd/Customer/4KSDR240FPS/a.mov"),
        text("home/.local/share/backgrounds/a.jpg"),
        text("home/.local/share/wallpapers/a.jpg"),
        text("usr/local/share/backgrounds/a.jpg"),
        text("usr/share/backgrounds/a.jpg"),
        text("usr/share/wallpapers/a.jpg")};
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        put(*name, enough);
    EXPECT_EQ(foundPaths(), names);
}

TEST_F(WallpaperScanOf, KnowsTheFixedFoldersOfAHome) {
    const WallpaperFolders all = WallpaperFolders::inHome(text("/home/ada"));
    EXPECT_EQ(all.folders.size(), 12);
    EXPECT_EQ(all.folders[1], text("/home/ada/Pictures"));
    EXPECT_EQ(all.folders[10], text("/usr/share/backgrounds"));
    EXPECT_EQ(all.referenceFolder,
              text("/home/ada/Library/Application Support/com.apple.wallpaper/aerials/videos"));
}

TEST_F(WallpaperScanOf, FoldersThatDoNotExistAreSkipped) {
    EXPECT_TRUE(candidates().empty());
}

TEST_F(WallpaperScanOf, CurrentPicturesComeFirstUnderTheirName) {
    put(text("home/Pictures/a.jpg"), enough);
    const QString current = put(text("elsewhere/small.jpg"), 10);
    const QString clip = put(text("elsewhere/Screenshots/clip.MOV"), 10);
    const auto found = candidates({url(current), url(clip), url(path(text("missing.jpg")))});
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0], (WallpaperCandidate{url(current), text("Current Wallpaper"), 10, false}));
    EXPECT_EQ(found[1], (WallpaperCandidate{url(clip), text("Current Wallpaper"), 10, true}));
    EXPECT_EQ(found[2].name, text("a.jpg"));
}

TEST_F(WallpaperScanOf, OnePictureOnTwoScreensAndInAFolderIsListedOnceAndFirst) {
    put(text("home/Pictures/a.jpg"), enough);
    const QString shown = put(text("System/Library/Desktop Pictures/Shown.heic"), enough);
    const auto found = candidates({url(shown), url(shown)});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].url, url(shown));
    EXPECT_EQ(found[0].name, text("Current Wallpaper"));
}

TEST_F(WallpaperScanOf, APictureUnderTwoNamesIsListedOnce) {
    const QString file = put(text("usr/share/backgrounds/a.jpg"), enough);
    ASSERT_TRUE(QFile::link(file, path(text("usr/share/backgrounds/b.jpg"))));
    ASSERT_TRUE(QFile::link(file, path(text("default"))));
    EXPECT_EQ(foundPaths(), QStringList(text("usr/share/backgrounds/a.jpg")));
    EXPECT_EQ(foundPaths({url(path(text("default")))}), QStringList(text("default")));
}

TEST_F(WallpaperScanOf, EachFragmentOfThePathExcludes) {
    for (const char* name :
         {".thumbnails/a.jpg", "aThumbnail.jpg", "Thumbnails/a.jpg", "Solid Colors/a.png", "a@2x.png",
          "Portrait/a.jpg", "My Portrait.jpg", ".DS_Store.jpg", "Photo Booth/a.jpg",
          "Photo Booth Library/b/a.jpg", "Screenshots/a.png", "2024/Screenshots of June/a.png"})
        put(text("home/Pictures/") + text(name), enough);
    EXPECT_EQ(foundPaths(), QStringList());
}

TEST_F(WallpaperScanOf, FragmentsAreComparedWithTheirCase) {
    const QStringList names{text("home/Pictures/portrait.jpg"), text("home/Pictures/screenshots/a.png"),
                            text("home/Pictures/thumbnail.jpg")};
    for (const QString& name : names)
        put(name, enough);
    EXPECT_EQ(foundPaths(), names);
}

TEST_F(WallpaperScanOf, OnlyTheKnownExtensionsCountInAnyCase) {
    for (const char* name : {"a.gif", "a.bmp", "a.svg", "a.tif", "a.avi", "a", "a.jpg.txt", "jpg", ".jpg"})
        put(text("home/Pictures/") + text(name), enough);
    put(text("home/Pictures/b.JPG"), enough);
    put(text("home/Pictures/c.MOV"), 1);
    const auto found = candidates();
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].name, text(".jpg")); // an extension all the same
    EXPECT_EQ(found[1].name, text("b.JPG"));
    EXPECT_FALSE(found[1].isVideo);
    EXPECT_EQ(found[2].name, text("c.MOV"));
    EXPECT_TRUE(found[2].isVideo);
}

TEST_F(WallpaperScanOf, PicturesMustBeLargerThanTheThresholdAndVideosNeedNot) {
    put(text("home/Pictures/exactly.jpg"), 100'000);
    put(text("home/Pictures/larger.jpg"), 100'001);
    put(text("home/Pictures/empty.mp4"), 0);
    EXPECT_EQ(foundPaths(), QStringList({text("home/Pictures/empty.mp4"), text("home/Pictures/larger.jpg")}));
}

TEST_F(WallpaperScanOf, SmallerPicturesCountUnderTheReferenceFolder) {
    const QString reference = text("home/Library/Application Support/com.apple.wallpaper/aerials/videos");
    put(reference + text("/exactly.jpg"), 50'000);
    put(reference + text("/inner/sixty.jpg"), 60'000);
    put(text("System/Library/Desktop Pictures/sixty.jpg"), 60'000);
    WallpaperFolders all = folders();
    all.folders.append(path(reference));
    const auto found = WallpaperScan::candidates({}, all);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].url, url(path(reference + text("/inner/sixty.jpg"))));
}

TEST_F(WallpaperScanOf, ALinkToAPictureIsOneAndALinkToAFolderIsNotFollowed) {
    const QString target = put(text("elsewhere/a.jpg"), enough);
    QDir().mkpath(path(text("home/Pictures/inner")));
    ASSERT_TRUE(QFile::link(target, path(text("home/Pictures/linked.jpg"))));
    ASSERT_TRUE(QFile::link(path(text("elsewhere")), path(text("home/Pictures/other"))));
    // Rings: through the folder itself, through its parent, and of two links.
    ASSERT_TRUE(QFile::link(path(text("home/Pictures")), path(text("home/Pictures/inner/ring"))));
    ASSERT_TRUE(QFile::link(text("b.jpg"), path(text("home/Pictures/ring-a.jpg"))));
    ASSERT_TRUE(QFile::link(text("ring-a.jpg"), path(text("home/Pictures/b.jpg"))));
    ASSERT_TRUE(QFile::link(text("nowhere"), path(text("home/Pictures/dangling.jpg"))));
    EXPECT_EQ(foundPaths(), QStringList(text("home/Pictures/linked.jpg")));
}

TEST_F(WallpaperScanOf, AWholeFolderMayBeALink) {
    put(text("disk/a.jpg"), enough);
    QDir().mkpath(path(text("home")));
    ASSERT_TRUE(QFile::link(path(text("disk")), path(text("home/Pictures"))));
    EXPECT_EQ(foundPaths(), QStringList(text("home/Pictures/a.jpg")));
}

TEST_F(WallpaperScanOf, PipesAndFoldersNamedAsPicturesAreNone) {
    QDir().mkpath(path(text("home/Pictures/folder.jpg")));
    put(text("home/Pictures/folder.jpg/inner.jpg"), enough);
    ASSERT_EQ(mkfifo(QFile::encodeName(path(text("home/Pictures/pipe.jpg"))).constData(), 0600), 0);
    EXPECT_EQ(foundPaths(), QStringList(text("home/Pictures/folder.jpg/inner.jpg")));
}

TEST_F(WallpaperScanOf, AFolderThatCannotBeListedIsSkipped) {
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser may list every folder";
    put(text("home/Pictures/closed/a.jpg"), enough);
    put(text("home/Pictures/open.jpg"), enough);
    const QByteArray closed = QFile::encodeName(path(text("home/Pictures/closed")));
    ASSERT_EQ(chmod(closed.constData(), 0), 0);
    EXPECT_EQ(foundPaths(), QStringList(text("home/Pictures/open.jpg")));
    chmod(closed.constData(), 0700);
}

TEST_F(WallpaperScanOf, AFileOrALinkToNothingInPlaceOfAFolderIsSkipped) {
    put(text("home/Pictures"), enough);
    QDir().mkpath(path(text("usr/share")));
    ASSERT_TRUE(QFile::link(path(text("nowhere")), path(text("usr/share/backgrounds"))));
    put(text("home/.local/share/backgrounds/a.jpg"), enough);
    put(text("usr/share/wallpapers/a.jpg"), enough);
    EXPECT_EQ(foundPaths(),
              (QStringList{text("home/.local/share/backgrounds/a.jpg"), text("usr/share/wallpapers/a.jpg")}));
}

TEST_F(WallpaperScanOf, AVeryDeepFolderEndsSomewhere) {
    QString deep = text("home/Pictures");
    for (int i = 0; i < 200; ++i)
        deep += text("/d");
    put(deep + text("/a.jpg"), enough);
    put(text("home/Pictures/z.jpg"), enough);
    EXPECT_EQ(foundPaths(), QStringList(text("home/Pictures/z.jpg")));
}

TEST_F(WallpaperScanOf, AFolderOfPhotographsGivesItsFirstOnesAndLeavesRoomForTheOthers) {
    const int most = int(WallpaperScan::mostInAll);
    fill(text("home/Pictures"), most * 3);
    put(text("usr/share/backgrounds/a.jpg"), enough);
    const QString shown = put(text("shown.jpg"), enough);
    const QStringList found = foundPaths({url(shown)});
    ASSERT_EQ(found.size(), most + 1) << "the current one comes beside";
    EXPECT_EQ(found[0], text("shown.jpg"));
    EXPECT_EQ(found[most - 1], text("home/Pictures/%1.jpg").arg(most - 2, 4, 10, QLatin1Char('0')));
    EXPECT_EQ(found.last(), text("usr/share/backgrounds/a.jpg"));
}

TEST_F(WallpaperScanOf, FullFoldersShareTheRoomAndNoneIsLeftOut) {
    const int most = int(WallpaperScan::mostInAll);
    fill(text("home/Pictures"), most);
    fill(text("home/.local/share/backgrounds"), most);
    fill(text("usr/share/backgrounds"), 70);
    fill(text("usr/share/wallpapers"), most);
    const QStringList found = foundPaths();
    const auto countOf = [&](const char* folder) {
        return found.filter(QRegularExpression(u'^' + text(folder))).size();
    };
    EXPECT_EQ(found.size(), most);
    EXPECT_EQ(countOf("home/Pictures"), (most - 70) / 3);
    EXPECT_EQ(countOf("home/.local"), (most - 70) / 3);
    EXPECT_EQ(countOf("usr/share/backgrounds"), 70);
    EXPECT_EQ(countOf("usr/share/wallpapers"), (most - 70) / 3);
}

TEST_F(WallpaperScanOf, ASingleFolderMayTakeAllTheRoom) {
    const int most = int(WallpaperScan::mostInAll);
    fill(text("usr/share/wallpapers"), most - 5);
    EXPECT_EQ(foundPaths().size(), most - 5);
}

TEST_F(WallpaperScanOf, APackageOfSizesIsOnePictureOfItsLargest) {
    const QString package = text("usr/share/wallpapers/Next/contents/");
    put(package + text("images/1920x1080.png"), enough);
    const QString portrait = put(package + text("images/1080x1920.png"), enough);
    put(package + text("images/5120x2880.png"), enough);
    put(package + text("images_dark/3840x2160.png"), enough);
    put(package + text("images_dark/1920x1080.png"), enough);
    EXPECT_EQ(foundPaths(), QStringList({package + text("images/5120x2880.png"),
                                         package + text("images_dark/3840x2160.png")}));
    // The size that the desktop shows stands for all of them.
    EXPECT_EQ(foundPaths({url(portrait)}), QStringList({package + text("images/1080x1920.png"),
                                                        package + text("images_dark/3840x2160.png")}));
}

TEST_F(WallpaperScanOf, AStoppedScanEndsAtOnce) {
    put(text("home/Pictures/a.jpg"), enough);
    std::stop_source source;
    source.request_stop();
    EXPECT_TRUE(WallpaperScan::candidates({}, folders(), source.get_token()).empty());
}

} // namespace
} // namespace framora
