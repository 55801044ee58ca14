#pragma once

#include <QQuickItem>
#include <QStringList>

namespace framora {

/// The first of that object name at or below `item`, in the tree's order; null when there is none. Children
/// of delegates are items' children only.
inline QQuickItem* itemNamed(QQuickItem* item, const QString& name) {
    if (item->objectName() == name)
        return item;
    for (QQuickItem* child : item->childItems())
        if (QQuickItem* found = itemNamed(child, name))
            return found;
    return nullptr;
}

/// What `property` of the items that inherit `type` holds, for those that show below `item`, in the tree's
/// order.
inline QStringList shownBelow(const QQuickItem& item, const char* type, const char* property) {
    QStringList result;
    for (const QQuickItem* child : item.childItems()) {
        if (!child->isVisible())
            continue;
        if (child->inherits(type) && !child->property(property).toString().isEmpty())
            result << child->property(property).toString();
        result << shownBelow(*child, type, property);
    }
    return result;
}

inline QStringList shownTexts(const QQuickItem& item) {
    return shownBelow(item, "QQuickText", "text");
}

inline QStringList shownSymbols(const QQuickItem& item) {
    return shownBelow(item, "framora::SymbolIcon", "symbol");
}

} // namespace framora
