#include "editor/render/raster/HugePages.h"

#include <cstdint>
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace framora::raster {

void adviseHugePages([[maybe_unused]] void* data, [[maybe_unused]] std::size_t size) {
#ifdef __linux__
    constexpr std::uintptr_t hugePage = 2 << 20;
    const auto start = (reinterpret_cast<std::uintptr_t>(data) + hugePage - 1) / hugePage * hugePage;
    const auto end = (reinterpret_cast<std::uintptr_t>(data) + size) / hugePage * hugePage;
    if (start < end)
        madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
#endif
}

} // namespace framora::raster
