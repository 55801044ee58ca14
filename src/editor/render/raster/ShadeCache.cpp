#include "editor/render/raster/ShadeCache.h"

#include "editor/render/raster/HugePages.h"

#include <new>

namespace framora::raster {

bool ShadeCache::begin(const Key& key) {
    if (key != m_key) {
        m_key = key;
        m_isReady = false;
        m_sampler = nullptr;
        return false;
    }
    if (m_isReady)
        return true;
    if (key.width <= 0 || key.height <= 0)
        return false;
    const std::size_t size = std::size_t(key.width) * std::size_t(key.height);
    if (size > m_capacity || size < m_capacity / 4) {
        m_colors.reset();
        m_capacity = 0;
        try {
            m_colors = std::make_unique_for_overwrite<MixPixel[]>(size);
        } catch (const std::bad_alloc&) {
            return false;
        }
        m_capacity = size;
        adviseHugePages(m_colors.get(), size * sizeof(MixPixel));
    }
    m_blocks = (key.width + blockWidth - 1) / blockWidth;
    m_isFilled.assign(std::size_t(m_blocks) * std::size_t(key.height), 0);
    m_isReady = true;
    return true;
}

} // namespace framora::raster
