#include "feedback/ToastManager.h"

#include "feedback/InteractiveToastView.h"
#include "feedback/ToastView.h"
#include "platform/Localized.h"

#include <QtGlobal>
#include <utility>

namespace framora {
namespace {

constexpr double fadeInSeconds = 0.2;
constexpr double fadeOutSeconds = 0.3;

} // namespace

ToastManager::ToastManager(ToastServices services)
    : m_services(std::move(services)), m_self(std::make_shared<ToastManager*>(this)) {}

ToastManager::~ToastManager() = default;

void ToastManager::show(const QString& message, const QString& icon, bool success) {
    closeCurrent();
    present(true, ToastView::seconds,
            std::make_unique<ToastView>(message, icon, success, ToastPalette::of(m_services.appearance)));
}

void ToastManager::showError() {
    show(localized(QStringLiteral("error")), QStringLiteral("xmark.circle.fill"), false);
}

void ToastManager::showInteractive(const QString& message, const QString& icon, const QImage& image) {
    closeCurrent();
    auto onEdit = [manager = std::weak_ptr(m_self), openEditor = m_services.openEditor, image] {
        if (const auto self = manager.lock())
            (*self)->dismiss();
        if (openEditor)
            openEditor(image);
    };
    present(false, InteractiveToastView::seconds,
            std::make_unique<InteractiveToastView>(message, icon, std::move(onEdit), image,
                                                   localized(QStringLiteral("toast.edit")),
                                                   ToastPalette::of(m_services.appearance)));
}

void ToastManager::dismiss() {
    m_dismissWorkItem.reset();
    if (!m_popupWindow)
        return;
    m_popupWindow->animateAlpha(0, fadeOutSeconds, ToastPanel::Easing::easeIn,
                                [manager = std::weak_ptr(m_self)] {
                                    if (const auto self = manager.lock())
                                        (*self)->m_popupWindow.reset();
                                });
}

void ToastManager::closeCurrent() {
    m_dismissWorkItem.reset();
    m_popupWindow.reset();
}

void ToastManager::present(bool ignoresMouse, double seconds, std::unique_ptr<ToastContent> content) {
    const auto screen = m_services.screens.screenInUse();
    if (!screen)
        qFatal("A toast has no screen to stand on");
    m_popupWindow = m_services.panels.makePanel(*screen, ignoresMouse, std::move(content));
    m_popupWindow->setAlpha(0);
    m_popupWindow->orderFront();
    m_popupWindow->animateAlpha(1, fadeInSeconds, ToastPanel::Easing::easeOut, {});
    m_dismissWorkItem = m_services.mainQueue.after(seconds, [manager = std::weak_ptr(m_self)] {
        if (const auto self = manager.lock())
            (*self)->dismiss();
    });
}

} // namespace framora
