#include "platform/desktop/DecoderVersions.h"

#include "platform/desktop/Installation.h"

#include <QProcess>
#include <QTimer>
#include <memory>

namespace framora {
namespace {

constexpr int patienceMs = 3000;

struct Question {
    ComponentVersions::Answer answer;
    QStringList versions;
    int waiting = 0;
};

} // namespace

void DecoderVersions::ask(Answer answer) {
    const QStringList decoders{QStringLiteral("framora-heif"), QStringLiteral("framora-video-still")};
    auto question = std::make_shared<Question>();
    question->answer = std::move(answer);
    question->waiting = int(decoders.size());
    question->versions.resize(decoders.size());
    for (qsizetype i = 0; i < decoders.size(); ++i) {
        auto* process = new QProcess(this);
        const auto done = [process, question, i] {
            process->disconnect();
            question->versions[i] = QString::fromUtf8(process->readAllStandardOutput()).trimmed();
            process->deleteLater();
            if (--question->waiting > 0)
                return;
            question->versions.removeAll(QString());
            question->answer(question->versions);
        };
        connect(process, &QProcess::finished, this, done, Qt::QueuedConnection);
        connect(
            process, &QProcess::errorOccurred, this,
            [done](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart)
                    done();
            },
            Qt::QueuedConnection);
        QTimer::singleShot(patienceMs, process, [process] { process->kill(); });
        process->setStandardInputFile(QProcess::nullDevice());
        process->start(privateExecutable(decoders[i]), {QStringLiteral("--version")});
    }
}

} // namespace framora
