#include "editor/views/EditorSession.h"

#include "editor/model/ScreenshotEditorViewModel.h"
#include "platform/Notifications.h"

#include <QPointer>

namespace framora {

EditorSession::EditorSession(std::unique_ptr<ScreenshotEditorViewModel> viewModel,
                             NotificationCenter& notifications, QVariantList toolbarItems, Actions actions,
                             RecentColors& recentColors)
    : m_viewModel(std::move(viewModel)), m_colorPanel(*m_viewModel, recentColors),
      m_notifications(notifications), m_toolbarItems(std::move(toolbarItems)), m_actions(std::move(actions)) {
    const auto observe = [this](const char* name, auto handler) {
        m_observers.push_back(m_notifications.observe(name, handler));
    };
    observe(notifications::editorToolbarCopy, [this] { copy(); });
    observe(notifications::editorToolbarSave, [this] { m_viewModel->saveImage(); });
    observe(notifications::editorToolbarReset, [this] { m_viewModel->resetDisposition(); });
    observe(notifications::editorToolbarZoomFit, [this] { m_viewModel->fitToWindow(); });
    observe(notifications::editorToolbarZoomActual, [this] { m_viewModel->zoomToActualSize(); });
}

EditorSession::~EditorSession() = default;

void EditorSession::copy() {
    const QImage image = m_viewModel->renderFinalImage();
    // The action may end this session.
    if (!image.isNull())
        m_actions.onCopy(image);
}

void EditorSession::triggerToolbarItem(const QString& identifier) {
    m_actions.later([act = m_actions.onToolbarItem, identifier] { act(identifier); });
}

void EditorSession::importBackgroundImage() {
    m_actions.later([model = QPointer(m_viewModel.get())] {
        if (model)
            model->chooseBackgroundImage();
    });
}

void EditorSession::setSharing(Sharing::Abilities abilities) {
    if (m_sharing == abilities)
        return;
    m_sharing = abilities;
    Q_EMIT sharingChanged();
}

void EditorSession::setCanPickFromScreen(bool can) {
    m_colorPanel.setPickFromScreen(can ? m_actions.onPickFromScreen : nullptr);
}

void EditorSession::share(const std::function<void(const QImage&)>& take) {
    // The menu that this came from closes first.
    m_actions.later([model = QPointer(m_viewModel.get()), take] {
        const QImage image = model ? model->renderFinalImage() : QImage();
        if (take && !image.isNull())
            take(image);
    });
}

void EditorSession::openWith() {
    share(m_actions.onOpenWith);
}

void EditorSession::sendByMail() {
    share(m_actions.onSendByMail);
}

void EditorSession::close() {
    m_actions.onClose();
}

void EditorSession::miniaturize() {
    m_notifications.post(notifications::editorMiniaturize);
}

void EditorSession::zoomWindow() {
    m_notifications.post(notifications::editorZoomWindow);
}

} // namespace framora
