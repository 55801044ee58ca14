#pragma once

#include "editor/model/Geometry.h"
#include "editor/model/StyleEnums.h"

#include <QUuid>

namespace framora {

/// A part of the screenshot to hide. Its identity in lists is `id`; equality compares every field.
struct RedactRegion {
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(framora::Rect rect MEMBER rect)
    Q_PROPERTY(framora::RedactStyle style MEMBER style)
public:
    QUuid id = QUuid::createUuid();
    Rect rect = {}; ///< points of the screenshot
    RedactStyle style = RedactStyle::blur;

    bool operator==(const RedactRegion&) const = default;
};

} // namespace framora
