#pragma once

#include <QFile>
#include <QString>

namespace framora {

/// Opens a regular file only, for reading, and never waits for the other end of a pipe.
bool openRegularFile(QFile& file, const QString& path);

} // namespace framora
