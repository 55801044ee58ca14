#include "render-cli/StyleJson.h"

#include "editor/render/HexColor.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

void expectRefused(const char* json, const char* part) {
    TextOverlay overlay;
    const QString error = readTextOverlay(json, overlay);
    EXPECT_TRUE(error.contains(QString::fromLatin1(part))) << json << " gave: " << error.toStdString();
    EXPECT_FALSE(error.contains(u'\n'));
}

TEST(StyleJson, AnOverlayWithEveryMember) {
    TextOverlay overlay;
    EXPECT_EQ(
        readTextOverlay(R"({"id":"{8a1c6f2e-3b5d-4e6f-9a7b-1c2d3e4f5a6b}", "text":"Grüße\n2", "fontSize":12.5,
                                  "fontWeight":700, "color":"80ff0000", "position":{"x":3,"y":-4},
                                  "rotation":-30, "opacity":0.25, "isBlurred":true})",
                        overlay)
            .toStdString(),
        "");
    EXPECT_EQ(overlay.id, QUuid("8a1c6f2e-3b5d-4e6f-9a7b-1c2d3e4f5a6b"));
    EXPECT_EQ(overlay.text, QString::fromUtf8("Grüße\n2"));
    EXPECT_EQ(overlay.fontSize, 12.5);
    EXPECT_EQ(overlay.fontWeight, QFont::Bold);
    EXPECT_EQ(overlay.color, parseHexColor(u"80ff0000"));
    EXPECT_EQ(overlay.position, (Point{3, -4}));
    EXPECT_EQ(overlay.rotation, -30.0);
    EXPECT_EQ(overlay.opacity, 0.25);
    EXPECT_TRUE(overlay.isBlurred);
}

TEST(StyleJson, MembersLeftOutKeepANewOverlaysValues) {
    TextOverlay overlay;
    const TextOverlay before = overlay;
    EXPECT_EQ(readTextOverlay("{}", overlay), QString());
    EXPECT_EQ(overlay, before);
}

TEST(StyleJson, PlacesAndWeightsHaveTwoForms) {
    TextOverlay overlay;
    EXPECT_EQ(readTextOverlay(R"({"position":[1.5,2],"fontWeight":"semibold"})", overlay), QString());
    EXPECT_EQ(overlay.position, (Point{1.5, 2}));
    EXPECT_EQ(overlay.fontWeight, QFont::DemiBold);
}

TEST(StyleJson, WrongMembersAreNamed) {
    expectRefused("", "not JSON");
    expectRefused("{", "not JSON");
    expectRefused("[]", "not a JSON object");
    expectRefused("3", "JSON");
    expectRefused(R"({"txt":"a"})", "unknown member 'txt'; valid members: id, text, fontSize");
    expectRefused(R"({"text":3})", "text is not a string");
    expectRefused(R"({"fontSize":"12"})", "fontSize is not a number");
    expectRefused(R"({"fontSize":-1})", "fontSize is not a number from 0");
    expectRefused(R"({"fontWeight":"fat"})", "fontWeight");
    expectRefused(R"({"fontWeight":0})", "fontWeight");
    expectRefused(R"({"fontWeight":1.5})", "fontWeight");
    expectRefused(R"({"color":"red"})", "color is not a colour");
    expectRefused(R"({"color":16711680})", "color is not a colour");
    expectRefused(R"({"position":[1]})", "position is not [x, y]");
    expectRefused(R"({"position":[1,"2"]})", "position is not [x, y]");
    expectRefused(R"({"position":{"x":1,"z":2}})", "position is not [x, y]");
    expectRefused(R"({"opacity":1.5})", "opacity is not a number from 0 to 1");
    expectRefused(R"({"isBlurred":1})", "isBlurred");
    expectRefused(R"({"id":"7"})", "id is not a UUID");
    expectRefused(R"({"rotation":null})", "rotation is not a number");
}

TEST(StyleJson, ListsAreReadWholeOrNotAtAll) {
    QList<TextOverlay> overlays{TextOverlay{.text = QStringLiteral("kept")}};
    EXPECT_FALSE(readTextOverlays(R"([{"text":"a"},{"text":1}])", overlays).isEmpty());
    EXPECT_FALSE(readTextOverlays(R"([1])", overlays).isEmpty());
    ASSERT_EQ(overlays.size(), 1);
    EXPECT_EQ(readTextOverlays(R"([{"text":"a"},{"text":"b"}])", overlays), QString());
    ASSERT_EQ(overlays.size(), 2);
    EXPECT_NE(overlays[0].id, overlays[1].id);

    QList<RedactRegion> regions;
    EXPECT_EQ(readRedactRegions(R"([{"rect":[1,2,3,4],"style":"blackBar"}])", regions), QString());
    ASSERT_EQ(regions.size(), 1);
    EXPECT_EQ(regions[0].rect, (Rect{1, 2, 3, 4}));
    EXPECT_EQ(regions[0].style, RedactStyle::blackBar);
    EXPECT_FALSE(readRedactRegions(R"([{"style":"smear"}])", regions).isEmpty());
    EXPECT_FALSE(readRedactRegions(R"([{"rect":[1,2,3]}])", regions).isEmpty());
}

} // namespace
} // namespace framora
