#pragma once

#include "Contender.h"

#include <QList>
#include <QString>
#include <optional>
#include <vector>

namespace framora::comparison {

/// What one contender took, and how far its picture is from the first contender's.
struct Measurement {
    QString name;
    std::vector<double> milliseconds; ///< ascending; empty when there was no run
    QString note;
    std::optional<double> meanDifference; ///< levels of 255, over all channels
    std::optional<double> farShare;       ///< of the channels, those more than 16 levels apart: 0...1

    double median() const;
    /// The value that `share` (0...1) of the runs do not exceed.
    double percentile(double share) const;
};

/// The wall time of one call, in milliseconds.
double timed(const std::function<void()>& run);

/// Runs the contenders in turn, `rounds` times after one untimed round each; the first one's picture is what
/// the others' are compared with.
QList<Measurement> takeTurns(const QList<Contender>& contenders, int rounds);

} // namespace framora::comparison
