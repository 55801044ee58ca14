#pragma once

#include "Contender.h"
#include "Workloads.h"

#include <QList>

namespace framora::comparison {

/// An export into a target that is allocated and touched, by a rasterizer that has prepared nothing; then the
/// same with a target of its own.
QList<Contender> framoraExport(Workload workload, const Inputs& inputs);

/// W3's other half: from the JPEG file to pixels.
Contender framoraDecode(const Inputs& inputs);

} // namespace framora::comparison
