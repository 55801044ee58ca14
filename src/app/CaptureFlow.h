#pragma once

#include <QString>
#include <QStringList>

namespace framora {

class CaptureTool;
class Pasteboard;
class SoundManager;
class ToastManager;
class UserDefaults;

/// What tells one capture flow from the other.
struct CaptureFlowRow {
    QStringList toolArguments;
    QString successMessageKey;
    QString successIcon;

    static const CaptureFlowRow& area();
    static const CaptureFlowRow& window();
};

/// What a capture flow works with.
struct CaptureServices {
    Pasteboard& pasteboard;
    CaptureTool& captureTool;
    const UserDefaults& defaults;
    SoundManager& sounds;
    ToastManager& toasts;
};

/// Runs the capture tool and waits until it exits; when the clipboard has changed since, plays the capture
/// sound and shows the toast that leads to the editor. Whether a picture was taken is told by the clipboard
/// alone: a cancelled selection changes nothing, and ends silently.
void runCaptureFlow(const CaptureFlowRow& row, const CaptureServices& services);

} // namespace framora
