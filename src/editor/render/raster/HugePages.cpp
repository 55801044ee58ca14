#include "editor/render/raster/HugePages.h"

#include <cstdlib>
#include <memory>
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace framora::raster {
namespace {

constexpr std::size_t hugePage = 2 << 20;

} // namespace

void* allocateHugePages(std::size_t size) {
    const std::size_t whole = (size + hugePage - 1) / hugePage * hugePage;
    void* const data = std::aligned_alloc(hugePage, whole);
    if (data)
        adviseHugePages(data, whole);
    return data;
}

void adviseHugePages([[maybe_unused]] void* data, [[maybe_unused]] std::size_t size) {
#ifdef __linux__
    if (std::align(hugePage, hugePage, data, size))
        madvise(data, size / hugePage * hugePage, MADV_HUGEPAGE);
#endif
}

} // namespace framora::raster
