#include "editor/render/StillFormat.h"

namespace framora {

const char* stillFormat(QByteArrayView start) {
    if (start.startsWith(QByteArrayView("\x89PNG\r\n\x1a\n", 8)))
        return "png";
    if (start.startsWith("\xff\xd8\xff"))
        return "jpeg";
    if (start.startsWith("RIFF") && start.size() >= 12 && start.sliced(8, 4) == "WEBP")
        return "webp";
    for (const QByteArrayView magic : {QByteArrayView("II*\0", 4), QByteArrayView("MM\0*", 4),
                                       QByteArrayView("II+\0", 4), QByteArrayView("MM\0+", 4)})
        if (start.startsWith(magic))
            return "tiff";
    if (start.startsWith("GIF87a") || start.startsWith("GIF89a"))
        return "gif";
    return start.startsWith("BM") ? "bmp" : nullptr;
}

} // namespace framora
