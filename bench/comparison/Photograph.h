#pragma once

#include <QImage>
#include <QSize>

namespace framora::comparison {

/// A picture with a photograph's mixture: a soft sky, ridges with detail at every size, and a sensor's grain.
/// The same size gives the same pixels.
QImage makePhotograph(QSize size);

} // namespace framora::comparison
