#pragma once

#include <QDateTime>
#include <QString>
#include <QUrl>

namespace framora {

/// The picture that a list of timed background pictures shows at a time, in a change from one to the next the
/// one it comes from. `path` names an XML file: the start of the cycle, then what is shown for how many
/// seconds. Empty when it cannot be read.
QUrl timedPicture(const QString& path, const QDateTime& now);

} // namespace framora
