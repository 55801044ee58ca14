#include "platform/desktop/ConfiguredDesktopPictures.h"
#include "platform/desktop/pictures/DesktopSettingsPlace.h"
#include "platform/desktop/pictures/TimedPictures.h"
#include "support/FixedScreens.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace framora {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// Two screens and folders of settings that the test makes.
class DesktopPicturesOf : public testing::Test {
protected:
    DesktopPicturesOf() {
        place.configFolder = folder.filePath(text("config"));
        place.systemConfig = {folder.filePath(text("xdg"))};
        place.dataFolders = {folder.filePath(text("data"))};
        place.screens = {{QRect(0, 0, 1920, 1080), 1, text("HDMI-1")},
                         {QRect(1920, 0, 1080, 1920), 1, text("DP-2")}};
        place.now = QDateTime(QDate(2024, 5, 1), QTime(12, 0));
        place.schemaValue = [this](const QString& schema, const QString& key) -> std::optional<QString> {
            const auto found = schemas.find(schema + u' ' + key);
            return found == schemas.end() ? std::nullopt : std::optional(*found);
        };
    }

    QString write(const QString& name, const QByteArray& bytes) const {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }
    static QStringList paths(const std::vector<QUrl>& urls) {
        QStringList all;
        for (const QUrl& url : urls)
            all.append(url.toLocalFile());
        return all;
    }

    QTemporaryDir folder;
    QMap<QString, QString> schemas;
    DesktopSettingsPlace place;
};

TEST_F(DesktopPicturesOf, GnomeGoByTheColourScheme) {
    const QString background = text("org.gnome.desktop.background ");
    schemas = {{background + text("picture-uri"), text("file:///usr/share/backgrounds/a%20day.jpg")},
               {background + text("picture-uri-dark"), text("file:///usr/share/backgrounds/night.jpg")},
               {background + text("picture-options"), text("zoom")},
               {text("org.gnome.desktop.interface color-scheme"), text("default")}};
    EXPECT_EQ(paths(gnomePictures(place)), QStringList({text("/usr/share/backgrounds/a day.jpg"),
                                                        text("/usr/share/backgrounds/a day.jpg")}));
    schemas[text("org.gnome.desktop.interface color-scheme")] = text("prefer-dark");
    EXPECT_EQ(paths(gnomePictures(place)), QStringList({text("/usr/share/backgrounds/night.jpg"),
                                                        text("/usr/share/backgrounds/night.jpg")}));
    // Older ones know no dark picture.
    schemas.remove(background + text("picture-uri-dark"));
    EXPECT_EQ(gnomePictures(place).front().fileName(), text("a day.jpg"));
    schemas[background + text("picture-options")] = text("none");
    EXPECT_TRUE(gnomePictures(place).empty());
    schemas.clear();
    EXPECT_TRUE(gnomePictures(place).empty());
}

TEST_F(DesktopPicturesOf, PipesInPlaceOfSettingsAreNotWaitedFor) {
    const auto putPipe = [this](const char* name) {
        const QString path = folder.filePath(text(name));
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        EXPECT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        return path;
    };
    EXPECT_TRUE(timedPicture(putPipe("slides.xml"), place.now).isEmpty());
    putPipe("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml");
    putPipe("config/pcmanfm-qt/lxqt/settings.conf");
    putPipe("config/plasma-org.kde.plasma.desktop-appletsrc");
    putPipe("config/kdeglobals");
    EXPECT_TRUE(xfcePictures(place).empty());
    EXPECT_TRUE(lxqtPictures(place).empty());
    for (const QUrl& url : plasmaPictures(place))
        EXPECT_TRUE(url.isEmpty());
}

TEST_F(DesktopPicturesOf, SettingsLargerThanAnyAreLeftAlone) {
    QByteArray settings = "[Desktop]\nWallpaper=/pictures/a.jpg\nWallpaperMode=zoom\n";
    write(text("config/pcmanfm-qt/lxqt/settings.conf"), settings);
    EXPECT_FALSE(lxqtPictures(place).empty());
    write(text("config/pcmanfm-qt/lxqt/settings.conf"), settings + QByteArray(9 << 20, '\n'));
    EXPECT_TRUE(lxqtPictures(place).empty());
}

TEST_F(DesktopPicturesOf, ASettingIsNotAskedForOnceAStopIs) {
    std::stop_source source;
    source.request_stop();
    EXPECT_FALSE(DesktopSettingsPlace::valueOfSchema(text("org.gnome.desktop.background"),
                                                     text("picture-uri"), source.get_token()));
}

TEST_F(DesktopPicturesOf, CinnamonAndMateAreTheirOwnSettings) {
    schemas = {{text("org.cinnamon.desktop.background picture-uri"), text("file:///pictures/mint.jpg")},
               {text("org.cinnamon.desktop.background picture-options"), text("zoom")},
               {text("org.mate.background picture-filename"), text("/pictures/mate 100%.png")},
               {text("org.mate.background picture-options"), text("zoom")}};
    EXPECT_EQ(paths(cinnamonPictures(place)),
              QStringList({text("/pictures/mint.jpg"), text("/pictures/mint.jpg")}));
    EXPECT_EQ(paths(matePictures(place)),
              QStringList({text("/pictures/mate 100%.png"), text("/pictures/mate 100%.png")}));
    schemas[text("org.mate.background picture-filename")] = QString(); // a plain colour
    EXPECT_TRUE(matePictures(place).empty());
}

TEST_F(DesktopPicturesOf, ATimedListIsThePictureOfTheHour) {
    const QString list = write(text("day.xml"), R"(<?xml version="1.0"?>
        <background>
          <starttime><year>2020</year><month>1</month><day>1</day><hour>6</hour><minute>0</minute><second>0</second></starttime>
          <static><duration>36000.0</duration><file>/pictures/day.jpg</file></static>
          <transition type="overlay"><duration>3600</duration><from>/pictures/day.jpg</from><to>/pictures/night.jpg</to></transition>
          <static><duration>46800</duration>
            <file><size width="1280" height="1024">/pictures/small.jpg</size><size width="2560" height="1440">/pictures/night.jpg</size></file>
          </static>
        </background>)");
    const auto at = [&](int hour, int minute) {
        return timedPicture(list, QDateTime(QDate(2024, 5, 1), QTime(hour, minute))).path();
    };
    EXPECT_EQ(at(6, 0), text("/pictures/day.jpg"));
    EXPECT_EQ(at(15, 59), text("/pictures/day.jpg"));
    EXPECT_EQ(at(16, 30), text("/pictures/day.jpg"));
    EXPECT_EQ(at(17, 1), text("/pictures/night.jpg"));
    EXPECT_EQ(at(5, 59), text("/pictures/night.jpg"));
    EXPECT_TRUE(timedPicture(write(text("empty.xml"), "<background/>"), place.now).isEmpty());
    EXPECT_TRUE(timedPicture(write(text("cut.xml"), "<background><static><dur"), place.now).isEmpty());
    EXPECT_TRUE(timedPicture(folder.filePath(text("missing.xml")), place.now).isEmpty());

    schemas = {{text("org.gnome.desktop.background picture-uri"), QUrl::fromLocalFile(list).toString()}};
    EXPECT_EQ(paths(gnomePictures(place)),
              QStringList({text("/pictures/day.jpg"), text("/pictures/day.jpg")}));
}

TEST_F(DesktopPicturesOf, XfceAreByMonitorName) {
    write(text("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml"), R"(<?xml version="1.0"?>
        <channel name="xfce4-desktop" version="1.0">
          <property name="backdrop" type="empty">
            <property name="screen0" type="empty">
              <property name="monitorDP-2" type="empty">
                <property name="workspace0" type="empty">
                  <property name="color-style" type="int" value="0"/>
                  <property name="image-style" type="int" value="5"/>
                  <property name="last-image" type="string" value="/pictures/portrait &amp; co.jpg"/>
                </property>
                <property name="workspace1" type="empty">
                  <property name="last-image" type="string" value="/pictures/second.jpg"/>
                </property>
              </property>
              <property name="monitorHDMI-1" type="empty">
                <property name="workspace0" type="empty">
                  <property name="last-image" type="string" value="/pictures/wide.jpg"/>
                </property>
              </property>
            </property>
          </property>
        </channel>)");
    EXPECT_EQ(paths(xfcePictures(place)),
              QStringList({text("/pictures/wide.jpg"), text("/pictures/portrait & co.jpg")}));
}

TEST_F(DesktopPicturesOf, XfceKnowOlderNumbersPlainColoursAndTheSystemsDefaults) {
    const auto channel = [](const QByteArray& monitors) {
        return "<channel name=\"xfce4-desktop\"><property name=\"backdrop\"><property name=\"screen0\">" +
               monitors + "</property></property></channel>";
    };
    const QString name = text("/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml");
    write(text("xdg") + name, channel("<property name=\"monitor0\"><property name=\"image-path\" "
                                      "value=\"/pictures/old.png\"/></property>"
                                      "<property name=\"monitor1\"><property name=\"image-path\" "
                                      "value=\"/pictures/other.png\"/></property>"));
    EXPECT_EQ(paths(xfcePictures(place)),
              QStringList({text("/pictures/old.png"), text("/pictures/other.png")}));
    write(text("config") + name,
          channel(
              "<property name=\"monitorHDMI-1\"><property name=\"workspace0\"><property name=\"image-style\" "
              "value=\"0\"/><property name=\"last-image\" "
              "value=\"/pictures/hidden.png\"/></property></property>"));
    EXPECT_EQ(paths(xfcePictures(place)), QStringList(text("/pictures/other.png")));
    write(text("config") + name, "<channel><property name=\"backdrop\"");
    EXPECT_EQ(paths(xfcePictures(place)),
              QStringList({text("/pictures/old.png"), text("/pictures/other.png")}));
}

TEST_F(DesktopPicturesOf, LxqtIsOneForAllScreens) {
    write(text("xdg/pcmanfm-qt/lxqt/settings.conf"), "[Desktop]\nWallpaper=/pictures/system.jpg\n");
    EXPECT_EQ(paths(lxqtPictures(place)),
              QStringList({text("/pictures/system.jpg"), text("/pictures/system.jpg")}));
    write(text("config/pcmanfm-qt/lxqt/settings.conf"),
          "[Behavior]\nWallpaper=/no.jpg\n[Desktop]\nWallpaper=\"/pictures/with, "
          "comma.jpg\"\nWallpaperMode=stretch\n");
    EXPECT_EQ(paths(lxqtPictures(place)),
              QStringList({text("/pictures/with, comma.jpg"), text("/pictures/with, comma.jpg")}));
    write(text("config/pcmanfm-qt/lxqt/settings.conf"),
          "[Desktop]\nWallpaper=/pictures/a.jpg\nWallpaperMode=none\n");
    EXPECT_TRUE(lxqtPictures(place).empty());
}

TEST_F(DesktopPicturesOf, TheSessionChoosesWhoseSettingsCount) {
    write(text("config/pcmanfm-qt/lxqt/settings.conf"), "[Desktop]\nWallpaper=/pictures/a.jpg\n");
    write(
        text("config/xfce4/xfconf/xfce-perchannel-xml/xfce4-desktop.xml"),
        "<channel><property name=\"backdrop\"><property name=\"screen0\"><property "
        "name=\"monitorHDMI-1\"><property "
        "name=\"workspace0\"><property name=\"last-image\" value=\"/pictures/x.jpg\"/></property></property>"
        "</property></property></channel>");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(place.configFolder));
    FixedScreens screens(place.screens);
    ConfiguredDesktopPictures pictures(screens);
    const auto with = [&](const char* desktop) {
        qputenv("XDG_CURRENT_DESKTOP", desktop);
        return paths(pictures.lookup()({}));
    };
    EXPECT_EQ(with("LXQt"), QStringList({text("/pictures/a.jpg"), text("/pictures/a.jpg")}));
    EXPECT_EQ(with("XFCE"), QStringList(text("/pictures/x.jpg")));
    EXPECT_EQ(with("someone:XFCE"), QStringList(text("/pictures/x.jpg")));
    EXPECT_EQ(with("sway"), QStringList());
    EXPECT_EQ(with(""), QStringList());
    qunsetenv("XDG_CURRENT_DESKTOP");
    qunsetenv("XDG_CONFIG_HOME");
}

TEST_F(DesktopPicturesOf, ASchemaIsAskedOfTheInstalledLibraryAndOneThatIsMissingIsNoError) {
    write(text("schemas/test.gschema.xml"), R"(<schemalist>
        <schema id="org.gnome.desktop.background" path="/org/gnome/desktop/background/">
          <key name="picture-uri" type="s"><default>'file:///pictures/from schema.jpg'</default></key>
          <key name="picture-options" type="s"><default>'zoom'</default></key>
        </schema></schemalist>)");
    ASSERT_EQ(QProcess::execute(text("glib-compile-schemas"), {folder.filePath(text("schemas"))}), 0);
    qputenv("GSETTINGS_SCHEMA_DIR", QFile::encodeName(folder.filePath(text("schemas"))));
    qputenv("GSETTINGS_BACKEND", "keyfile");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(place.configFolder));
    const DesktopSettingsPlace session = DesktopSettingsPlace::ofThisSession();
    EXPECT_EQ(session.schemaValue(text("org.gnome.desktop.background"), text("picture-uri")),
              text("file:///pictures/from schema.jpg"));
    EXPECT_EQ(session.schemaValue(text("org.gnome.desktop.background"), text("no-such-key")), std::nullopt);
    EXPECT_EQ(session.schemaValue(text("org.example.missing"), text("picture-uri")), std::nullopt);
    write(text("config/glib-2.0/settings/keyfile"),
          "[org/gnome/desktop/background]\npicture-uri='file:///pictures/chosen.jpg'\n");
    EXPECT_EQ(session.schemaValue(text("org.gnome.desktop.background"), text("picture-uri")),
              text("file:///pictures/chosen.jpg"));
    for (const char* name : {"GSETTINGS_SCHEMA_DIR", "GSETTINGS_BACKEND", "XDG_CONFIG_HOME"})
        qunsetenv(name);
}

} // namespace
} // namespace framora
