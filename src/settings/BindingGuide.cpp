#include "settings/BindingGuide.h"

#include "platform/KeyMonitors.h"
#include "platform/KeySymbols.h"
#include "platform/Localized.h"
#include "settings/KeyNames.h"

#include <QStringList>
#include <algorithm>

namespace framora {
namespace {

bool hasKey(const HotkeyConfiguration& shortcut) {
    return shortcut.keyCode != 0 || (shortcut.modifiers & KeyModifier::shortcutMask) != 0;
}

/// One word for a shell and for those that read command lines like one.
QString quoted(const QString& path) {
    const bool isPlain = std::ranges::all_of(path, [](QChar letter) {
        return letter.isLetterOrNumber() || QLatin1String("/._-+").contains(letter);
    });
    if (isPlain)
        return path;
    return u'\'' + QString(path).replace(u'\'', QLatin1String("'\\''")) + u'\'';
}

QStringList modifierWords(std::uint64_t modifiers, const char* command, const char* option) {
    QStringList words;
    if (modifiers & KeyModifier::command)
        words << QLatin1String(command);
    if (modifiers & KeyModifier::control)
        words << QStringLiteral("Ctrl");
    if (modifiers & KeyModifier::option)
        words << QLatin1String(option);
    if (modifiers & KeyModifier::shift)
        words << QStringLiteral("Shift");
    return words;
}

/// As Sway's configuration names keys; empty for a key that it has no name for.
QString swayKeys(const HotkeyConfiguration& shortcut, const KeyboardLayout& layout) {
    const QString symbol = keySymbol(shortcut.keyCode, layout);
    if (symbol.isEmpty() || !hasKey(shortcut))
        return {};
    QStringList words = modifierWords(shortcut.modifiers, "Mod4", "Mod1");
    words << symbol;
    return words.join(u'+');
}

} // namespace

QString shortcutInWords(const HotkeyConfiguration& shortcut, const KeyboardLayout& layout) {
    if (!hasKey(shortcut))
        return {};
    QStringList words = modifierWords(shortcut.modifiers, "Super", "Alt");
    words << keyName(shortcut.keyCode, layout);
    return words.join(u'+');
}

BindingGuide bindingGuide(const HandBinding& desktop, const QString& name, const QString& command,
                          const HotkeyConfiguration& shortcut, const KeyboardLayout& layout) {
    const QString line = quoted(desktop.program) + QLatin1String(" --") + command;
    switch (desktop.kind) {
    case HandBinding::Kind::sway:
        if (const QString keys = swayKeys(shortcut, layout); !keys.isEmpty())
            return {localized(QStringLiteral("shortcut.bind.sway")),
                    {{{}, QStringLiteral("bindsym %1 exec %2").arg(keys, line)}}};
        break;
    case HandBinding::Kind::gnome: {
        BindingGuide guide{localized(QStringLiteral("shortcut.bind.gnome")),
                           {{localized(QStringLiteral("shortcut.bind.name")), name},
                            {localized(QStringLiteral("shortcut.bind.program")), line}}};
        if (const QString keys = shortcutInWords(shortcut, layout); !keys.isEmpty())
            guide.lines.push_back({localized(QStringLiteral("shortcut.bind.keys")), keys, false});
        return guide;
    }
    case HandBinding::Kind::command:
        break;
    }
    return {localized(QStringLiteral("shortcut.bind.command")), {{{}, line}}};
}

} // namespace framora
