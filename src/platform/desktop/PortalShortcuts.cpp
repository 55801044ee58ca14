#include "platform/desktop/PortalShortcuts.h"

#include "platform/CommandGate.h"
#include "platform/KeyMonitors.h"
#include "platform/KeyboardLayout.h"
#include "platform/Notifications.h"
#include "platform/desktop/ShortcutKeys.h"

#include <algorithm>
#include <utility>

namespace framora {
namespace {

/// A portal that has to be started first takes a while; one that needs longer than this is none.
constexpr double beginSeconds = 30;
/// For a session; nobody is asked for that.
constexpr double sessionSeconds = 30;
constexpr double firstRetrySeconds = 1;
constexpr int mostFailures = 4;
/// The desktop's own page can be asked for from here on.
constexpr unsigned configuringVersion = 2;

} // namespace

PortalShortcuts::PortalShortcuts(Services services)
    : m_services(std::move(services)), m_self(std::make_shared<PortalShortcuts*>(this)) {
    m_services.portal.listen({
        [this] { appeared(); },
        [this] { vanished(); },
        [this](const QString& session) {
            if (session != m_session)
                return;
            ++m_generation;
            m_session.clear();
            failed();
        },
        [this](const QString& session, const QString& id, const QString& token) {
            activate(session, id, token);
        },
        [this](const QString& session, const std::vector<ShortcutsPortal::Binding>& bindings) {
            if (session == m_session && m_state == Session::bound)
                takeBindings(bindings);
        },
    });
    begin();
}

PortalShortcuts::~PortalShortcuts() {
    m_services.portal.listen({});
    if (!m_session.isEmpty())
        m_services.portal.close(m_session, [] {});
}

template <class Work> auto PortalShortcuts::whileCurrent(Work work) {
    return [weak = std::weak_ptr(m_self), generation = m_generation, work](auto&&... answer) {
        if (const auto self = weak.lock(); self && (*self)->m_generation == generation)
            work(std::forward<decltype(answer)>(answer)...);
    };
}

void PortalShortcuts::setState(Portal portal, Session session) {
    if (session != Session::bound)
        m_bindings.clear();
    if (m_portal == portal && m_state == session)
        return;
    m_portal = portal;
    m_state = session;
    m_services.notifications.post(notifications::shortcutBindingsChanged);
}

void PortalShortcuts::begin() {
    ++m_generation;
    m_retry.reset();
    m_session.clear();
    m_isClosing = false;
    setState(Portal::unknown, Session::none);
    m_patience = m_services.mainQueue.after(beginSeconds, whileCurrent([this] {
                                                ++m_generation;
                                                setState(Portal::absent, Session::none);
                                            }));
    m_services.portal.begin(whileCurrent([this](std::optional<unsigned> version) {
        m_patience.reset();
        m_version = version.value_or(0);
        if (version)
            m_falls = 0;
        setState(version ? Portal::present : Portal::absent, Session::none);
        synchronize();
    }));
}

void PortalShortcuts::appeared() {
    // One that falls over whenever it is asked is left alone.
    if (!isGivenUp())
        begin();
}

bool PortalShortcuts::isGivenUp() const {
    return std::max(m_failures, m_falls) >= mostFailures;
}

void PortalShortcuts::vanished() {
    ++m_generation;
    m_patience.reset();
    m_retry.reset();
    m_session.clear();
    m_isClosing = false;
    if (m_state == Session::creating || m_state == Session::binding)
        ++m_failures;
    else if (m_portal != Portal::present)
        ++m_falls;
    if (isGivenUp()) {
        setState(Portal::absent, Session::none);
        return;
    }
    setState(Portal::unknown, Session::none);
    // It comes back with the next question to it, if nobody starts it before.
    m_retry = m_services.mainQueue.after(retrySeconds(), whileCurrent([this] { begin(); }));
}

double PortalShortcuts::retrySeconds() const {
    return firstRetrySeconds * (1 << (2 * std::max({0, m_failures - 1, m_falls - 1})));
}

bool PortalShortcuts::canMonitor() const {
    return m_portal != Portal::absent && m_state != Session::refused;
}

bool PortalShortcuts::addMonitor(Token token, KeyMonitors::GlobalHandler handler) {
    if (!canMonitor())
        return false;
    m_handlers.emplace(token, std::move(handler));
    synchronizeLater();
    return true;
}

void PortalShortcuts::removeMonitor(Token token) {
    if (m_handlers.erase(token) > 0)
        synchronizeLater();
}

void PortalShortcuts::synchronizeLater() {
    // Monitors are removed and added again whenever anything changes: only what is left in the end counts.
    if (std::exchange(m_synchronizes, true))
        return;
    m_services.mainQueue.async([weak = std::weak_ptr(m_self)] {
        if (const auto self = weak.lock()) {
            (*self)->m_synchronizes = false;
            (*self)->synchronize();
        }
    });
}

std::vector<ShortcutsPortal::Wish> PortalShortcuts::wishes() const {
    std::vector<ShortcutsPortal::Wish> all;
    for (const GlobalShortcut& shortcut : m_services.wanted())
        all.push_back(
            {shortcut.id, shortcut.description,
             portalTrigger(shortcut.keyCode, shortcut.modifiers, m_services.layout, m_services.shiftStyle)});
    return all;
}

void PortalShortcuts::synchronize() {
    if (m_portal != Portal::present || m_isClosing)
        return;
    const auto wanted = m_handlers.empty() ? std::vector<ShortcutsPortal::Wish>() : wishes();
    const bool isUnderWay = m_state != Session::none || m_retry;
    if (isUnderWay ? wanted == m_asked : wanted.empty())
        return;
    if (wanted != m_asked)
        m_failures = 0;
    m_asked = wanted;
    drop();
}

void PortalShortcuts::drop() {
    ++m_generation;
    m_patience.reset();
    m_retry.reset();
    setState(m_portal, Session::none);
    const QString session = std::exchange(m_session, {});
    if (session.isEmpty()) {
        create();
        return;
    }
    // The next one goes by the same name: the portal has to be rid of this one first.
    m_isClosing = true;
    m_services.portal.close(session, whileCurrent([this] {
                                m_isClosing = false;
                                create();
                                synchronize();
                            }));
}

void PortalShortcuts::create() {
    if (m_asked.empty())
        return;
    setState(m_portal, Session::creating);
    m_patience = m_services.mainQueue.after(sessionSeconds, whileCurrent([this] {
                                                ++m_generation;
                                                failed();
                                            }));
    const auto take = whileCurrent([this](const QString& session) {
        m_patience.reset();
        m_session = session;
        bind();
    });
    const auto fail = whileCurrent([this] { failed(); });
    m_services.portal.createSession(
        m_asked, [take, fail, generation = m_generation, weak = std::weak_ptr(m_self),
                  &portal = m_services.portal](const std::optional<QString>& session) {
            if (!session) {
                fail();
                return;
            }
            take(*session);
            // One that comes when nobody waits for it any more would stay open for nothing.
            const auto self = weak.lock();
            if (!self || ((*self)->m_generation != generation && (*self)->m_session != *session))
                portal.close(*session, [] {});
        });
}

void PortalShortcuts::bind() {
    setState(m_portal, Session::binding);
    // The user may be asked: that takes as long as it takes.
    m_services.portal.bind(m_session, m_asked,
                           whileCurrent([this](ShortcutsPortal::Outcome outcome,
                                               const std::vector<ShortcutsPortal::Binding>& bindings) {
                               switch (outcome) {
                               case ShortcutsPortal::Outcome::failed:
                                   failed();
                                   return;
                               case ShortcutsPortal::Outcome::refused:
                                   setState(m_portal, Session::refused);
                                   return;
                               case ShortcutsPortal::Outcome::done:
                                   break;
                               }
                               m_failures = 0;
                               setState(m_portal, Session::bound);
                               if (!bindings.empty()) {
                                   takeBindings(bindings);
                                   return;
                               }
                               // Some portals answer with nothing although they have bound everything.
                               m_services.portal.list(
                                   m_session,
                                   whileCurrent([this](const std::vector<ShortcutsPortal::Binding>& listed) {
                                       takeBindings(listed);
                                   }));
                           }));
}

void PortalShortcuts::takeBindings(const std::vector<ShortcutsPortal::Binding>& bindings) {
    m_bindings.clear();
    for (const auto& binding : bindings)
        m_bindings[binding.id] = binding.keys;
    m_services.notifications.post(notifications::shortcutBindingsChanged);
}

void PortalShortcuts::failed() {
    m_patience.reset();
    if (const QString session = std::exchange(m_session, {}); !session.isEmpty())
        m_services.portal.close(session, [] {});
    if (++m_failures >= mostFailures) {
        // It is there and does not do it: for the user that is the same as none.
        setState(Portal::absent, Session::none);
        return;
    }
    setState(m_portal, Session::none);
    m_retry = m_services.mainQueue.after(retrySeconds(), whileCurrent([this] {
                                             m_retry.reset();
                                             create();
                                         }));
}

void PortalShortcuts::activate(const QString& session, const QString& id, const QString& token) {
    if (session != m_session || m_session.isEmpty() || !m_services.gate.isOpen())
        return;
    const auto all = m_services.wanted();
    const auto shortcut = std::ranges::find(all, id, &GlobalShortcut::id);
    if (shortcut == all.end())
        return;
    if (!token.isEmpty())
        m_services.tokenGiven(token);
    const KeyEvent key{shortcut->keyCode, shortcut->modifiers & KeyModifier::shortcutMask};
    // A copy: a handler may add and remove monitors; one that was removed meanwhile is not called.
    const auto weak = std::weak_ptr(m_self);
    for (const auto& [monitor, handler] : std::map(m_handlers)) {
        if (weak.expired())
            return;
        if (m_handlers.contains(monitor))
            handler(key);
    }
}

GlobalShortcuts::Route PortalShortcuts::route() const {
    if (m_portal == Portal::absent)
        return Route::byHand;
    return m_state == Session::refused ? Route::refused : Route::desktop;
}

std::optional<QString> PortalShortcuts::differingKeys(const QString& id) const {
    const auto bound = m_bindings.find(id);
    const auto asked = std::ranges::find(m_asked, id, &ShortcutsPortal::Wish::id);
    if (bound == m_bindings.end() || asked == m_asked.end() || isSameShortcut(asked->trigger, bound->second))
        return std::nullopt;
    return bound->second;
}

bool PortalShortcuts::canConfigure() const {
    return m_state == Session::bound && m_version >= configuringVersion;
}

void PortalShortcuts::configure() {
    if (canConfigure())
        m_services.portal.configure(m_session);
}

void PortalShortcuts::askAgain() {
    if (m_state == Session::refused)
        drop();
}

} // namespace framora
