#pragma once

#include "editor/window/ScreenshotEditorWindow.h"
#include "feedback/ToastManager.h"
#include "platform/Application.h"
#include "platform/Clock.h"
#include "platform/FilePanels.h"
#include "platform/MainQueue.h"
#include "platform/Pasteboard.h"
#include "platform/ResourceBundle.h"
#include "support/FixedAppearance.h"
#include "support/FixedScreens.h"
#include "support/RecordingToastPanels.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QTimer>

namespace framora {

class HostQueue final : public MainQueue {
public:
    void async(Work work) override { QTimer::singleShot(0, std::move(work)); }
    std::unique_ptr<WorkItem> after(double seconds, Work work) override {
        return std::make_unique<Item>(seconds, true, std::move(work));
    }
    std::unique_ptr<WorkItem> every(double seconds, Work work) override {
        return std::make_unique<Item>(seconds, false, std::move(work));
    }

private:
    class Item final : public WorkItem {
    public:
        Item(double seconds, bool once, Work work) {
            m_timer.setSingleShot(once);
            m_timer.callOnTimeout([work = std::move(work)] { work(); });
            m_timer.start(int(seconds * 1000));
        }
        void cancel() override { m_timer.stop(); }

    private:
        QTimer m_timer;
    };
};

class HostClock final : public Clock {
public:
    double secondsSince1970() const override { return double(QDateTime::currentMSecsSinceEpoch()) / 1000.0; }
};

class HostFilePanels final : public FilePanels {
public:
    std::optional<QUrl> openFile(const QString& message, const QStringList&) override {
        const QUrl url = QFileDialog::getOpenFileUrl(nullptr, message);
        return url.isEmpty() ? std::nullopt : std::optional(url);
    }
    std::optional<QUrl> savePng(const QString& name) override {
        const QUrl url = QFileDialog::getSaveFileUrl(nullptr, {}, QUrl::fromLocalFile(name));
        return url.isEmpty() ? std::nullopt : std::optional(url);
    }
};

class HostResources final : public ResourceBundle {
public:
    std::optional<QUrl> url(const QString& name, const QString& type,
                            const QString& subdirectory) const override {
        const QString path = QStringLiteral("%1/%2/%3.%4").arg(resourcePath(), subdirectory, name, type);
        return QFileInfo::exists(path) ? std::optional(QUrl::fromLocalFile(path)) : std::nullopt;
    }
    QString resourcePath() const override { return QStringLiteral(FRAMORA_SOURCE_RESOURCES); }
};

class HostPasteboard final : public Pasteboard {
public:
    std::int64_t changeCount() override { return 0; }
    QImage readImage() override { return {}; }
    void writePng(const QByteArray& png) override {
        auto data = std::make_unique<QMimeData>();
        data->setData(QStringLiteral("image/png"), png);
        QApplication::clipboard()->setMimeData(data.release());
    }
};

class HostApplication final : public Application {
public:
    void setActivationPolicy(ActivationPolicy) override {}
    void activate() override {}
    void terminate() override { QApplication::quit(); }
};

struct EditorHostServices {
    HostQueue queue;
    HostClock clock;
    HostFilePanels filePanels;
    HostResources resources;
    NotificationCenter notifications;
    HostPasteboard pasteboard;
    HostApplication application;
    FixedAppearance appearance;
    FixedScreens screens;
    RecordingToastPanels panels{queue};

    ScreenshotEditorWindow::Services forWindow() {
        return {
            queue, clock, filePanels, resources, notifications, pasteboard, application, appearance, [this] {
                return std::make_unique<ToastManager>(ToastServices{queue, panels, screens, appearance});
            }};
    }
};

} // namespace framora
