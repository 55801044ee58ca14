#include "render-cli/StyleFieldSetter.h"

#include "render-cli/FieldReader.h"

#include <QMetaProperty>

namespace framora {
namespace {

QStringList propertyNames(const QMetaObject& record) {
    QStringList names;
    for (int i = 0; i < record.propertyCount(); ++i)
        names << QString::fromLatin1(record.property(i).name());
    return names;
}

/// Calls `take` with the name and the type of each field, those of the gradient in its place.
void forEachField(const auto& take) {
    const QMetaObject& style = ScreenshotStyleConfig::staticMetaObject;
    const QMetaObject& gradient = SimpleGradientConfig::staticMetaObject;
    for (int i = 0; i < style.propertyCount(); ++i) {
        const QString name = QString::fromLatin1(style.property(i).name());
        if (name != u"gradientConfig") {
            take(name, style.property(i).metaType());
            continue;
        }
        for (int part = 0; part < gradient.propertyCount(); ++part)
            take(name + u'.' + QLatin1String(gradient.property(part).name()),
                 gradient.property(part).metaType());
    }
}

/// Sets `path` from position `depth` on in the record at `gadget`.
QString setIn(const QMetaObject& record, void* gadget, const QStringList& path, qsizetype depth,
              const QString& text) {
    const QString whole = path.mid(0, depth + 1).join(u'.');
    const int index = record.indexOfProperty(path[depth].toLatin1().constData());
    if (index < 0) {
        const QStringList names = depth == 0 ? StyleFieldSetter::fieldNames() : propertyNames(record);
        const QString valid = names.join(QStringLiteral(", "));
        if (depth == 0)
            return QStringLiteral("unknown field '%1'; valid fields: %2").arg(whole, valid);
        return QStringLiteral("unknown field '%1'; %2 has %3")
            .arg(whole, path.mid(0, depth).join(u'.'), valid);
    }
    const QMetaProperty property = record.property(index);
    const QMetaType type = property.metaType();

    if (depth + 1 < path.size()) {
        const QMetaObject* const parts = type.metaObject();
        if (!parts)
            return QStringLiteral("'%1' has no parts").arg(whole);
        QVariant part = property.readOnGadget(gadget);
        QString problem = setIn(*parts, part.data(), path, depth + 1, text);
        if (problem.isEmpty())
            property.writeOnGadget(gadget, part);
        return problem;
    }

    const ReadField read = readField(type, text);
    if (!read.error.isEmpty())
        return QStringLiteral("%1: %2").arg(whole, read.error);
    if (&record == &Color::staticMetaObject && (read.value.toDouble() < 0.0 || read.value.toDouble() > 1.0))
        return QStringLiteral("%1: '%2' is not a number from 0 to 1").arg(whole, text);
    property.writeOnGadget(gadget, read.value);
    return {};
}

} // namespace

QString StyleFieldSetter::set(const QString& field, const QString& value) {
    const QStringList path = field.split(u'.');
    QString problem = setIn(ScreenshotStyleConfig::staticMetaObject, &m_style, path, 0, value);
    if (problem.isEmpty())
        applySelectionRules(path.first());
    return problem;
}

void StyleFieldSetter::applySelectionRules(const QString& field) {
    if (field == u"selectedMagicPreset" && m_style.selectedMagicPreset) {
        m_style.selectedGradient.reset();
        m_style.selectedSolidColor.reset();
        m_style.backgroundImageURL.reset();
        m_style.customColor = Color::clear();
    } else if (field == u"customColor" && m_style.customColor.alpha != 0.0) {
        m_style.selectedMagicPreset.reset();
        m_style.selectedGradient.reset();
        m_style.selectedSolidColor.reset();
        m_style.backgroundImageURL.reset();
    } else if (field == u"backgroundImageURL" && m_style.backgroundImageURL) {
        m_style.selectedMagicPreset.reset();
        m_style.selectedGradient.reset();
        m_style.selectedSolidColor.reset();
    } else if (field == u"selectedGradientPreset" && m_style.selectedGradientPreset) {
        m_style.gradientConfig = m_style.selectedGradientPreset->config;
    }
}

QStringList StyleFieldSetter::fieldNames() {
    QStringList names;
    forEachField([&](const QString& name, QMetaType) { names << name; });
    return names;
}

QList<std::pair<QString, QStringList>> StyleFieldSetter::choices() {
    QList<std::pair<QString, QStringList>> all;
    forEachField([&](const QString& name, QMetaType type) {
        if (const QStringList names = namedValues(type); !names.isEmpty())
            all.append({name, names});
    });
    return all;
}

} // namespace framora
