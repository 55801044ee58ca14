#pragma once

#include "screencapture/PixelImage.h"

#include <memory>

namespace framora {

/// A picture in this process's own memory, or in a file's that another process sees as well.
class MemoryImage : public PixelImage {
public:
    /// Null when a side is not 1...32767 or when memory runs out. The pixels are zero.
    static std::unique_ptr<MemoryImage> create(int width, int height);
    /// The same in a file in memory, whose descriptor fileDescriptor() then is.
    static std::unique_ptr<MemoryImage> createShared(int width, int height);
    ~MemoryImage() override;

    /// -1 when the memory is this process's own. The image keeps and closes it.
    int fileDescriptor() const { return m_file; }
    /// Has the system give the memory now, which otherwise costs time page by page when it is first written.
    void touch();

private:
    MemoryImage(int width, int height, int file);

    int m_file;
};

} // namespace framora
