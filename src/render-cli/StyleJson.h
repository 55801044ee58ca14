#pragma once

#include "editor/model/RedactRegion.h"
#include "editor/model/TextOverlay.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace framora {

// Overlays and regions as JSON with the records' member names. Members left out keep a new record's values;
// an unknown member and a value of another type are errors. Colours are hexadecimal strings, a point is [x,
// y] or
// {"x": ..., "y": ...}, a rectangle [x, y, width, height] or an object, a weight a number 1...1000 or a name.
// Each gives one line that says what is wrong, or nothing and the record.

QString readTextOverlay(const QByteArray& json, TextOverlay& overlay);
QString readTextOverlays(const QByteArray& json, QList<TextOverlay>& overlays);
QString readRedactRegions(const QByteArray& json, QList<RedactRegion>& regions);

/// The members of one overlay, in order.
QStringList textOverlayMembers();

} // namespace framora
