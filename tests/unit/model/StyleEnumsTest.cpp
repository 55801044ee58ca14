#include "editor/model/StyleEnums.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace framora {
namespace {

template <class E> QStringList rawValues() {
    QStringList raws;
    for (const E value : allCases<E>())
        raws << rawValue(value);
    return raws;
}

template <class E> class StyleEnum : public testing::Test {};
using Enumerations =
    testing::Types<MockupStyle, BorderStyle, BackgroundType, GradientStyle, ShadowSceneMode, RedactStyle>;
TYPED_TEST_SUITE(StyleEnum, Enumerations);

TYPED_TEST(StyleEnum, EveryCaseComesBackFromItsString) {
    int position = 0;
    for (const TypeParam value : allCases<TypeParam>()) {
        EXPECT_EQ(static_cast<int>(value), position++);
        EXPECT_EQ(fromRawValue<TypeParam>(rawValue(value)), value);
    }
}

TYPED_TEST(StyleEnum, AnUnknownStringGivesNothing) {
    for (const auto* raw : {u"", u"none", u"Border", u" linear", u"0"})
        EXPECT_EQ(fromRawValue<TypeParam>(raw), std::nullopt);
}

TEST(StyleEnums, CasesStandInTheirOrder) {
    EXPECT_EQ(rawValues<MockupStyle>(), QStringList({"defaultStyle", "glassEffect", "border"}));
    EXPECT_EQ(rawValues<BorderStyle>(), QStringList({"sharp", "curved", "round"}));
    EXPECT_EQ(rawValues<BackgroundType>(), QStringList({"transparent", "color", "gradient", "image"}));
    EXPECT_EQ(rawValues<GradientStyle>(), QStringList({"linear", "radial", "angular"}));
    EXPECT_EQ(rawValues<ShadowSceneMode>(), QStringList({"underlay", "overlay"}));
    EXPECT_EQ(rawValues<RedactStyle>(), QStringList({"blur", "pixelate", "blackBar"}));
}

TEST(StyleEnums, AValueOutsideTheCasesHasNoString) {
    EXPECT_EQ(rawValue(static_cast<MockupStyle>(99)), QString());
}

} // namespace
} // namespace framora
