#pragma once

#include "editor/render/DecodingWatch.h"

#include <QByteArray>
#include <QImage>
#include <optional>

namespace framora {

/// Decodes a TIFF picture row by row, each side divided by `factor`, 1 or more. RGB888 in the file's colours,
/// with their colour space; null when it is damaged or the watch is over. Nothing for what this does not
/// take: all but upright RGB of 8 bits without alpha in strips.
std::optional<QImage> reducedTiff(const QByteArray& encoded, int factor, DecodingWatch& watch);

} // namespace framora
