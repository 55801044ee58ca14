#pragma once

#include "editor/render/DecodingWatch.h"

#include <QByteArray>
#include <QImage>
#include <optional>

namespace framora {

/// Decodes a WebP picture with each side divided by `factor`, 1 or more, in a few rows of memory beside the
/// result for lossy ones. ARGB32_Premultiplied in the file's colours, with their colour space; null when it
/// is damaged or the watch is over. Nothing for what this does not take: moving pictures.
std::optional<QImage> reducedWebp(const QByteArray& encoded, int factor, DecodingWatch& watch);

} // namespace framora
