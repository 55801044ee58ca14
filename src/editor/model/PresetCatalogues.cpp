#include "editor/model/PresetCatalogues.h"

#include "editor/render/HexColor.h"

namespace framora {
namespace {

MagicPreset magic(QStringView hex) {
    return {.colors = {parseHexColor(hex)}};
}

SimpleGradientPreset twoColors(const QString& name, QStringView first, QStringView second) {
    return {.name = name,
            .config = {.color1 = parseHexColor(first),
                       .color2 = parseHexColor(second),
                       .color3 = parseHexColor(second),
                       .useThreeColors = false}};
}

SimpleGradientPreset threeColors(const QString& name, QStringView first, QStringView second,
                                 QStringView third) {
    return {.name = name,
            .config = {.color1 = parseHexColor(first),
                       .color2 = parseHexColor(second),
                       .color3 = parseHexColor(third),
                       .useThreeColors = true}};
}

SocialMediaPreset social(const char* platform, const char* name, int width, int height, const char* icon,
                         const char* ratio) {
    return {.platform = QString::fromLatin1(platform),
            .name = QString::fromLatin1(name),
            .width = width,
            .height = height,
            .icon = QString::fromLatin1(icon),
            .ratio = QString::fromLatin1(ratio)};
}

} // namespace

const QList<MagicPreset>& PresetCatalogues::magicPresets() {
    static const QList<MagicPreset> presets{
        magic(u"ffffff"), magic(u"1a1a1a"), magic(u"667eea"), magic(u"f953c6"), magic(u"11998e"),
    };
    return presets;
}

const QList<SimpleGradientPreset>& PresetCatalogues::simpleGradientPresets() {
    static const QList<SimpleGradientPreset> presets{
        twoColors(QStringLiteral("Cinder"), u"120806", u"6b1f14"),
        twoColors(QStringLiteral("Trench"), u"050a14", u"233a52"),
        twoColors(QStringLiteral("Black Pine"), u"070f0b", u"2f5a45"),
        twoColors(QStringLiteral("Obsidian Sand"), u"0e0c0b", u"6a5a4a"),
        threeColors(QStringLiteral("Midnight Surge"), u"020409", u"0b1f2a", u"1f4e5f"),
    };
    return presets;
}

const QList<SocialMediaPreset>& PresetCatalogues::socialMediaPresets() {
    static const QList<SocialMediaPreset> presets{
        social("Twitter", "Tweet", 1200, 675, "bird", "16:9"),
        social("Twitter", "Cover", 1500, 500, "bird", "3:1"),
        social("YouTube", "Thumbnail", 1280, 720, "play.rectangle.fill", "16:9"),
        social("YouTube", "Banner", 2560, 1440, "play.rectangle.fill", "16:9"),
        social("Instagram", "Post", 1080, 1080, "camera", "1:1"),
        social("Instagram", "Portrait", 1080, 1350, "camera", "4:5"),
        social("Instagram", "Story", 1080, 1920, "camera", "9:16"),
        social("Pinterest", "Long", 1000, 2100, "pin", "10:21"),
        social("Pinterest", "Optimal", 1000, 1500, "pin", "2:3"),
        social("Pinterest", "Square", 1000, 1000, "pin", "1:1"),
        social("Dribbble", "Shot", 1600, 1200, "basketball", "4:3"),
        social("Dribbble", "Full", 1600, 2400, "basketball", "2:3"),
        social("LinkedIn", "Post", 1200, 627, "person.crop.rectangle", "1.91:1"),
        social("LinkedIn", "Cover", 1584, 396, "person.crop.rectangle", "4:1"),
        social("Standard", "16:9", 1920, 1080, "rectangle", "16:9"),
        social("Standard", "4:3", 1920, 1440, "rectangle", "4:3"),
        social("Standard", "1:1", 1080, 1080, "square", "1:1"),
        social("Standard", "3:2", 1920, 1280, "rectangle", "3:2"),
    };
    return presets;
}

} // namespace framora
