// The wallpapers of a folder turned into thumbnails: files per second, processor time and peak memory, ours
// and a plain loop's that decodes each file whole, on one thread, and scales it smoothly.
//
//   wallpaper_bench [FOLDER [KIND [ROUNDS]]]
//
// makes its 200 files at the first time. KIND is an extension or "all"; without one each is taken in turn.
// The sides take turns, each in a process of its own and all at low priority; figures are those of the median
// run.

#include "WallpaperCorpus.h"
#include "editor/render/BackgroundDecoder.h"
#include "editor/render/WallpaperThumbnails.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <map>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace framora;

namespace {

qint64 numberIn(const QString& path, int field) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(field).toLongLong();
}

/// Resident bytes of a process and all below it. What two of them share counts twice.
qint64 residentBytes(qint64 process) {
    const QString base = QStringLiteral("/proc/%1/").arg(process);
    qint64 bytes = numberIn(base + QStringLiteral("statm"), 1) * sysconf(_SC_PAGESIZE);
    const QDir tasks(base + QStringLiteral("task"));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile children(tasks.filePath(task + QStringLiteral("/children")));
        if (children.open(QIODevice::ReadOnly))
            for (const QByteArray& child : children.readAll().split(' '))
                if (const qint64 number = child.trimmed().toLongLong(); number > 0)
                    bytes += residentBytes(number);
    }
    return bytes;
}

struct Figures {
    double seconds = 0;
    double processorSeconds = 0;
    qint64 peakBytes = 0;
    int files = 0;
};

Figures measure(const QString& side, const QString& folder, const QString& kind) {
    QElapsedTimer timer;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    rusage before{};
    getrusage(RUSAGE_CHILDREN, &before);
    timer.start();
    process.start(QCoreApplication::applicationFilePath(), {side, folder, kind});
    process.waitForStarted();
    Figures figures;
    while (process.state() != QProcess::NotRunning) {
        figures.peakBytes = std::max(figures.peakBytes, residentBytes(process.processId()));
        process.waitForFinished(2);
    }
    figures.seconds = double(timer.nsecsElapsed()) / 1e9;
    rusage after{};
    getrusage(RUSAGE_CHILDREN, &after);
    const auto seconds = [](const rusage& usage) {
        return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    };
    figures.processorSeconds = seconds(after) - seconds(before);
    figures.files = process.readAllStandardOutput().trimmed().toInt();
    return figures;
}

std::vector<WallpaperCandidate> candidates(const QString& folder, const QString& kind) {
    std::vector<WallpaperCandidate> all;
    const QDir files(folder);
    for (const QFileInfo& file : files.entryInfoList(QDir::Files, QDir::Name))
        if (kind == u"all" || file.suffix() == kind) {
            const QUrl url = QUrl::fromLocalFile(file.filePath());
            all.push_back({url, file.fileName(), file.size(), BackgroundDecoder::isVideo(url)});
        }
    return all;
}

int plainLoop(const std::vector<WallpaperCandidate>& files) {
    std::vector<QImage> thumbnails;
    for (const WallpaperCandidate& file : files) {
        const QImage image = BackgroundDecoder::decode(file.url);
        if (!image.isNull())
            thumbnails.push_back(image.scaled(400, 300, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
    return int(thumbnails.size());
}

void print(const char* what, const Figures& figures) {
    std::printf("  %-6s %4d files  %7.2f s  %6.1f files/s  processor %7.2f s  peak %4lld MB\n", what,
                figures.files, figures.seconds, figures.files / figures.seconds, figures.processorSeconds,
                static_cast<long long>(figures.peakBytes >> 20));
    std::fflush(stdout);
}

/// By its time: everything of one run.
Figures median(std::vector<Figures> rounds) {
    std::sort(rounds.begin(), rounds.end(),
              [](const Figures& a, const Figures& b) { return a.seconds < b.seconds; });
    return rounds[rounds.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() == 4 && (arguments[1] == u"ours" || arguments[1] == u"plain")) {
        const auto files = candidates(arguments[2], arguments[3]);
        std::printf("%d\n", arguments[1] == u"ours" ? int(makeWallpapers(files).size()) : plainLoop(files));
        return 0;
    }
    const QString folder = QFileInfo(arguments.size() > 1 ? arguments[1]
                                                          : QCoreApplication::applicationDirPath() +
                                                                QStringLiteral("/../wallpapers"))
                               .absoluteFilePath();
    if (!makeWallpaperCorpus(folder))
        return 1;
    // As ours is, the other and all that it starts.
    setpriority(PRIO_PROCESS, 0, 19);
    for (const WallpaperCandidate& file : candidates(folder, QStringLiteral("all"))) {
        QFile warm(file.url.toLocalFile());
        if (warm.open(QIODevice::ReadOnly))
            warm.readAll();
    }
    std::printf("%d processors; resident memory of the whole process tree\n", QThread::idealThreadCount());
    const QStringList kinds = arguments.size() > 2
                                  ? QStringList(arguments[2])
                                  : QStringLiteral("jpg png heic HEIC webp tiff mov mp4 all").split(u' ');
    const int rounds = arguments.size() > 3 ? std::max(1, arguments[3].toInt()) : 1;
    for (const QString& kind : kinds) {
        std::vector<Figures> allOurs;
        std::vector<Figures> allPlain;
        for (int round = 0; round < rounds; ++round) {
            allOurs.push_back(measure(QStringLiteral("ours"), folder, kind));
            allPlain.push_back(measure(QStringLiteral("plain"), folder, kind));
        }
        const Figures ours = median(allOurs);
        const Figures plain = median(allPlain);
        std::printf("%s: %.2f times as fast, %.2f of the processor time\n", qPrintable(kind),
                    plain.seconds / ours.seconds, ours.processorSeconds / plain.processorSeconds);
        print("ours", ours);
        print("plain", plain);
    }
    return 0;
}
