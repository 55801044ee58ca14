#pragma once

#include <QByteArray>
#include <QString>

namespace framora {

/// All of a desktop's settings file; empty when it is missing, is no regular file, or is larger than any that
/// is written as settings (8 MB). Never waits for the other end of a pipe.
QByteArray readSettingsFile(const QString& path);

} // namespace framora
