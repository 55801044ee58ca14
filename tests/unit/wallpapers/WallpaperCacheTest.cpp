#include "editor/render/WallpaperCache.h"
#include "support/FixedDesktopPictures.h"
#include "support/ManualBackgroundQueue.h"
#include "support/ManualMainQueue.h"
#include "unit/wallpapers/WallpaperFixture.h"

namespace framora {
namespace {

class WallpaperCacheOf : public WallpaperFixture {
protected:
    static constexpr int width = 640;
    static constexpr int height = 400;

    /// A picture that no encoder makes small.
    QString putPicture(const QString& name, int seed = 1) const {
        QImage image(width, height, QImage::Format_RGB32);
        quint32 value = quint32(seed) * 2654435761u + 1;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.setPixel(x, y, 0xff000000u | (value = value * 1664525u + 1013904223u) >> 8);
        QDir().mkpath(QFileInfo(path(name)).path());
        EXPECT_TRUE(image.save(path(name)));
        EXPECT_GT(QFileInfo(path(name)).size(), 100'000);
        return path(name);
    }

    WallpaperCache::Services services() { return {background, desktop, folders()}; }
    static QList<QUrl> urls(const WallpaperCache& cache) {
        QList<QUrl> all;
        for (const Wallpaper& wallpaper : cache.wallpapers())
            all.append(wallpaper.first);
        return all;
    }
    void finishScan() {
        background.runPending();
        queue.runPending();
    }

    ManualMainQueue queue;
    ManualBackgroundQueue background{queue};
    FixedDesktopPictures desktop;
};

TEST_F(WallpaperCacheOf, NothingHappensBeforeSomebodyAsks) {
    const WallpaperCache cache(services());
    EXPECT_EQ(background.startedCount, 0);
    EXPECT_FALSE(cache.isLoaded());
    EXPECT_FALSE(cache.isLoading());
    EXPECT_TRUE(cache.wallpapers().empty());
}

TEST_F(WallpaperCacheOf, TwoEditorsDuringOneScanAreBothAnsweredInTheirOrder) {
    putPicture(QStringLiteral("home/Pictures/a.png"));
    WallpaperCache cache(services());
    QStringList calls;
    const auto note = [&](const char* who) {
        return [&calls, &cache, who] {
            EXPECT_TRUE(cache.isLoaded());
            calls.append(QStringLiteral("%1 %2").arg(QLatin1String(who)).arg(cache.wallpapers().size()));
        };
    };
    cache.load(note("first"));
    EXPECT_TRUE(cache.isLoading());
    cache.load(note("second"));
    EXPECT_EQ(background.startedCount, 1);
    background.runPending();
    EXPECT_TRUE(calls.isEmpty()) << "only the main queue calls back";
    EXPECT_TRUE(cache.isLoading());
    queue.runPending();
    EXPECT_EQ(calls, QStringList({QStringLiteral("first 1"), QStringLiteral("second 1")}));
    EXPECT_TRUE(cache.isLoaded());
    EXPECT_FALSE(cache.isLoading());
}

TEST_F(WallpaperCacheOf, ALaterRequestIsAnsweredAtOnceWithoutAnotherScan) {
    WallpaperCache cache(services());
    cache.load([] {});
    finishScan();
    putPicture(QStringLiteral("home/Pictures/a.png"));
    int calls = 0;
    cache.load([&] { ++calls; });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(background.startedCount, 1);
    EXPECT_TRUE(cache.wallpapers().empty()) << "the list of one run is not refreshed";
}

TEST_F(WallpaperCacheOf, ARequestOutOfACompletionIsAnsweredAtOnce) {
    WallpaperCache cache(services());
    QStringList calls;
    cache.load([&] {
        cache.load([&] { calls.append(QStringLiteral("inner")); });
        calls.append(QStringLiteral("first"));
    });
    cache.load([&] { calls.append(QStringLiteral("second")); });
    finishScan();
    EXPECT_EQ(calls,
              QStringList({QStringLiteral("inner"), QStringLiteral("first"), QStringLiteral("second")}));
}

TEST_F(WallpaperCacheOf, AnEmptyResultIsAResult) {
    WallpaperCache cache(services());
    int calls = 0;
    cache.load([&] { ++calls; });
    finishScan();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(cache.isLoaded());
    EXPECT_TRUE(cache.wallpapers().empty());
}

TEST_F(WallpaperCacheOf, EntriesComeInDisplayOrderWithThumbnails) {
    putPicture(QStringLiteral("usr/share/backgrounds/b.png"), 1);
    putPicture(QStringLiteral("home/Pictures/z.png"), 2);
    desktop.pictures = {url(putPicture(QStringLiteral("usr/share/backgrounds/shown.png"), 3))};
    put(QStringLiteral("home/Pictures/broken.png"), 200'000);
    WallpaperCache cache(services());
    cache.load([] {});
    finishScan();
    EXPECT_EQ(urls(cache), QList<QUrl>({desktop.pictures[0], url(path(QStringLiteral("home/Pictures/z.png"))),
                                        url(path(QStringLiteral("usr/share/backgrounds/b.png")))}));
    for (const Wallpaper& wallpaper : cache.wallpapers())
        EXPECT_EQ(wallpaper.second.size(), QSize(400, 250));
}

TEST_F(WallpaperCacheOf, AnImportStandsInFrontOnceHoweverOftenItIsImported) {
    const QUrl file = url(putPicture(QStringLiteral("home/Pictures/a.png")));
    WallpaperCache cache(services());
    cache.load([] {});
    finishScan();
    const Wallpaper import{url(QStringLiteral("/imports/new.png")), QImage(4, 3, QImage::Format_RGB32)};
    cache.insert(import);
    cache.insert(import);
    cache.insert({file, QImage(4, 3, QImage::Format_RGB32)});
    EXPECT_EQ(urls(cache), QList<QUrl>({import.first, file}));
    EXPECT_EQ(cache.wallpapers()[1].second.size(), QSize(400, 250));
}

TEST_F(WallpaperCacheOf, AnImportDuringTheScanStaysInFrontAndIsNotListedTwice) {
    const QUrl scanned = url(putPicture(QStringLiteral("home/Pictures/a.png"), 1));
    const QUrl both = url(putPicture(QStringLiteral("home/Pictures/b.png"), 2));
    WallpaperCache cache(services());
    cache.load([] {});
    cache.insert({both, QImage(4, 3, QImage::Format_RGB32)});
    finishScan();
    EXPECT_EQ(urls(cache), QList<QUrl>({both, scanned}));
}

TEST_F(WallpaperCacheOf, AScanThatOutlivesItsCacheCallsNobody) {
    int calls = 0;
    auto cache = std::make_unique<WallpaperCache>(services());
    cache->load([&] { ++calls; });
    background.runPending();
    cache.reset();
    queue.runPending();
    EXPECT_EQ(calls, 0);
}

TEST_F(WallpaperCacheOf, TheSharedInstanceIsOneUntilItIsWithdrawn) {
    WallpaperCache::provide(services());
    WallpaperCache::shared().load([] {});
    EXPECT_EQ(&WallpaperCache::shared(), &WallpaperCache::shared());
    EXPECT_TRUE(WallpaperCache::shared().isLoading());
    WallpaperCache::withdraw();
    finishScan();
    EXPECT_DEATH(WallpaperCache::shared(), "before provide");
}

} // namespace
} // namespace framora
