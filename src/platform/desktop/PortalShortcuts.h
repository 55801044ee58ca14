#pragma once

#include "platform/GlobalShortcuts.h"
#include "platform/KeyMonitors.h"
#include "platform/KeySymbols.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "platform/desktop/ShortcutsPortal.h"

#include <map>
#include <memory>

namespace framora {

class CommandGate;
class KeyboardLayout;

/// Global shortcuts by way of the desktop's portal: the global half of the key monitors where a program may
/// not watch the keys. The portal calls out a shortcut by its id; the monitors get the key that is stored for
/// it, whichever key the desktop has put it on.
///
/// A session with the portal lasts as long as anybody monitors. It is made anew when the portal is, and when
/// other keys are stored.
class PortalShortcuts final : public GlobalShortcuts {
public:
    using Token = KeyMonitors::Token;

    /// All of it outlives this. `wanted` tells the stored shortcuts each time it is called; `tokenGiven` is
    /// told of the token by which windows may come forward after a shortcut.
    struct Services {
        ShortcutsPortal& portal;
        MainQueue& mainQueue;
        NotificationCenter& notifications;
        CommandGate& gate;
        const KeyboardLayout& layout;
        std::function<std::vector<GlobalShortcut>()> wanted;
        std::function<void(const QString&)> tokenGiven;
        ShiftStyle shiftStyle = ShiftStyle::besideTheKey;
    };

    explicit PortalShortcuts(Services services);
    ~PortalShortcuts() override;
    PortalShortcuts(const PortalShortcuts&) = delete;
    PortalShortcuts& operator=(const PortalShortcuts&) = delete;

    /// False when it is known that there is no such portal, or that it refuses; true as long as it may be.
    bool canMonitor() const;
    /// False where canMonitor() is false. `token` is the caller's.
    bool addMonitor(Token token, KeyMonitors::GlobalHandler handler);
    void removeMonitor(Token token);

    Route route() const override;
    std::optional<QString> differingKeys(const QString& id) const override;
    bool canConfigure() const override;
    void configure() override;
    void askAgain() override;

private:
    enum class Portal { unknown, present, absent };
    enum class Session { none, creating, binding, bound, refused };

    void begin();
    void appeared();
    void vanished();
    bool isGivenUp() const;
    double retrySeconds() const;
    void synchronizeLater();
    void synchronize();
    void create();
    void bind();
    void takeBindings(const std::vector<ShortcutsPortal::Binding>& bindings);
    void failed();
    void drop();
    void setState(Portal portal, Session session);
    void activate(const QString& session, const QString& id, const QString& token);
    std::vector<ShortcutsPortal::Wish> wishes() const;
    /// Runs `work` unless this is gone or has begun something else since.
    template <class Work> auto whileCurrent(Work work);

    Services m_services;
    Portal m_portal = Portal::unknown;
    Session m_state = Session::none;
    unsigned m_version = 0;
    QString m_session;
    std::vector<ShortcutsPortal::Wish> m_asked;
    std::map<QString, QString> m_bindings; ///< Keys by id, once they are known.
    std::map<Token, KeyMonitors::GlobalHandler> m_handlers;
    unsigned m_generation = 0; ///< Tells late answers from those that are waited for.
    int m_failures = 0;        ///< To give a session, in a row.
    int m_falls = 0;           ///< Before a version was told, in a row.
    bool m_synchronizes = false;
    bool m_isClosing = false;
    std::unique_ptr<WorkItem> m_patience;
    std::unique_ptr<WorkItem> m_retry;
    std::shared_ptr<PortalShortcuts*> m_self;
};

} // namespace framora
