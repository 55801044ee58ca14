#pragma once

#include "editor/model/Color.h"
#include "editor/model/Geometry.h"

#include <QFont>
#include <QString>
#include <QUuid>

namespace framora {

/// One text annotation. Its identity in lists is `id`; equality compares every field.
struct TextOverlay {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(double fontSize MEMBER fontSize)
    Q_PROPERTY(QFont::Weight fontWeight MEMBER fontWeight)
    Q_PROPERTY(framora::Color color MEMBER color)
    Q_PROPERTY(framora::Point position MEMBER position)
    Q_PROPERTY(double rotation MEMBER rotation)
    Q_PROPERTY(double opacity MEMBER opacity)
    Q_PROPERTY(bool isBlurred MEMBER isBlurred)
public:
    QUuid id = QUuid::createUuid();
    QString text = {};
    double fontSize = 24.0; ///< points
    QFont::Weight fontWeight = QFont::Normal;
    Color color = Color::white();
    Point position = {};
    double rotation = 0.0; ///< degrees
    double opacity = 1.0;  ///< 0...1
    bool isBlurred = false;

    bool operator==(const TextOverlay&) const = default;
};

} // namespace framora
