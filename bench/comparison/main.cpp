// The same picture made by other renderers and by Framora in turn, in one run. See bench/README.md.

#include "CairoSide.h"
#include "ExportMemory.h"
#include "FramoraSide.h"
#include "Inputs.h"
#include "LayerProfile.h"
#include "MachineSpeed.h"
#include "OpenCvSide.h"
#include "PngSide.h"
#include "PreviewDrag.h"
#include "PreviewSliders.h"
#include "ProcessSide.h"
#include "QPainterSide.h"
#include "Report.h"
#include "UpFilterPng.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QGuiApplication>
#include <QThread>
#include <algorithm>
#include <array>

using namespace framora;
using namespace framora::comparison;

namespace {

constexpr std::array pictures = {Workload::gradient, Workload::tilted, Workload::blurredPhoto,
                                 Workload::everything};
constexpr double everythingOverPhoto = 1.5;

/// One run over the wanted workloads.
class SideBySide {
public:
    SideBySide(Inputs inputs, QStringList wanted, int rounds)
        : m_inputs(std::move(inputs)), m_wanted(std::move(wanted)), m_rounds(rounds) {}

    void run() {
        machine();
        if (wants("W1"))
            gradient();
        if (wants("W2"))
            tilted();
        if (wants("W3") || wants("W4"))
            photograph();
        if (wants("W5"))
            png();
        if (wants("W6"))
            preview();
        if (wants("sliders"))
            sliders();
        if (wants("W7"))
            processes();
        if (wants("series"))
            series();
        if (wants("memory"))
            memory();
    }

    void profile() {
        machine();
        for (const Workload workload : pictures)
            if (wants(name(workload))) {
                m_report.heading(name(workload) + QStringLiteral(", without one layer each"));
                m_report.table(takeTurns(layerProfile(workload, m_inputs), m_rounds));
            }
    }

private:
    bool wants(const QString& workload) const { return m_wanted.isEmpty() || m_wanted.contains(workload); }
    bool wants(const char* workload) const { return wants(QLatin1String(workload)); }

    void machine() {
        m_report.heading(QStringLiteral("The machine: %1 threads, output %2 x %3, medians of %4")
                             .arg(QThread::idealThreadCount())
                             .arg(outputSize.width())
                             .arg(outputSize.height())
                             .arg(m_rounds));
        const QList<Measurement> speed = takeTurns(machineSpeed(), std::max(m_rounds, 21));
        m_report.table(speed);
        m_report.setCopyTime(speed.first().median());
        QStringList missing = missingPrograms();
        if (!cairoExport(m_inputs))
            missing << QStringLiteral("Cairo");
        if (!openCvWarp(m_inputs))
            missing << QStringLiteral("OpenCV");
        if (!hasUpFilterPng())
            missing << QStringLiteral("libdeflate");
        if (!missing.isEmpty())
            m_report.line(QStringLiteral("Left out, since not installed: ") + missing.join(u", "));
        m_report.line(
            QStringLiteral("Targets are allocated and touched, unless a line says \"fresh target\"."));
    }

    void gradient() {
        m_report.heading(QStringLiteral("W1: gradient of three colours, default frame"));
        QList<Contender> contenders = framoraExport(Workload::gradient, m_inputs);
        contenders << painterExport(Workload::gradient, m_inputs);
        if (const auto cairo = cairoExport(m_inputs))
            contenders << *cairo;
        const QList<Measurement> measurements = takeTurns(contenders, m_rounds);
        m_report.table(measurements, {{QStringLiteral("QPainter"), 0.5}});
        m_report.copies(measurements.first(), 3, 2);
    }

    void tilted() {
        m_report.heading(QStringLiteral("W2: W1 turned by 12, tilted by 20 and 15 degrees"));
        QList<Contender> contenders = framoraExport(Workload::tilted, m_inputs);
        contenders << painterExport(Workload::tilted, m_inputs);
        if (const auto warp = openCvWarp(m_inputs))
            contenders << *warp;
        m_report.table(takeTurns(contenders, m_rounds), {{QStringLiteral("QPainter"), 0.25}});
    }

    void photograph() {
        if (wants("W3")) {
            m_report.heading(QStringLiteral("W3: the photograph decoded"));
            m_report.table(takeTurns({framoraDecode(m_inputs), painterDecode(m_inputs)}, m_rounds));
        }
        m_report.heading(
            QStringLiteral("W3: the photograph stretched and blurred, default frame; composition"));
        QList<Contender> contenders = framoraExport(Workload::blurredPhoto, m_inputs);
        if (const auto blur = openCvBlur(m_inputs))
            contenders << *blur;
        // The others make the background alone, so that alone is compared: below the screenshot, where the
        // photograph has the most detail.
        for (Contender& contender : contenders)
            contender.picture = [whole = contender.picture] {
                const int below = outputSize.height() / 40;
                return whole().copy(0, outputSize.height() - below, outputSize.width(), below);
            };
        // In the same turns, but another picture: it is not compared.
        Contender everything = framoraExport(Workload::everything, m_inputs).first();
        everything.name = QStringLiteral("W4: glass frame, text and shadow scene over W3");
        everything.picture = {};
        contenders << everything;
        const QList<Measurement> measurements = takeTurns(contenders, m_rounds);
        m_report.table(measurements, {{QStringLiteral("OpenCV resize + Gaussian"), 1.0 / 40}});
        m_report.ratio(QStringLiteral("W4 over our W3"),
                       measurements.last().median() / measurements.first().median(), everythingOverPhoto);
    }

    void png() {
        m_report.heading(QStringLiteral("W5: W1 from pixels to a closed PNG file"));
        const QImage picture =
            CompositionRasterizer().draw(composition(Workload::gradient, m_inputs), exportViewport());
        const QList<Measurement> measurements = takeTurns(pngWriters(picture, m_inputs.folder), m_rounds);
        m_report.table(measurements, {{QStringLiteral("Qt's default"), 0.1}});
        m_report.ratio(QStringLiteral("our file's size over that of Qt's default"),
                       double(QFileInfo(ownPngFile(m_inputs.folder)).size()) /
                           double(QFileInfo(defaultPngFile(m_inputs.folder)).size()),
                       1);
    }

    void preview() {
        m_report.heading(QStringLiteral("W6: preview frames of %1 x %2 while the screenshot is dragged")
                             .arg(previewSize.width())
                             .arg(previewSize.height()));
        constexpr int frames = 300;
        for (const Workload workload : {Workload::gradient, Workload::tilted, Workload::blurredPhoto})
            m_report.frames(dragPreview(workload, m_inputs, frames), 4, 4);
    }

    void sliders() {
        m_report.heading(QStringLiteral("Preview frames of %1 x %2 while a slider is dragged, screenshot of "
                                        "3840 x 2160")
                             .arg(previewSize.width())
                             .arg(previewSize.height()));
        constexpr int frames = 200;
        for (const Measurement& slider : dragSliders(m_inputs, frames))
            m_report.frames(slider, 4, 12);
    }

    void processes() {
        for (const Workload workload : {Workload::gradient, Workload::tilted}) {
            m_report.heading(QStringLiteral("W7: whole processes, PNG to PNG, ") + name(workload));
            const QList<Contender> contenders = processExports(workload, m_inputs);
            QList<Aim> aims;
            for (const Contender& contender : contenders)
                aims << Aim{contender.name, contender.name == u"ImageMagick" ? 1.0 / 30 : 1.0 / 15};
            m_report.table(takeTurns(contenders, m_rounds), aims.mid(1));
        }
    }

    void series() {
        // Each turn is half a minute and an average of 200 by itself.
        const int rounds = std::min(m_rounds, 3);
        m_report.heading(
            QStringLiteral("W7: %1 pictures of 1920 x 1080 with W1's style, each line the median of %2")
                .arg(seriesLength)
                .arg(rounds));
        const QList<Measurement> measurements = takeTurns(pictureSeries(m_inputs), rounds);
        m_report.table(measurements);
        m_report.ratio(QStringLiteral("rate of all cores over that of one"),
                       measurements.last().median() / measurements.first().median(), 1.8, false);
    }

    void memory() {
        m_report.heading(QStringLiteral("Memory of one export in a process of its own, file to file"));
        for (const Workload workload : pictures)
            m_report.memory(workload, measureExportMemory(workload, m_inputs));
    }

    Inputs m_inputs;
    QStringList m_wanted;
    int m_rounds;
    Report m_report;
};

std::optional<Workload> workloadOf(const QString& wanted) {
    for (const Workload workload : pictures)
        if (name(workload) == wanted)
            return workload;
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Draws the same pictures with other renderers and with Framora in turn."));
    parser.addHelpOption();
    const QCommandLineOption screenshot(QStringLiteral("screenshot"), QStringLiteral("A PNG of 2560 x 1600."),
                                        QStringLiteral("file"));
    const QCommandLineOption folder(QStringLiteral("folder"), QStringLiteral("For what is made and written."),
                                    QStringLiteral("path"), QStringLiteral("compare"));
    const QCommandLineOption only(QStringLiteral("only"),
                                  QStringLiteral("Some of W1,W2,W3,W4,W5,W6,W7,sliders,series,memory."),
                                  QStringLiteral("list"));
    const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("Turns of each, 7 or more."),
                                    QStringLiteral("count"), QStringLiteral("9"));
    const QCommandLineOption profile(QStringLiteral("profile"),
                                     QStringLiteral("Only where our own time goes, layer by layer."));
    QCommandLineOption exportMemory(QStringLiteral("export-memory"),
                                    QStringLiteral("Exports once and prints the memory it took."),
                                    QStringLiteral("workload"));
    exportMemory.setFlags(QCommandLineOption::HiddenFromHelp);
    parser.addOptions({screenshot, folder, only, rounds, profile, exportMemory});
    parser.process(application);

    const bool isMemoryChild = parser.isSet(exportMemory);
    const Inputs inputs =
        readInputs(parser.value(screenshot), parser.value(folder), /*withPhotograph*/ !isMemoryChild);
    if (isMemoryChild) {
        const auto workload = workloadOf(parser.value(exportMemory));
        return workload ? exportInThisProcess(*workload, inputs) : 2;
    }
    SideBySide run(inputs, parser.value(only).split(u',', Qt::SkipEmptyParts),
                   std::max(1, parser.value(rounds).toInt()));
    if (parser.isSet(profile))
        run.profile();
    else
        run.run();
    return 0;
}
