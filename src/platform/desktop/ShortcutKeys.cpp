#include "platform/desktop/ShortcutKeys.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace framora {
namespace {

struct Synonym {
    const char* word;
    const char* meaning;
};

constexpr std::array synonyms{
    Synonym{"meta", "logo"},      Synonym{"super", "logo"},    Synonym{"win", "logo"},
    Synonym{"control", "ctrl"},   Synonym{"primary", "ctrl"},  Synonym{"mod1", "alt"},
    Synonym{"exclam", "!"},       Synonym{"quotedbl", "\""},   Synonym{"numbersign", "#"},
    Synonym{"dollar", "$"},       Synonym{"percent", "%"},     Synonym{"ampersand", "&"},
    Synonym{"apostrophe", "'"},   Synonym{"parenleft", "("},   Synonym{"parenright", ")"},
    Synonym{"asterisk", "*"},     Synonym{"plus", "++"},       Synonym{"comma", ","},
    Synonym{"minus", "-"},        Synonym{"period", "."},      Synonym{"slash", "/"},
    Synonym{"colon", ":"},        Synonym{"semicolon", ";"},   Synonym{"less", "<"},
    Synonym{"equal", "="},        Synonym{"greater", ">"},     Synonym{"question", "?"},
    Synonym{"at", "@"},           Synonym{"bracketleft", "["}, Synonym{"backslash", "\\"},
    Synonym{"bracketright", "]"}, Synonym{"asciicircum", "^"}, Synonym{"underscore", "_"},
    Synonym{"grave", "`"},        Synonym{"braceleft", "{"},   Synonym{"bar", "|"},
    Synonym{"braceright", "}"},   Synonym{"asciitilde", "~"},  Synonym{"prior", "pageup"},
    Synonym{"pgup", "pageup"},    Synonym{"next", "pagedown"}, Synonym{"pgdown", "pagedown"},
    Synonym{"del", "delete"},     Synonym{"ins", "insert"},    Synonym{"esc", "escape"},
    Synonym{"enter", "return"},
};

/// The keys' words, alike for everyone who writes them, in one order.
QStringList words(QString text) {
    text = text.trimmed().toLower();
    // "<super><alt>4" as "super+alt+4".
    if (text.startsWith(u'<') && text.contains(u'>'))
        text.remove(u'<').replace(u'>', u'+');
    if (text.endsWith(QLatin1String("++")))
        text = text.chopped(1) + QLatin1String("plus");
    QStringList all;
    for (QString word : text.split(u'+', Qt::SkipEmptyParts)) {
        word.remove(u' ');
        const auto synonym = std::ranges::find_if(
            synonyms, [&](const Synonym& candidate) { return word == QLatin1String(candidate.word); });
        all << (synonym == synonyms.end() ? word : QString::fromLatin1(synonym->meaning));
    }
    all.sort();
    return all;
}

} // namespace

bool isSameShortcut(const QString& trigger, const QString& desktopText) {
    return words(trigger) == words(desktopText);
}

} // namespace framora
