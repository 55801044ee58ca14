#pragma once

#include "editor/render/PictureFile.h"
#include "editor/window/ScreenshotEditorWindow.h"
#include "feedback/ToastManager.h"
#include "platform/CommandGate.h"
#include "platform/NotificationCenter.h"
#include "platform/desktop/ConfiguredDesktopPictures.h"
#include "platform/desktop/FileResourceBundle.h"
#include "platform/desktop/PortalSharing.h"
#include "platform/desktop/QtFilePanels.h"
#include "platform/desktop/QtMainQueue.h"
#include "platform/desktop/SystemClock.h"
#include "platform/desktop/ThreadBackgroundQueue.h"
#include "platform/x11/X11Application.h"
#include "platform/x11/X11ColorPicker.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Pasteboard.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11ToastPanels.h"
#include "support/FixedAppearance.h"

namespace framora {

/// The real parts that the program gives its editor, but for the appearance, which the test says.
struct EditorHostServices {
    CommandGate gate;
    QtMainQueue queue{gate};
    SystemClock clock;
    QtFilePanels filePanels;
    PortalSharing sharing{x11PortalWindowName};
    FileResourceBundle resources;
    NotificationCenter notifications;
    X11Connection connection;
    X11Pasteboard pasteboard{connection, [](const QByteArray& file) { return loadPicture(file).image; }};
    X11Application application{connection, notifications};
    X11Screens screens{connection};
    X11ToastPanels panels{queue, screens};
    X11ColorPicker colorPicker{connection, screens};
    FixedAppearance appearance;
    ThreadBackgroundQueue backgroundQueue{queue};
    ConfiguredDesktopPictures desktopPictures{screens};

    ScreenshotEditorWindow::Services forWindow() {
        return {queue,
                clock,
                filePanels,
                resources,
                notifications,
                pasteboard,
                application,
                appearance,
                [this] {
                    return std::make_unique<ToastManager>(ToastServices{queue, panels, screens, appearance});
                },
                backgroundQueue,
                desktopPictures,
                &sharing,
                &colorPicker};
    }
};

} // namespace framora
