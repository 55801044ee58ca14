#include "app/CaptureFlow.h"

#include "feedback/SoundManager.h"
#include "feedback/ToastManager.h"
#include "platform/CaptureTool.h"
#include "platform/Localized.h"
#include "platform/Pasteboard.h"
#include "settings/Settings.h"

namespace framora {

const CaptureFlowRow& CaptureFlowRow::area() {
    static const CaptureFlowRow row{{QStringLiteral("-i"), QStringLiteral("-c"), QStringLiteral("-x")},
                                    QStringLiteral("copied"),
                                    QStringLiteral("doc.on.clipboard.fill")};
    return row;
}

const CaptureFlowRow& CaptureFlowRow::window() {
    static const CaptureFlowRow row{{QStringLiteral("-w"), QStringLiteral("-c"), QStringLiteral("-x")},
                                    QStringLiteral("window.captured"),
                                    QStringLiteral("macwindow")};
    return row;
}

void runCaptureFlow(const CaptureFlowRow& row, const CaptureServices& services) {
    const auto countBefore = services.pasteboard.changeCount();
    if (!services.captureTool.launch(row.toolArguments)) {
        services.toasts.showError();
        return;
    }
    services.captureTool.waitUntilExit();
    if (services.pasteboard.changeCount() == countBefore)
        return;

    const Settings settings = Settings::load(services.defaults);
    if (settings.soundEffectsEnabled)
        services.sounds.play(settings.captureSound, static_cast<float>(settings.audibleVolume()));

    const QString message = localized(row.successMessageKey);
    const QImage image = services.pasteboard.readImage();
    if (image.isNull())
        services.toasts.show(message, row.successIcon, true);
    else
        services.toasts.showInteractive(message, row.successIcon, image);
}

} // namespace framora
