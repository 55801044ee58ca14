#include "editor/render/WallpaperThumbnails.h"

#include "editor/render/DecoderProcess.h"
#include "editor/render/ImageResampler.h"
#include "editor/render/IsoMediaSize.h"
#include "editor/render/MemoryBudget.h"
#include "editor/render/ReducedPicture.h"
#include "editor/render/RegularFile.h"
#include "editor/render/raster/ParallelFor.h"
#include "platform/ThreadPriority.h"

#include <QFile>
#include <algorithm>
#include <atomic>
#include <thread>

namespace framora {
namespace {

constexpr int thumbnailWidth = 400;
constexpr int thumbnailHeight = 300;
/// Decoders reduce no further than to half as much again: the last step is the resampler's.
constexpr QSize decodedBox(600, 450);

constexpr qint64 mebibyte = 1 << 20;
/// What all that is decoded at one time may take together.
constexpr qint64 decodingBudget = 220 * mebibyte;
/// A picture that would take more by itself is no wallpaper.
constexpr qint64 mostForOne = 512 * mebibyte;
/// A decoder's process by itself, and what it holds a pixel: planes and samples, or a video's reference
/// frames.
constexpr qint64 decoderBytes = 12 * mebibyte;
constexpr double bytesPerHeifPixel = 4.5;
constexpr double bytesPerVideoPixel = 12;
constexpr qint64 assumedPixels = 3840 * 2160; ///< Where the file does not say.
constexpr unsigned decoderPatience = 10;      // seconds

QImage decodeCandidate(const WallpaperCandidate& candidate, MemoryBudget& budget,
                       const std::stop_token& stop) {
    QFile file;
    if (!openRegularFile(file, candidate.url.toLocalFile()))
        return {};
    if (candidate.isVideo || isHeif(file.handle())) {
        const qint64 claimed = isoMediaPixels(file.handle());
        const double pixels = double(claimed > 0 ? claimed : assumedPixels);
        const double perPixel = candidate.isVideo ? bytesPerVideoPixel : bytesPerHeifPixel;
        const auto bytes = qint64(std::min(pixels * perPixel, double(decodingBudget)));
        const MemoryBudget::Share share(budget, decoderBytes + bytes, stop);
        const QString decoder =
            candidate.isVideo ? QStringLiteral("framora-video-still") : QStringLiteral("framora-heif");
        return stop.stop_requested()
                   ? QImage()
                   : decodeInProcess(decoder, file.handle(), {decodedBox, decoderPatience, 1, stop});
    }
    ReducedPicture picture(file, decodedBox);
    if (picture.bytesNeeded() < 1 || picture.bytesNeeded() > mostForOne)
        return {};
    const MemoryBudget::Share share(budget, picture.bytesNeeded(), stop);
    return stop.stop_requested() ? QImage() : picture.decode();
}

QImage makeThumbnail(const WallpaperCandidate& candidate, MemoryBudget& budget, const std::stop_token& stop) {
    const QImage decoded = decodeCandidate(candidate, budget, stop);
    const QImage thumbnail = resizedImage(decoded, thumbnailWidth, thumbnailHeight);
    return thumbnail.isNull() ? decoded : thumbnail;
}

} // namespace

std::vector<Wallpaper> makeWallpapers(const std::vector<WallpaperCandidate>& candidates,
                                      const std::stop_token& stop) {
    std::vector<QImage> thumbnails(candidates.size());
    MemoryBudget budget(decodingBudget);
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        lowerThreadPriority();
        // One picture a thread: the threads that draw the editor's frames are not for this.
        const raster::SerialScope serial;
        for (std::size_t i = next++; i < candidates.size() && !stop.stop_requested(); i = next++)
            thumbnails[i] = makeThumbnail(candidates[i], budget, stop);
    };
    {
        const std::size_t processors = std::max(1u, std::thread::hardware_concurrency());
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < std::min(processors, candidates.size()); ++i)
            threads.emplace_back(work);
    }
    std::vector<Wallpaper> wallpapers;
    for (std::size_t i = 0; i < candidates.size(); ++i)
        if (!thumbnails[i].isNull())
            wallpapers.emplace_back(candidates[i].url, std::move(thumbnails[i]));
    return wallpapers;
}

} // namespace framora
