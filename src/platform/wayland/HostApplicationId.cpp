#include "platform/wayland/HostApplicationId.h"

#include <QFile>

namespace framora {
namespace {

/// systemd writes what is not a letter, a digit or one of ":_." as \xNN.
QString unescaped(const QByteArray& text) {
    QByteArray result;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.mid(i, 2) == "\\x" && i + 4 <= text.size()) {
            result += char(text.mid(i + 2, 2).toInt(nullptr, 16));
            i += 3;
        } else {
            result += text[i];
        }
    }
    return QString::fromUtf8(result);
}

/// app[-LAUNCHER]-ID-RANDOM.scope and app[-LAUNCHER]-ID[@RANDOM].service; a "-" within a part is escaped.
QString idOfUnit(const QByteArray& unit) {
    const qsizetype dot = unit.lastIndexOf('.');
    const QByteArray kind = unit.mid(dot + 1);
    QByteArray name = unit.left(dot);
    if (dot < 0 || (kind != "scope" && kind != "service"))
        return {};
    QList<QByteArray> parts = name.split('-');
    if (parts.takeFirst() != "app")
        return {};
    if (kind == "scope") {
        if (parts.size() < 2)
            return {};
        parts.removeLast();
    } else if (!parts.isEmpty()) {
        parts.last() = parts.last().split('@').first();
    }
    return parts.isEmpty() || parts.size() > 2 ? QString() : unescaped(parts.last());
}

} // namespace

QString applicationIdOfControlGroup(const QByteArray& controlGroups) {
    for (const QByteArray& line : controlGroups.split('\n')) {
        // The unified hierarchy, or systemd's own where there are several: "0::/path",
        // "1:name=systemd:/path".
        const QList<QByteArray> fields = line.split(':');
        if (fields.size() < 3 || (!fields[1].isEmpty() && fields[1] != "name=systemd"))
            continue;
        const QString id = idOfUnit(line.mid(line.lastIndexOf('/') + 1));
        if (!id.isEmpty())
            return id;
    }
    return {};
}

QString hostApplicationId() {
    QFile file(QStringLiteral("/proc/self/cgroup"));
    return file.open(QIODevice::ReadOnly) ? applicationIdOfControlGroup(file.readAll()) : QString();
}

} // namespace framora
