#pragma once

#include "ExportMemory.h"
#include "Turns.h"

#include <QList>
#include <QString>

namespace framora::comparison {

/// What is hoped for: the first contender's time against another's. Printed beside the figure, never judged.
struct Aim {
    QString against;   ///< a contender's name
    double atMost = 1; ///< our time over theirs
};

/// Prints as it goes, so that a long run shows where it is.
class Report {
public:
    /// `copyMilliseconds`: the machine's copy of one output, which times are also given in.
    void setCopyTime(double copyMilliseconds) { m_copy = copyMilliseconds; }

    void heading(const QString& text) const;
    void line(const QString& text) const;
    /// The contenders' times, as ratios to the first one's, how far their pictures are from its, and the
    /// aims.
    void table(const QList<Measurement>& measurements, const QList<Aim>& aims = {}) const;
    /// The first one's time in copies of the output, against two bounds.
    void copies(const Measurement& ours, double atMost, double then) const;
    /// Frames of the preview, against bounds for their median and their 99th percentile.
    void frames(const Measurement& drag, double median, double worst) const;
    void memory(Workload workload, const ExportMemory& memory) const;
    /// One measured ratio against its aim.
    void ratio(const QString& what, double value, double aim, bool isUpperBound = true) const;

private:
    double m_copy = 0;
};

} // namespace framora::comparison
