#include "platform/Symbols.h"

#include <QRawFont>
#include <QSet>
#include <gtest/gtest.h>

namespace framora {
namespace {

const QRawFont& iconFont() {
    static const QRawFont font = QRawFont::fromFont(QFont(symbolFontFamily()));
    return font;
}

TEST(Symbols, everySymbolThatTheProgramShowsHasAGlyph) {
    for (const QStringView name : {u"f.square.fill",
                                   u"doc.on.clipboard.fill",
                                   u"doc.on.clipboard",
                                   u"macwindow",
                                   u"xmark.circle.fill",
                                   u"checkmark.circle.fill",
                                   u"sidebar.left",
                                   u"plus.magnifyingglass",
                                   u"minus.magnifyingglass",
                                   u"arrow.counterclockwise",
                                   u"square.and.arrow.up",
                                   u"square.and.arrow.down",
                                   u"paintbrush",
                                   u"photo",
                                   u"square.on.square",
                                   u"rotate.left",
                                   u"rotate.right",
                                   u"checkerboard.rectangle",
                                   u"plus.circle.fill",
                                   u"rectangle.3.group",
                                   u"2.circle.fill",
                                   u"3.circle.fill",
                                   u"dice.fill",
                                   u"eyedropper",
                                   u"arrow.up.left.and.arrow.down.right",
                                   u"1.magnifyingglass",
                                   u"bird",
                                   u"play.rectangle.fill",
                                   u"camera",
                                   u"pin",
                                   u"basketball",
                                   u"person.crop.rectangle",
                                   u"rectangle",
                                   u"square",
                                   u"exclamationmark.triangle.fill",
                                   u"record.circle",
                                   u"gearshape",
                                   u"info.circle",
                                   u"dock.rectangle",
                                   u"speaker.wave.1.fill",
                                   u"speaker.wave.2.fill",
                                   u"music.note",
                                   u"play.circle.fill",
                                   u"camera.viewfinder",
                                   u"pencil",
                                   u"window.minimize",
                                   u"window.maximize",
                                   u"window.close"}) {
        EXPECT_TRUE(symbolGlyph(name)) << name.toString().toStdString();
    }
}

TEST(Symbols, everyGlyphIsInTheInstalledIconFont) {
    ASSERT_EQ(iconFont().familyName(), symbolFontFamily());
    for (const QString& name : symbolNames()) {
        const auto glyph = symbolGlyph(name);
        ASSERT_TRUE(glyph);
        EXPECT_TRUE(iconFont().supportsCharacter(*glyph)) << name.toStdString();
    }
}

TEST(Symbols, everyOutlineStaysInItsSquareAndDrawsSomething) {
    const QRectF box(10, 20, 24, 24);
    for (const QString& name : symbolNames()) {
        const QRectF bounds = symbolPath(name, box).boundingRect();
        EXPECT_GT(bounds.width() * bounds.height(), 0) << name.toStdString();
        EXPECT_TRUE(box.adjusted(-0.01, -0.01, 0.01, 0.01).contains(bounds)) << name.toStdString();
        EXPECT_NEAR(bounds.center().x(), 22, 3) << name.toStdString();
    }
}

TEST(Symbols, noTwoSymbolsLookTheSame) {
    QSet<QByteArray> seen;
    for (const QString& name : symbolNames()) {
        const QImage image = symbolImage(name, 32, Qt::black, 1);
        ASSERT_FALSE(image.isNull()) << name.toStdString();
        const QByteArray pixels(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
        EXPECT_FALSE(seen.contains(pixels)) << name.toStdString();
        seen.insert(pixels);
    }
}

TEST(Symbols, anUnknownNameHasNeitherGlyphNorImage) {
    EXPECT_FALSE(symbolGlyph(u"no.such.symbol"));
    EXPECT_TRUE(symbolPath(u"no.such.symbol", QRectF(0, 0, 10, 10)).isEmpty());
    EXPECT_TRUE(symbolImage(u"no.such.symbol", 10, Qt::black, 1).isNull());
}

TEST(Symbols, anImageIsTintedAndCountsItsPixelsByTheRatio) {
    const QImage image = symbolImage(u"square.on.square", 17, QColor(200, 30, 40), 2);
    EXPECT_EQ(image.size(), QSize(34, 34));
    EXPECT_EQ(image.devicePixelRatio(), 2);
    bool solid = false;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            solid = solid || image.pixelColor(x, y) == QColor(200, 30, 40);
    EXPECT_TRUE(solid);
}

} // namespace
} // namespace framora
