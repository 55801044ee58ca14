#include "settings/KeyNames.h"

#include "platform/x11/XkbKeyText.h"
#include "settings/HotkeyConfiguration.h"
#include "support/SettingsPlatform.h"

#include <gtest/gtest.h>
#include <memory>

namespace framora {
namespace {

/// A keyboard layout by its name in the system's own description of keyboards.
class NamedLayout final : public KeyboardLayout {
public:
    explicit NamedLayout(const char* layout, const char* variant = "")
        : m_context(xkb_context_new(XKB_CONTEXT_NO_FLAGS), xkb_context_unref),
          m_keymap(nullptr, xkb_keymap_unref) {
        const xkb_rule_names names{"evdev", "pc105", layout, variant, ""};
        m_keymap.reset(xkb_keymap_new_from_names(m_context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
        EXPECT_TRUE(m_keymap) << layout;
    }
    QString textOfKey(std::uint16_t virtualKey) const override {
        return m_keymap ? xkbKeyText(m_keymap.get(), 0, virtualKey) : QString();
    }

private:
    std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> m_context;
    std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> m_keymap;
};

/// The labels of the keys Q, W, Y, Z, 4, the one right of 0, the two right of P, and the two right of L.
QString labels(const KeyboardLayout& layout) {
    QStringList result;
    for (const std::uint16_t key : {12, 13, 16, 6, 21, 27, 33, 30, 41, 39})
        result << keyName(key, layout);
    return result.join(QLatin1Char(' '));
}

TEST(KeyNames, areWhatTheKeysPrintInTheLayout) {
    EXPECT_EQ(labels(NamedLayout("us")), QStringLiteral("Q W Y Z 4 - [ ] ; '"));
    EXPECT_EQ(labels(NamedLayout("de")), QStringLiteral("Q W Z Y 4 SS Ü + Ö Ä"));
    EXPECT_EQ(labels(NamedLayout("fr")), QStringLiteral("A Z Y W ' ) ^ $ M Ù"));
    EXPECT_EQ(labels(NamedLayout("gr")), QStringLiteral("; Σ Υ Ζ 4 - [ ] ´ '"));
    EXPECT_EQ(labels(NamedLayout("us", "dvorak")), QStringLiteral("' , F ; 4 [ / = S -"));
}

TEST(KeyNames, aDeadKeyShowsItsAccent) {
    EXPECT_EQ(keyName(24, NamedLayout("de")), QStringLiteral("´"));
    EXPECT_EQ(keyName(50, NamedLayout("de")), QStringLiteral("^"));
    EXPECT_EQ(keyName(30, NamedLayout("se")), QStringLiteral("¨"));
}

TEST(KeyNames, keysThatPrintWhiteSpaceOrNothingAreInTheTable) {
    for (const char* name : {"us", "de", "fr", "gr"}) {
        const NamedLayout layout(name);
        for (const auto& [key, label] : std::vector<std::pair<std::uint16_t, const char*>>{{36, "↩"},
                                                                                           {48, "Tab"},
                                                                                           {49, "Space"},
                                                                                           {51, "⌫"},
                                                                                           {117, "⌦"},
                                                                                           {53, "⎋"},
                                                                                           {114, "Help"},
                                                                                           {115, "Home"},
                                                                                           {119, "End"},
                                                                                           {123, "←"},
                                                                                           {126, "↑"},
                                                                                           {122, "F1"},
                                                                                           {111, "F12"},
                                                                                           {121, "Page Down"},
                                                                                           {105, "F13"},
                                                                                           {106, "F16"}})
            EXPECT_EQ(keyName(key, layout), QString::fromUtf8(label)) << key << " in " << name;
    }
}

TEST(KeyNames, aKeypadPrintsItsDigits) {
    const NamedLayout layout("us");
    EXPECT_EQ(keyName(82, layout), QStringLiteral("0"));
    EXPECT_EQ(keyName(92, layout), QStringLiteral("9"));
    EXPECT_EQ(keyName(65, layout), QStringLiteral("."));
    EXPECT_EQ(keyName(67, layout), QStringLiteral("*"));
}

TEST(KeyNames, withoutALayoutTheWholeTableAnswers) {
    const std::vector<std::pair<std::uint16_t, const char*>> table{
        {28, "↩"},     {36, "↩"},     {30, "Tab"},      {48, "Tab"},  {31, "Space"},      {49, "Space"},
        {37, "⌫"},     {51, "⌫"},     {38, "⌦"},        {117, "⌦"},   {40, "Esc"},        {53, "⎋"},
        {114, "Help"}, {115, "Home"}, {116, "Page Up"}, {119, "End"}, {121, "Page Down"}, {123, "←"},
        {124, "→"},    {125, "↓"},    {126, "↑"},       {122, "F1"},  {120, "F2"},        {99, "F3"},
        {118, "F4"},   {96, "F5"},    {97, "F6"},       {98, "F7"},   {100, "F8"},        {101, "F9"},
        {109, "F10"},  {103, "F11"},  {111, "F12"},     {105, "F13"}, {107, "F14"},       {113, "F15"},
        {106, "F16"}};
    ASSERT_EQ(table.size(), 37u);
    const FixedKeyboardLayout silent;
    for (const auto& [key, label] : table)
        EXPECT_EQ(keyName(key, silent), QString::fromUtf8(label)) << key;
    EXPECT_EQ(keyName(145, silent), QStringLiteral("Key 145"));
    EXPECT_EQ(keyName(21, silent), QStringLiteral("Key 21"));
    EXPECT_EQ(keyName(65535, silent), QStringLiteral("Key 65535"));
}

TEST(KeyNames, aKeyOutsideTheNumberingBringsItsOwnName) {
    EXPECT_EQ(keyName(0x1000 + 99, NamedLayout("us")), QStringLiteral("Print"));
}

TEST(KeyNames, printedTextIsTrimmedAndInCapitals) {
    FixedKeyboardLayout layout;
    layout.texts = {{21, QStringLiteral(" é\n")}, {36, QStringLiteral("\r")}, {48, QStringLiteral("\t")}};
    EXPECT_EQ(keyName(21, layout), QStringLiteral("É"));
    EXPECT_EQ(keyName(36, layout), QStringLiteral("↩"));
    EXPECT_EQ(keyName(48, layout), QStringLiteral("Tab"));
}

TEST(KeyCaps, standInTheirOrder) {
    FixedKeyboardLayout layout;
    layout.texts[21] = QStringLiteral("4");
    const auto caps = [&](std::uint16_t key, std::uint64_t modifiers) {
        return keyCaps({key, modifiers}, layout).join(QLatin1Char(' '));
    };
    EXPECT_EQ(caps(21, 0x1E0000), QStringLiteral("⌘ ⌥ ⌃ ⇧ 4"));
    EXPECT_EQ(caps(21, 0xA0000), QStringLiteral("⌥ ⇧ 4"));
    EXPECT_EQ(caps(21, 0), QStringLiteral("4"));
    EXPECT_EQ(caps(0, 0x100000), QStringLiteral("⌘"));
    EXPECT_EQ(caps(0, 0), QString());
    EXPECT_EQ(caps(0, 0x10000), QString()) << "caps lock has no cap";
}

} // namespace
} // namespace framora
