#pragma once

#include "Contender.h"
#include "Workloads.h"

#include <QList>

namespace framora::comparison {

/// Where Framora and where Qt write.
QString ownPngFile(const QString& folder);
QString defaultPngFile(const QString& folder);

/// W5: `picture` (W1, opaque) from pixels to a closed PNG file, by Framora, by Qt at its default and, where
/// it was there at build time, by rows filtered with "up" and deflated by libdeflate at level 4 on one
/// thread. What each wrote is read back by Qt and compared.
QList<Contender> pngWriters(const QImage& picture, const QString& folder);

} // namespace framora::comparison
