#include "editor/render/raster/HugePages.h"

#include <memory>
#ifdef __linux__
#include <sys/mman.h>
#endif

namespace framora::raster {

void adviseHugePages([[maybe_unused]] void* data, [[maybe_unused]] std::size_t size) {
#ifdef __linux__
    constexpr std::size_t hugePage = 2 << 20;
    if (std::align(hugePage, hugePage, data, size))
        madvise(data, size / hugePage * hugePage, MADV_HUGEPAGE);
#endif
}

} // namespace framora::raster
