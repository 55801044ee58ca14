#pragma once

#include "editor/render/Composition.h"
#include "editor/render/PngTarget.h"

#include <QByteArray>
#include <optional>

namespace framora {

/// The composition in its output frame at exportScale as a PNG file, the same bytes as encodePng() makes of
/// the finished picture. Rows are drawn where they are encoded, so that the picture as a whole is never in
/// memory. Nothing where the frame cannot be drawn; empty when memory is short. From any thread.
std::optional<QByteArray> composedPng(const Composition& composition);

/// The same file into `target`, whose memory counts as its own. Nothing where the frame cannot be drawn;
/// false when memory is short.
std::optional<bool> composePng(const Composition& composition, PngTarget& target);

} // namespace framora
