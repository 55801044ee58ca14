#include "editor/views/EditorViews.h"

#include "controls/Controls.h"

#include <QQmlEngine>

// Made by the module's build; without a plugin nobody else refers to them.
void qml_register_types_Framora_Editor();

static void initializeResources() {
    // Must stand outside of any namespace.
    Q_INIT_RESOURCE(qmake_Framora_Editor);
}

namespace framora {

void registerEditorViews(QQmlEngine& engine) {
    registerControls(engine);
    static const bool registered = [] {
        initializeResources();
        qml_register_types_Framora_Editor();
        return true;
    }();
    Q_UNUSED(registered)
}

} // namespace framora
