#include "render-cli/RenderJob.h"

#include "editor/render/ComposedPng.h"
#include "editor/render/NamelessFile.h"
#include "editor/render/PictureFile.h"

#include <QFile>
#include <new>

namespace framora {
namespace {

QString nameOf(const QString& input) {
    return input == u"-" ? QStringLiteral("standard input") : input;
}

LoadedPicture readInput(const QString& input) {
    if (input != u"-")
        return loadPicture(input);
    QFile standardInput;
    if (!standardInput.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return {.image = QImage(), .error = standardInput.errorString()};
    return loadPicture(standardInput);
}

QString writeOutput(const QString& output, const QByteArray& png) {
    if (output != u"-")
        return writeFileAtomically(output, png);
    QFile standardOutput;
    if (!standardOutput.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered) ||
        standardOutput.write(png) != png.size() || !standardOutput.flush())
        return standardOutput.errorString();
    return {};
}

} // namespace

RenderJob::RenderJob(const Arguments& arguments, QImage background)
    : m_arguments(arguments), m_background(std::move(background)) {}

QString RenderJob::run(const QString& input, const QString& output) const try {
    const QString inputName = nameOf(input);
    LoadedPicture picture = readInput(input);
    if (!picture)
        return QStringLiteral("%1: %2").arg(inputName, picture.error);
    if (m_arguments.pixelRatio)
        picture.image.setDevicePixelRatio(*m_arguments.pixelRatio);

    Composition composition;
    composition.image = picture.image;
    composition.config = m_arguments.style;
    composition.config.zoom = 100.0;
    composition.isRendering = !m_arguments.isPreview;
    composition.preloadedBackgroundImage = m_background;

    const auto cannotBeDrawn = [&] {
        const QSizeF frame = outputFrame(pointSize(picture.image), composition.config);
        return QStringLiteral("%1: a frame of %2 x %3 points cannot be drawn")
            .arg(inputName)
            .arg(frame.width())
            .arg(frame.height());
    };
    const auto noMemory = [&] { return QStringLiteral("%1: not enough memory for the PNG").arg(inputName); };
    const auto cannotBeWritten = [&](const QString& problem) {
        return QStringLiteral("%1: cannot be written: %2")
            .arg(output == u"-" ? QStringLiteral("standard output") : output, problem);
    };
    if (output != u"-") {
        // Straight into the file, while it is drawn.
        NamelessFile file(output);
        if (file.isOpen()) {
            const std::optional<bool> isWhole = composePng(composition, file);
            if (!isWhole)
                return cannotBeDrawn();
            if (const QString problem = file.error(); !problem.isEmpty())
                return cannotBeWritten(problem);
            if (!*isWhole)
                return noMemory();
            if (file.commit())
                return {};
        }
    }
    const std::optional<QByteArray> png = composedPng(composition);
    if (!png)
        return cannotBeDrawn();
    if (png->isEmpty())
        return noMemory();
    const QString problem = writeOutput(output, *png);
    if (!problem.isEmpty())
        return cannotBeWritten(problem);
    return {};
} catch (const std::bad_alloc&) {
    return QStringLiteral("%1: not enough memory for the picture").arg(nameOf(input));
}

} // namespace framora
