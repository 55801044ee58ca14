#include "feedback/InteractiveToastView.h"
#include "feedback/Thumbnail.h"
#include "feedback/ToastView.h"

#include "platform/Localized.h"
#include "support/FixedAppearance.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr QSizeF panel(1920, 1080);

ToastPalette palette(bool dark) {
    FixedAppearance appearance;
    appearance.dark = dark;
    return ToastPalette::of(appearance);
}

QImage gradientPicture(QSize size, QImage::Format format = QImage::Format_RGB32) {
    QImage picture(size, format);
    QPainter painter(&picture);
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, QColor(250, 120, 60));
    gradient.setColorAt(1, QColor(40, 60, 200));
    painter.fillRect(picture.rect(), gradient);
    return picture;
}

InteractiveToastView interactive(const QImage& picture, const QString& message = QStringLiteral("Copied")) {
    return {message, QStringLiteral("doc.on.clipboard.fill"), [] {},
            picture, QStringLiteral("Click to edit"),         palette(false)};
}

/// Greatest alpha on the picture's edge.
int edgeAlpha(const QImage& image) {
    int most = 0;
    for (int x = 0; x < image.width(); ++x)
        most = std::max({most, qAlpha(image.pixel(x, 0)), qAlpha(image.pixel(x, image.height() - 1))});
    for (int y = 0; y < image.height(); ++y)
        most = std::max({most, qAlpha(image.pixel(0, y)), qAlpha(image.pixel(image.width() - 1, y))});
    return most;
}

TEST(ToastViews, theCardStandsCentredAboveTheBottomOfTheScreen) {
    const ToastView view(QStringLiteral("Copied"), QStringLiteral("photo"), true, palette(false));
    const QRectF card = view.cardRect(panel);
    EXPECT_NEAR(card.center().x(), 960, 1);
    EXPECT_LT(card.bottom(), 1080 - 48);
    EXPECT_GT(card.top(), 1080 * 0.8);
    EXPECT_TRUE(view.bounds(panel).contains(card));
    EXPECT_TRUE(QRectF(QPointF(0, 0), panel).contains(view.bounds(panel)));
}

TEST(ToastViews, thePictureCoversTheBoundsAtThePixelRatio) {
    const ToastView view(QStringLiteral("Copied"), QStringLiteral("photo"), true, palette(false));
    for (const double ratio : {1.0, 1.25, 2.0}) {
        const QImage image = view.paint(panel, ratio);
        EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(image.width(), std::lround(view.bounds(panel).width() * ratio));
        EXPECT_EQ(image.height(), std::lround(view.bounds(panel).height() * ratio));
    }
}

TEST(ToastViews, theShadowHasFadedAwayAtTheEdgeOfTheBounds) {
    for (const bool dark : {false, true}) {
        const ToastView plain(QStringLiteral("Copied"), QStringLiteral("photo"), true, palette(dark));
        EXPECT_LE(edgeAlpha(plain.paint(panel, 1)), 2);
    }
}

TEST(ToastViews, theCardIsOpaque) {
    const auto view = interactive(gradientPicture({400, 300}));
    const QImage image = view.paint(panel, 1);
    const QRectF card = view.cardRect(panel).translated(-view.bounds(panel).topLeft());
    const QRect inner = card.adjusted(8, 8, -8, -8).toRect();
    for (int y = inner.top(); y <= inner.bottom(); ++y)
        for (int x = inner.left(); x <= inner.right(); ++x)
            ASSERT_EQ(qAlpha(image.pixel(x, y)), 255) << x << ' ' << y;
}

TEST(ToastViews, lightAndDarkCardsDifferAndTextIsLegibleOnBoth) {
    for (const bool dark : {false, true}) {
        const ToastPalette colors = palette(dark);
        EXPECT_EQ(colors.card.lightness() < 128, dark);
        EXPECT_GT(std::abs(colors.text.lightness() - colors.card.lightness()), 150);
        EXPECT_GT(std::abs(colors.secondaryText.lightness() - colors.card.lightness()), 90);
    }
}

TEST(ToastViews, anAccentLikeTheCardIsMadeToStandOut) {
    FixedAppearance appearance;
    appearance.accent = QColor(0xff, 0xff, 0xff);
    const ToastPalette light = ToastPalette::of(appearance);
    EXPECT_GT(light.card.lightness() - light.tint.lightness(), 40);
    appearance.dark = true;
    appearance.accent = QColor(0x20, 0x20, 0x20);
    const ToastPalette dark = ToastPalette::of(appearance);
    EXPECT_GT(dark.tint.lightness() - dark.card.lightness(), 40);
}

/// Share of clearly red pixels inside the card.
double redShare(const ToastView& view) {
    const QImage image = view.paint(panel, 1);
    int red = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            red += qRed(pixel) > qBlue(pixel) + 60 && qRed(pixel) > qGreen(pixel) + 60;
        }
    return double(red) / (image.width() * image.height());
}

TEST(ToastViews, aFailureIsTintedRedAndASuccessIsNot) {
    const QString icon = QStringLiteral("xmark.circle.fill");
    EXPECT_GT(redShare({QStringLiteral("Failed"), icon, false, palette(false)}), 0.005);
    EXPECT_EQ(redShare({QStringLiteral("Copied"), icon, true, palette(false)}), 0);
}

TEST(ToastViews, aLongMessageIsShortenedInsideACardOfLimitedWidth) {
    const QString endless = QStringLiteral("A message that goes on and on ").repeated(20);
    const ToastView plain(endless, QStringLiteral("photo"), true, palette(false));
    EXPECT_LE(plain.cardRect(panel).width(), 440);
    const auto rich = interactive(gradientPicture({400, 300}), endless);
    EXPECT_LE(rich.cardRect(panel).width(), 440);
    const QSizeF narrow(320, 480);
    EXPECT_TRUE(QRectF(QPointF(0, 0), narrow).contains(plain.cardRect(narrow)));
    EXPECT_TRUE(QRectF(QPointF(0, 0), narrow).contains(rich.cardRect(narrow)));
    // Nothing runs over the card's right edge.
    const QImage image = plain.paint(panel, 1);
    const QRectF card = plain.cardRect(panel).translated(-plain.bounds(panel).topLeft());
    for (int y = int(card.top()) + 18; y < card.bottom() - 18; ++y)
        for (int x = int(card.right()) - 12; x < card.right() - 2; ++x)
            ASSERT_EQ(QColor(image.pixel(x, y)), plain.cardColor());
}

TEST(ToastViews, theHintIsInWords) {
    EXPECT_EQ(localized(QStringLiteral("toast.edit")), QStringLiteral("Click to edit"));
}

TEST(ToastViews, hoveringShowsTheEditActionAndLeavingHidesItAgain) {
    auto view = interactive(gradientPicture({400, 300}));
    const QImage resting = view.paint(panel, 1);
    EXPECT_FALSE(view.setHovered(false));
    EXPECT_TRUE(view.setHovered(true));
    EXPECT_FALSE(view.setHovered(true));
    const QImage hovered = view.paint(panel, 1);
    EXPECT_EQ(hovered.size(), resting.size());
    EXPECT_NE(hovered, resting);
    EXPECT_TRUE(view.setHovered(false));
    EXPECT_EQ(view.paint(panel, 1), resting);
}

TEST(ToastViews, theThumbnailKeepsThePicturesAspect) {
    // The wider the picture's thumbnail, the wider the card.
    const double wide = interactive(gradientPicture({3200, 1600})).cardRect(panel).width();
    const double tall = interactive(gradientPicture({800, 1600})).cardRect(panel).width();
    EXPECT_GT(wide, tall + 40);
    for (const QSize size : {QSize(1, 1), QSize(4000, 2), QSize(2, 4000), QSize(64, 64)}) {
        const auto view = interactive(gradientPicture(size));
        EXPECT_FALSE(view.paint(panel, 2).isNull());
        EXPECT_LE(view.cardRect(panel).width(), 440);
    }
    EXPECT_FALSE(interactive(QImage()).paint(panel, 1).isNull());
}

TEST(ToastViews, aSmallPictureIsShownInItsPointsAndNotBlownUp) {
    QImage fine = gradientPicture({160, 100});
    fine.setDevicePixelRatio(2);
    EXPECT_EQ(interactive(fine).cardRect(panel).width(),
              interactive(gradientPicture({80, 50})).cardRect(panel).width());
    EXPECT_LT(interactive(fine).cardRect(panel).width(),
              interactive(gradientPicture({160, 100})).cardRect(panel).width());
}

TEST(Thumbnail, isTheMeanOfEachCell) {
    QImage picture(400, 200, QImage::Format_RGB32);
    picture.fill(QColor(200, 100, 0));
    for (int y = 0; y < 200; ++y)
        for (int x = 200; x < 400; ++x)
            picture.setPixelColor(x, y, QColor(0, 50, 250));
    const QImage small = thumbnailOf(picture, {40, 40});
    EXPECT_EQ(small.size(), QSize(40, 20));
    EXPECT_EQ(small.pixelColor(5, 5), QColor(200, 100, 0));
    EXPECT_EQ(small.pixelColor(35, 5), QColor(0, 50, 250));
}

TEST(Thumbnail, ofAFineGridIsItsMeanAndNotAMoire) {
    QImage picture(1200, 1200, QImage::Format_RGB32);
    for (int y = 0; y < 1200; ++y)
        for (int x = 0; x < 1200; ++x)
            picture.setPixel(x, y, (x + y) % 2 ? 0xffffffff : 0xff000000);
    const QImage small = thumbnailOf(picture, {240, 240});
    for (int y = 0; y < 240; ++y)
        for (int x = 0; x < 240; ++x)
            ASSERT_NEAR(qRed(small.pixel(x, y)), 127, 12);
}

TEST(Thumbnail, keepsTransparencyWithoutDarkEdges) {
    for (const auto format :
         {QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_RGBA8888}) {
        QImage picture(800, 800, format);
        picture.fill(Qt::transparent);
        QPainter(&picture).fillRect(0, 0, 401, 800, Qt::white);
        const QImage small = thumbnailOf(picture, {80, 80}).convertToFormat(QImage::Format_ARGB32);
        EXPECT_EQ(small.pixelColor(10, 10), QColor(Qt::white));
        EXPECT_EQ(small.pixelColor(70, 10).alpha(), 0);
        for (int x = 0; x < 80; ++x) {
            if (small.pixelColor(x, 40).alpha() > 0) {
                EXPECT_EQ(small.pixelColor(x, 40).red(), 255) << x;
            }
        }
    }
}

TEST(Thumbnail, leavesASmallPictureAsItIs) {
    const QImage picture = gradientPicture({30, 20});
    EXPECT_EQ(thumbnailOf(picture, {40, 40}), picture);
    EXPECT_TRUE(thumbnailOf(QImage(), {40, 40}).isNull());
}

} // namespace
} // namespace framora
