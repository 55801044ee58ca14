#include "editor/render/WallpaperThumbnails.h"

#include "editor/render/DecoderProcess.h"
#include "editor/render/ImageResampler.h"
#include "editor/render/IsoMediaSize.h"
#include "editor/render/MemoryBudget.h"
#include "editor/render/ReducedPicture.h"
#include "editor/render/raster/ParallelFor.h"
#include "platform/RegularFile.h"
#include "platform/ThreadPriority.h"

#include <QFile>
#include <algorithm>
#include <atomic>
#include <chrono>
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
constexpr qint64 mostForOne = 320 * mebibyte;
/// A decoder's process by itself, and what it holds a pixel: planes and samples, or a video's reference
/// frames.
constexpr qint64 decoderBytes = 12 * mebibyte;
constexpr double bytesPerHeifPixel = 4.5;
constexpr double bytesPerVideoPixel = 12;
constexpr qint64 assumedPixels = 3840 * 2160; ///< Where the file does not say.
constexpr unsigned decoderPatience = 10;      // seconds
/// Processor time for a picture that is decoded here: fifty times what a large one takes.
constexpr std::chrono::seconds patience(5);

/// What a decoder may really take: more than its share by what a guess may be wrong, and by what every
/// process has. One whose file claims less than it is dies.
constexpr qint64 boundFor(qint64 share) {
    return share * 3 / 2 + 64 * mebibyte;
}

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
        const qint64 shareBytes = decoderBytes + bytes;
        const MemoryBudget::Share share(budget, shareBytes, stop);
        const QString decoder =
            candidate.isVideo ? QStringLiteral("framora-video-still") : QStringLiteral("framora-heif");
        return stop.stop_requested()
                   ? QImage()
                   : decodeInProcess(decoder, file.handle(),
                                     {decodedBox, decoderPatience, 1, boundFor(shareBytes), stop});
    }
    ReducedPicture picture(file, decodedBox);
    if (picture.bytesNeeded() < 1 || picture.bytesNeeded() > mostForOne)
        return {};
    const MemoryBudget::Share share(budget, picture.bytesNeeded(), stop);
    return stop.stop_requested() ? QImage() : picture.decode({patience, stop});
}

bool isOpaque(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 255; }))
            return false;
    }
    return true;
}

QImage makeThumbnail(const WallpaperCandidate& candidate, MemoryBudget& budget, const std::stop_token& stop) {
    const QImage decoded = decodeCandidate(candidate, budget, stop);
    if (stop.stop_requested())
        return {};
    QImage thumbnail = resizedImage(decoded, thumbnailWidth, thumbnailHeight);
    if (thumbnail.isNull())
        thumbnail = decoded;
    // They stay for the whole run: a quarter less.
    return thumbnail.hasAlphaChannel() && !isOpaque(thumbnail)
               ? thumbnail
               : std::move(thumbnail).convertToFormat(QImage::Format_RGB888);
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
