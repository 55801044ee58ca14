#include "editor/model/RedactRegion.h"
#include "editor/model/TextOverlay.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(TextOverlay, SameContentWithAnotherIdIsNotEqual) {
    const TextOverlay first{.text = QStringLiteral("Hello")};
    TextOverlay second{.text = QStringLiteral("Hello")};
    EXPECT_NE(first.id, second.id);
    EXPECT_NE(first, second);
    second.id = first.id;
    EXPECT_EQ(first, second);
}

TEST(TextOverlay, EveryFieldCounts) {
    const TextOverlay base;
    const auto differs = [&base](auto change) {
        TextOverlay changed = base;
        change(changed);
        return changed != base;
    };
    EXPECT_FALSE(differs([](TextOverlay&) {}));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.text = QStringLiteral("a"); }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.fontSize = 24.000001; }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.fontWeight = QFont::Bold; }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.color.blue = 0.5; }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.position.y = 1e-15; }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.rotation = 1.0; }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.opacity = 0.5; }));
    EXPECT_TRUE(differs([](TextOverlay& o) { o.isBlurred = true; }));
}

TEST(TextOverlay, ANewOneIsWhiteAt24Points) {
    const TextOverlay overlay;
    EXPECT_EQ(overlay.fontSize, 24.0);
    EXPECT_EQ(overlay.color, Color::white());
    EXPECT_EQ(overlay.opacity, 1.0);
    EXPECT_FALSE(overlay.id.isNull());
}

TEST(RedactRegion, EveryFieldCounts) {
    const RedactRegion base{.rect = {1, 2, 3, 4}};
    const RedactRegion twin{.rect = {1, 2, 3, 4}};
    EXPECT_NE(base, twin) << "ids are fresh";
    RedactRegion changed = base;
    EXPECT_EQ(base, changed);
    changed.rect.height = 4.0 + 1e-15;
    EXPECT_NE(base, changed);
    changed = base;
    changed.style = RedactStyle::blackBar;
    EXPECT_NE(base, changed);
}

} // namespace
} // namespace framora
