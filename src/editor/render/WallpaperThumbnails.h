#pragma once

#include "editor/render/WallpaperScan.h"

#include <QImage>
#include <stop_token>
#include <utility>
#include <vector>

namespace framora {

/// A background image on offer: its file and a thumbnail within 400 x 300 pixels.
using Wallpaper = std::pair<QUrl, QImage>;

/// The picture within 400 x 300 pixels; itself where memory is too short for that. Null when it is. Safe on
/// any thread.
QImage thumbnailOf(const QImage& picture);

/// Makes the candidates' thumbnails on all processors, at low priority, in their order; a candidate that
/// cannot be decoded is dropped. Waits until all are made, or until `stop` is asked for and what is under way
/// ends. What is decoded at once is bounded in memory, one file in time.
std::vector<Wallpaper> makeWallpapers(const std::vector<WallpaperCandidate>& candidates,
                                      const std::stop_token& stop = {});

} // namespace framora
