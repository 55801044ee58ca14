#pragma once

#include <QByteArray>
#include <QString>

namespace framora {

/// Writes the file without a name and names it when it is whole: whatever ends the process, no part of a file
/// stays behind. What `path` named before is replaced, a link's target in place of the link. False, with
/// nothing changed, where the file system has no such files or anything else is in the way.
bool writeThroughNamelessFile(const QString& path, const QByteArray& bytes);

} // namespace framora
