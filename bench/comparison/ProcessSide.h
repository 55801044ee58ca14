#pragma once

#include "Contender.h"
#include "Workloads.h"

#include <QList>
#include <QStringList>

namespace framora::comparison {

/// What one run of a whole process took.
struct ProcessRun {
    double milliseconds = 0;
    double peakMegabytes = 0; ///< of the largest process of the tree
    int status = -1;
};

/// Runs a command by the meter, which must lie beside this program.
ProcessRun meterProcess(const QStringList& command, bool onOneCore = false);

/// W7: a picture from a PNG file to a PNG file, the whole process: framora-render, then what of a headless
/// browser and of ImageMagick is on PATH. W1 and W2 only.
QList<Contender> processExports(Workload workload, const Inputs& inputs);

/// The names of what is looked for on PATH and not there.
QStringList missingPrograms();

/// 200 pictures of 1920 x 1080 with W1's style: on one core, one at a time, and on all cores.
QList<Contender> pictureSeries(const Inputs& inputs);
inline constexpr int seriesLength = 200;

} // namespace framora::comparison
