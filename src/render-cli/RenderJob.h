#pragma once

#include "render-cli/Arguments.h"

#include <QImage>

namespace framora {

/// What is done to each picture: read, draw, encode, write. Shared by all threads.
class RenderJob {
public:
    /// `background` is the decoded background image, null when there is none.
    RenderJob(const Arguments& arguments, QImage background);

    /// Gives one line that names the file on failure; the output is then as it was before.
    QString run(const QString& input, const QString& output) const;

private:
    const Arguments& m_arguments;
    const QImage m_background;
};

} // namespace framora
