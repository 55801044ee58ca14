#include "editor/model/RandomSource.h"

#include <QRandomGenerator>

namespace framora {

double SystemRandomSource::real(double low, double high) {
    return low + (high - low) * QRandomGenerator::global()->generateDouble();
}

int SystemRandomSource::integer(int low, int high) {
    return QRandomGenerator::global()->bounded(low, high + 1);
}

} // namespace framora
