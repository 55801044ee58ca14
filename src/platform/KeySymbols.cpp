#include "platform/KeySymbols.h"

#include "platform/KeyMonitors.h"
#include "platform/KeyboardLayout.h"

#include <algorithm>
#include <array>

namespace framora {
namespace {

struct KeySymbol {
    std::uint16_t virtualCode;
    const char* name;
};

constexpr std::array symbols{
    KeySymbol{0, "a"},
    KeySymbol{1, "s"},
    KeySymbol{2, "d"},
    KeySymbol{3, "f"},
    KeySymbol{4, "h"},
    KeySymbol{5, "g"},
    KeySymbol{6, "z"},
    KeySymbol{7, "x"},
    KeySymbol{8, "c"},
    KeySymbol{9, "v"},
    KeySymbol{11, "b"},
    KeySymbol{12, "q"},
    KeySymbol{13, "w"},
    KeySymbol{14, "e"},
    KeySymbol{15, "r"},
    KeySymbol{16, "y"},
    KeySymbol{17, "t"},
    KeySymbol{31, "o"},
    KeySymbol{32, "u"},
    KeySymbol{34, "i"},
    KeySymbol{35, "p"},
    KeySymbol{37, "l"},
    KeySymbol{38, "j"},
    KeySymbol{40, "k"},
    KeySymbol{45, "n"},
    KeySymbol{46, "m"},

    KeySymbol{18, "1"},
    KeySymbol{19, "2"},
    KeySymbol{20, "3"},
    KeySymbol{21, "4"},
    KeySymbol{22, "6"},
    KeySymbol{23, "5"},
    KeySymbol{25, "9"},
    KeySymbol{26, "7"},
    KeySymbol{28, "8"},
    KeySymbol{29, "0"},

    KeySymbol{10, "less"},
    KeySymbol{24, "equal"},
    KeySymbol{27, "minus"},
    KeySymbol{30, "bracketright"},
    KeySymbol{33, "bracketleft"},
    KeySymbol{39, "apostrophe"},
    KeySymbol{41, "semicolon"},
    KeySymbol{42, "backslash"},
    KeySymbol{43, "comma"},
    KeySymbol{44, "slash"},
    KeySymbol{47, "period"},
    KeySymbol{50, "grave"},

    KeySymbol{93, "yen"},
    KeySymbol{94, "backslash"},
    KeySymbol{102, "Hangul_Hanja"},
    KeySymbol{104, "Hangul"},

    KeySymbol{36, "Return"},
    KeySymbol{48, "Tab"},
    KeySymbol{49, "space"},
    KeySymbol{51, "BackSpace"},
    KeySymbol{53, "Escape"},
    KeySymbol{117, "Delete"},
    KeySymbol{114, "Insert"},
    KeySymbol{110, "Menu"},

    KeySymbol{65, "KP_Decimal"},
    KeySymbol{67, "KP_Multiply"},
    KeySymbol{69, "KP_Add"},
    KeySymbol{71, "Num_Lock"},
    KeySymbol{75, "KP_Divide"},
    KeySymbol{76, "KP_Enter"},
    KeySymbol{78, "KP_Subtract"},
    KeySymbol{81, "KP_Equal"},
    KeySymbol{82, "KP_0"},
    KeySymbol{83, "KP_1"},
    KeySymbol{84, "KP_2"},
    KeySymbol{85, "KP_3"},
    KeySymbol{86, "KP_4"},
    KeySymbol{87, "KP_5"},
    KeySymbol{88, "KP_6"},
    KeySymbol{89, "KP_7"},
    KeySymbol{91, "KP_8"},
    KeySymbol{92, "KP_9"},
    KeySymbol{95, "KP_Separator"},

    KeySymbol{122, "F1"},
    KeySymbol{120, "F2"},
    KeySymbol{99, "F3"},
    KeySymbol{118, "F4"},
    KeySymbol{96, "F5"},
    KeySymbol{97, "F6"},
    KeySymbol{98, "F7"},
    KeySymbol{100, "F8"},
    KeySymbol{101, "F9"},
    KeySymbol{109, "F10"},
    KeySymbol{103, "F11"},
    KeySymbol{111, "F12"},
    // Keymaps put other meanings on the function keys behind F12.
    KeySymbol{105, "XF86Tools"},
    KeySymbol{107, "XF86Launch5"},
    KeySymbol{113, "XF86Launch6"},
    KeySymbol{106, "XF86Launch7"},
    KeySymbol{64, "XF86Launch8"},
    KeySymbol{79, "F18"},
    KeySymbol{80, "F19"},
    KeySymbol{90, "F20"},

    KeySymbol{115, "Home"},
    KeySymbol{116, "Prior"},
    KeySymbol{119, "End"},
    KeySymbol{121, "Next"},
    KeySymbol{123, "Left"},
    KeySymbol{124, "Right"},
    KeySymbol{125, "Down"},
    KeySymbol{126, "Up"},

    KeySymbol{72, "XF86AudioRaiseVolume"},
    KeySymbol{73, "XF86AudioLowerVolume"},
    KeySymbol{74, "XF86AudioMute"},

    KeySymbol{0x1000 + 99, "Print"},
    KeySymbol{0x1000 + 70, "Scroll_Lock"},
    KeySymbol{0x1000 + 119, "Pause"},
};

/// Signs with Shift on a US keyboard.
constexpr std::array shiftedSymbols{
    KeySymbol{18, "exclam"},     KeySymbol{19, "at"},         KeySymbol{20, "numbersign"},
    KeySymbol{21, "dollar"},     KeySymbol{23, "percent"},    KeySymbol{22, "asciicircum"},
    KeySymbol{26, "ampersand"},  KeySymbol{28, "asterisk"},   KeySymbol{25, "parenleft"},
    KeySymbol{29, "parenright"}, KeySymbol{27, "underscore"}, KeySymbol{24, "plus"},
    KeySymbol{33, "braceleft"},  KeySymbol{30, "braceright"}, KeySymbol{42, "bar"},
    KeySymbol{41, "colon"},      KeySymbol{39, "quotedbl"},   KeySymbol{43, "less"},
    KeySymbol{47, "greater"},    KeySymbol{44, "question"},   KeySymbol{50, "asciitilde"},
    KeySymbol{10, "greater"},
};

struct SignName {
    char16_t sign;
    const char* name;
};

constexpr std::array signNames{
    SignName{u'!', "exclam"},       SignName{u'"', "quotedbl"},    SignName{u'#', "numbersign"},
    SignName{u'$', "dollar"},       SignName{u'%', "percent"},     SignName{u'&', "ampersand"},
    SignName{u'\'', "apostrophe"},  SignName{u'(', "parenleft"},   SignName{u')', "parenright"},
    SignName{u'*', "asterisk"},     SignName{u'+', "plus"},        SignName{u',', "comma"},
    SignName{u'-', "minus"},        SignName{u'.', "period"},      SignName{u'/', "slash"},
    SignName{u':', "colon"},        SignName{u';', "semicolon"},   SignName{u'<', "less"},
    SignName{u'=', "equal"},        SignName{u'>', "greater"},     SignName{u'?', "question"},
    SignName{u'@', "at"},           SignName{u'[', "bracketleft"}, SignName{u'\\', "backslash"},
    SignName{u']', "bracketright"}, SignName{u'^', "asciicircum"}, SignName{u'_', "underscore"},
    SignName{u'`', "grave"},        SignName{u'{', "braceleft"},   SignName{u'|', "bar"},
    SignName{u'}', "braceright"},   SignName{u'~', "asciitilde"},
};

/// Keys whose place on the keyboard says what they are: the layout has no part in them.
bool isPrintingKey(std::uint16_t virtualCode) {
    const char* name = keySymbol(virtualCode);
    const QLatin1String text(name ? name : "");
    if (text.size() == 1 || text == QLatin1String("yen"))
        return true;
    return std::ranges::any_of(signNames,
                               [&](const SignName& sign) { return text == QLatin1String(sign.name); });
}

/// Empty for what is not a sign that Latin keyboards print.
QString latinSymbol(QChar letter) {
    const char16_t code = letter.toLower().unicode();
    if ((code >= u'a' && code <= u'z') || (code >= u'0' && code <= u'9'))
        return QChar(code);
    const auto sign = std::ranges::find(signNames, code, &SignName::sign);
    if (sign != signNames.end())
        return QLatin1String(sign->name);
    constexpr char16_t firstLatin1 = 0xA1;
    constexpr char16_t lastLatin1 = 0xFF;
    if (code < firstLatin1 || code > lastLatin1)
        return {};
    return QStringLiteral("U%1").arg(uint{code}, 4, 16, QLatin1Char('0')).toUpper();
}

/// What the key prints with Shift, where that is a sign of its own; empty for letters and other keys.
QString shiftedSign(std::uint16_t virtualCode, const KeyboardLayout& layout) {
    if (!isPrintingKey(virtualCode))
        return {};
    const QString printed = layout.shiftedTextOfKey(virtualCode);
    if (printed.size() == 1) {
        const bool isCapital = printed.toLower() != printed;
        return isCapital ? QString() : latinSymbol(printed.front());
    }
    const auto found = std::ranges::find(shiftedSymbols, virtualCode, &KeySymbol::virtualCode);
    return found == shiftedSymbols.end() ? QString() : QString::fromLatin1(found->name);
}

} // namespace

const char* keySymbol(std::uint16_t virtualCode) {
    const auto found = std::ranges::find(symbols, virtualCode, &KeySymbol::virtualCode);
    return found == symbols.end() ? nullptr : found->name;
}

QString keySymbol(std::uint16_t virtualCode, const KeyboardLayout& layout) {
    const char* standard = keySymbol(virtualCode);
    if (!standard)
        return {};
    if (isPrintingKey(virtualCode)) {
        const QString printed = layout.textOfKey(virtualCode);
        if (printed.size() == 1) {
            if (const QString symbol = latinSymbol(printed.front()); !symbol.isEmpty())
                return symbol;
        }
    }
    return QLatin1String(standard);
}

QString portalTrigger(std::uint16_t virtualCode, std::uint64_t modifiers, const KeyboardLayout& layout,
                      ShiftStyle style) {
    modifiers &= KeyModifier::shortcutMask;
    // Without modifiers this code stands for no key at all.
    if (virtualCode == 0 && modifiers == 0)
        return {};
    QString symbol = keySymbol(virtualCode, layout);
    if (symbol.isEmpty())
        return {};
    if (style == ShiftStyle::inTheSign && (modifiers & KeyModifier::shift)) {
        if (const QString sign = shiftedSign(virtualCode, layout); !sign.isEmpty()) {
            symbol = sign;
            modifiers &= ~KeyModifier::shift;
        }
    }
    QString trigger;
    if (modifiers & KeyModifier::command)
        trigger += QLatin1String("LOGO+");
    if (modifiers & KeyModifier::option)
        trigger += QLatin1String("ALT+");
    if (modifiers & KeyModifier::control)
        trigger += QLatin1String("CTRL+");
    if (modifiers & KeyModifier::shift)
        trigger += QLatin1String("SHIFT+");
    return trigger + symbol;
}

} // namespace framora
