#pragma once

#include <QRect>
#include <QSize>
#include <ostream>

// What a failed comparison shows of Qt's values. Every file of a test program that compares such values
// includes this, or none does. GoogleTest looks for the functions beside the types.

inline void PrintTo(const QSize& size, std::ostream* out) {
    *out << size.width() << " x " << size.height();
}

inline void PrintTo(const QPoint& point, std::ostream* out) {
    *out << point.x() << ", " << point.y();
}

inline void PrintTo(const QRect& rect, std::ostream* out) {
    *out << rect.width() << " x " << rect.height() << " at " << rect.x() << ", " << rect.y();
}
