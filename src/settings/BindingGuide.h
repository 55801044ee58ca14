#pragma once

#include "platform/HandBinding.h"
#include "settings/HotkeyConfiguration.h"

#include <QString>
#include <vector>

namespace framora {

class KeyboardLayout;

/// What users put into their desktop's keyboard settings to have a shortcut.
struct BindingGuide {
    struct Line {
        QString label; ///< What the desktop calls it; empty where there is one line alone.
        QString text;
        bool isCopied = true; ///< Whether it is worth copying.
    };
    QString explanation;
    std::vector<Line> lines;
};

/// `name` is the localised name of what the shortcut does, `command` its id on the command line.
BindingGuide bindingGuide(const HandBinding& desktop, const QString& name, const QString& command,
                          const HotkeyConfiguration& shortcut, const KeyboardLayout& layout);

/// A shortcut in words: "Super+Alt+Shift+4". Empty without a key.
QString shortcutInWords(const HotkeyConfiguration& shortcut, const KeyboardLayout& layout);

} // namespace framora
