#include "render-cli/StyleJson.h"

#include "render-cli/FieldValues.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <functional>

namespace framora {
namespace {

struct WeightName {
    QStringView name;
    QFont::Weight weight;
};
constexpr WeightName weightNames[] = {
    {u"thin", QFont::Thin},     {u"extraLight", QFont::ExtraLight}, {u"ultraLight", QFont::ExtraLight},
    {u"light", QFont::Light},   {u"normal", QFont::Normal},         {u"regular", QFont::Normal},
    {u"medium", QFont::Medium}, {u"semibold", QFont::DemiBold},     {u"demiBold", QFont::DemiBold},
    {u"bold", QFont::Bold},     {u"extraBold", QFont::ExtraBold},   {u"heavy", QFont::ExtraBold},
    {u"black", QFont::Black},
};

/// Reads the members of one object, each by its own reader; the first wrong one is the error.
class MemberReader {
public:
    using Read = std::function<QString(const QJsonValue&)>;

    void add(const char* name, Read read) { m_members.append({QString::fromLatin1(name), std::move(read)}); }

    QString read(const QJsonObject& object) const {
        for (auto it = object.begin(); it != object.end(); ++it) {
            const auto member = std::find_if(m_members.begin(), m_members.end(),
                                             [&it](const Member& known) { return known.name == it.key(); });
            if (member == m_members.end())
                return QStringLiteral("unknown member '%1'; valid members: %2")
                    .arg(it.key(), names().join(QStringLiteral(", ")));
            const QString problem = member->read(it.value());
            if (!problem.isEmpty())
                return QStringLiteral("%1 %2").arg(member->name, problem);
        }
        return {};
    }

    QStringList names() const {
        QStringList names;
        for (const Member& member : m_members)
            names << member.name;
        return names;
    }

private:
    struct Member {
        QString name;
        Read read;
    };
    QList<Member> m_members;
};

QString readNumber(const QJsonValue& value, double& number, double minimum, double maximum) {
    if (!value.isDouble() || !std::isfinite(value.toDouble()))
        return QStringLiteral("is not a number");
    if (value.toDouble() < minimum || value.toDouble() > maximum)
        return QStringLiteral("is not a number from %1 to %2").arg(minimum).arg(maximum);
    number = value.toDouble();
    return {};
}

constexpr double anyNumber = std::numeric_limits<double>::max();

MemberReader::Read numberInto(double& number, double minimum = -anyNumber, double maximum = anyNumber) {
    return [&number, minimum, maximum](const QJsonValue& value) {
        return readNumber(value, number, minimum, maximum);
    };
}

MemberReader::Read idInto(QUuid& id) {
    return [&id](const QJsonValue& value) {
        const QUuid read = QUuid::fromString(value.toString());
        if (read.isNull())
            return QStringLiteral("is not a UUID");
        id = read;
        return QString();
    };
}

MemberReader::Read colorInto(Color& color) {
    return [&color](const QJsonValue& value) {
        const std::optional<Color> read = colorFromText(value.toString());
        if (!read)
            return QStringLiteral("is not a colour of 3, 6 or 8 hexadecimal digits");
        color = *read;
        return QString();
    };
}

MemberReader::Read weightInto(QFont::Weight& weight) {
    return [&weight](const QJsonValue& value) {
        const double number = value.toDouble(0.0);
        if (value.isDouble() && number >= 1.0 && number <= 1000.0 && number == std::floor(number)) {
            weight = static_cast<QFont::Weight>(static_cast<int>(number));
            return QString();
        }
        QStringList names;
        for (const WeightName& known : weightNames) {
            if (value.toString() == known.name) {
                weight = known.weight;
                return QString();
            }
            names << known.name.toString();
        }
        return QStringLiteral("is neither a whole number from 1 to 1000 nor one of ") +
               names.join(QStringLiteral(", "));
    };
}

/// Numbers that may stand in an array or under their names in an object; all of them must be there.
MemberReader::Read numbersInto(const QList<std::pair<const char*, double*>>& places) {
    return [places](const QJsonValue& value) {
        QStringList names;
        for (const auto& [name, place] : places)
            names << QString::fromLatin1(name);
        QString wanted = QStringLiteral("is not [%1] of numbers").arg(names.join(QStringLiteral(", ")));
        const QJsonArray array = value.toArray();
        const QJsonObject object = value.toObject();
        if (array.size() != places.size() && object.size() != places.size())
            return wanted;
        for (qsizetype i = 0; i < places.size(); ++i) {
            const QJsonValue part = value.isArray() ? array[i] : object.value(names[i]);
            if (!readNumber(part, *places[i].second, -anyNumber, anyNumber).isEmpty())
                return wanted;
        }
        return QString();
    };
}

MemberReader overlayReader(TextOverlay& overlay) {
    MemberReader members;
    members.add("id", idInto(overlay.id));
    members.add("text", [&overlay](const QJsonValue& value) {
        if (!value.isString())
            return QStringLiteral("is not a string");
        overlay.text = value.toString();
        return QString();
    });
    members.add("fontSize", numberInto(overlay.fontSize, 0.0));
    members.add("fontWeight", weightInto(overlay.fontWeight));
    members.add("color", colorInto(overlay.color));
    members.add("position", numbersInto({{"x", &overlay.position.x}, {"y", &overlay.position.y}}));
    members.add("rotation", numberInto(overlay.rotation));
    members.add("opacity", numberInto(overlay.opacity, 0.0, 1.0));
    members.add("isBlurred", [&overlay](const QJsonValue& value) {
        if (!value.isBool())
            return QStringLiteral("is neither true nor false");
        overlay.isBlurred = value.toBool();
        return QString();
    });
    return members;
}

MemberReader regionReader(RedactRegion& region) {
    MemberReader members;
    members.add("id", idInto(region.id));
    members.add("rect", numbersInto({{"x", &region.rect.x},
                                     {"y", &region.rect.y},
                                     {"width", &region.rect.width},
                                     {"height", &region.rect.height}}));
    members.add("style", [&region](const QJsonValue& value) {
        const std::optional<RedactStyle> style = fromRawValue<RedactStyle>(value.toString());
        if (!style)
            return QStringLiteral("is not one of blur, pixelate, blackBar");
        region.style = *style;
        return QString();
    });
    return members;
}

QString parse(const QByteArray& json, QJsonDocument& document) {
    QJsonParseError error;
    document = QJsonDocument::fromJson(json, &error);
    if (error.error == QJsonParseError::NoError)
        return {};
    return QStringLiteral("not JSON at byte %1: %2").arg(error.offset).arg(error.errorString());
}

template <class Record>
QString readList(const QByteArray& json, QList<Record>& records, MemberReader (*reader)(Record&)) {
    QJsonDocument document;
    if (QString problem = parse(json, document); !problem.isEmpty())
        return problem;
    if (!document.isArray())
        return QStringLiteral("not a JSON list of objects");
    QList<Record> read;
    const QJsonArray members = document.array();
    for (const auto& value : members) {
        if (!value.isObject())
            return QStringLiteral("not a JSON list of objects");
        Record record;
        if (QString problem = reader(record).read(value.toObject()); !problem.isEmpty())
            return problem;
        read << record;
    }
    records = read;
    return {};
}

} // namespace

QString readTextOverlay(const QByteArray& json, TextOverlay& overlay) {
    QJsonDocument document;
    if (QString problem = parse(json, document); !problem.isEmpty())
        return problem;
    if (!document.isObject())
        return QStringLiteral("not a JSON object");
    return overlayReader(overlay).read(document.object());
}

QString readTextOverlays(const QByteArray& json, QList<TextOverlay>& overlays) {
    return readList<TextOverlay>(json, overlays, overlayReader);
}

QString readRedactRegions(const QByteArray& json, QList<RedactRegion>& regions) {
    return readList<RedactRegion>(json, regions, regionReader);
}

QStringList textOverlayMembers() {
    TextOverlay overlay;
    return overlayReader(overlay).names();
}

} // namespace framora
