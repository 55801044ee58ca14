#pragma once

#include <QString>

namespace framora {

/// Fills the folder with 200 pictures and videos of 3840 x 2160 to 6016 x 3384, as a collector of wallpapers
/// has them, unless they are there already. A few of each kind are encoded and the others are further names
/// of these files. Needs heif-enc and ffmpeg; says what is missing and returns false.
bool makeWallpaperCorpus(const QString& folder);

} // namespace framora
