#include "screencapture/wayland/KeyMeanings.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

namespace framora {
namespace {

using Key = SelectionModel::Key;

std::string keymapText(const char* layout, const char* options, const char* variant = "") {
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names names{"evdev", "pc105", layout, variant, options};
    xkb_keymap* keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    char* text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    std::string result = text;
    std::free(text);
    xkb_keymap_unref(keymap);
    xkb_context_unref(context);
    return result;
}

void adopt(KeyMeanings& meanings, const std::string& text) {
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    ASSERT_EQ(write(file, text.c_str(), text.size() + 1), static_cast<ssize_t>(text.size() + 1));
    meanings.adopt(file, text.size() + 1);
}

TEST(KeyMeaningsTest, theKeymapSaysWhatAKeyMeans) {
    KeyMeanings meanings;
    adopt(meanings, keymapText("us", "caps:escape"));
    EXPECT_EQ(meanings.meaning(KEY_ESC), Key::Escape);
    EXPECT_EQ(meanings.meaning(KEY_CAPSLOCK), Key::Escape);
    EXPECT_EQ(meanings.meaning(KEY_SPACE), Key::Space);
    EXPECT_EQ(meanings.meaning(KEY_LEFTSHIFT), Key::Shift);
    EXPECT_EQ(meanings.meaning(KEY_RIGHTSHIFT), Key::Shift);
    EXPECT_EQ(meanings.meaning(KEY_A), Key::Other);
    EXPECT_EQ(meanings.meaning(KEY_LEFTCTRL), Key::Other);
    EXPECT_EQ(meanings.meaning(4000), Key::Other);
    // Another one comes, as when the user takes another layout.
    adopt(meanings, keymapText("us,de", "caps:swapescape"));
    EXPECT_EQ(meanings.meaning(KEY_ESC), Key::Other);
    EXPECT_EQ(meanings.meaning(KEY_CAPSLOCK), Key::Escape);
}

TEST(KeyMeaningsTest, aLetterIsNoEscapeForWhatItHasOnFurtherLevels) {
    KeyMeanings meanings;
    adopt(meanings, keymapText("de", "", "neo"));
    EXPECT_EQ(meanings.meaning(KEY_ESC), Key::Escape);
    EXPECT_EQ(meanings.meaning(KEY_SPACE), Key::Space);
    EXPECT_EQ(meanings.meaning(KEY_LEFTSHIFT), Key::Shift);
    for (int code = KEY_Q; code <= KEY_P; ++code)
        EXPECT_EQ(meanings.meaning(static_cast<uint32_t>(code)), Key::Other) << code;
    for (int code = KEY_Z; code <= KEY_M; ++code)
        EXPECT_EQ(meanings.meaning(static_cast<uint32_t>(code)), Key::Other) << code;
}

TEST(KeyMeaningsTest, withoutAKeymapTheKeysAreTheUsualOnes) {
    KeyMeanings none;
    EXPECT_EQ(none.meaning(KEY_ESC), Key::Escape);
    EXPECT_EQ(none.meaning(KEY_SPACE), Key::Space);
    EXPECT_EQ(none.meaning(KEY_RIGHTSHIFT), Key::Shift);
    EXPECT_EQ(none.meaning(KEY_CAPSLOCK), Key::Other);
    KeyMeanings broken;
    adopt(broken, "xkb_keymap {");
    EXPECT_EQ(broken.meaning(KEY_ESC), Key::Escape);
}

} // namespace
} // namespace framora
