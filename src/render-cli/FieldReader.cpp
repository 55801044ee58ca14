#include "render-cli/FieldReader.h"

#include "editor/model/ScreenshotStyleConfig.h"
#include "render-cli/FieldValues.h"
#include "render-cli/StyleJson.h"

#include <QFileInfo>

namespace framora {
namespace {

template <class Value> ReadField found(const Value& value) {
    return {.value = QVariant::fromValue(value), .error = QString()};
}

ReadField wrong(const QString& text, const QString& wanted) {
    return {.value = QVariant(), .error = QStringLiteral("'%1' is not %2").arg(text, wanted)};
}

ReadField orWrong(const auto& value, const QString& text, const QString& wanted) {
    return value ? found(*value) : wrong(text, wanted);
}

const QString colorWanted = QStringLiteral("a colour of 3, 6 or 8 hexadecimal digits");

template <class E> QStringList namesOf() {
    QStringList names;
    for (const E value : allCases<E>())
        names << rawValue(value);
    return names;
}

template <class E> ReadField readEnum(const QString& text) {
    return orWrong(fromRawValue<E>(text), text,
                   QStringLiteral("one of ") + namesOf<E>().join(QStringLiteral(", ")));
}

/// The entry whose name, or whose position from 1, is the text.
template <class Preset, class Name>
ReadField readPreset(const QString& text, const QList<Preset>& catalogue, Name name) {
    QStringList names;
    for (qsizetype i = 0; i < catalogue.size(); ++i) {
        const QString known = name(catalogue[i]);
        if (text == QString::number(i + 1) || (!known.isEmpty() && text == known))
            return found(std::optional<Preset>(catalogue[i]));
        if (!known.isEmpty())
            names << known;
    }
    const QString positions = QStringLiteral("1 to %1").arg(catalogue.size());
    return wrong(text, names.isEmpty() ? QStringLiteral("a preset; valid are %1 and none").arg(positions)
                                       : QStringLiteral("a preset; valid are %1, %2 and none")
                                             .arg(names.join(QStringLiteral(", ")), positions));
}

ReadField readNumber(const QString& text) {
    return orWrong(numberFromText(text), text, QStringLiteral("a number"));
}

ReadField readSwitch(const QString& text) {
    return orWrong(switchFromText(text), text, QStringLiteral("true or false"));
}

ReadField readColor(const QString& text) {
    return orWrong(colorFromText(text), text, colorWanted);
}

ReadField readSize(const QString& text) {
    const QStringList parts = text.split(u',');
    const std::optional<double> width = numberFromText(parts.first());
    const std::optional<double> height = numberFromText(parts.last());
    if (parts.size() != 2 || !width || !height)
        return wrong(text, QStringLiteral("WIDTH,HEIGHT"));
    return found(Size{*width, *height});
}

ReadField readUrl(const QString& text) {
    const QUrl url =
        text.startsWith(u"file:") ? QUrl(text) : QUrl::fromLocalFile(QFileInfo(text).absoluteFilePath());
    const QFileInfo file(url.toLocalFile());
    if (text.isEmpty() || !url.isLocalFile() || file.isDir() || !file.isReadable())
        return wrong(text, QStringLiteral("a file that can be read"));
    return found(std::optional<QUrl>(url));
}

ReadField readMagicPreset(const QString& text) {
    return readPreset(text, PresetCatalogues::magicPresets(), [](const MagicPreset&) { return QString(); });
}

ReadField readGradientPreset(const QString& text) {
    return readPreset(text, PresetCatalogues::simpleGradientPresets(),
                      [](const SimpleGradientPreset& preset) { return preset.name; });
}

ReadField readSocialPreset(const QString& text) {
    return readPreset(text, PresetCatalogues::socialMediaPresets(), [](const SocialMediaPreset& preset) {
        return QString(preset.platform + u'/' + preset.name);
    });
}

ReadField readSolidColor(const QString& text) {
    const std::optional<Color> color = colorFromText(text);
    if (!color)
        return wrong(text, colorWanted);
    return found(std::optional<SolidColor>(SolidColor{.color = *color}));
}

ReadField readGradient(const QString& text) {
    constexpr double usualAngle = 135.0;
    const qsizetype at = text.indexOf(u'@');
    const std::optional<QList<Color>> colors = colorsFromText(at < 0 ? text : text.left(at));
    const std::optional<double> angle = at < 0 ? usualAngle : numberFromText(text.mid(at + 1));
    if (!colors || colors->size() < 2 || !angle)
        return wrong(text, QStringLiteral("two or more colours as in ff0000,0000ff@90"));
    return found(std::optional<GradientPreset>(GradientPreset{.colors = *colors, .angle = *angle}));
}

ReadField readShadowScene(const QString& text) {
    const qsizetype colon = text.lastIndexOf(u':');
    const std::optional<QList<Color>> colors = colorsFromText(text.mid(colon + 1));
    if (colon < 1 || !colors)
        return wrong(text, QStringLiteral("a name and colours as in Name:ffffff,000000"));
    return found(std::optional<ShadowScene>(ShadowScene{.name = text.left(colon), .colors = *colors}));
}

template <class Record, QString (*read)(const QByteArray&, QList<Record>&)>
ReadField readJson(const QString& text) {
    QList<Record> records;
    const QString problem = read(text.toUtf8(), records);
    if (!problem.isEmpty())
        return {.value = QVariant(), .error = problem};
    return found(records);
}

/// Wraps the reader of a selection: "none" clears it.
template <class Value, ReadField (*read)(const QString&)> ReadField readOptional(const QString& text) {
    return text == u"none" ? found(std::optional<Value>()) : read(text);
}

struct TypeReader {
    QMetaType type;
    ReadField (*read)(const QString&);
    QStringList (*names)(); ///< Null where the values have none.
};

template <class Value> constexpr TypeReader reader(ReadField (*read)(const QString&)) {
    return {QMetaType::fromType<Value>(), read, nullptr};
}

template <class E> constexpr TypeReader enumReader() {
    return {QMetaType::fromType<E>(), readEnum<E>, namesOf<E>};
}

const TypeReader* readerOf(QMetaType type) {
    static const TypeReader readers[] = {
        reader<double>(readNumber),
        reader<bool>(readSwitch),
        reader<Color>(readColor),
        reader<Size>(readSize),
        enumReader<MockupStyle>(),
        enumReader<BorderStyle>(),
        enumReader<BackgroundType>(),
        enumReader<GradientStyle>(),
        enumReader<ShadowSceneMode>(),
        enumReader<RedactStyle>(),
        reader<std::optional<MagicPreset>>(readOptional<MagicPreset, readMagicPreset>),
        reader<std::optional<SimpleGradientPreset>>(readOptional<SimpleGradientPreset, readGradientPreset>),
        reader<std::optional<SocialMediaPreset>>(readOptional<SocialMediaPreset, readSocialPreset>),
        reader<std::optional<SolidColor>>(readOptional<SolidColor, readSolidColor>),
        reader<std::optional<GradientPreset>>(readOptional<GradientPreset, readGradient>),
        reader<std::optional<ShadowScene>>(readOptional<ShadowScene, readShadowScene>),
        reader<std::optional<QUrl>>(readOptional<QUrl, readUrl>),
        reader<QList<TextOverlay>>(readJson<TextOverlay, readTextOverlays>),
        reader<QList<RedactRegion>>(readJson<RedactRegion, readRedactRegions>),
    };
    for (const TypeReader& known : readers)
        if (known.type == type)
            return &known;
    return nullptr;
}

} // namespace

ReadField readField(QMetaType type, const QString& text) {
    if (const TypeReader* const known = readerOf(type))
        return known->read(text);
    return {.value = QVariant(),
            .error = QStringLiteral("is set by its parts, as in gradientConfig.angle=90")};
}

QStringList namedValues(QMetaType type) {
    const TypeReader* const known = readerOf(type);
    return known && known->names ? known->names() : QStringList();
}

} // namespace framora
