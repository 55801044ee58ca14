// The pictures that the user brings along as backgrounds.

#include "editor/model/ScreenshotEditorViewModel.h"

#include "editor/render/BackgroundDecoder.h"
#include "editor/render/WallpaperThumbnails.h"
#include "editor/render/raster/ParallelFor.h"
#include "platform/BackgroundQueue.h"
#include "platform/FilePanels.h"

#include <QPointer>
#include <algorithm>

namespace framora {
namespace {

/// The first of the files that is a picture. The canvas asks for the same picture as soon as it is chosen.
std::optional<ScreenshotEditorViewModel::Wallpaper> readFirstPicture(const QList<QUrl>& urls,
                                                                     const std::stop_token& stop) {
    // The threads that draw the editor's frames are not for this.
    const raster::SerialScope serial;
    for (const QUrl& url : urls)
        if (const QImage image = BackgroundDecoder::decodeForTwo(url, stop); !image.isNull())
            return std::pair(url, thumbnailOf(image));
    return {};
}

} // namespace

void ScreenshotEditorViewModel::setLoading(bool wallpapers, int imports) {
    const bool before = isLoadingWallpapers();
    m_isLoadingWallpapers = wallpapers;
    m_importsUnderWay = imports;
    if (isLoadingWallpapers() != before)
        Q_EMIT isLoadingWallpapersChanged();
}

void ScreenshotEditorViewModel::setLoadingWallpapers(bool isLoading) {
    setLoading(isLoading, m_importsUnderWay);
}

void ScreenshotEditorViewModel::useBackgroundImage(ScreenshotStyleConfig& config, const QUrl& url) {
    config.backgroundImageURL = url;
    config.selectedMagicPreset.reset();
    config.selectedGradient.reset();
    config.selectedSolidColor.reset();
}

void ScreenshotEditorViewModel::chooseBackgroundImage() {
    // The pictures that BackgroundDecoder reads.
    static const QStringList types{QStringLiteral("image/jpeg"), QStringLiteral("image/png"),
                                   QStringLiteral("image/heic"), QStringLiteral("image/tiff"),
                                   QStringLiteral("image/webp"), QStringLiteral("image/avif"),
                                   QStringLiteral("image/gif"),  QStringLiteral("image/bmp")};
    const QPointer self(this);
    const auto url =
        m_services.filePanels.openPicture(QStringLiteral("Select an image for background"), types);
    // The panel serves the program's other windows, so the editor may have been closed meanwhile.
    if (self && url)
        importBackgroundImage(*url);
}

void ScreenshotEditorViewModel::importBackgroundImage(const QUrl& url) {
    startImport({url}, false);
}

bool ScreenshotEditorViewModel::dropBackgroundImages(const QList<QUrl>& urls) {
    QList<QUrl> local;
    std::copy_if(urls.begin(), urls.end(), std::back_inserter(local),
                 [](const QUrl& url) { return url.isLocalFile(); });
    if (local.isEmpty())
        return false;
    startImport(local, true);
    return true;
}

void ScreenshotEditorViewModel::startImport(const QList<QUrl>& urls, bool showImages) {
    const Import import{++m_lastChoice, showImages};
    setLoading(m_isLoadingWallpapers, m_importsUnderWay + 1);
    m_services.backgroundQueue.async(
        [self = QPointer(this), urls, import, stop = m_imports.get_token()]() -> MainQueue::Work {
            return [self, import, wallpaper = readFirstPicture(urls, stop)] {
                if (self)
                    self->finishImport(import, wallpaper);
                else if (wallpaper)
                    BackgroundDecoder::forget(wallpaper->first);
            };
        });
}

void ScreenshotEditorViewModel::finishImport(const Import& import,
                                             const std::optional<Wallpaper>& wallpaper) {
    setLoading(m_isLoadingWallpapers, m_importsUnderWay - 1);
    if (!wallpaper)
        return;
    const auto later = std::count_if(m_importedChoices.begin(), m_importedChoices.end(),
                                     [&](quint64 choice) { return choice > import.choice; });
    m_importedChoices.push_back(import.choice);
    std::vector<Wallpaper> wallpapers = m_wallpaperImages;
    wallpapers.insert(wallpapers.begin() + later, *wallpaper);
    setWallpaperImages(std::move(wallpapers));
    if (m_services.shareWallpaper)
        m_services.shareWallpaper(*wallpaper);
    const QUrl& url = wallpaper->first;
    const bool isLatest = import.choice > m_shownChoice;
    // Nobody comes for the picture then.
    if (!isLatest || m_config.backgroundImageURL == url)
        BackgroundDecoder::forget(url);
    if (isLatest) {
        chooseWallpaper(url, import.showImages);
        m_shownChoice = import.choice;
    }
}

void ScreenshotEditorViewModel::selectWallpaper(const QUrl& url) {
    noteChoice();
    chooseWallpaper(url, false);
}

void ScreenshotEditorViewModel::chooseWallpaper(const QUrl& url, bool showImages) {
    StyleHistory::State next = state();
    next.selectedWallpaperURL = url;
    useBackgroundImage(next.config, url);
    if (showImages)
        next.config.backgroundType = BackgroundType::image;
    apply(next);
}

} // namespace framora
