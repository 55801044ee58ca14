#pragma once

#include <QByteArray>
#include <QString>

namespace framora {

class KwinDesktop;

/// The desktop entry by which KWin lets that program take pictures: ours, with its path put in.
QByteArray permissionFor(const QString& executable);

/// Lets KwinDesktop::screenshot() work where not everyone may capture.
void permitThisTest(KwinDesktop& desktop);

} // namespace framora
