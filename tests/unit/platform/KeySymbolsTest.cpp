#include "platform/KeySymbols.h"

#include "platform/KeyMonitors.h"
#include "platform/KeyboardLayout.h"
#include "platform/VirtualKeyCodes.h"
#include "platform/desktop/ShortcutKeys.h"

#include <gtest/gtest.h>
#include <map>
#include <xkbcommon/xkbcommon.h>

namespace framora {
namespace {

using namespace KeyModifier;

class PrintedKeys final : public KeyboardLayout {
public:
    QString textOfKey(std::uint16_t virtualKey) const override {
        const auto found = texts.find(virtualKey);
        return found == texts.end() ? QString() : found->second;
    }
    QString shiftedTextOfKey(std::uint16_t virtualKey) const override {
        const auto found = shifted.find(virtualKey);
        return found == shifted.end() ? QString() : found->second;
    }
    std::map<std::uint16_t, QString> texts;
    std::map<std::uint16_t, QString> shifted;
};

bool isModifier(std::uint16_t virtualCode) {
    return virtualCode >= 54 && virtualCode <= 63;
}

TEST(KeySymbolsTest, everyKeyOfTheTableHasASymbolThatKeymapsKnowAndModifiersHaveNone) {
    for (const VirtualKey& key : virtualKeys()) {
        const char* symbol = keySymbol(key.virtualCode);
        if (isModifier(key.virtualCode)) {
            EXPECT_EQ(symbol, nullptr) << key.name;
            continue;
        }
        ASSERT_NE(symbol, nullptr) << key.name;
        EXPECT_NE(xkb_keysym_from_name(symbol, XKB_KEYSYM_NO_FLAGS), xkb_keysym_t{XKB_KEY_NoSymbol})
            << key.name << ": " << symbol;
    }
}

TEST(KeySymbolsTest, everyKeyIsWhatAUsKeymapHasInItsPlace) {
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names names{"evdev", "pc105", "us", "", ""};
    xkb_keymap* keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    ASSERT_NE(keymap, nullptr);
    for (const VirtualKey& key : virtualKeys()) {
        const char* symbol = keySymbol(key.virtualCode);
        // The keypad's digits stand on the level of Num Lock.
        if (!symbol || (key.virtualCode >= 65 && key.virtualCode <= 95))
            continue;
        const xkb_keysym_t* printed = nullptr;
        if (xkb_keymap_key_get_syms_by_level(keymap, key.evdev + 8U, 0, 0, &printed) != 1)
            continue; // A key that US keyboards lack.
        char name[64] = "";
        xkb_keysym_get_name(printed[0], name, sizeof name);
        EXPECT_STREQ(symbol, name) << key.name;
    }
    xkb_keymap_unref(keymap);
    xkb_context_unref(context);
}

TEST(KeySymbolsTest, aShortcutIsWrittenWithItsModifiersInFront) {
    const PrintedKeys layout;
    EXPECT_EQ(portalTrigger(21, shift | option, layout), QStringLiteral("ALT+SHIFT+4"));
    EXPECT_EQ(portalTrigger(21, shift | option | command, layout), QStringLiteral("LOGO+ALT+SHIFT+4"));
    EXPECT_EQ(portalTrigger(17, control, layout), QStringLiteral("CTRL+t"));
    EXPECT_EQ(portalTrigger(122, 0, layout), QStringLiteral("F1"));
    EXPECT_EQ(portalTrigger(0x1000 + 99, shift, layout), QStringLiteral("SHIFT+Print"));
}

TEST(KeySymbolsTest, shiftGoesIntoTheSignForDesktopsThatSayItSo) {
    PrintedKeys layout;
    const auto trigger = [&](std::uint16_t key, std::uint64_t modifiers) {
        return portalTrigger(key, modifiers, layout, ShiftStyle::inTheSign);
    };
    EXPECT_EQ(trigger(21, shift | option), QStringLiteral("ALT+dollar"));
    EXPECT_EQ(trigger(21, option), QStringLiteral("ALT+4"));
    EXPECT_EQ(trigger(17, shift | option), QStringLiteral("ALT+SHIFT+t")) << "a letter stays one";
    EXPECT_EQ(trigger(122, shift), QStringLiteral("SHIFT+F1"));
    EXPECT_EQ(trigger(0x1000 + 99, shift), QStringLiteral("SHIFT+Print"));
    layout.texts = {{21, QStringLiteral("'")}, {41, QStringLiteral("m")}};
    layout.shifted = {{21, QStringLiteral("4")}, {41, QStringLiteral("M")}};
    EXPECT_EQ(trigger(21, shift | option), QStringLiteral("ALT+4"));
    EXPECT_EQ(trigger(41, shift | option), QStringLiteral("ALT+SHIFT+m"));
}

TEST(KeySymbolsTest, bitsThatAreNoModifiersOfShortcutsAreLeftOut) {
    const PrintedKeys layout;
    EXPECT_EQ(portalTrigger(17, capsLock | shift | 0x100, layout), QStringLiteral("SHIFT+t"));
}

TEST(KeySymbolsTest, whatCannotBePressedHasNoTrigger) {
    const PrintedKeys layout;
    EXPECT_TRUE(portalTrigger(0, 0, layout).isEmpty());
    EXPECT_TRUE(portalTrigger(55, command, layout).isEmpty());
    EXPECT_TRUE(portalTrigger(0xFFFF, shift, layout).isEmpty());
    EXPECT_EQ(portalTrigger(0, command, layout), QStringLiteral("LOGO+a"));
}

TEST(KeySymbolsTest, aKeyIsNamedByWhatItPrintsInTheLayoutInForce) {
    PrintedKeys layout;
    layout.texts = {{21, QStringLiteral("'")}, {0, QStringLiteral("q")},   {19, QStringLiteral("é")},
                    {17, QStringLiteral("е")}, {36, QStringLiteral("\r")}, {82, QStringLiteral("0")}};
    EXPECT_EQ(keySymbol(21, layout), QStringLiteral("apostrophe"));
    EXPECT_EQ(keySymbol(0, layout), QStringLiteral("q"));
    EXPECT_EQ(keySymbol(19, layout), QStringLiteral("U00E9"));
    EXPECT_EQ(xkb_keysym_from_name("U00E9", XKB_KEYSYM_NO_FLAGS), xkb_keysym_t{XKB_KEY_eacute});
    EXPECT_EQ(keySymbol(17, layout), QStringLiteral("t")) << "a Cyrillic letter has no name that all know";
    EXPECT_EQ(keySymbol(36, layout), QStringLiteral("Return"));
    EXPECT_EQ(keySymbol(82, layout), QStringLiteral("KP_0")) << "not the row above the letters";
}

TEST(ShortcutKeysTest, theSameKeysInADesktopsWordsAreTheSame) {
    const QString asked = QStringLiteral("LOGO+ALT+SHIFT+4");
    for (const char* said : {"Meta+Alt+Shift+4", "Shift+Alt+Meta+4", "<Shift><Alt><Super>4",
                             "Super + Shift + Alt + 4", "SHIFT+ALT+LOGO+4"})
        EXPECT_TRUE(isSameShortcut(asked, QString::fromLatin1(said))) << said;
    EXPECT_TRUE(isSameShortcut(QStringLiteral("CTRL+dollar"), QStringLiteral("Ctrl+$")));
    EXPECT_TRUE(isSameShortcut(QStringLiteral("CTRL+plus"), QStringLiteral("Ctrl++")));
    EXPECT_TRUE(isSameShortcut(QStringLiteral("CTRL+Prior"), QStringLiteral("Ctrl+PgUp")));
    EXPECT_TRUE(isSameShortcut(QStringLiteral("SHIFT+t"), QStringLiteral("Shift+T")));
}

TEST(ShortcutKeysTest, otherKeysAreNot) {
    const QString asked = QStringLiteral("ALT+SHIFT+4");
    for (const char* said : {"", "Alt+4", "Meta+Alt+Shift+4", "Alt+Shift+5", "Alt+Shift+4, Print"})
        EXPECT_FALSE(isSameShortcut(asked, QString::fromLatin1(said))) << said;
}

} // namespace
} // namespace framora
