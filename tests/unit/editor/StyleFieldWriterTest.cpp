#include "editor/model/StyleFieldWriter.h"

#include "editor/model/ColorConversion.h"

#include <QColor>
#include <QSizeF>
#include <gtest/gtest.h>

namespace framora {
namespace {

bool write(ScreenshotStyleConfig& config, const char* field, const QVariant& value) {
    return writeStyleField(config, QString::fromLatin1(field), value);
}

TEST(StyleFieldWriter, WritesOneFieldOfEachKind) {
    ScreenshotStyleConfig config = ScreenshotStyleConfig::shared();
    ScreenshotStyleConfig expected = config;

    EXPECT_TRUE(write(config, "padding", 12.5));
    expected.padding = 12.5;
    EXPECT_TRUE(write(config, "rotation", 90)) << "a whole number is a number";
    expected.rotation = 90;
    EXPECT_TRUE(write(config, "showMockup", false));
    expected.showMockup = false;
    EXPECT_TRUE(write(config, "mockupStyle", QStringLiteral("glassEffect")));
    expected.mockupStyle = MockupStyle::glassEffect;
    EXPECT_TRUE(write(config, "backgroundType", QStringLiteral("transparent")));
    expected.backgroundType = BackgroundType::transparent;
    EXPECT_TRUE(write(config, "borderColor", QColor(255, 0, 51)));
    expected.borderColor = fromQColor(QColor(255, 0, 51));
    EXPECT_TRUE(write(config, "screenshotOffset", QSizeF(3, -4)));
    expected.screenshotOffset = {3, -4};
    EXPECT_TRUE(write(config, "backgroundImageURL", QUrl(QStringLiteral("file:///a.png"))));
    expected.backgroundImageURL = QUrl(QStringLiteral("file:///a.png"));
    EXPECT_EQ(config, expected);
}

TEST(StyleFieldWriter, WritesANestedFieldAndItsNeighboursStay) {
    ScreenshotStyleConfig config = ScreenshotStyleConfig::shared();
    ScreenshotStyleConfig expected = config;
    EXPECT_TRUE(write(config, "gradientConfig.style", QStringLiteral("angular")));
    EXPECT_TRUE(write(config, "gradientConfig.color2", QColor(Qt::green)));
    EXPECT_TRUE(write(config, "screenshotOffset.height", 9));
    expected.gradientConfig.style = GradientStyle::angular;
    expected.gradientConfig.color2 = fromQColor(Qt::green);
    expected.screenshotOffset.height = 9;
    EXPECT_EQ(config, expected);
}

TEST(StyleFieldWriter, AnInvalidValueClearsAnOptionalField) {
    ScreenshotStyleConfig config = ScreenshotStyleConfig::shared();
    ASSERT_TRUE(config.selectedGradientPreset);
    EXPECT_TRUE(write(config, "selectedGradientPreset", {}));
    EXPECT_FALSE(config.selectedGradientPreset);
    EXPECT_FALSE(write(config, "padding", {})) << "not optional";
}

TEST(StyleFieldWriter, RefusesWhatDoesNotFitAndWritesNothing) {
    ScreenshotStyleConfig config = ScreenshotStyleConfig::shared();
    EXPECT_FALSE(write(config, "", 1));
    EXPECT_FALSE(write(config, "paddings", 1));
    EXPECT_FALSE(write(config, "padding.x", 1));
    EXPECT_FALSE(write(config, "gradientConfig.nosuch", 1));
    EXPECT_FALSE(write(config, "padding", QStringLiteral("wide")));
    EXPECT_FALSE(write(config, "mockupStyle", QStringLiteral("Border")));
    EXPECT_FALSE(write(config, "screenshotOffset", 3));
    EXPECT_EQ(config, ScreenshotStyleConfig::shared());
}

} // namespace
} // namespace framora
