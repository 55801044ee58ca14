#include "controls/SliderValueText.h"

#include "support/PrintQt.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(SliderValueText, ShowsDecimalsRounded) {
    EXPECT_EQ(SliderValueText::text(3.0, 1, {}), QStringLiteral("3.0"));
    EXPECT_EQ(SliderValueText::text(1.25, 2, {}), QStringLiteral("1.25"));
    EXPECT_EQ(SliderValueText::text(0.999, 2, QStringLiteral("x")), QStringLiteral("1.00x"));
}

TEST(SliderValueText, CutsOffAPercentageAndRoundsAnythingElse) {
    EXPECT_EQ(SliderValueText::text(99.9, 0, QStringLiteral("%")), QStringLiteral("99%"));
    EXPECT_EQ(SliderValueText::text(-0.9, 0, QStringLiteral("%")), QStringLiteral("0%"));
    EXPECT_EQ(SliderValueText::text(99.9, 0, {}), QStringLiteral("100"));
    EXPECT_EQ(SliderValueText::text(99.9, 0, QStringLiteral("°")), QStringLiteral("100°"));
    EXPECT_EQ(SliderValueText::text(-89.7, 0, {}), QStringLiteral("-90"));
}

TEST(SliderValueText, ReadsWhatPeopleType) {
    const auto read = [](const char* typed, const char* unit = "") {
        return SliderValueText::parse(QString::fromUtf8(typed), QString::fromUtf8(unit));
    };
    EXPECT_EQ(read("50"), 50);
    EXPECT_EQ(read(" 50% ", "%"), 50);
    EXPECT_EQ(read("50 %"), 50) << "a percent sign does no harm anywhere";
    EXPECT_EQ(read("1,25"), 1.25);
    EXPECT_EQ(read(".5"), 0.5);
    EXPECT_EQ(read("-12°"), -12);
    EXPECT_EQ(read("\u221212"), -12);
    EXPECT_EQ(read("80 px", "px"), 80);
    for (const char* garbage : {"", "abc", "12abc", "1,000,5", "--3", "nan", "inf", "0x10", "%"})
        EXPECT_TRUE(std::isnan(read(garbage, "%"))) << garbage;
}

TEST(SliderValueText, FitsANumberToTheRangeAndItsSteps) {
    EXPECT_EQ(SliderValueText::fit(500, 10, 200, 0), 200);
    EXPECT_EQ(SliderValueText::fit(-3, 10, 200, 0), 10);
    EXPECT_EQ(SliderValueText::fit(33.37, 10, 200, 0), 33.37);
    EXPECT_EQ(SliderValueText::fit(2.74, 0, 10, 0.5), 2.5);
    EXPECT_EQ(SliderValueText::fit(2.76, 0, 10, 0.5), 3);
    EXPECT_EQ(SliderValueText::fit(9.9, 0, 9.8, 0.5), 9.8) << "the end of the range is always reached";
}

TEST(SliderValueText, StepsFromTheNumberThatIsShown) {
    const QString percent = QStringLiteral("%");
    EXPECT_EQ(SliderValueText::stepped(33.6, 1, 0, 200, 0, 0, {}), 35) << "34 was shown";
    EXPECT_EQ(SliderValueText::stepped(33.6, 1, 10, 200, 0, 0, percent), 34) << "33 was shown";
    EXPECT_EQ(SliderValueText::stepped(33.6, -1, 0, 200, 0, 0, {}), 33);
    EXPECT_EQ(SliderValueText::stepped(3, 1, 0, 10, 0.5, 1, {}), 3.5);
    EXPECT_EQ(SliderValueText::stepped(3, 10, 0, 10, 0.5, 1, {}), 8);
    EXPECT_EQ(SliderValueText::stepped(199.5, 10, 0, 200, 0, 0, {}), 200);
    double scale = 1.0;
    for (int i = 0; i < 100; ++i)
        scale = SliderValueText::stepped(scale, 1, 0.1, 3, 0, 2, {});
    EXPECT_EQ(scale, 2.0) << "a hundred hundredths are one";
}

} // namespace
} // namespace framora
