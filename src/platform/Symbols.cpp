#include "platform/Symbols.h"

#include <QFile>
#include <QFont>
#include <QPainter>
#include <QRawFont>
#include <algorithm>
#include <array>
#include <cmath>

namespace framora {
namespace {

/// A letter, digit or sign that belongs to a symbol. Geometry in fractions of the design square.
struct Mark {
    char32_t base = 0; ///< The glyph that carries the mark.
    char16_t letter = 0;
    double centerX = 0.5;
    double centerY = 0.5;
    double height = 0.4; ///< Of the letter's outline, or its width where that is more.
    bool cutOut = true;  ///< Cut out of the base, or added to it.
};

struct Entry {
    QStringView name;
    char32_t glyph;
    Mark mark = {};
};

constexpr std::array symbols{
    Entry{u"1.magnifyingglass", 0xF3A6, {0xF349, u'1', 0.398, 0.398, 0.25, false}},
    Entry{u"2.circle.fill", 0xF3A7, {0xF12F, u'2', 0.5, 0.5, 0.42, true}},
    Entry{u"3.circle.fill", 0xF3AA, {0xF12F, u'3', 0.5, 0.5, 0.42, true}},
    Entry{u"arrow.counterclockwise", 0xF459},
    Entry{u"arrow.up.left.and.arrow.down.right", 0xF04C},
    Entry{u"arrow.uturn.backward", 0xF54C},
    Entry{u"arrow.uturn.forward", 0xF44E},
    Entry{u"basketball", 0xF1E0},
    Entry{u"bird", 0xF544},
    Entry{u"camera", 0xF100},
    Entry{u"camera.viewfinder", 0xF2F1},
    Entry{u"checkerboard.rectangle", 0xF13A},
    Entry{u"checkmark", 0xF12C},
    Entry{u"checkmark.circle.fill", 0xF5E0},
    Entry{u"chevron.down", 0xF140},
    Entry{u"circle.lefthalf.filled", 0xF301},
    Entry{u"dice.fill", 0xF1CE},
    Entry{u"doc.on.clipboard", 0xF14D},
    Entry{u"doc.on.clipboard.fill", 0xF14E},
    Entry{u"doc.on.doc", 0xF18F},
    Entry{u"doc.text", 0xF219},
    Entry{u"dock.rectangle", 0xF379},
    Entry{u"drop.fill", 0xF58C},
    Entry{u"exclamationmark.triangle.fill", 0xF026},
    Entry{u"eyedropper", 0xF20A},
    Entry{u"f.square.fill", 0xF19F, {0xF12E, u'F', 0.515, 0.5, 0.44, true}},
    Entry{u"gearshape", 0xF493},
    Entry{u"info.circle", 0xF2FD},
    Entry{u"keyboard", 0xF30C},
    Entry{u"macwindow", 0xF614},
    Entry{u"minus.magnifyingglass", 0xF34A, {0xF349, u'\u2212', 0.398, 0.398, 0.23, false}},
    Entry{u"music.note", 0xF387},
    Entry{u"paintbrush", 0xF0E3},
    Entry{u"pencil", 0xF3EB},
    Entry{u"person.crop.rectangle", 0xF5D2},
    Entry{u"photo", 0xF2E9},
    Entry{u"pin", 0xF403},
    Entry{u"play.circle.fill", 0xF40C},
    Entry{u"play.rectangle.fill", 0xF40B},
    Entry{u"plus.circle.fill", 0xF417},
    Entry{u"plus.magnifyingglass", 0xF34B, {0xF349, u'+', 0.398, 0.398, 0.23, false}},
    Entry{u"power", 0xF425},
    Entry{u"record.circle", 0xF43E},
    Entry{u"rectangle", 0xF1A0},
    Entry{u"rectangle.3.group", 0xF56E},
    Entry{u"rotate.left", 0xF465},
    Entry{u"rotate.right", 0xF467},
    Entry{u"sidebar.left", 0xF574},
    Entry{u"speaker.wave.1.fill", 0xF580},
    Entry{u"speaker.wave.2.fill", 0xF57E},
    Entry{u"square", 0xF1A2},
    Entry{u"square.and.arrow.down", 0xF1DA},
    Entry{u"square.and.arrow.up", 0xF552},
    Entry{u"square.on.square", 0xF137},
    Entry{u"window.close", 0xF5AD},
    Entry{u"window.maximize", 0xF131},
    Entry{u"window.minimize", 0xF374},
    Entry{u"window.restore", 0xF5B2},
    Entry{u"xmark", 0xF156},
    Entry{u"xmark.circle.fill", 0xF159},
};

const Entry* find(QStringView name) {
    const auto* entry =
        std::find_if(symbols.begin(), symbols.end(), [&](const Entry& e) { return e.name == name; });
    return entry == symbols.end() ? nullptr : entry;
}

/// Outlines are taken at this size, large enough to be free of hinting, and scaled from there.
constexpr double outlineSize = 512;

const QRawFont& iconFont() {
    static const QRawFont font = [] {
        // The file itself spares a search through every font of the system.
        const auto file = QStringLiteral("/usr/share/fonts/truetype/materialdesignicons-webfont/"
                                         "materialdesignicons-webfont.ttf");
        if (QFile::exists(file)) {
            QRawFont raw(file, outlineSize, QFont::PreferNoHinting);
            if (raw.isValid())
                return raw;
        }
        QFont byName(symbolFontFamily());
        byName.setPixelSize(int(outlineSize));
        byName.setHintingPreference(QFont::PreferNoHinting);
        return QRawFont::fromFont(byName);
    }();
    return font;
}

/// The glyph's outline in the unit square.
QPainterPath glyphPath(char32_t glyph) {
    const QRawFont& font = iconFont();
    const auto indexes = font.glyphIndexesForString(QString::fromUcs4(&glyph, 1));
    if (indexes.isEmpty() || indexes.first() == 0)
        return {};
    const QTransform toUnit =
        QTransform::fromTranslate(0, font.ascent()) * QTransform::fromScale(1 / outlineSize, 1 / outlineSize);
    return toUnit.map(font.pathForGlyph(indexes.first()));
}

QPainterPath letterPath(const Mark& mark) {
    QFont font(QStringLiteral("Inter"));
    font.setStyleHint(QFont::SansSerif);
    font.setWeight(QFont::Bold);
    font.setPixelSize(int(outlineSize));
    QPainterPath letter;
    letter.addText(0, 0, font, QString(QChar(mark.letter)));
    const QRectF bounds = letter.boundingRect();
    const double scale = mark.height / std::max(bounds.width(), bounds.height());
    const QTransform place = QTransform::fromTranslate(-bounds.center().x(), -bounds.center().y()) *
                             QTransform::fromScale(scale, scale) *
                             QTransform::fromTranslate(mark.centerX, mark.centerY);
    return place.map(letter);
}

} // namespace

QStringList symbolNames() {
    QStringList names;
    for (const Entry& entry : symbols)
        names.append(entry.name.toString());
    return names;
}

std::optional<char32_t> symbolGlyph(QStringView name) {
    const Entry* entry = find(name);
    return entry ? std::optional(entry->glyph) : std::nullopt;
}

QString symbolFontFamily() {
    return QStringLiteral("Material Design Icons");
}

QPainterPath symbolPath(QStringView name, const QRectF& box) {
    const Entry* entry = find(name);
    if (!entry)
        return {};
    QPainterPath path;
    if (entry->mark.letter == 0) {
        path = glyphPath(entry->glyph);
    } else {
        path = glyphPath(entry->mark.base);
        const QPainterPath letter = letterPath(entry->mark);
        path = entry->mark.cutOut ? path.subtracted(letter) : path.united(letter);
    }
    const QTransform toBox =
        QTransform::fromScale(box.width(), box.height()) * QTransform::fromTranslate(box.x(), box.y());
    return toBox.map(path);
}

QImage symbolImage(QStringView name, double pointSize, const QColor& color, double pixelRatio) {
    const QPainterPath path = symbolPath(name, QRectF(0, 0, pointSize, pointSize));
    const int side = int(std::lround(pointSize * pixelRatio));
    if (path.isEmpty() || side <= 0)
        return {};
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(pixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, color);
    return image;
}

} // namespace framora
