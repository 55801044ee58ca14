#pragma once

#include "platform/Appearance.h"
#include "platform/MainQueue.h"
#include "platform/Screens.h"
#include "platform/ToastPanel.h"

#include <QImage>
#include <QString>
#include <functional>
#include <memory>

namespace framora {

/// Opens a picture in the editor: closes an editor that is open, clears its isClosing and opens it anew.
using EditorOpener = std::function<void(const QImage&)>;

/// What toasts are made of; everything named here outlives the manager.
struct ToastServices {
    MainQueue& mainQueue;
    ToastPanels& panels;
    Screens& screens;
    const Appearance& appearance;
    EditorOpener openEditor = {}; ///< Only interactive toasts need it.
};

/// Shows short-lived popups over everything, one at a time. Its toast goes with it: keep the manager until
/// then.
class ToastManager {
public:
    explicit ToastManager(ToastServices services);
    ~ToastManager();
    ToastManager(const ToastManager&) = delete;
    ToastManager& operator=(const ToastManager&) = delete;

    /// The plain toast. `message` is localised, `icon` a symbol's name; `success` is false for failures.
    void show(const QString& message, const QString& icon, bool success);
    /// The plain toast that says that something could not be done.
    void showError();
    /// The toast of a capture: a click on it opens `image` in the editor. The image is dropped with the
    /// toast.
    void showInteractive(const QString& message, const QString& icon, const QImage& image);
    /// Fades the current toast out and closes it, if there is one.
    void dismiss();
    bool isShowing() const { return m_popupWindow != nullptr; }

private:
    void closeCurrent();
    void present(bool ignoresMouse, double seconds, std::unique_ptr<ToastContent> content);

    ToastServices m_services;
    std::unique_ptr<ToastPanel> m_popupWindow;
    std::unique_ptr<WorkItem> m_dismissWorkItem;
    /// What callbacks hold of this manager, weakly.
    std::shared_ptr<ToastManager*> m_self;
};

} // namespace framora
