#pragma once

#include "render-cli/Arguments.h"

#include <QStringList>
#include <cstdio>
#include <functional>

namespace framora {

/// One run of framora-render: reads its words, draws, writes, reports. Pictures go to files or standard
/// output, everything said to `messages`.
class RenderCommand {
public:
    enum ExitStatus { allWritten = 0, someFailed = 1, badUsage = 2 };

    /// `isCancelled` may turn true at any time: what runs then ends, and the rest counts as failed.
    RenderCommand(QString programFolder, std::FILE* messages, std::function<bool()> isCancelled);

    int run(const QStringList& words);

private:
    int render(const Arguments& arguments);
    void say(const QString& message);

    const QString m_programFolder;
    std::FILE* const m_messages;
    const std::function<bool()> m_isCancelled;
};

} // namespace framora
