#pragma once

#include <QImage>
#include <QString>
#include <functional>

namespace framora::comparison {

/// One way to do the work of a workload.
struct Contender {
    QString name;
    std::function<void()> run;         ///< timed
    std::function<QImage()> picture{}; ///< what the last run made, untimed; absent: nothing to compare
    std::function<QString()> note{};   ///< said of the last run, such as a file's size
    std::function<void()> prepare{};   ///< before every run, untimed
};

} // namespace framora::comparison
