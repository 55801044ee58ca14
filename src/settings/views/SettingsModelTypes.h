#pragma once

#include "settings/PermissionsMonitor.h"
#include "settings/SettingsForm.h"
#include "settings/ShortcutBinding.h"
#include "settings/ShortcutRecorder.h"

#include <QtQml/qqml.h>

// The settings' types as this module knows them; they themselves know nothing of QML.

struct SettingsFormForeign {
    Q_GADGET
    QML_FOREIGN(framora::SettingsForm)
    QML_NAMED_ELEMENT(SettingsForm)
    QML_UNCREATABLE("Made by the session")
};

struct ShortcutBindingForeign {
    Q_GADGET
    QML_FOREIGN(framora::ShortcutBinding)
    QML_NAMED_ELEMENT(ShortcutBinding)
    QML_UNCREATABLE("Part of the form")
};

struct ShortcutRecorderForeign {
    Q_GADGET
    QML_FOREIGN(framora::ShortcutRecorder)
    QML_NAMED_ELEMENT(ShortcutRecorder)
    QML_UNCREATABLE("Part of the form")
};

struct PermissionsMonitorForeign {
    Q_GADGET
    QML_FOREIGN(framora::PermissionsMonitor)
    QML_NAMED_ELEMENT(PermissionsMonitor)
    QML_UNCREATABLE("Part of the form")
};
