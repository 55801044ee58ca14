#include "editor/render/HexColor.h"

#include <gtest/gtest.h>

namespace framora {

static void PrintTo(const Color& color, std::ostream* out) {
    *out << "(" << color.red << ", " << color.green << ", " << color.blue << ", " << color.alpha << ")";
}

namespace {

Color bytes(int red, int green, int blue, int alpha = 255) {
    return {red / 255.0, green / 255.0, blue / 255.0, alpha / 255.0};
}

const Color opaqueBlack = bytes(0, 0, 0);

TEST(HexColor, ThreeAndSixDigitsGiveWhite) {
    EXPECT_EQ(parseHexColor(u"#FFF"), bytes(255, 255, 255));
    EXPECT_EQ(parseHexColor(u"FFFFFF"), bytes(255, 255, 255));
}

TEST(HexColor, EachOfThreeDigitsIsRepeated) {
    EXPECT_EQ(parseHexColor(u"1a9"), bytes(0x11, 0xaa, 0x99));
}

TEST(HexColor, OfEightDigitsTheFirstTwoAreAlpha) {
    EXPECT_EQ(parseHexColor(u"#80FF0000"), bytes(255, 0, 0, 128));
    EXPECT_EQ(parseHexColor(u"01020304"), bytes(2, 3, 4, 1));
}

TEST(HexColor, EitherCaseIsRead) {
    EXPECT_EQ(parseHexColor(u"aBcDeF"), parseHexColor(u"AbCdEf"));
    EXPECT_EQ(parseHexColor(u"abcdef"), bytes(0xab, 0xcd, 0xef));
}

TEST(HexColor, OtherLengthsAreOpaqueBlack) {
    for (const auto* text : {u"#12345", u"", u"#", u"f", u"ff", u"ffff", u"fffffff", u"fffffffff",
                             u"ffffffffffffffffffffffffffffffff"})
        EXPECT_EQ(parseHexColor(text), opaqueBlack) << QStringView(text).toString().toStdString();
}

TEST(HexColor, WhatIsNeitherLetterNorDigitFallsOffBothEnds) {
    EXPECT_EQ(parseHexColor(u" #00ff00 "), bytes(0, 255, 0));
    EXPECT_EQ(parseHexColor(u"\t##(00ff00);\n"), bytes(0, 255, 0));
    EXPECT_EQ(parseHexColor(u"\U0001F3A8"
                            u"00ff00\U0001F3A8"),
              bytes(0, 255, 0));
}

TEST(HexColor, TheLengthCountsWhatStandsInside) {
    // Seven characters: the dash inside is kept.
    EXPECT_EQ(parseHexColor(u"00-ff00"), opaqueBlack);
}

TEST(HexColor, ANonHexadecimalCharacterEndsTheNumber) {
    EXPECT_EQ(parseHexColor(u"ff-f00"), bytes(0, 0, 255)); // six characters, "ff" read
    EXPECT_EQ(parseHexColor(u"12g"), bytes(0, 0x11, 0x22));
    EXPECT_EQ(parseHexColor(u"zzzzzz"), opaqueBlack);
    EXPECT_EQ(parseHexColor(u"zzzzzzzz"), bytes(0, 0, 0, 0)); // eight characters say their alpha: none
}

TEST(HexColor, LettersAndDigitsOfOtherScriptsAreKeptButEndTheNumber) {
    EXPECT_EQ(parseHexColor(u"\u00e4ff"), opaqueBlack);
    EXPECT_EQ(parseHexColor(u"1\u0663"
                            u"2"),
              bytes(0, 0, 0x11));
}

} // namespace
} // namespace framora
