#pragma once

#include <QByteArrayView>

namespace framora {

/// What the start of a still picture's file says it is - at least its first twelve bytes - as the decoders'
/// name: "png", "jpeg", "webp", "tiff", "gif" or "bmp". Null for every other: what else the decoders of a
/// machine know (drawings that refer to other files among them) is not for files from anywhere.
const char* stillFormat(QByteArrayView start);

} // namespace framora
