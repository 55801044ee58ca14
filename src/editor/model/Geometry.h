#pragma once

#include <QMetaType>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace framora {

// Points, sizes and rectangles of the style record, in points, y down. Qt's own compare approximately;
// the record must notice every change of a component.

struct Point {
    Q_GADGET
    Q_PROPERTY(double x MEMBER x)
    Q_PROPERTY(double y MEMBER y)
public:
    double x = 0.0;
    double y = 0.0;

    operator QPointF() const { return {x, y}; }
    bool operator==(const Point&) const = default;
};

struct Size {
    Q_GADGET
    Q_PROPERTY(double width MEMBER width)
    Q_PROPERTY(double height MEMBER height)
public:
    double width = 0.0;
    double height = 0.0;

    operator QSizeF() const { return {width, height}; }
    bool operator==(const Size&) const = default;
};

struct Rect {
    Q_GADGET
    Q_PROPERTY(double x MEMBER x)
    Q_PROPERTY(double y MEMBER y)
    Q_PROPERTY(double width MEMBER width)
    Q_PROPERTY(double height MEMBER height)
public:
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    operator QRectF() const { return {x, y, width, height}; }
    bool operator==(const Rect&) const = default;
};

} // namespace framora
