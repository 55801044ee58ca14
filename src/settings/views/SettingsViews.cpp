#include "settings/views/SettingsViews.h"

#include "controls/Controls.h"

#include <QQmlEngine>

// Made by the module's build; without a plugin nobody else refers to them.
void qml_register_types_Framora_Settings();

static void initializeResources() {
    // Must stand outside of any namespace.
    Q_INIT_RESOURCE(qmake_Framora_Settings);
}

namespace framora {

void registerSettingsViews(QQmlEngine& engine) {
    static const bool registered = [] {
        initializeResources();
        qml_register_types_Framora_Settings();
        return true;
    }();
    Q_UNUSED(registered)
    registerControls(engine);
}

} // namespace framora
