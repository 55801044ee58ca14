#pragma once

#include <QImage>

namespace framora {

/// A wallpaper of soft colour clouds, the same every time.
QImage demoWallpaper(QSize size);

} // namespace framora
