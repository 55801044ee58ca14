#include "controls/Controls.h"

#include "platform/Appearance.h"

#include <QQmlEngine>

// Made by the module's build; without a plugin nobody else refers to them.
void qml_register_types_Framora_Controls();

static void initializeResources() {
    // Must stand outside of any namespace.
    Q_INIT_RESOURCE(qmake_Framora_Controls);
}

namespace framora {

void registerControls(QQmlEngine& engine) {
    static const bool registered = [] {
        initializeResources();
        qml_register_types_Framora_Controls();
        return true;
    }();
    Q_UNUSED(registered)
    engine.addImportPath(QStringLiteral("qrc:/framora/qml"));
}

QVariantMap lookOf(const Appearance& appearance) {
    return {{QStringLiteral("dark"), appearance.isDark()},
            {QStringLiteral("accent"), appearance.accentColor()},
            {QStringLiteral("reducedMotion"), appearance.prefersReducedMotion()}};
}

void showLook(QObject* root, const Appearance& appearance) {
    if (!root)
        return;
    const QVariantMap look = lookOf(appearance);
    for (auto entry = look.begin(); entry != look.end(); ++entry)
        root->setProperty(qPrintable(entry.key()), entry.value());
}

} // namespace framora
