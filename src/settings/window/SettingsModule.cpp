#include "settings/window/SettingsModule.h"

#include "settings/window/QuickSettingsWindow.h"

#include <QQuickWindow>

extern "C" Q_DECL_EXPORT framora::SettingsWindow*
framora_makeSettingsWindow(const framora::SettingsServices& services, std::function<void()> onWillClose) {
    // A form needs no graphics driver, whose start would be most of the window's. Qt complains when it
    // is told again.
    if (QQuickWindow::sceneGraphBackend().isEmpty())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    return std::make_unique<framora::QuickSettingsWindow>(services, std::move(onWillClose)).release();
}
