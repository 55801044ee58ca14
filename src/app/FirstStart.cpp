#include "app/FirstStart.h"

#include "platform/GlobalShortcuts.h"
#include "platform/MainQueue.h"
#include "platform/StatusBar.h"
#include "platform/UserDefaults.h"
#include "settings/Settings.h"

namespace framora {

namespace {

constexpr double lookInterval = 1.0;
/// A tray that starts together with the program has come by then.
constexpr int firstVerdict = 2;
/// Whether there is a portal for shortcuts may take a while to be known; whoever starts the program by hand
/// does not wait longer than this for something to happen.
constexpr int lastLook = 10;

} // namespace

FirstStart::FirstStart(Services services) : m_services(std::move(services)) {
    if (!isOver())
        m_timer = m_services.mainQueue.every(lookInterval, [this] { look(); });
}

FirstStart::~FirstStart() = default;

bool FirstStart::isOver() const {
    return m_looks > lastLook || !m_services.defaults.isEmpty();
}

void FirstStart::look() {
    ++m_looks;
    const bool mustBeBound = m_services.globalShortcuts.route() == GlobalShortcuts::Route::byHand;
    if (isOver() || (mustBeBound && m_services.statusBar.hasHost())) {
        m_timer.reset();
        return;
    }
    if (!mustBeBound || m_looks < firstVerdict)
        return;
    m_timer.reset();
    Settings().save(m_services.defaults, m_services.notifications);
    if (!m_services.defaults.isEmpty())
        m_services.openSettings();
}

} // namespace framora
