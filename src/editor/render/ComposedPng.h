#pragma once

#include "editor/render/Composition.h"
#include "editor/render/raster/PngEncoder.h"

#include <QByteArray>
#include <QSizeF>
#include <optional>

namespace framora {

/// CompositionRasterizer::drawFrame() as a PNG file of that resolution, the same bytes as encodePng() makes
/// of its picture. Rows are drawn where they are encoded, so that the picture as a whole is never in memory.
/// Nothing where the frame cannot be drawn; empty when memory is short. From any thread.
std::optional<QByteArray> composedPng(const Composition& composition, QSizeF size, double scale,
                                      double dotsPerInch);

} // namespace framora
