#pragma once

#include <QByteArray>

namespace framora {

/// Has a small process of its own take the encoded PNG file to the clipboard, where it stays until somebody
/// else copies something, also after this program has quit. It is there when this returns, some tens of
/// milliseconds later. False when it could not be put there, or not within five seconds.
bool leaveWithClipboardKeeper(const QByteArray& png);

} // namespace framora
