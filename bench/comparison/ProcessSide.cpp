#include "ProcessSide.h"

#include "ForeignCommands.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <memory>

namespace framora::comparison {
namespace {

QString besides(const char* program) {
    return QCoreApplication::applicationDirPath() + u'/' + QLatin1String(program);
}

/// The style's words for framora-render.
QStringList styleWords(Workload workload, const Inputs& inputs) {
    const ScreenshotStyleConfig wanted = style(workload, inputs);
    const SimpleGradientConfig& gradient = wanted.gradientConfig;
    const auto hex = [](const Color& color) {
        return QStringLiteral("%1").arg(colorNumber(color), 6, 16, QLatin1Char('0'));
    };
    QStringList words;
    const auto set = [&words](const char* field, const QString& value) {
        words << QStringLiteral("--set") << QLatin1String(field) + u'=' + value;
    };
    set("backgroundType", QStringLiteral("gradient"));
    set("gradientConfig.style", QStringLiteral("linear"));
    set("gradientConfig.color1", hex(gradient.color1));
    set("gradientConfig.color2", hex(gradient.color2));
    set("gradientConfig.color3", hex(gradient.color3));
    set("gradientConfig.useThreeColors", QStringLiteral("true"));
    set("gradientConfig.angle", QString::number(gradient.angle));
    set("rotation", QString::number(wanted.rotation));
    set("rotationX", QString::number(wanted.rotationX));
    set("rotationY", QString::number(wanted.rotationY));
    return words;
}

/// A command that writes `file`; what cannot be compared gets no picture.
Contender process(const QString& name, const QStringList& command, const QString& file, bool isComparable,
                  bool onOneCore = false) {
    const auto last = std::make_shared<ProcessRun>();
    Contender contender{
        .name = name,
        .run = [=] { *last = meterProcess(command, onOneCore); },
        .picture = {},
        .note =
            [last] {
                const QString memory = QStringLiteral("%1 MB at most").arg(last->peakMegabytes, 0, 'f', 0);
                return last->status == 0 ? memory : QStringLiteral("FAILED with status %1").arg(last->status);
            },
        .prepare =
            [file] {
                if (!file.isEmpty())
                    QFile::remove(file);
            },
    };
    if (isComparable)
        contender.picture = [file] { return QImage(file); };
    return contender;
}

/// The parts of the screenshot that the series is made of, each at another place.
QStringList seriesPictures(const Inputs& inputs) {
    const QString folder = inputs.folder + QStringLiteral("/series");
    QDir().mkpath(folder);
    const QSize size(1920, 1080);
    QStringList paths;
    for (int i = 0; i < seriesLength; ++i) {
        paths << folder + QStringLiteral("/%1.png").arg(i, 3, 10, QLatin1Char('0'));
        if (QFileInfo::exists(paths.last()))
            continue;
        const int x = i * 37 % (inputs.screenshot.width() - size.width());
        const int y = i * 23 % (inputs.screenshot.height() - size.height());
        // A run that is ended here leaves no half of a picture for the next.
        QSaveFile file(paths.last());
        if (file.open(QIODevice::WriteOnly) &&
            inputs.screenshot.copy(QRect(QPoint(x, y), size)).save(&file, "PNG"))
            file.commit();
    }
    return paths;
}

} // namespace

ProcessRun meterProcess(const QStringList& command, bool onOneCore) {
    QStringList words;
    if (onOneCore)
        words << QStringLiteral("--one-core");
    QProcess meter;
    meter.setProcessChannelMode(QProcess::SeparateChannels);
    meter.start(besides("process_meter"), words + command);
    constexpr int longest = 600'000;
    if (!meter.waitForFinished(longest))
        return {};
    const QList<QByteArray> parts = meter.readAllStandardOutput().trimmed().split(' ');
    if (parts.size() != 3)
        return {};
    return {.milliseconds = parts[0].toDouble() / 1e6,
            .peakMegabytes = parts[1].toDouble() * 1024 / 1e6,
            .status = parts[2].toInt()};
}

QList<Contender> processExports(Workload workload, const Inputs& inputs) {
    const QString prefix = inputs.folder + u'/' + name(workload) + u'-';
    const QString own = prefix + QStringLiteral("framora.png");
    // Only W1's frame is as large as the page: a turned style's frame holds the turned canvas.
    const bool isComparable = workload == Workload::gradient;
    QList<Contender> contenders;
    contenders << process(QStringLiteral("framora-render"),
                          QStringList{besides("framora-render"), QStringLiteral("--quiet"),
                                      inputs.screenshotPath, QStringLiteral("-o"), own} +
                              styleWords(workload, inputs),
                          own, isComparable);
    if (const QString browser = browserProgram(); !browser.isEmpty()) {
        const QString file = prefix + QStringLiteral("browser.png");
        contenders << process(QFileInfo(browser).fileName(), browserCommand(browser, workload, inputs, file),
                              file, isComparable);
    }
    if (const QString magick = magickProgram(); !magick.isEmpty() && workload == Workload::gradient) {
        const QString file = prefix + QStringLiteral("imagemagick.png");
        contenders << process(QStringLiteral("ImageMagick"), magickCommand(magick, inputs, file), file,
                              isComparable);
    }
    return contenders;
}

QStringList missingPrograms() {
    QStringList missing;
    if (browserProgram().isEmpty())
        missing << QStringLiteral("Chromium");
    if (magickProgram().isEmpty())
        missing << QStringLiteral("ImageMagick");
    return missing;
}

QList<Contender> pictureSeries(const Inputs& inputs) {
    const QStringList pictures = seriesPictures(inputs);
    const QString folder = inputs.folder + QStringLiteral("/series-out");
    const auto series = [&](const QString& name, const QStringList& options, bool onOneCore) {
        return process(name,
                       QStringList{besides("framora-render"), QStringLiteral("--quiet"),
                                   QStringLiteral("--output-dir"), folder} +
                           options + styleWords(Workload::gradient, inputs) + pictures,
                       {}, false, onOneCore);
    };
    return {series(QStringLiteral("all cores"), {}, false),
            series(QStringLiteral("--jobs 1, which divides each picture"),
                   {QStringLiteral("--jobs"), QStringLiteral("1")}, false),
            series(QStringLiteral("one core"), {QStringLiteral("--jobs"), QStringLiteral("1")}, true)};
}

} // namespace framora::comparison
