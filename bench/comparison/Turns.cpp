#include "Turns.h"

#include "PictureDifference.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace framora::comparison {

double Measurement::median() const {
    if (milliseconds.empty())
        return 0;
    const std::size_t middle = milliseconds.size() / 2;
    return milliseconds.size() % 2 ? milliseconds[middle]
                                   : (milliseconds[middle - 1] + milliseconds[middle]) / 2;
}

double Measurement::percentile(double share) const {
    if (milliseconds.empty())
        return 0;
    const double last = double(milliseconds.size() - 1);
    return milliseconds[std::size_t(std::lround(std::clamp(share, 0.0, 1.0) * last))];
}

double timed(const std::function<void()>& run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

QList<Measurement> takeTurns(const QList<Contender>& contenders, int rounds) {
    QList<Measurement> measurements;
    QImage first;
    for (const Contender& contender : contenders) {
        Measurement measurement{
            .name = contender.name, .milliseconds = {}, .note = {}, .meanDifference = {}, .farShare = {}};
        if (contender.prepare)
            contender.prepare();
        contender.run();
        const QImage picture = contender.picture ? contender.picture() : QImage();
        if (first.isNull()) {
            first = picture.copy();
        } else if (contender.picture) {
            const PictureDifference difference = comparePictures(first, picture);
            measurement.meanDifference = difference.mean;
            measurement.farShare = difference.farShare;
        }
        measurements.append(measurement);
    }
    for (int round = 0; round < rounds; ++round)
        for (qsizetype i = 0; i < contenders.size(); ++i) {
            if (contenders[i].prepare)
                contenders[i].prepare();
            measurements[i].milliseconds.push_back(timed(contenders[i].run));
        }
    for (qsizetype i = 0; i < contenders.size(); ++i) {
        std::sort(measurements[i].milliseconds.begin(), measurements[i].milliseconds.end());
        if (contenders[i].note)
            measurements[i].note = contenders[i].note();
    }
    return measurements;
}

} // namespace framora::comparison
