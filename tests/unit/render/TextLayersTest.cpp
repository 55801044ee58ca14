#include "editor/render/CompositionRasterizer.h"

#include "unit/render/TestPictures.h"

#include <cmath>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

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

TEST(TextLayers, ShowEastAsianLettersAndEmojiInTheirColors) {
    // What no font has is the same box for every letter.
    for (const auto& [one, other] :
         {std::pair{u"\u65e5", u"\u672c"}, {u"\u3042", u"\u3044"}, {u"\ud55c", u"\uad6d"}})
        EXPECT_NE(drawn({text(QString::fromUtf16(one))}), drawn({text(QString::fromUtf16(other))}));
    // A text font may have it too, as an outline in the text's red.
    const auto yellow = [](QRgb pixel) { return qGreen(pixel) > 150 && qBlue(pixel) < 100 ? 1.0 : 0.0; };
    EXPECT_GT(weighed(drawn({text(QString::fromUtf16(u"\U0001f600"))}), yellow).amount, 300);
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

/// One number a pixel.
struct Plane {
    int width;
    int height;
    std::vector<double> values;
    double at(int x, int y) const {
        const bool isInside = x >= 0 && x < width && y >= 0 && y < height;
        return isInside ? values[std::size_t(y) * std::size_t(width) + std::size_t(x)] : 0;
    }
};

template <typename Value> Plane planeOf(const QImage& image, const Value& value) {
    Plane plane{image.width(), image.height(), {}};
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            plane.values.push_back(value(image.pixel(x, y)) / 255.0);
    return plane;
}

/// A plane under a Gaussian, moved by so many pixels.
Plane blurred(const Plane& plane, double deviation, int shiftX = 0, int shiftY = 0) {
    const int radius = int(std::ceil(5 * deviation));
    std::vector<double> weights;
    double sum = 0;
    for (int i = -radius; i <= radius; ++i) {
        weights.push_back(std::exp(-0.5 * i * i / (deviation * deviation)));
        sum += weights.back();
    }
    const auto along = [&](const Plane& from, int stepX, int stepY) {
        Plane out{from.width, from.height, {}};
        for (int y = 0; y < from.height; ++y)
            for (int x = 0; x < from.width; ++x) {
                double value = 0;
                for (int i = -radius; i <= radius; ++i)
                    value += weights[std::size_t(i + radius)] / sum *
                             from.at(x + i * stepX - shiftX * stepX, y + i * stepY - shiftY * stepY);
                out.values.push_back(value);
            }
        return out;
    };
    return along(along(plane, 1, 0), 0, 1);
}

TEST(TextLayers, BlurTheirLettersByEightPointsAndTheirShadowByTwoAtEveryScaleAndTurn) {
    TextOverlay overlay = text(QStringLiteral("E"));
    const auto cut = [&](double scale) {
        const auto points = [=](int count) { return int(count * scale); };
        return drawn({overlay}, scale).copy(points(80), points(30), points(140), points(140));
    };
    const auto red = [](QRgb pixel) { return qRed(pixel); };
    for (const double scale : {1.0, 2.0})
        for (const double rotation : {0.0, 180.0}) {
            overlay.rotation = rotation;
            overlay.isBlurred = false;
            const Plane sharp = planeOf(cut(scale), red); // opaque red: alphas
            for (const bool isBlurred : {false, true}) {
                SCOPED_TRACE(testing::Message() << scale << ", " << rotation << ", " << isBlurred);
                overlay.isBlurred = isBlurred;
                const QImage image = cut(scale);
                const Plane soft = isBlurred ? blurred(sharp, 8 * scale) : sharp;
                const Plane shadow =
                    blurred(sharp, (isBlurred ? std::sqrt(68.0) : 2) * scale, int(scale), int(scale));
                double worst = 0;
                double worstShadow = 0;
                for (int y = 0; y < image.height(); ++y)
                    for (int x = 0; x < image.width(); ++x) {
                        const double letter = soft.at(x, y);
                        const double all = letter + 0.5 * shadow.at(x, y) * (1 - letter);
                        worst = std::max(worst, std::abs(qRed(image.pixel(x, y)) / 255.0 - letter));
                        worstShadow =
                            std::max(worstShadow, std::abs(qAlpha(image.pixel(x, y)) / 255.0 - all));
                    }
                EXPECT_LT(worst * 255, 1.5);
                EXPECT_LT(worstShadow * 255, 1.5);
            }
        }
}

TEST(TextLayers, LieOverTheScreenshotAndOverAScene) {
    Composition composition;
    composition.image = flatPicture(300, 200, Qt::white);
    composition.config = bareStyle();
    composition.config.padding = 0;
    ShadowScene scene;
    scene.colors = {{0, 0, 0, 1}, {1, 1, 1, 1}};
    composition.config.selectedShadowScene = scene;
    composition.config.shadowSceneMode = ShadowSceneMode::overlay;
    TextOverlay overlay = text(QStringLiteral("HOH"));
    overlay.color = {0.2, 0.6, 0.4, 1}; // no channel that the scene could not change
    composition.config.textOverlays = {overlay};
    const QImage image = CompositionRasterizer().drawFrame(composition, {300, 200}, 1);
    const auto isOverlay = [](QRgb pixel) { return pixel == qRgb(51, 153, 102) ? 1.0 : 0.0; };
    EXPECT_GT(weighed(image, isOverlay).amount, 300);
}

TEST(TextLayers, CountTheirPositionFromTheCanvas) {
    SocialMediaPreset preset;
    preset.width = 400;
    preset.height = 260;
    for (const bool hasPreset : {false, true})
        for (const QSizeF frame : {QSizeF(500, 440), QSizeF(280, 210)}) {
            Composition composition;
            composition.image = flatPicture(300, 200, Qt::transparent);
            composition.config = bareStyle();
            composition.config.padding = 20;
            if (hasPreset)
                composition.config.selectedSocialPreset = preset;
            else
                composition.config.selectedSocialPreset.reset();
            composition.config.textOverlays = {text(QStringLiteral("HOH"))};
            const QSizeF canvas = canvasSize({300, 200}, composition.config);
            ASSERT_EQ(canvas, hasPreset ? QSizeF(400, 260) : QSizeF(340, 240));
            composition.isRendering = true;
            const Ink ink = letters(CompositionRasterizer().drawFrame(composition, frame, 1));
            EXPECT_NEAR(ink.x, (frame.width() - canvas.width()) / 2 + 150, 2);
            EXPECT_NEAR(ink.y, (frame.height() - canvas.height()) / 2 + 100, 8);
        }
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
    // Large letters that go by just outside, pixel by pixel.
    overlay = text(QStringLiteral("I"));
    overlay.fontSize = 96;
    for (double beyond = 0; beyond < 150; ++beyond) {
        overlay.position = {300 + beyond, 100};
        EXPECT_EQ(drawn({overlay}, 2).size(), QSize(600, 400)) << beyond;
    }
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
