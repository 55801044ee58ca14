#include "render-cli/StyleFieldSetter.h"

#include "editor/render/HexColor.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

class StyleFieldSetterTest : public testing::Test {
protected:
    QString set(const char* field, const char* value) {
        return StyleFieldSetter(style).set(QString::fromLatin1(field), QString::fromUtf8(value));
    }
    void expectSet(const char* field, const char* value) {
        EXPECT_EQ(set(field, value).toStdString(), "") << field << "=" << value;
    }
    void expectRefused(const char* field, const char* value, const char* part) {
        const ScreenshotStyleConfig before = style;
        const QString error = set(field, value);
        EXPECT_TRUE(error.contains(QString::fromLatin1(part)))
            << field << "=" << value << " gave: " << error.toStdString();
        EXPECT_TRUE(error.contains(QString::fromLatin1(field)));
        EXPECT_EQ(style, before) << field << "=" << value;
    }

    ScreenshotStyleConfig style;
};

TEST_F(StyleFieldSetterTest, PlainFields) {
    expectSet("mockupStyle", "border");
    EXPECT_EQ(style.mockupStyle, MockupStyle::border);
    expectSet("showMockup", "false");
    EXPECT_FALSE(style.showMockup);
    expectSet("mockupBorderSize", "4.5");
    EXPECT_EQ(style.mockupBorderSize, 4.5);
    expectSet("borderColor", "2d2d2e");
    EXPECT_EQ(style.borderColor, parseHexColor(u"2d2d2e"));
    expectSet("customColor", "#80ff0000");
    EXPECT_EQ(style.customColor, parseHexColor(u"80ff0000"));
    expectSet("screenshotOffset", "10,-5");
    EXPECT_EQ(style.screenshotOffset, (Size{10, -5}));
    expectSet("backgroundType", "gradient");
    EXPECT_EQ(style.backgroundType, BackgroundType::gradient);
    expectSet("rotation", "-1e-3");
    EXPECT_EQ(style.rotation, -0.001);
    expectSet("shadowSceneMode", "overlay");
    EXPECT_EQ(style.shadowSceneMode, ShadowSceneMode::overlay);
    expectSet("redactStyle", "blackBar");
    EXPECT_EQ(style.redactStyle, RedactStyle::blackBar);
}

TEST_F(StyleFieldSetterTest, PartsOfAFieldStandBehindADot) {
    const ScreenshotStyleConfig defaults;
    expectSet("gradientConfig.angle", "90");
    EXPECT_EQ(style.gradientConfig.angle, 90.0);
    expectSet("gradientConfig.color1", "ff8800");
    EXPECT_EQ(style.gradientConfig.color1, parseHexColor(u"ff8800"));
    expectSet("gradientConfig.style", "angular");
    EXPECT_EQ(style.gradientConfig.style, GradientStyle::angular);
    expectSet("gradientConfig.color1.alpha", "0.5");
    EXPECT_EQ(style.gradientConfig.color1.alpha, 0.5);
    expectSet("screenshotOffset.height", "7");
    EXPECT_EQ(style.screenshotOffset, (Size{0, 7}));
    EXPECT_EQ(style.gradientConfig.color2, defaults.gradientConfig.color2);
}

TEST_F(StyleFieldSetterTest, EveryFieldOfTheRecordCanBeSet) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("background.png"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const QHash<QString, QString> values{
        {"mockupStyle", "glassEffect"},
        {"showMockup", "false"},
        {"borderColor", "123456"},
        {"borderStyle", "round"},
        {"screenshotOffset", "1,2"},
        {"backgroundType", "color"},
        {"selectedMagicPreset", "3"},
        {"selectedShadowScene", "Name:ffffff,000000"},
        {"selectedSolidColor", "ff0000"},
        {"selectedGradient", "ff0000,0000ff@90"},
        {"backgroundImageURL", path},
        {"customColor", "000"},
        {"gradientConfig.style", "radial"},
        {"gradientConfig.color1", "abcdef"},
        {"gradientConfig.color2", "abcdef"},
        {"gradientConfig.color3", "abcdef"},
        {"gradientConfig.useThreeColors", "true"},
        {"selectedGradientPreset", "Trench"},
        {"shadowSceneMode", "overlay"},
        {"textOverlays", R"([{"text":"a"}])"},
        {"redactEnabled", "true"},
        {"redactStyle", "pixelate"},
        {"redactRegions", R"([{"rect":[1,2,3,4]}])"},
        {"selectedSocialPreset", "Instagram/Story"},
    };
    for (const QString& field : StyleFieldSetter::fieldNames()) {
        ScreenshotStyleConfig changed;
        const QString error =
            StyleFieldSetter(changed).set(field, values.value(field, QStringLiteral("12.5")));
        EXPECT_EQ(error.toStdString(), "");
        EXPECT_NE(changed, ScreenshotStyleConfig()) << field.toStdString();
    }
    EXPECT_EQ(StyleFieldSetter::fieldNames().size(), 33 - 1 + 10);
}

TEST_F(StyleFieldSetterTest, PresetsAreFoundByNameAndByPosition) {
    expectSet("selectedSocialPreset", "Instagram/Story");
    EXPECT_EQ(style.selectedSocialPreset, PresetCatalogues::socialMediaPresets()[6]);
    expectSet("selectedSocialPreset", "Standard/16:9");
    EXPECT_EQ(style.selectedSocialPreset, PresetCatalogues::socialMediaPresets()[14]);
    expectSet("selectedSocialPreset", "18");
    EXPECT_EQ(style.selectedSocialPreset, PresetCatalogues::socialMediaPresets()[17]);
    expectSet("selectedSocialPreset", "none");
    EXPECT_EQ(style.selectedSocialPreset, std::nullopt);
    expectSet("selectedGradientPreset", "Black Pine");
    EXPECT_EQ(style.selectedGradientPreset, PresetCatalogues::simpleGradientPresets()[2]);
    expectSet("selectedGradientPreset", "2");
    EXPECT_EQ(style.selectedGradientPreset, PresetCatalogues::simpleGradientPresets()[1]);
}

TEST_F(StyleFieldSetterTest, AGradientPresetBringsItsColours) {
    expectSet("selectedGradientPreset", "Midnight Surge");
    EXPECT_EQ(style.gradientConfig, PresetCatalogues::simpleGradientPresets()[4].config);
}

TEST_F(StyleFieldSetterTest, AMagicPresetTakesThePlaceOfTheOtherSelections) {
    style.backgroundImageURL = QUrl("file:///x.png");
    expectSet("selectedSolidColor", "ff0000");
    expectSet("selectedGradient", "ff0000,0000ff");
    expectSet("selectedMagicPreset", "3");
    EXPECT_EQ(style.selectedMagicPreset, PresetCatalogues::magicPresets()[2]);
    EXPECT_EQ(style.selectedSolidColor, std::nullopt);
    EXPECT_EQ(style.selectedGradient, std::nullopt);
    EXPECT_EQ(style.backgroundImageURL, std::nullopt);
    EXPECT_EQ(style.customColor, Color::clear());
}

TEST_F(StyleFieldSetterTest, ABackgroundImageTakesThePlaceOfTheColourSelections) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a b#c.png"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    expectSet("selectedMagicPreset", "1");
    expectSet("selectedSolidColor", "ff0000");
    expectSet("selectedGradient", "ff0000,0000ff");
    expectSet("backgroundImageURL", path.toUtf8().constData());
    EXPECT_EQ(style.backgroundImageURL, QUrl::fromLocalFile(path));
    EXPECT_EQ(style.selectedMagicPreset, std::nullopt);
    EXPECT_EQ(style.selectedSolidColor, std::nullopt);
    EXPECT_EQ(style.selectedGradient, std::nullopt);
    expectSet("backgroundImageURL", "none");
    EXPECT_EQ(style.backgroundImageURL, std::nullopt);
    expectSet("backgroundImageURL", QUrl::fromLocalFile(path).toEncoded().constData());
    EXPECT_EQ(style.backgroundImageURL, QUrl::fromLocalFile(path));
}

TEST_F(StyleFieldSetterTest, ACustomColourTakesThePlaceOfTheSelectionsUnlessItIsClear) {
    const auto selectAll = [this] {
        style.selectedMagicPreset = PresetCatalogues::magicPresets()[2];
        style.selectedGradient = GradientPreset();
        style.selectedSolidColor = SolidColor();
        style.backgroundImageURL = QUrl("file:///x.png");
    };
    for (const auto& [field, value] : {std::pair("customColor", "ff0000"), {"customColor.red", "0.5"}}) {
        SCOPED_TRACE(field);
        selectAll();
        expectSet(field, value);
        EXPECT_EQ(style.selectedMagicPreset, std::nullopt);
        EXPECT_EQ(style.selectedGradient, std::nullopt);
        EXPECT_EQ(style.selectedSolidColor, std::nullopt);
        EXPECT_EQ(style.backgroundImageURL, std::nullopt);
    }
    selectAll();
    expectSet("customColor", "00ff0000");
    EXPECT_NE(style.selectedMagicPreset, std::nullopt);
    EXPECT_NE(style.selectedGradient, std::nullopt);
    EXPECT_NE(style.selectedSolidColor, std::nullopt);
    EXPECT_NE(style.backgroundImageURL, std::nullopt);
}

TEST_F(StyleFieldSetterTest, SelectionsMadeOfColours) {
    expectSet("selectedGradient", "ff0000,00f,#0000ff@-90.5");
    ASSERT_TRUE(style.selectedGradient);
    EXPECT_EQ(style.selectedGradient->colors.size(), 3);
    EXPECT_EQ(style.selectedGradient->angle, -90.5);
    expectSet("selectedGradient", "ff0000,00f");
    EXPECT_EQ(style.selectedGradient->angle, 135.0);
    expectSet("selectedShadowScene", "Late: noon:ffffff,000000");
    EXPECT_EQ(style.selectedShadowScene->name, "Late: noon");
    EXPECT_EQ(style.selectedShadowScene->colors.size(), 2);
    EXPECT_FALSE(style.selectedShadowScene->isTexture);
    expectSet("selectedSolidColor", "ff0000");
    EXPECT_EQ(style.selectedSolidColor->color, parseHexColor(u"ff0000"));
}

TEST_F(StyleFieldSetterTest, NumbersOutOfTheirTypeAreRefused) {
    for (const char* text : {"", "abc", "nan", "NaN", "-nan", "inf", "-inf", "infinity", "1e999", "-1e400",
                             "1,5", " 1", "1 ", "0x10", "1.2.3", "--1", "1e", "\xd9\xa3"})
        expectRefused("borderRadius", text, "not a number");
    expectRefused("borderColor.red", "1.5", "0 to 1");
    expectRefused("gradientConfig.angle", "north", "not a number");
}

TEST_F(StyleFieldSetterTest, OtherBadValuesAreRefusedWithTheValidOnes) {
    expectRefused("mockupStyle", "Border", "defaultStyle, glassEffect, border");
    expectRefused("gradientConfig.style", "conic", "linear, radial, angular");
    expectRefused("showMockup", "yes", "true or false");
    expectRefused("showMockup", "1", "true or false");
    for (const char* color :
         {"", "#", "12345", "1234567", "gggggg", "##fff", "ff ff ff", " fff", "+12345", "red"})
        expectRefused("customColor", color, "3, 6 or 8");
    for (const char* size : {"", "1", "1,2,3", "a,1", "1,", "nan,1"})
        expectRefused("screenshotOffset", size, "WIDTH,HEIGHT");
    expectRefused("selectedSocialPreset", "Story", "Instagram/Story");
    for (const char* position : {"0", "6", "-1", "1.0", "01", ""})
        expectRefused("selectedMagicPreset", position, "1 to 5");
    expectRefused("selectedGradientPreset", "cinder", "Cinder, Trench");
    for (const char* gradient : {"", "ff0000", "ff0000,", "ff0000,0000ff@", "ff0000,0000ff@x", "@90"})
        expectRefused("selectedGradient", gradient, "two or more");
    for (const char* scene : {"", "Name", ":ffffff", "Name:", "Name:red"})
        expectRefused("selectedShadowScene", scene, "Name:ffffff,000000");
    for (const char* url : {"", "/nowhere/at.png", "/", "file:///nowhere.png"})
        expectRefused("backgroundImageURL", url, "file");
    expectRefused("textOverlays", "{}", "list");
}

TEST_F(StyleFieldSetterTest, UnknownNamesAreAnsweredWithTheValidOnes) {
    expectRefused("padd", "1", "valid fields: mockupStyle, showMockup");
    expectRefused("", "1", "valid fields");
    expectRefused("Padding", "1", "valid fields");
    expectRefused("gradientConfig.foo", "1", "gradientConfig has style, color1");
    expectRefused("gradientConfig.", "1", "gradientConfig has style");
    expectRefused("gradientConfig", "1", "parts");
    expectRefused("borderColor.hue", "1", "borderColor has red, green, blue, alpha");
    EXPECT_EQ(set("padding.x", "1"), "'padding' has no parts");
    EXPECT_EQ(set("selectedMagicPreset.id", "1"), "'selectedMagicPreset' has no parts");
}

} // namespace
} // namespace framora
