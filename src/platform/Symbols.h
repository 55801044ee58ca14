#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <optional>

namespace framora {

// Symbols are named pictograms, drawn from the installed icon font. The font is opened at the first use and
// kept.

/// Every symbol name there is, in no particular order.
QStringList symbolNames();

/// The glyph that stands for the symbol in symbolFontFamily(); nothing for an unknown name.
std::optional<char32_t> symbolGlyph(QStringView name);

/// The icon font's family.
QString symbolFontFamily();

/// The symbol's outline, scaled to `box` (its design square, margins included); empty for an unknown name or
/// without the font. Symbols that hold a letter or a digit have it cut out here, while the bare glyph cannot.
QPainterPath symbolPath(QStringView name, const QRectF& box);

/// A square picture of `pointSize` points a side, premultiplied ARGB at `pixelRatio`; null for an unknown
/// name.
QImage symbolImage(QStringView name, double pointSize, const QColor& color, double pixelRatio);

} // namespace framora
