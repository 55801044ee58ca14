#pragma once

#include "editor/render/raster/Paint.h"

#include <memory>

namespace framora {

/// A paint that stays the same object while what it is made of stays the same: so the next frame knows its
/// tiles again.
template <typename Key> class KeptPaint {
public:
    /// Paints with a ShadeCache take two makings: their colours are kept from the second one on.
    explicit KeptPaint(int makings = 1) : m_makings(makings) {}

    /// The paint of the last call if its key was equal, or else what `make()` gives; that may be null.
    template <typename Make> std::shared_ptr<const raster::Paint> get(const Key& key, const Make& make) {
        const bool isSame = m_made > 0 && m_key == key;
        if (isSame && m_made == m_makings)
            return m_paint;
        const int made = isSame ? m_made + 1 : 1;
        m_made = 0; // nothing is kept when make() throws
        m_paint = make();
        m_key = key;
        m_made = made;
        return m_paint;
    }

private:
    int m_makings;
    int m_made = 0; ///< So often with this key.
    Key m_key;
    std::shared_ptr<const raster::Paint> m_paint;
};

} // namespace framora
