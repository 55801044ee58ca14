#pragma once

#include "editor/render/WallpaperThumbnails.h"
#include "platform/DesktopPictures.h"

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace framora {

class BackgroundQueue;

/// The wallpapers of this machine, looked for once in a run, when somebody asks first. Lives on the main
/// thread.
class WallpaperCache {
public:
    using Completion = std::function<void()>;

    /// What the cache asks of the rest of the program; both outlive it.
    struct Services {
        BackgroundQueue& backgroundQueue;
        DesktopPictures& desktopPictures;
        WallpaperFolders folders;
    };

    explicit WallpaperCache(Services services);
    /// Ends a scan that is under way; its requests are dropped.
    ~WallpaperCache();
    WallpaperCache(const WallpaperCache&) = delete;
    WallpaperCache& operator=(const WallpaperCache&) = delete;

    /// The process's one instance. Not before provide().
    static WallpaperCache& shared();
    /// Makes the shared instance, in place of an earlier one.
    static void provide(Services services);
    /// Ends the shared instance: whoever provided the services calls this before they go.
    static void withdraw();

    /// Calls `completion` once wallpapers() is final: at once when it is, otherwise when the scan has ended,
    /// after the completions of earlier calls. The first call starts the scan.
    void load(Completion completion);

    /// In the order in which they are shown: imported ones, the newest first, then the scan's.
    const std::vector<Wallpaper>& wallpapers() const { return m_wallpapers; }
    bool isLoaded() const { return m_isLoaded; }
    bool isLoading() const { return m_isLoading; }

    /// Puts an imported picture at the front, unless its file is there already.
    void insert(const Wallpaper& wallpaper);

private:
    void finish(std::vector<Wallpaper> found);

    Services m_services;
    std::vector<Wallpaper> m_wallpapers;
    bool m_isLoaded = false;
    bool m_isLoading = false;
    std::vector<Completion> m_loadCallbacks;
    std::stop_source m_stop;
    /// What a scan's result finds out by whether its cache is still there.
    std::shared_ptr<WallpaperCache*> m_self;
};

} // namespace framora
