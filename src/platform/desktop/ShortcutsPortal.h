#pragma once

#include "platform/GlobalShortcuts.h"

#include <functional>
#include <optional>
#include <vector>

namespace framora {

/// The desktop portal's global shortcuts, call by call. Every answer comes on the main thread, in a later
/// turn of the event loop, and not at all once this is gone.
class ShortcutsPortal {
public:
    /// A shortcut as it is asked for.
    struct Wish {
        QString id;
        QString description;
        QString trigger; ///< In the portals' syntax; empty to leave the keys to the user.

        friend bool operator==(const Wish&, const Wish&) = default;
    };
    /// A shortcut as the desktop has it.
    struct Binding {
        QString id;
        QString keys; ///< In the desktop's words; empty while it has none.
    };
    enum class Outcome { done, refused, failed };

    /// What the portal tells on its own.
    struct Listener {
        /// A portal came, and whatever was agreed with an earlier one is void.
        std::function<void()> appeared;
        std::function<void()> vanished;
        std::function<void(const QString& session)> closed;
        std::function<void(const QString& session, const QString& id, const QString& activationToken)>
            activated;
        std::function<void(const QString& session, const std::vector<Binding>&)> changed;
    };

    virtual ~ShortcutsPortal() = default;
    virtual void listen(Listener listener) = 0;
    /// Says who the program is, where the portal has an ear for it, then asks for the interface's version:
    /// nothing where there is no portal or it has no such interface.
    virtual void begin(std::function<void(std::optional<unsigned> version)> answer) = 0;
    /// Nothing when the portal does not give one.
    virtual void createSession(const std::vector<Wish>& wishes,
                               std::function<void(std::optional<QString> session)> answer) = 0;
    /// The desktop may ask the user first.
    virtual void bind(const QString& session, const std::vector<Wish>& wishes,
                      std::function<void(Outcome, std::vector<Binding>)> answer) = 0;
    virtual void list(const QString& session, std::function<void(std::vector<Binding>)> answer) = 0;
    virtual void close(const QString& session, std::function<void()> done) = 0;
    virtual void configure(const QString& session) = 0;
};

} // namespace framora
