#include "ExportMemory.h"

#include "editor/render/PictureFile.h"
#include "editor/render/ScreenshotRenderer.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <cstdio>

namespace framora::comparison {
namespace {

/// A line of the process's status, in MB; 0 when there is no such line.
double statusValue(const char* key) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(qsizetype(qstrlen(key))).simplified().split(' ').first().toDouble() * 1024 / 1e6;
    return 0;
}

} // namespace

int exportInThisProcess(Workload workload, const Inputs& inputs) {
    const ScreenshotStyleConfig wanted = style(workload, inputs);
    const double before = statusValue("VmRSS:");
    double output = 0;
    {
        // The whole way of an export, with the background's own decoding.
        const QImage drawn = renderComposition(inputs.screenshot, wanted);
        output = double(drawn.sizeInBytes()) / 1e6;
        const QString problem = writeFileAtomically(inputs.folder + QStringLiteral("/memory.png"),
                                                    encodePng(drawn, 72 * exportScale));
        if (!problem.isEmpty())
            return 1;
    }
    double inputSize = double(inputs.screenshot.sizeInBytes());
    if (wanted.backgroundType == BackgroundType::image)
        inputSize += 4.0 * photographSize.width() * photographSize.height();
    std::printf("%f %f %f %f %f\n", before, statusValue("VmHWM:"), statusValue("VmRSS:"), inputSize / 1e6,
                output);
    return 0;
}

ExportMemory measureExportMemory(Workload workload, const Inputs& inputs) {
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--export-memory"), name(workload), QStringLiteral("--screenshot"),
                 inputs.screenshotPath, QStringLiteral("--folder"), inputs.folder});
    if (!child.waitForFinished(120'000) || child.exitStatus() != QProcess::NormalExit)
        return {};
    const QList<QByteArray> parts = child.readAllStandardOutput().trimmed().split(' ');
    if (parts.size() != 5)
        return {};
    return {.before = parts[0].toDouble(),
            .peak = parts[1].toDouble(),
            .after = parts[2].toDouble(),
            .inputs = parts[3].toDouble(),
            .output = parts[4].toDouble()};
}

} // namespace framora::comparison
