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
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <numeric>
#include <optional>
#include <thread>

namespace framora {
namespace {

constexpr int thumbnailWidth = 400;
constexpr int thumbnailHeight = 300;
/// Decoders reduce no further than to half as much again: the last step is the resampler's.
constexpr QSize decodedBox(600, 450);

constexpr qint64 mebibyte = 1 << 20;
/// What all that is decoded at one time may take together.
constexpr qint64 decodingBudget = 310 * mebibyte;
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

/// A candidate's file, open, and what decoding it will take.
class CandidateFile {
public:
    explicit CandidateFile(const WallpaperCandidate& candidate) {
        if (!openRegularFile(m_file, candidate.url.toLocalFile()))
            return;
        if (candidate.isVideo || isHeif(m_file.handle())) {
            const qint64 claimed = isoMediaPixels(m_file.handle());
            const double pixels = double(claimed > 0 ? claimed : assumedPixels);
            const double perPixel = candidate.isVideo ? bytesPerVideoPixel : bytesPerHeifPixel;
            m_bytes = decoderBytes + qint64(std::min(pixels * perPixel, double(decodingBudget)));
            m_decoder =
                candidate.isVideo ? QStringLiteral("framora-video-still") : QStringLiteral("framora-heif");
            return;
        }
        m_picture.emplace(m_file, decodedBox);
        if (m_picture->bytesNeeded() <= mostForOne)
            m_bytes = m_picture->bytesNeeded();
    }

    /// 0 for what is no wallpaper.
    qint64 bytesNeeded() const { return m_bytes; }

    QImage decode(const std::stop_token& stop) {
        return m_picture ? m_picture->decode({patience, stop})
                         : decodeInProcess(m_decoder, m_file.handle(),
                                           {decodedBox, decoderPatience, 1, boundFor(m_bytes), stop});
    }

private:
    QFile m_file;
    QString m_decoder;
    std::optional<ReducedPicture> m_picture;
    qint64 m_bytes = 0;
};

bool isOpaque(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 255; }))
            return false;
    }
    return true;
}

/// Several threads at the candidates. One that does not fit into the budget is put off, and those behind it
/// go before it: two large videos do not fit at once, but pictures do beside one. So videos come first.
class ThumbnailWork {
public:
    ThumbnailWork(const std::vector<WallpaperCandidate>& candidates, const std::stop_token& stop)
        : m_candidates(candidates), m_stop(stop), m_order(candidates.size()),
          m_thumbnails(candidates.size()) {
        std::iota(m_order.begin(), m_order.end(), std::size_t(0));
        std::ranges::stable_partition(m_order, [&](std::size_t i) { return candidates[i].isVideo; });
    }

    /// On each of the threads; returns when nothing is left to begin.
    void run() {
        while (!m_stop.stop_requested() && runOne()) {
        }
    }

    std::vector<QImage> take() { return std::move(m_thumbnails); }

private:
    struct PutOff {
        std::size_t index;
        qint64 bytes;
    };

    /// False when nothing is left.
    bool runOne() {
        try {
            return runOnePutOff() || runNext() || awaitOnePutOff();
        } catch (const std::bad_alloc&) {
            return true; // one that finds no memory is no wallpaper: it is behind us
        }
    }

    bool runNext() {
        const std::size_t next = m_next++;
        if (next >= m_order.size())
            return false;
        const std::size_t index = m_order[next];
        CandidateFile file(m_candidates[index]);
        if (file.bytesNeeded() < 1)
            return true;
        if (const MemoryBudget::Share share(m_budget, file.bytesNeeded()); share.isTaken()) {
            decode(index, file);
            return true;
        }
        const std::lock_guard lock(m_mutex);
        m_putOff.push_back({index, file.bytesNeeded()});
        return true;
    }

    /// The first one that fits now.
    bool runOnePutOff() {
        std::unique_lock lock(m_mutex);
        for (auto one = m_putOff.begin(); one != m_putOff.end(); ++one) {
            const PutOff taken = *one;
            const MemoryBudget::Share share(m_budget, taken.bytes);
            if (!share.isTaken())
                continue;
            m_putOff.erase(one);
            lock.unlock();
            decodePutOff(taken);
            return true;
        }
        return false;
    }

    bool awaitOnePutOff() {
        std::unique_lock lock(m_mutex);
        if (m_putOff.empty())
            return false;
        const PutOff taken = m_putOff.front();
        m_putOff.pop_front();
        lock.unlock();
        const MemoryBudget::Share share(m_budget, taken.bytes, m_stop);
        if (share.isTaken())
            decodePutOff(taken);
        return true;
    }

    void decodePutOff(const PutOff& one) {
        CandidateFile file(m_candidates[one.index]);
        if (file.bytesNeeded() > 0 && file.bytesNeeded() <= one.bytes) // still the same
            decode(one.index, file);
    }

    void decode(std::size_t index, CandidateFile& file) {
        const QImage decoded = file.decode(m_stop);
        if (!m_stop.stop_requested())
            m_thumbnails[index] = thumbnailOf(decoded);
    }

    const std::vector<WallpaperCandidate>& m_candidates;
    const std::stop_token m_stop;
    std::vector<std::size_t> m_order;
    MemoryBudget m_budget{decodingBudget};
    std::atomic<std::size_t> m_next = 0;
    std::mutex m_mutex;
    std::deque<PutOff> m_putOff;
    std::vector<QImage> m_thumbnails; ///< Each written by the thread that makes it.
};

} // namespace

QImage thumbnailOf(const QImage& picture) {
    const QImage thumbnail = resizedImage(picture, thumbnailWidth, thumbnailHeight);
    if (thumbnail.isNull())
        return picture;
    // They stay for the whole run: a quarter less.
    const QImage smaller = isOpaque(thumbnail) ? thumbnail.convertToFormat(QImage::Format_RGB888) : QImage();
    return smaller.isNull() ? thumbnail : smaller;
}

std::vector<Wallpaper> makeWallpapers(const std::vector<WallpaperCandidate>& candidates,
                                      const std::stop_token& stop) {
    ThumbnailWork thumbnailWork(candidates, stop);
    const auto makeThem = [&thumbnailWork] {
        // One picture a thread: the threads that draw the editor's frames are not for this.
        const raster::SerialScope serial;
        thumbnailWork.run();
    };
    {
        const std::size_t processors = std::max(1u, std::thread::hardware_concurrency());
        std::vector<std::jthread> threads;
        try {
            for (std::size_t i = 0; i < std::min(processors, candidates.size()); ++i)
                threads.emplace_back([&makeThem] {
                    lowerThreadPriority();
                    makeThem();
                });
        } catch (const std::exception&) {
            // No more threads: by those that there are.
            if (threads.empty())
                makeThem();
        }
    }
    std::vector<QImage> thumbnails = thumbnailWork.take();
    std::vector<Wallpaper> wallpapers;
    for (std::size_t i = 0; i < candidates.size(); ++i)
        if (!thumbnails[i].isNull())
            wallpapers.emplace_back(candidates[i].url, std::move(thumbnails[i]));
    return wallpapers;
}

} // namespace framora
