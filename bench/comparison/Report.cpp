#include "Report.h"

#include <algorithm>
#include <cstdio>

namespace framora::comparison {
namespace {

constexpr int nameWidth = 46;
/// Levels of 255 that the means of the same picture may differ by, through other filters and corners.
constexpr double agreement = 1.5;

} // namespace

void Report::heading(const QString& text) const {
    std::printf("\n%s\n", qPrintable(text));
    std::fflush(stdout);
}

void Report::line(const QString& text) const {
    std::printf("  %s\n", qPrintable(text));
    std::fflush(stdout);
}

void Report::table(const QList<Measurement>& measurements, const QList<Aim>& aims) const {
    std::printf("  %-*s %10s %10s %8s %8s  %s\n", nameWidth, "", "median ms", "least ms", "ratio", "copies",
                "mean difference, far channels");
    for (const Measurement& measurement : measurements) {
        std::printf("  %-*s %10.2f %10.2f %8.3f", nameWidth, qPrintable(measurement.name),
                    measurement.median(), measurement.percentile(0),
                    measurement.median() / measurements.first().median());
        if (m_copy > 0)
            std::printf(" %8.1f", measurement.median() / m_copy);
        else
            std::printf(" %8s", "");
        if (measurement.meanDifference)
            std::printf("  %.3f of 255, %.3f %%", *measurement.meanDifference, *measurement.farShare * 100);
        std::printf("  %s\n", qPrintable(measurement.note));
    }
    for (const Aim& aim : aims)
        for (const Measurement& other : measurements) {
            if (other.name != aim.against)
                continue;
            ratio(QStringLiteral("our time over that of ") + other.name,
                  measurements.first().median() / other.median(), aim.atMost);
            if (other.meanDifference.value_or(0) > agreement)
                line(QStringLiteral("  which does not count: the pictures do not agree"));
        }
    std::fflush(stdout);
}

void Report::copies(const Measurement& ours, double atMost, double then) const {
    if (m_copy <= 0)
        return;
    const double count = ours.median() / m_copy;
    ratio(QStringLiteral("our time in copies of the output"), count, atMost);
    ratio(QStringLiteral("and then"), count, then);
}

void Report::frames(const Measurement& drag, double median, double worst) const {
    const bool isUsual = drag.median() < median;
    std::printf(
        "  %-34s median %7.2f ms   99th percentile %7.2f ms   aims %.0f and %.0f ms: %s   (%zu; %s)\n",
        qPrintable(drag.name), drag.median(), drag.percentile(0.99), median, worst,
        isUsual && drag.percentile(0.99) < worst ? "reached"
        : isUsual                                ? "reached by the median"
                                                 : "not reached",
        drag.milliseconds.size(), qPrintable(drag.note));
    std::fflush(stdout);
}

void Report::memory(Workload workload, const ExportMemory& memory) const {
    if (!memory.isValid()) {
        line(name(workload) + QStringLiteral(": the export failed"));
        return;
    }
    const double limit = 2.2 * memory.output + memory.inputs;
    std::printf("  %s  process with the screenshot %.0f MB, peak %.0f MB, afterwards %.0f MB; 2.2 outputs "
                "and the decoded inputs are %.0f MB\n",
                qPrintable(name(workload)), memory.before, memory.peak, memory.after, limit);
    ratio(QStringLiteral("peak over that"), memory.peak / limit, 1);
    ratio(QStringLiteral("outputs that stay allocated"),
          std::max(0.0, memory.after - memory.before) / memory.output, 0.5);
}

void Report::ratio(const QString& what, double value, double aim, bool isUpperBound) const {
    const bool isReached = isUpperBound ? value <= aim : value >= aim;
    std::printf("    %-*s %10.3f   aim %s %.3f: %s\n", nameWidth, qPrintable(what), value,
                isUpperBound ? "at most" : "at least", aim, isReached ? "reached" : "not reached");
    std::fflush(stdout);
}

} // namespace framora::comparison
