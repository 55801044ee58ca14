#pragma once

#include "editor/model/ScreenshotStyleConfig.h"

#include <QString>

namespace framora {

/// The style of a new editor: the defaults, with the packaged texture as background. `programFolder` is where
/// the executable lies; the resources are in ../share/framora from there, installed or in a build tree.
/// Without the texture the background stays unset, as in the editor.
ScreenshotStyleConfig defaultStyle(const QString& programFolder);

} // namespace framora
