#pragma once

#include <QVariantList>
#include <span>

namespace framora {

/// One item of the editor's toolbar.
struct EditorToolbarItem {
    const char* identifier;
    const char* label;
    const char* paletteLabel;
    const char* toolTip;
    const char* symbol;
    const char* notification; ///< What its action posts.
};

namespace EditorToolbar {

inline constexpr char flexibleSpace[] = "flexible";
inline constexpr char space[] = "";

/// Every item, in the order in which they are made.
std::span<const EditorToolbarItem> items();
/// The item of that identifier; null when there is none.
const EditorToolbarItem* item(const QString& identifier);
/// Identifiers from left to right, spaces among them.
QStringList defaultIdentifiers();
QStringList allowedIdentifiers();
/// The default items for the view: maps with "identifier", "label", "toolTip" and "symbol".
QVariantList defaultItems();

} // namespace EditorToolbar
} // namespace framora
