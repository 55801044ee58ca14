#include "editor/render/CompositionRasterizer.h"

#include "unit/render/TestPictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

TextOverlay text(const QString& words) {
    TextOverlay overlay;
    overlay.text = words;
    overlay.fontSize = 40;
    overlay.color = {1, 0, 0, 1};
    overlay.position = {150, 100};
    return overlay;
}

/// A canvas of 300 x 200 points with nothing but the texts.
QImage drawn(const QList<TextOverlay>& overlays, double scale = 1, bool isRendering = true) {
    Composition composition;
    composition.image = flatPicture(300, 200, Qt::transparent);
    composition.config = bareStyle();
    composition.config.backgroundType = BackgroundType::transparent;
    composition.config.padding = 0;
    composition.config.textOverlays = overlays;
    composition.isRendering = isRendering;
    return CompositionRasterizer().drawFrame(composition, {300, 200}, scale);
}

/// The sum of alpha, in whole pixels, and its middle.
struct Ink {
    double amount = 0;
    double x = 0;
    double y = 0;
};

template <typename Weight> Ink weighed(const QImage& image, const Weight& weight) {
    Ink ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const double share = weight(image.pixel(x, y));
            ink.amount += share;
            ink.x += share * (x + 0.5);
            ink.y += share * (y + 0.5);
        }
    ink.x /= ink.amount;
    ink.y /= ink.amount;
    return ink;
}

/// The letters alone: the shadow is black. The pictures are premultiplied.
Ink letters(const QImage& image) {
    return weighed(image, [](QRgb pixel) { return qRed(pixel) / 255.0; });
}

TEST(TextLayers, StandInTheMiddleOfTheirPosition) {
    const Ink ink = letters(drawn({text(QStringLiteral("HOH"))}));
    EXPECT_GT(ink.amount, 300);
    EXPECT_NEAR(ink.x, 150, 2);
    EXPECT_NEAR(ink.y, 100, 8) << "the lines' middle, which is not the capitals'";
}

TEST(TextLayers, AreAlikeAtEveryScale) {
    const Ink one = letters(drawn({text(QStringLiteral("Framora"))}));
    const Ink two = letters(drawn({text(QStringLiteral("Framora"))}, 2));
    EXPECT_NEAR(two.amount / one.amount, 4, 0.1);
    EXPECT_NEAR(two.x / 2, one.x, 0.3);
    EXPECT_NEAR(two.y / 2, one.y, 0.6) << "baselines stand on whole pixels";
}

TEST(TextLayers, GrowHeavierWithTheirWeight) {
    TextOverlay overlay = text(QStringLiteral("Framora"));
    const double normal = letters(drawn({overlay})).amount;
    overlay.fontWeight = QFont::Black;
    EXPECT_GT(letters(drawn({overlay})).amount, 1.2 * normal);
}

TEST(TextLayers, TurnClockwiseAboutTheirMiddle) {
    TextOverlay overlay = text(QStringLiteral("|.."));
    const double upright = letters(drawn({overlay})).x;
    overlay.rotation = 90;
    const Ink turned = letters(drawn({overlay}));
    EXPECT_LT(upright, 149) << "the stroke is left of the dots";
    EXPECT_LT(turned.y, 99) << "and now above them";
}

TEST(TextLayers, FadeWithTheirShadow) {
    TextOverlay overlay = text(QStringLiteral("Framora"));
    const auto alpha = [](QRgb pixel) { return qAlpha(pixel) / 255.0; };
    const double letter = letters(drawn({overlay})).amount;
    const double all = weighed(drawn({overlay}), alpha).amount;
    EXPECT_GT(all, 1.1 * letter) << "there is a shadow";
    overlay.opacity = 0.5;
    EXPECT_NEAR(letters(drawn({overlay})).amount, letter / 2, letter * 0.02);
    overlay.opacity = 0;
    EXPECT_EQ(drawn({overlay}), drawn({}));
}

TEST(TextLayers, CastABlackShadowDownToTheRight) {
    // A dot, so that the shadow's middle can be told from the text's.
    TextOverlay overlay = text(QStringLiteral("."));
    overlay.fontSize = 30;
    const QImage image = drawn({overlay}, 4);
    const Ink dot = letters(image);
    const Ink shadow = weighed(image, [](QRgb pixel) { return (qAlpha(pixel) - qRed(pixel)) / 255.0; });
    EXPECT_GT(shadow.x, dot.x + 4);
    EXPECT_GT(shadow.y, dot.y + 4);
    // Half of the text's alpha; what the dot itself hides is missing.
    EXPECT_LT(shadow.amount, dot.amount / 2);
    EXPECT_GT(shadow.amount, dot.amount / 5);
}

TEST(TextLayers, BlurKeepsTheInkAndSpreadsIt) {
    TextOverlay overlay = text(QStringLiteral("O"));
    const QImage sharp = drawn({overlay});
    overlay.isBlurred = true;
    const QImage soft = drawn({overlay});
    EXPECT_NEAR(letters(soft).x, letters(sharp).x, 0.5);
    const auto strongest = [](const QImage& image) {
        int most = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                most = std::max(most, qAlpha(image.pixel(x, y)));
        return most;
    };
    EXPECT_EQ(strongest(sharp), 255);
    EXPECT_LT(strongest(soft), 150);
    EXPECT_GT(qAlpha(soft.pixel(int(letters(sharp).x), int(letters(sharp).y))), 20) << "the hole is filled";
}

TEST(TextLayers, LieInTheirOrderAndBreakLines) {
    TextOverlay under = text(QStringLiteral("XXXX"));
    TextOverlay over = under;
    over.id = QUuid::createUuid();
    over.color = {0, 0, 1, 1};
    EXPECT_LT(letters(drawn({under, over})).amount, letters(drawn({over, under})).amount / 4);
    const Ink lines = letters(drawn({text(QStringLiteral("XX\nXX"))}));
    EXPECT_NEAR(lines.y, 100, 8);
    EXPECT_GT(lines.amount, 1.5 * letters(drawn({text(QStringLiteral("XX"))})).amount);
}

TEST(TextLayers, OutOfSightOrOutOfReasonTheyAreNothing) {
    const QImage nothing = drawn({});
    for (const double odd : {std::nan(""), double(INFINITY), -5.0, 0.0}) {
        TextOverlay overlay = text(QStringLiteral("X"));
        overlay.fontSize = odd;
        EXPECT_EQ(drawn({overlay}), nothing);
    }
    TextOverlay overlay = text(QStringLiteral("X"));
    overlay.position = {1e12, 5};
    EXPECT_EQ(drawn({overlay}), nothing);
    overlay.position = {std::nan(""), 5};
    EXPECT_EQ(drawn({overlay}), nothing);
    overlay = text(QStringLiteral("X"));
    overlay.fontSize = 1e7; // a picture somewhere in a letter
    EXPECT_EQ(drawn({overlay}).size(), nothing.size());
}

TEST(TextLayers, AreKeptFromOnePictureToTheNext) {
    Composition composition;
    composition.image = flatPicture(300, 200, Qt::white);
    composition.config = bareStyle();
    composition.config.padding = 20;
    composition.config.textOverlays = {text(QStringLiteral("Framora"))};
    CompositionRasterizer kept;
    const QImage first = kept.drawFrame(composition, {340, 240}, 1);
    EXPECT_EQ(kept.drawFrame(composition, {340, 240}, 1), first);
    composition.config.textOverlays[0].rotation = 30;
    EXPECT_EQ(kept.drawFrame(composition, {340, 240}, 1),
              CompositionRasterizer().drawFrame(composition, {340, 240}, 1));
}

} // namespace
} // namespace framora
