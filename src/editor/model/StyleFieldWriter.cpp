#include "editor/model/StyleFieldWriter.h"

#include "editor/model/ColorConversion.h"

#include <QColor>
#include <QMetaProperty>
#include <QSizeF>
#include <QStringList>

namespace framora {
namespace {

/// True when the property is an enumeration of type E; `fitted` then holds its value, or stays invalid.
template <class E> bool fitEnum(QMetaType type, const QVariant& value, QVariant& fitted) {
    if (type != QMetaType::fromType<E>())
        return false;
    if (const auto parsed = fromRawValue<E>(value.toString()))
        fitted = QVariant::fromValue(*parsed);
    return true;
}

/// `value` as the property's own type; invalid when it does not fit.
QVariant fit(QMetaType type, const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return QByteArrayView(type.name()).startsWith("std::optional<") ? QVariant(type) : QVariant();
    if (value.metaType() == type)
        return value;

    QVariant fitted;
    if (fitEnum<MockupStyle>(type, value, fitted) || fitEnum<BorderStyle>(type, value, fitted) ||
        fitEnum<BackgroundType>(type, value, fitted) || fitEnum<GradientStyle>(type, value, fitted) ||
        fitEnum<ShadowSceneMode>(type, value, fitted) || fitEnum<RedactStyle>(type, value, fitted))
        return fitted;
    if (type == QMetaType::fromType<Color>())
        return value.canConvert<QColor>() ? QVariant::fromValue(fromQColor(value.value<QColor>()))
                                          : QVariant();
    if (type == QMetaType::fromType<Size>()) {
        if (!value.canConvert<QSizeF>())
            return {};
        const QSizeF size = value.toSizeF();
        return QVariant::fromValue(Size{size.width(), size.height()});
    }
    if (type == QMetaType::fromType<std::optional<QUrl>>())
        return QVariant::fromValue(std::optional(value.toUrl()));

    QVariant converted = value;
    return converted.convert(type) ? converted : QVariant();
}

bool writeField(const QMetaObject& record, void* gadget, const QStringList& path, const QVariant& value) {
    const int index = record.indexOfProperty(path.first().toLatin1().constData());
    if (index < 0)
        return false;
    const QMetaProperty property = record.property(index);
    if (path.size() == 1) {
        const QVariant fitted = fit(property.metaType(), value);
        return fitted.isValid() && property.writeOnGadget(gadget, fitted);
    }
    const QMetaObject* nestedRecord = property.metaType().metaObject();
    if (!nestedRecord)
        return false;
    QVariant nested = property.readOnGadget(gadget);
    return writeField(*nestedRecord, nested.data(), path.mid(1), value) &&
           property.writeOnGadget(gadget, nested);
}

} // namespace

bool writeStyleField(ScreenshotStyleConfig& config, const QString& field, const QVariant& value) {
    return writeField(ScreenshotStyleConfig::staticMetaObject, &config, field.split(u'.'), value);
}

} // namespace framora
