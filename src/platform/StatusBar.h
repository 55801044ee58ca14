#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace framora {

/// The program's item in the desktop's tray.
class StatusItem {
public:
    struct MenuEntry {
        QString title;
        std::function<void()> action;
        QString keyEquivalent; ///< A single character, pressed with Super; empty for none.
    };

    virtual ~StatusItem() = default;
    /// Shows a symbol, tinted like the tray's other icons. False when there is no such symbol; the item then
    /// shows nothing.
    virtual bool setSymbol(const QString& symbol, const QString& accessibilityDescription,
                           double pointSize) = 0;
    virtual void setMenu(std::vector<MenuEntry> entries) = 0;
};

class StatusBar {
public:
    virtual ~StatusBar() = default;
    /// A square item, or nothing where the desktop can never show one. An item that is made before the tray
    /// host runs appears with it.
    virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
    /// Whether a tray is there now that shows items.
    virtual bool hasHost() const = 0;
};

} // namespace framora
