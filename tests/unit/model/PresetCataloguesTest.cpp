#include "editor/model/PresetCatalogues.h"

#include "editor/render/HexColor.h"

#include <QSet>
#include <gtest/gtest.h>
#include <thread>

namespace framora {
namespace {

using namespace PresetCatalogues;

TEST(PresetCatalogues, MagicPresetsAreFiveSingleColours) {
    const char16_t* expected[] = {u"ffffff", u"1a1a1a", u"667eea", u"f953c6", u"11998e"};
    ASSERT_EQ(magicPresets().size(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(magicPresets()[i].colors, QList<Color>{parseHexColor(expected[i])}) << i;
}

TEST(PresetCatalogues, SimpleGradientsAreTheFiveDarkOnes) {
    struct Row {
        const char* name;
        const char16_t* colors[3];
        bool three;
    };
    const Row rows[] = {
        {"Cinder", {u"120806", u"6b1f14", u"6b1f14"}, false},
        {"Trench", {u"050a14", u"233a52", u"233a52"}, false},
        {"Black Pine", {u"070f0b", u"2f5a45", u"2f5a45"}, false},
        {"Obsidian Sand", {u"0e0c0b", u"6a5a4a", u"6a5a4a"}, false},
        {"Midnight Surge", {u"020409", u"0b1f2a", u"1f4e5f"}, true},
    };
    ASSERT_EQ(simpleGradientPresets().size(), 5);
    for (int i = 0; i < 5; ++i) {
        const SimpleGradientPreset& preset = simpleGradientPresets()[i];
        EXPECT_EQ(preset.name.toStdString(), rows[i].name);
        const SimpleGradientConfig expected{GradientStyle::linear,
                                            parseHexColor(rows[i].colors[0]),
                                            parseHexColor(rows[i].colors[1]),
                                            parseHexColor(rows[i].colors[2]),
                                            rows[i].three,
                                            135.0,
                                            0.0,
                                            0.0,
                                            100.0,
                                            100.0};
        EXPECT_EQ(preset.config, expected) << rows[i].name;
    }
}

TEST(PresetCatalogues, CinderUsesTwoColoursThoughItsThirdIsSet) {
    const SimpleGradientConfig& cinder = simpleGradientPresets().first().config;
    EXPECT_FALSE(cinder.useThreeColors);
    EXPECT_EQ(cinder.color3, parseHexColor(u"6b1f14"));
}

TEST(PresetCatalogues, SocialMediaPresetsStandInTheirOrder) {
    struct Row {
        const char *platform, *name;
        int width, height;
        const char *icon, *ratio;
    };
    const Row rows[] = {
        {"Twitter", "Tweet", 1200, 675, "bird", "16:9"},
        {"Twitter", "Cover", 1500, 500, "bird", "3:1"},
        {"YouTube", "Thumbnail", 1280, 720, "play.rectangle.fill", "16:9"},
        {"YouTube", "Banner", 2560, 1440, "play.rectangle.fill", "16:9"},
        {"Instagram", "Post", 1080, 1080, "camera", "1:1"},
        {"Instagram", "Portrait", 1080, 1350, "camera", "4:5"},
        {"Instagram", "Story", 1080, 1920, "camera", "9:16"},
        {"Pinterest", "Long", 1000, 2100, "pin", "10:21"},
        {"Pinterest", "Optimal", 1000, 1500, "pin", "2:3"},
        {"Pinterest", "Square", 1000, 1000, "pin", "1:1"},
        {"Dribbble", "Shot", 1600, 1200, "basketball", "4:3"},
        {"Dribbble", "Full", 1600, 2400, "basketball", "2:3"},
        {"LinkedIn", "Post", 1200, 627, "person.crop.rectangle", "1.91:1"},
        {"LinkedIn", "Cover", 1584, 396, "person.crop.rectangle", "4:1"},
        {"Standard", "16:9", 1920, 1080, "rectangle", "16:9"},
        {"Standard", "4:3", 1920, 1440, "rectangle", "4:3"},
        {"Standard", "1:1", 1080, 1080, "square", "1:1"},
        {"Standard", "3:2", 1920, 1280, "rectangle", "3:2"},
    };
    ASSERT_EQ(socialMediaPresets().size(), std::ssize(rows));
    for (int i = 0; i < socialMediaPresets().size(); ++i) {
        const SocialMediaPreset& preset = socialMediaPresets()[i];
        EXPECT_EQ(preset.platform.toStdString(), rows[i].platform) << i;
        EXPECT_EQ(preset.name.toStdString(), rows[i].name) << i;
        EXPECT_EQ(preset.width, rows[i].width) << i;
        EXPECT_EQ(preset.height, rows[i].height) << i;
        EXPECT_EQ(preset.icon.toStdString(), rows[i].icon) << i;
        EXPECT_EQ(preset.ratio.toStdString(), rows[i].ratio) << i;
    }
}

TEST(PresetCatalogues, EntriesOfOnePlatformStandTogether) {
    QSet<QString> closed;
    QString current;
    for (const SocialMediaPreset& preset : socialMediaPresets()) {
        if (preset.platform == current)
            continue;
        EXPECT_FALSE(closed.contains(preset.platform)) << preset.platform.toStdString();
        closed.insert(current);
        current = preset.platform;
    }
}

TEST(PresetCatalogues, NamesRepeatAndIdsDoNot) {
    QSet<QUuid> ids;
    int posts = 0;
    int covers = 0;
    for (const SocialMediaPreset& preset : socialMediaPresets()) {
        EXPECT_FALSE(preset.id.isNull());
        ids.insert(preset.id);
        posts += preset.name == u"Post";
        covers += preset.name == u"Cover";
    }
    EXPECT_EQ(posts, 2);
    EXPECT_EQ(covers, 2);
    for (const MagicPreset& preset : magicPresets())
        ids.insert(preset.id);
    for (const SimpleGradientPreset& preset : simpleGradientPresets())
        ids.insert(preset.id);
    EXPECT_EQ(ids.size(), 18 + 5 + 5);
}

TEST(PresetCatalogues, TwoReadsGiveTheSameEntriesFromAnyThread) {
    QList<SocialMediaPreset> seen[4];
    {
        std::jthread readers[4];
        for (int i = 0; i < 4; ++i)
            readers[i] = std::jthread([&seen, i] { seen[i] = socialMediaPresets(); });
    }
    for (const auto& list : seen)
        EXPECT_EQ(list, socialMediaPresets());
    const QList<MagicPreset> magic = magicPresets();
    EXPECT_EQ(magic, magicPresets());
    const QList<SimpleGradientPreset> gradients = simpleGradientPresets();
    EXPECT_EQ(gradients, simpleGradientPresets());
}

} // namespace
} // namespace framora
