#include "MachineSpeed.h"

#include "Workloads.h"
#include "editor/render/raster/HugePages.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

namespace framora::comparison {
namespace {

/// Calls `body(begin, end)` for a share of [0, size) on each of all threads.
void onAllThreads(qsizetype size, const std::function<void(qsizetype, qsizetype)>& body) {
    const qsizetype count = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::jthread> helpers;
    for (qsizetype i = 1; i < count; ++i)
        helpers.emplace_back([=, &body] { body(size * i / count, size * (i + 1) / count); });
    body(0, size / count);
}

/// As an export's own target: large pages where there are some.
std::shared_ptr<QImage> touchedBitmap() {
    auto bitmap = std::make_shared<QImage>(outputSize, QImage::Format_ARGB32_Premultiplied);
    raster::adviseHugePages(bitmap->bits(), std::size_t(bitmap->sizeInBytes()));
    bitmap->fill(Qt::gray);
    return bitmap;
}

} // namespace

QList<Contender> machineSpeed() {
    const auto from = touchedBitmap();
    const auto to = touchedBitmap();
    const qsizetype size = from->sizeInBytes();
    return {{.name = QStringLiteral("one copy of the output"),
             .run =
                 [=] {
                     uchar* const target = to->bits();
                     const uchar* const source = from->constBits();
                     onAllThreads(size, [=](qsizetype begin, qsizetype end) {
                         std::memcpy(target + begin, source + begin, std::size_t(end - begin));
                     });
                 }},
            {.name = QStringLiteral("one fill of the output"), .run = [=] {
                 uchar* const target = to->bits();
                 onAllThreads(size, [=](qsizetype begin, qsizetype end) {
                     std::memset(target + begin, 0x55, std::size_t(end - begin));
                 });
             }}};
}

} // namespace framora::comparison
