#pragma once

#include "Workloads.h"

#include <QString>

namespace framora::comparison {

/// The resident memory of one export from decoded inputs to a closed PNG file, in MB of a million bytes.
struct ExportMemory {
    double before = 0; ///< of the process with its inputs decoded
    double peak = 0;   ///< of the whole process
    double after = 0;  ///< of the process once the picture and the PNG are given back; the inputs stay
    double inputs = 0; ///< of the decoded inputs' pixels
    double output = 0; ///< of the output's pixels
    bool isValid() const { return peak > 0; }
};

/// Exports in a process of its own: this program with the words of exportInThisProcess().
ExportMemory measureExportMemory(Workload workload, const Inputs& inputs);

/// The child's side: exports and prints its numbers. Gives the exit status.
int exportInThisProcess(Workload workload, const Inputs& inputs);

} // namespace framora::comparison
