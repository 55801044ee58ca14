#include "render-cli/RenderCommand.h"

#include "editor/render/BackgroundDecoder.h"
#include "render-cli/DefaultStyle.h"
#include "render-cli/OutputNames.h"
#include "render-cli/ProgressBar.h"
#include "render-cli/RenderJob.h"
#include "render-cli/RenderQueue.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <new>

namespace framora {
namespace {

/// One line, whatever a file name or a value brings along.
QByteArray line(const QString& message) {
    QString text = QStringLiteral("framora-render: ") + message;
    for (QChar& character : text)
        if (character.category() == QChar::Other_Control)
            character = u'?';
    return text.toLocal8Bit();
}

void print(const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

} // namespace

RenderCommand::RenderCommand(QString programFolder, std::FILE* messages, std::function<bool()> isCancelled)
    : m_programFolder(std::move(programFolder)), m_messages(messages), m_isCancelled(std::move(isCancelled)) {
}

int RenderCommand::run(const QStringList& words) {
    const ParsedArguments parsed = parseArguments(words, defaultStyle(m_programFolder));
    if (!parsed.error.isEmpty()) {
        say(parsed.error);
        return badUsage;
    }
    switch (parsed.arguments.action) {
    case Arguments::Action::showHelp:
        print(Arguments::helpText());
        return allWritten;
    case Arguments::Action::showVersion:
        print(QStringLiteral("framora-render %1\n").arg(QCoreApplication::applicationVersion()));
        return allWritten;
    case Arguments::Action::render:
        break;
    }
    return render(parsed.arguments);
}

int RenderCommand::render(const Arguments& arguments) {
    QStringList outputs{arguments.output};
    if (!arguments.outputFolder.isEmpty()) {
        const OutputNames names = outputNames(arguments.images, arguments.outputFolder);
        if (!names.error.isEmpty()) {
            say(names.error);
            return badUsage;
        }
        outputs = names.paths;
    }

    // Decoded once for all pictures.
    QImage background;
    const ScreenshotStyleConfig& style = arguments.style;
    if (style.backgroundType == BackgroundType::image && style.backgroundImageURL) {
        const LoadedPicture loaded = BackgroundDecoder::load(*style.backgroundImageURL);
        if (!loaded) {
            say(QStringLiteral("backgroundImageURL: '%1': %2")
                    .arg(style.backgroundImageURL->toLocalFile(), loaded.error));
            return badUsage;
        }
        background = loaded.image;
    }

    if (!arguments.outputFolder.isEmpty()) {
        const QFileInfo folder(arguments.outputFolder);
        if (!QDir().mkpath(arguments.outputFolder) || !folder.isWritable()) {
            say(QStringLiteral("'%1' is not a folder that can be written to").arg(arguments.outputFolder));
            return someFailed;
        }
    }

    const RenderJob job(arguments, background);
    const int count = int(arguments.images.size());
    ProgressBar progress(m_messages, count, !arguments.isQuiet);
    int ended = 0;
    const auto report = [&progress, &ended](int done, const QString& error) {
        ended = done;
        progress.setDone(done);
        if (!error.isEmpty())
            progress.writeLine(line(error));
    };
    const int failed = RenderQueue(arguments.jobs)
                           .run(
                               count, [&](int i) { return job.run(arguments.images[i], outputs[i]); }, report,
                               m_isCancelled);
    if (ended < count)
        progress.writeLine(
            line(QStringLiteral("interrupted; %1 of %2 images not begun").arg(count - ended).arg(count)));
    return failed == 0 ? allWritten : someFailed;
}

void RenderCommand::say(const QString& message) {
    const QByteArray text = line(message) + '\n';
    std::fwrite(text.constData(), 1, std::size_t(text.size()), m_messages);
    std::fflush(m_messages);
}

} // namespace framora
