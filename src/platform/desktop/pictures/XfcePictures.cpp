#include "platform/desktop/pictures/DesktopSettingsPlace.h"
#include "platform/desktop/pictures/SettingsFile.h"

#include <QMap>
#include <QXmlStreamReader>

namespace framora {
namespace {

/// The channel's values by their path, "/backdrop/screen0/monitorHDMI-1/workspace0/last-image".
using Channel = QMap<QString, QString>;

void readProperties(QXmlStreamReader& xml, const QString& path, int depth, Channel& channel) {
    constexpr int deepest = 32;
    while (xml.readNextStartElement()) {
        if (xml.name() != u"property" || depth > deepest) {
            xml.skipCurrentElement();
            continue;
        }
        const QString name = path + u'/' + xml.attributes().value(QLatin1String("name")).toString();
        if (xml.attributes().hasAttribute(QLatin1String("value")))
            channel.insert(name, xml.attributes().value(QLatin1String("value")).toString());
        readProperties(xml, name, depth + 1, channel);
    }
}

Channel readChannel(const DesktopSettingsPlace& place) {
    Channel channel;
    QStringList folders = place.systemConfig;
    folders.prepend(place.configFolder);
    // The user's last: it goes over the system's.
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        QXmlStreamReader xml(readSettingsFile(
            *folder + QStringLiteral("/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml")));
        if (xml.readNextStartElement())
            readProperties(xml, {}, 0, channel);
    }
    return channel;
}

/// What a monitor shows on a workspace; empty when that is not set.
QString picture(const Channel& channel, const QString& monitor, int workspace) {
    const QString base = QStringLiteral("/backdrop/screen0/monitor") + monitor;
    const QString own = base + QStringLiteral("/workspace%1/").arg(workspace);
    for (const QString& key : {own + QStringLiteral("last-image"), base + QStringLiteral("/image-path")}) {
        const QString path = channel.value(key);
        if (path.startsWith(u'/'))
            return path;
    }
    return {};
}

/// The user's choice of no picture at all: a plain colour.
bool showsNone(const Channel& channel, const QString& monitor, int workspace) {
    const QString own =
        QStringLiteral("/backdrop/screen0/monitor%1/workspace%2/").arg(monitor).arg(workspace);
    return channel.value(own + QStringLiteral("image-style"), QStringLiteral("5")) == u"0";
}

} // namespace

std::vector<QUrl> xfcePictures(const DesktopSettingsPlace& place) {
    const Channel channel = readChannel(place);
    // Which workspace is in front is not a setting; the first is most people's only one.
    const bool single =
        channel.value(QStringLiteral("/backdrop/single-workspace-mode"), QStringLiteral("true")) == u"true";
    const int workspace =
        single ? channel.value(QStringLiteral("/backdrop/single-workspace-number")).toInt() : 0;
    std::vector<QUrl> pictures;
    for (std::size_t i = 0; i < place.screens.size(); ++i) {
        // By the output's name, in older settings by its number.
        for (const QString& monitor : {place.screens[i].name, QString::number(i)}) {
            if (showsNone(channel, monitor, workspace))
                break;
            if (const QString path = picture(channel, monitor, workspace); !path.isEmpty()) {
                pictures.push_back(QUrl::fromLocalFile(path));
                break;
            }
        }
    }
    return pictures;
}

} // namespace framora
