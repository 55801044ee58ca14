#include "controls/Controls.h"

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

} // namespace framora
