#include "platform/VirtualKeyCodes.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

namespace framora {
namespace {

// Written down in numbers, from the kernel's list of keys and the numbering's own order, not from the table.
const std::map<int, int> virtualCodeOfEvdev{
    // Esc and the digit row, 1 to Backspace.
    {1, 53},
    {2, 18},
    {3, 19},
    {4, 20},
    {5, 21},
    {6, 23},
    {7, 22},
    {8, 26},
    {9, 28},
    {10, 25},
    {11, 29},
    {12, 27},
    {13, 24},
    {14, 51},
    // Tab, Q to ], Return.
    {15, 48},
    {16, 12},
    {17, 13},
    {18, 14},
    {19, 15},
    {20, 17},
    {21, 16},
    {22, 32},
    {23, 34},
    {24, 31},
    {25, 35},
    {26, 33},
    {27, 30},
    {28, 36},
    // Left Control, A to the apostrophe, the grave accent.
    {29, 59},
    {30, 0},
    {31, 1},
    {32, 2},
    {33, 3},
    {34, 5},
    {35, 4},
    {36, 38},
    {37, 40},
    {38, 37},
    {39, 41},
    {40, 39},
    {41, 50},
    // Left Shift, backslash, Z to the slash, right Shift.
    {42, 56},
    {43, 42},
    {44, 6},
    {45, 7},
    {46, 8},
    {47, 9},
    {48, 11},
    {49, 45},
    {50, 46},
    {51, 43},
    {52, 47},
    {53, 44},
    {54, 60},
    // Keypad *, left Alt, Space, Caps Lock.
    {55, 67},
    {56, 58},
    {57, 49},
    {58, 57},
    // F1 to F10.
    {59, 122},
    {60, 120},
    {61, 99},
    {62, 118},
    {63, 96},
    {64, 97},
    {65, 98},
    {66, 100},
    {67, 101},
    {68, 109},
    // Num Lock, Scroll Lock, the keypad from 7 to its point.
    {69, 71},
    {70, 4096 + 70},
    {71, 89},
    {72, 91},
    {73, 92},
    {74, 78},
    {75, 86},
    {76, 87},
    {77, 88},
    {78, 69},
    {79, 83},
    {80, 84},
    {81, 85},
    {82, 82},
    {83, 65},
    // The ISO key, F11, F12, the Japanese underscore.
    {86, 10},
    {87, 103},
    {88, 111},
    {89, 94},
    // Keypad Enter, right Control, keypad /, Print, right Alt.
    {96, 76},
    {97, 62},
    {98, 75},
    {99, 4096 + 99},
    {100, 61},
    // Home, up, Page Up, left, right, End, down, Page Down, Insert, Delete.
    {102, 115},
    {103, 126},
    {104, 116},
    {105, 123},
    {106, 124},
    {107, 119},
    {108, 125},
    {109, 121},
    {110, 114},
    {111, 117},
    // Mute, volume down, volume up, keypad =, Pause, keypad comma.
    {113, 74},
    {114, 73},
    {115, 72},
    {117, 81},
    {119, 4096 + 119},
    {121, 95},
    // Kana, Eisu, Yen.
    {122, 104},
    {123, 102},
    {124, 93},
    // Super, right Super, Menu.
    {125, 55},
    {126, 54},
    {127, 110},
    // F13 to F20, Fn.
    {183, 105},
    {184, 107},
    {185, 113},
    {186, 106},
    {187, 64},
    {188, 79},
    {189, 80},
    {190, 90},
    {464, 63},
};

TEST(VirtualKeyCodes, everyKeyOfAFullSizeKeyboardHasItsCodeAndComesBackFromIt) {
    for (const auto& [evdev, code] : virtualCodeOfEvdev) {
        EXPECT_EQ(virtualKeyFromEvdev(std::uint16_t(evdev)), std::uint16_t(code)) << "evdev " << evdev;
        EXPECT_EQ(evdevFromVirtualKey(std::uint16_t(code)), std::uint16_t(evdev)) << "virtual " << code;
    }
}

TEST(VirtualKeyCodes, theTableHasNoOtherRows) {
    EXPECT_EQ(virtualKeys().size(), virtualCodeOfEvdev.size());
    for (const auto& key : virtualKeys())
        EXPECT_TRUE(virtualCodeOfEvdev.contains(key.evdev)) << key.name;
}

TEST(VirtualKeyCodes, noCodeAndNoNameOccursTwice) {
    std::set<int> evdevs, codes;
    std::set<std::string> names;
    for (const auto& key : virtualKeys()) {
        EXPECT_TRUE(evdevs.insert(key.evdev).second) << key.name;
        EXPECT_TRUE(codes.insert(key.virtualCode).second) << key.name;
        EXPECT_TRUE(names.insert(key.name).second) << key.name;
    }
}

TEST(VirtualKeyCodes, aCodeThatNoKeyHasGivesNothing) {
    EXPECT_EQ(virtualKeyFromEvdev(0), std::nullopt);
    EXPECT_EQ(virtualKeyFromEvdev(0x110), std::nullopt) << "a mouse button";
    EXPECT_EQ(virtualKeyFromEvdev(0xffff), std::nullopt);
    EXPECT_EQ(evdevFromVirtualKey(52), std::nullopt);
    EXPECT_EQ(evdevFromVirtualKey(0xffff), std::nullopt);
    EXPECT_EQ(virtualKeyName(0xffff), nullptr);
}

TEST(VirtualKeyCodes, writingTakesAllKeysButThoseThatDoLittleOnTheirOwn) {
    std::set<std::string> others{"Print",    "Scroll Lock", "Pause",     "Insert",     "Menu",
                                 "Num Lock", "Mute",        "Volume Up", "Volume Down"};
    for (int number = 1; number <= 20; ++number)
        others.insert("F" + std::to_string(number));
    for (const auto& key : virtualKeys())
        EXPECT_EQ(isForWriting(key.virtualCode), !others.contains(key.name)) << key.name;
    EXPECT_FALSE(isForWriting(52)) << "no key has this code";
}

TEST(VirtualKeyCodes, namesAreThoseOfAUsKeyboard) {
    EXPECT_STREQ(virtualKeyName(21), "4");
    EXPECT_STREQ(virtualKeyName(17), "T");
    EXPECT_STREQ(virtualKeyName(49), "Space");
    EXPECT_STREQ(virtualKeyName(0), "A");
}

} // namespace
} // namespace framora
