#pragma once

#include <QSize>
#include <QString>

namespace framora {

/// The picture of a package - a folder that holds one picture in several sizes as
/// contents/images/WIDTHxHEIGHT.EXTENSION - that suits a screen of that many pixels best: of the nearest
/// shape, and among those not below the screen's size if there is one. `dark` prefers contents/images_dark.
/// Empty when it has none.
QString pictureOfPackage(const QString& folder, QSize screen, bool dark);

} // namespace framora
