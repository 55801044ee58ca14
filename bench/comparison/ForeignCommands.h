#pragma once

#include "Workloads.h"

#include <QStringList>

namespace framora::comparison {

/// The program on PATH that draws a page without a window, and the one that converts pictures; empty when
/// there is none.
QString browserProgram();
QString magickProgram();

/// W1 or W2 as a page of 2720 x 1760 at two pixels a point; writes the page beside `file`.
QStringList browserCommand(const QString& program, Workload workload, const Inputs& inputs,
                           const QString& file);
/// W1 by ImageMagick.
QStringList magickCommand(const QString& program, const Inputs& inputs, const QString& file);

/// A colour as 0xRRGGBB.
unsigned colorNumber(const Color& color);

} // namespace framora::comparison
