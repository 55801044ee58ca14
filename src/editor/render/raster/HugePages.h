#pragma once

#include <cstddef>

namespace framora::raster {

/// Asks for large memory pages for a large block that is about to be written for the first time: touching it
/// then takes a fifth of the time. Changes nothing else, and does nothing where the system knows no such
/// pages.
void adviseHugePages(void* data, std::size_t size);

/// Memory that begins and ends with large pages, not touched yet, for std::free(); null when it is short.
void* allocateHugePages(std::size_t size);

} // namespace framora::raster
