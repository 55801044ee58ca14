#include "editor/render/WallpaperCache.h"

#include "platform/BackgroundQueue.h"

#include <QtGlobal>
#include <algorithm>
#include <malloc.h>
#include <utility>

namespace framora {
namespace {

std::unique_ptr<WallpaperCache>& sharedInstance() {
    static std::unique_ptr<WallpaperCache> instance;
    return instance;
}

bool contains(const std::vector<Wallpaper>& wallpapers, const QUrl& url) {
    return std::any_of(wallpapers.begin(), wallpapers.end(),
                       [&](const Wallpaper& wallpaper) { return wallpaper.first == url; });
}

} // namespace

WallpaperCache::WallpaperCache(Services services)
    : m_services(std::move(services)), m_self(std::make_shared<WallpaperCache*>(this)) {}

WallpaperCache::~WallpaperCache() {
    m_stop.request_stop();
}

WallpaperCache& WallpaperCache::shared() {
    if (!sharedInstance())
        qFatal("WallpaperCache: shared() before provide()");
    return *sharedInstance();
}

void WallpaperCache::provide(Services services) {
    sharedInstance() = std::make_unique<WallpaperCache>(std::move(services));
}

void WallpaperCache::withdraw() {
    sharedInstance().reset();
}

void WallpaperCache::load(Completion completion) {
    if (m_isLoaded) {
        completion();
        return;
    }
    m_loadCallbacks.push_back(std::move(completion));
    if (m_isLoading)
        return;
    m_isLoading = true;
    m_services.backgroundQueue.async([self = std::weak_ptr(m_self), stop = m_stop.get_token(),
                                      lookup = m_services.desktopPictures.lookup(),
                                      folders = m_services.folders]() -> MainQueue::Work {
        auto found = std::make_shared<std::vector<Wallpaper>>(
            makeWallpapers(WallpaperScan::candidates(lookup(stop), folders, stop), stop));
        // Decoding took a hundred times what its thumbnails need.
        malloc_trim(0);
        return [self, found] {
            if (const auto cache = self.lock())
                (*cache)->finish(std::move(*found));
        };
    });
}

void WallpaperCache::finish(std::vector<Wallpaper> found) {
    // What was imported meanwhile stays in front.
    const std::size_t imported = m_wallpapers.size();
    for (Wallpaper& wallpaper : found)
        if (const auto begin = m_wallpapers.begin();
            std::none_of(begin, begin + std::ptrdiff_t(imported),
                         [&](const Wallpaper& earlier) { return earlier.first == wallpaper.first; }))
            m_wallpapers.push_back(std::move(wallpaper));
    m_isLoaded = true;
    m_isLoading = false;
    for (const Completion& completion : std::exchange(m_loadCallbacks, {}))
        completion();
}

void WallpaperCache::insert(const Wallpaper& wallpaper) {
    if (!contains(m_wallpapers, wallpaper.first))
        m_wallpapers.insert(m_wallpapers.begin(), wallpaper);
}

} // namespace framora
