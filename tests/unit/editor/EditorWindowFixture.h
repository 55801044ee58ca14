#pragma once

#include "unit/editor/ModelFixture.h"

#include "editor/views/EditorSession.h"
#include "editor/window/ScreenshotEditorWindow.h"
#include "feedback/ToastManager.h"
#include "feedback/ToastView.h"
#include "platform/Application.h"
#include "platform/Pasteboard.h"
#include "support/FixedAppearance.h"
#include "support/FixedDesktopPictures.h"
#include "support/FixedScreens.h"
#include "support/MemoryDefaults.h"
#include "support/RecordingColorPicker.h"
#include "support/RecordingSharing.h"
#include "support/RecordingToastPanels.h"

#include <QCoreApplication>
#include <QQuickItem>
#include <QQuickView>

namespace framora {

class RecordingPasteboard final : public Pasteboard {
public:
    std::int64_t changeCount() override { return written.size(); }
    QImage readImage() override { return {}; }
    void writePng(const QByteArray& png) override { written.append(png); }
    void adoptPicture(const QByteArray&) override {}

    QList<QByteArray> written;
};

class CountingApplication final : public Application {
public:
    void setActivationPolicy(ActivationPolicy) override {}
    void activate() override { ++activations; }
    void setFrontWindow(QWindow&) override {}
    void useActivationToken(const QString&) override {}
    void terminate() override {}

    int activations = 0;
};

class EditorWindow : public ModelFixture {
public:
    static void SetUpTestSuite() {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        qputenv("HOME", "/nonexistent"); // nobody's pictures are wallpapers here
    }

    ScreenshotEditorWindow::Services services() {
        return {
            queue,
            queue,
            panels,
            resources,
            notifications,
            pasteboard,
            application,
            appearance,
            [this] {
                ++toastManagerCount;
                return std::make_unique<ToastManager>(ToastServices{queue, toastPanels, screens, appearance});
            },
            background,
            desktopPictures,
            &sharing,
            &colorPicker,
            &defaults};
    }
    EditorSession& session() { return *editor.session(); }
    QQuickView& window() { return *editor.editorWindow(); }
    static void serveDeletions() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    QString frontToast() {
        const auto* panel = toastPanels.front();
        const auto* view = panel ? dynamic_cast<const ToastView*>(panel->content.get()) : nullptr;
        return view ? QStringLiteral("%1|%2|%3").arg(view->message, view->icon).arg(view->success)
                    : QString();
    }

    NotificationCenter notifications;
    RecordingPasteboard pasteboard;
    CountingApplication application;
    FixedAppearance appearance;
    FixedScreens screens;
    FixedDesktopPictures desktopPictures;
    RecordingSharing sharing{queue};
    RecordingColorPicker colorPicker{queue};
    MemoryDefaults defaults;
    RecordingToastPanels toastPanels{queue};
    int toastManagerCount = 0;
    ScreenshotEditorWindow editor{services()};
};

} // namespace framora
