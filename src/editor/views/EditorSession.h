#pragma once

#include "editor/views/ColorPanelBridge.h"
#include "platform/NotificationCenter.h"
#include "platform/Sharing.h"

#include <QImage>
#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <functional>
#include <memory>
#include <vector>

namespace framora {

class RecentColors;
class ScreenshotEditorViewModel;

/// What the root view of one editor window holds: the view model, the window's actions and the toolbar's
/// notifications, which it answers for as long as it lives.
class EditorSession final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made with the editor window")
    Q_PROPERTY(framora::ScreenshotEditorViewModel* viewModel READ viewModel CONSTANT)
    Q_PROPERTY(framora::ColorPanelBridge* colorPanel READ colorPanel CONSTANT)
    Q_PROPERTY(QVariantList toolbarItems READ toolbarItems CONSTANT)
    Q_PROPERTY(int selectedTab MEMBER m_selectedTab NOTIFY selectedTabChanged)
    Q_PROPERTY(bool isDraggingScreenshot MEMBER m_isDraggingScreenshot NOTIFY isDraggingScreenshotChanged)
    Q_PROPERTY(bool canOpenWith READ canOpenWith NOTIFY sharingChanged)
    Q_PROPERTY(bool canMail READ canMail NOTIFY sharingChanged)
    Q_PROPERTY(bool sidebarVisible MEMBER m_sidebarVisible NOTIFY sidebarVisibleChanged)

public:
    struct Actions {
        std::function<void(const QImage&)> onCopy;
        std::function<void()> onClose;
        /// Carries out a toolbar item's action, by the item's identifier.
        std::function<void(const QString&)> onToolbarItem;
        /// Runs work in a later turn of the event loop: what opens a modal panel must not do so out of a
        /// view's own handler, which may be gone when the panel returns.
        std::function<void(std::function<void()>)> later;
        /// Hands the picture to the program that the user chooses, or to a mail composer.
        std::function<void(const QImage&)> onOpenWith = {};
        std::function<void(const QImage&)> onSendByMail = {};
        /// Lets the user point at a pixel of the screen.
        ColorPanelBridge::PickFromScreen onPickFromScreen = {};
    };

    /// `toolbarItems`: maps with "identifier" (empty for a space, "flexible" for the flexible one), "label",
    /// "toolTip" and "symbol", in the order shown.
    /// `recentColors` outlives the session.
    EditorSession(std::unique_ptr<ScreenshotEditorViewModel> viewModel, NotificationCenter& notifications,
                  QVariantList toolbarItems, Actions actions, RecentColors& recentColors);
    ~EditorSession() override;

    ScreenshotEditorViewModel* viewModel() const { return m_viewModel.get(); }
    ColorPanelBridge* colorPanel() { return &m_colorPanel; }
    QVariantList toolbarItems() const { return m_toolbarItems; }

    /// From here on the toolbar's notifications are somebody else's.
    void endObserving() { m_observers.clear(); }

    bool canOpenWith() const { return m_sharing.openWith; }
    bool canMail() const { return m_sharing.mail; }
    /// What the desktop can do with a picture; nothing until this is called.
    void setSharing(Sharing::Abilities abilities);

    /// Whether the desktop lets a colour be picked from the screen; not until this is called.
    void setCanPickFromScreen(bool can);

    Q_INVOKABLE void triggerToolbarItem(const QString& identifier);
    Q_INVOKABLE void importBackgroundImage();
    Q_INVOKABLE void openWith();
    Q_INVOKABLE void sendByMail();
    Q_INVOKABLE void close();
    Q_INVOKABLE void miniaturize();
    Q_INVOKABLE void zoomWindow();

Q_SIGNALS:
    void selectedTabChanged();
    void isDraggingScreenshotChanged();
    void sidebarVisibleChanged();
    void sharingChanged();

private:
    void copy();
    /// Renders in a later turn and hands a picture that there is to `take`.
    void share(const std::function<void(const QImage&)>& take);

    std::unique_ptr<ScreenshotEditorViewModel> m_viewModel;
    ColorPanelBridge m_colorPanel;
    NotificationCenter& m_notifications;
    QVariantList m_toolbarItems;
    Actions m_actions;
    int m_selectedTab = 1;
    bool m_isDraggingScreenshot = false;
    bool m_sidebarVisible = true;
    Sharing::Abilities m_sharing;
    std::vector<NotificationCenter::Token> m_observers;
};

} // namespace framora
