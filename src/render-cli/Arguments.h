#pragma once

#include "editor/model/ScreenshotStyleConfig.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace framora {

/// What one run of framora-render was asked to do.
struct Arguments {
    enum class Action { render, showHelp, showVersion };

    Action action = Action::render;
    QStringList images;   ///< paths, or "-" for standard input
    QString output;       ///< a path, or "-" for standard output; empty when `outputFolder` is given
    QString outputFolder; ///< empty when `output` is given
    ScreenshotStyleConfig style;
    std::optional<double> pixelRatio; ///< instead of what each picture says of itself
    bool isPreview = false;
    int jobs = 0; ///< pictures at once; 0 is one for each processor
    bool isQuiet = false;

    static QString helpText();
};

/// Arguments, or one line that says what is wrong with them.
struct ParsedArguments {
    Arguments arguments;
    QString error;
};

/// `words` without the program's name; `style` is what `--set` and `--text` start from.
ParsedArguments parseArguments(const QStringList& words, const ScreenshotStyleConfig& style);

} // namespace framora
