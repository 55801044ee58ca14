#include "editor/window/EditorToolbar.h"

#include "platform/Notifications.h"

#include <QStringList>
#include <array>

namespace framora::EditorToolbar {
namespace {

constexpr std::array toolbarItems{
    EditorToolbarItem{"CopyItem", "Copy to Clipboard", "Copy to Clipboard", "Copy screenshot to clipboard",
                      "doc.on.clipboard", notifications::editorToolbarCopy},
    EditorToolbarItem{"SaveItem", "Save to File", "Save to File", "Save screenshot to file",
                      "square.and.arrow.down", notifications::editorToolbarSave},
    EditorToolbarItem{"ResetItem", "Reset", "Reset Position", "Reset position and zoom",
                      "arrow.counterclockwise", notifications::editorToolbarReset},
    EditorToolbarItem{"ZoomFitItem", "Zoom to Fit", "Zoom to Fit", "Fit screenshot in view",
                      "arrow.up.left.and.arrow.down.right", notifications::editorToolbarZoomFit},
    EditorToolbarItem{"ZoomActualItem", "Actual Size", "Actual Size", "View at actual size",
                      "1.magnifyingglass", notifications::editorToolbarZoomActual},
};

} // namespace

std::span<const EditorToolbarItem> items() {
    return toolbarItems;
}

const EditorToolbarItem* item(const QString& identifier) {
    for (const EditorToolbarItem& candidate : toolbarItems)
        if (identifier == QLatin1String(candidate.identifier))
            return &candidate;
    return nullptr;
}

QStringList defaultIdentifiers() {
    return {QString::fromLatin1(flexibleSpace), QStringLiteral("ZoomFitItem"),
            QStringLiteral("ZoomActualItem"),   QString::fromLatin1(space),
            QStringLiteral("ResetItem"),        QString::fromLatin1(space),
            QStringLiteral("SaveItem"),         QStringLiteral("CopyItem")};
}

QStringList allowedIdentifiers() {
    QStringList identifiers;
    for (const EditorToolbarItem& each : toolbarItems)
        identifiers.append(QString::fromLatin1(each.identifier));
    return identifiers << QString::fromLatin1(flexibleSpace) << QString::fromLatin1(space);
}

QVariantList defaultItems() {
    QVariantList list;
    for (const QString& identifier : defaultIdentifiers()) {
        QVariantMap map{{QStringLiteral("identifier"), identifier}};
        if (const EditorToolbarItem* found = item(identifier)) {
            map.insert(QStringLiteral("label"), QString::fromLatin1(found->label));
            map.insert(QStringLiteral("toolTip"), QString::fromLatin1(found->toolTip));
            map.insert(QStringLiteral("symbol"), QString::fromLatin1(found->symbol));
        }
        list.append(map);
    }
    return list;
}

} // namespace framora::EditorToolbar
