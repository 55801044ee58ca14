#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace framora {

/// The names by which the desktop knows the two captures, for ever the same.
namespace shortcutId {
inline constexpr char captureArea[] = "capture-area";
inline constexpr char captureWindow[] = "capture-window";
} // namespace shortcutId

/// One shortcut as the program wants it.
struct GlobalShortcut {
    QString id;
    QString description;         ///< Localised: what the desktop shows beside the keys.
    std::uint16_t keyCode = 0;   ///< Virtual key code.
    std::uint64_t modifiers = 0; ///< KeyModifier bits.

    friend bool operator==(const GlobalShortcut&, const GlobalShortcut&) = default;
};

/// How shortcuts that work whichever program is in front come about in this session.
/// notifications::shortcutBindingsChanged is posted when any of it changes.
class GlobalShortcuts {
public:
    enum class Route {
        watching, ///< The program sees the keys itself: what is stored is what works.
        desktop,  ///< The desktop gives them to the program, and has the last word on the keys.
        refused,  ///< The desktop could, but it or its user said no.
        byHand    ///< The user binds the program's commands in the desktop's own settings.
    };

    virtual ~GlobalShortcuts() = default;
    virtual Route route() const = 0;
    /// The keys that the desktop really gave, in its own words and empty for none; nothing while they are not
    /// known, and where they are what was asked for.
    virtual std::optional<QString> differingKeys(const QString& id) const = 0;
    /// Whether the desktop has a page for these shortcuts that it can be asked to open.
    virtual bool canConfigure() const = 0;
    virtual void configure() = 0;
    /// Asks the desktop once more after it has refused.
    virtual void askAgain() = 0;
};

/// Where the program sees every key itself, or nobody can help it.
class WatchedShortcuts final : public GlobalShortcuts {
public:
    explicit WatchedShortcuts(bool canWatch) : m_canWatch(canWatch) {}
    Route route() const override { return m_canWatch ? Route::watching : Route::byHand; }
    std::optional<QString> differingKeys(const QString&) const override { return std::nullopt; }
    bool canConfigure() const override { return false; }
    void configure() override {}
    void askAgain() override {}

private:
    bool m_canWatch;
};

} // namespace framora
