#include "editor/render/CompositionRasterizer.h"
#include "editor/render/ScreenshotRenderer.h"
#include "unit/render/TestPictures.h"

#include <QMetaProperty>
#include <QSet>
#include <climits>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

namespace framora {
namespace {

using Visit = std::function<void(const QVariant& changed, const QString& name)>;

void visitNumbers(const QVariant& value, double number, const QString& name, const Visit& visit);

/// Visits the numbers inside an optional or a list of T, of which there has to be one.
template <class T>
bool visitHeld(const QVariant& value, double number, const QString& name, const Visit& visit) {
    if (value.metaType() == QMetaType::fromType<std::optional<T>>()) {
        const auto held = value.value<std::optional<T>>();
        EXPECT_TRUE(held) << name.toStdString() << " is tested with a value";
        if (held)
            visitNumbers(QVariant::fromValue(*held), number, name,
                         [&](const QVariant& changed, const QString& field) {
                             visit(QVariant::fromValue(std::optional<T>(changed.value<T>())), field);
                         });
        return true;
    }
    if (value.metaType() == QMetaType::fromType<QList<T>>()) {
        const auto list = value.value<QList<T>>();
        EXPECT_FALSE(list.isEmpty()) << name.toStdString() << " is tested with an entry";
        for (qsizetype i = 0; i < list.size(); ++i)
            visitNumbers(QVariant::fromValue(list[i]), number, QStringLiteral("%1[%2]").arg(name).arg(i),
                         [&](const QVariant& changed, const QString& field) {
                             QList<T> copy = list;
                             copy[i] = changed.value<T>();
                             visit(QVariant::fromValue(copy), field);
                         });
        return true;
    }
    return false;
}

/// Calls visit() once for every number in a record, however deep, with the record in which that number is
/// `number`. A field of a kind that is not known here fails the test.
void visitNumbers(const QVariant& value, double number, const QString& name, const Visit& visit) {
    const QMetaType type = value.metaType();
    if (type == QMetaType::fromType<double>())
        return visit(number, name);
    if (type == QMetaType::fromType<int>()) {
        const double limit = std::numeric_limits<int>::max();
        return visit(number >= -limit && number <= limit ? int(number)
                     : number > 0                        ? INT_MAX
                                                         : INT_MIN,
                     name);
    }
    if (const QMetaObject* record = type.metaObject(); record && (type.flags() & QMetaType::IsGadget)) {
        for (int i = 0; i < record->propertyCount(); ++i) {
            const QMetaProperty field = record->property(i);
            visitNumbers(field.readOnGadget(value.constData()), number,
                         name + QLatin1Char('.') + QLatin1String(field.name()),
                         [&](const QVariant& changed, const QString& path) {
                             QVariant copy = value;
                             ASSERT_TRUE(field.writeOnGadget(copy.data(), changed)) << path.toStdString();
                             visit(copy, path);
                         });
        }
        return;
    }
    const bool isNoNumber = (type.flags() & QMetaType::IsEnumeration) ||
                            type == QMetaType::fromType<bool>() || type == QMetaType::fromType<QString>() ||
                            type == QMetaType::fromType<QUuid>() || type == QMetaType::fromType<QUrl>() ||
                            type == QMetaType::fromType<std::optional<QUrl>>();
    const auto visitAny = [&]<class... Ts>() { return (visitHeld<Ts>(value, number, name, visit) || ...); };
    EXPECT_TRUE(isNoNumber ||
                (visitAny.template
                 operator()<MagicPreset, ShadowScene, SolidColor, GradientPreset, SimpleGradientPreset,
                            SocialMediaPreset, TextOverlay, RedactRegion, Color>()))
        << name.toStdString() << " is of the unknown kind " << type.name();
}

/// Styles in which every field is set, and which together show every field.
std::vector<ScreenshotStyleConfig> fullStyles() {
    ScreenshotStyleConfig full;
    full.padding = 12;
    full.rotation = 8;
    full.imageScale = 90;
    full.screenshotOffset = {3, -2};
    full.selectedMagicPreset = MagicPreset{.colors = {{1, 0, 0, 1}, {0, 1, 0, 1}}};
    full.selectedShadowScene =
        ShadowScene{.name = {}, .colors = {{1, 0, 0, 1}, {0, 0, 1, 1}}, .isTexture = false};
    full.selectedSolidColor = SolidColor{.color = {0.2, 0.4, 0.6, 1}};
    full.selectedGradient = GradientPreset{.colors = {{1, 0, 0, 1}, {0, 1, 0, 1}}, .angle = 30};
    full.selectedSocialPreset = SocialMediaPreset{.platform = {}, .name = {}, .width = 80, .height = 60};
    full.redactRegions = {RedactRegion{.rect = {1, 2, 3, 4}}};
    TextOverlay text;
    text.text = QStringLiteral("ab");
    text.fontSize = 14;
    text.position = {40, 30};
    full.textOverlays = {text};
    full.gradientConfig.useThreeColors = true;
    full.gradientConfig.noiseAmount = 20;
    full.gradientConfig.saturation = 120;

    std::vector<ScreenshotStyleConfig> styles;
    for (const BackgroundType background : allCases<BackgroundType>())
        for (const bool isPlain : {true, false}) {
            ScreenshotStyleConfig style = full;
            style.backgroundType = background;
            style.mockupStyle = isPlain ? MockupStyle::border : MockupStyle::glassEffect;
            style.shadowSceneMode = isPlain ? ShadowSceneMode::underlay : ShadowSceneMode::overlay;
            style.gradientConfig.style = isPlain ? GradientStyle::linear : GradientStyle::angular;
            style.gradientConfig.blurAmount = isPlain ? 0 : 3;
            style.rotationX = isPlain ? 0 : 30;
            style.rotationY = isPlain ? 0 : -20;
            style.textOverlays[0].isBlurred = isPlain;
            styles.push_back(style);
        }
    return styles;
}

/// Draws the style as it is in the preview and, unless that is large, in the export.
void drawBoth(const ScreenshotStyleConfig& style, const std::string& name) {
    Composition composition;
    composition.image = noisePicture(31, 17);
    composition.config = style;
    composition.loadedBackgroundImage = noisePicture(9, 9);
    const QImage preview = CompositionRasterizer().draw(composition, {QSize(56, 40), 0.8, QPointF(28, 20)});
    EXPECT_EQ(preview.size(), QSize(56, 40)) << name;
    const QSizeF frame = outputFrame(pointSize(composition.image), style);
    if (!(frame.width() * frame.height() > 1e4)) // the bound is held elsewhere
        renderComposition(composition.image, style);
}

/// The style holds every selection. Those that hide what has changed are taken away.
void drawWhereItShows(ScreenshotStyleConfig style, const QString& name) {
    if (!name.startsWith(QLatin1String("style.selectedSocialPreset")))
        style.selectedSocialPreset.reset();
    for (const auto& [field, hideSelection] :
         {std::pair<const char*, void (*)(ScreenshotStyleConfig&)>{
              "style.selectedSolidColor", [](ScreenshotStyleConfig& s) { s.selectedSolidColor.reset(); }},
          {"style.selectedGradient.", [](ScreenshotStyleConfig& s) { s.selectedGradient.reset(); }},
          {"style.selectedMagicPreset", [](ScreenshotStyleConfig& s) { s.selectedMagicPreset.reset(); }},
          {"style.customColor", [](ScreenshotStyleConfig& s) { s.customColor.alpha = 0; }}}) {
        const bool isPrecise = name.startsWith(QLatin1String(field));
        if (isPrecise || style.backgroundType != BackgroundType::color)
            break;
        if (!name.startsWith(QLatin1String("style.selected")) &&
            !name.startsWith(QLatin1String("style.customColor")))
            break;
        hideSelection(style);
    }
    drawBoth(style, name.toStdString());
}

class StyleNumbers : public testing::TestWithParam<double> {};

TEST_P(StyleNumbers, GiveAPictureOrNothingInAnyField) {
    const auto styles = fullStyles();
    for (const ScreenshotStyleConfig& style : styles) {
        QSet<QString> names;
        visitNumbers(QVariant::fromValue(style), GetParam(), QStringLiteral("style"),
                     [&](const QVariant& changed, const QString& name) {
                         names.insert(name);
                         const auto config = changed.value<ScreenshotStyleConfig>();
                         drawWhereItShows(config, name);
                     });
        for (const char* name :
             {"style.padding", "style.screenshotOffset.height", "style.gradientConfig.color3.blue",
              "style.textOverlays[0].position.x", "style.redactRegions[0].rect.width",
              "style.selectedGradient.colors[1].alpha", "style.selectedSocialPreset.width",
              "style.selectedGradientPreset.config.angle", "style.shadowSceneOpacity"})
            EXPECT_TRUE(names.contains(QLatin1String(name))) << name;
        EXPECT_GT(names.size(), 80);
    }
}

INSTANTIATE_TEST_SUITE_P(Strange, StyleNumbers,
                         testing::Values(std::numeric_limits<double>::quiet_NaN(),
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::max(),
                                         -std::numeric_limits<double>::max(), 1e9, -1e9, 1e-300, 0.0, -1.0));

} // namespace
} // namespace framora
