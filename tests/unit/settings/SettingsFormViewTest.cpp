#include "platform/Localized.h"
#include "settings/Settings.h"
#include "settings/window/QuickSettingsWindow.h"
#include "support/SettingsPlatform.h"
#include "unit/controls/ShownItems.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace framora {
namespace {

/// The form as it stands in its window, and what keys that stay down do to it.
class SettingsFormView : public testing::Test {
protected:
    SettingsFormView() {
        window.center();
        window.makeKeyAndOrderFront();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window.view()));
        QCoreApplication::processEvents();
    }
    QQuickItem& item(const char* name) {
        QQuickItem* found = itemNamed(window.view().rootObject(), QLatin1String(name));
        if (!found)
            qFatal("there is no %s", name);
        return *found;
    }
    Settings stored() { return Settings::load(platform.defaults); }
    void record(const char* row) {
        item(row).forceActiveFocus(Qt::TabFocusReason);
        press(Qt::Key_Space);
    }
    /// What is drawn below the row's keys.
    QQuickItem& ground(const char* row) {
        for (QQuickItem* part : item(row).property("background").value<QQuickItem*>()->childItems())
            if (part->property("radius").toDouble() == 12)
                return *part;
        qFatal("%s has no ground with its radius", row);
    }
    /// Pressed, and as a desktop tells that it stays down: pairs of a release and a press.
    void hold(Qt::Key key, const QString& text) {
        QTest::keyPress(&window.view(), key);
        for (int i = 0; i < 3; ++i)
            for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
                QKeyEvent repeat(type, key, {}, text, true);
                QCoreApplication::sendEvent(&window.view(), &repeat);
            }
    }
    void press(Qt::Key key) { QTest::keyClick(&window.view(), key); }

    SettingsPlatform platform;
    QuickSettingsWindow window{platform.services(), [] {}};
};

TEST_F(SettingsFormView, itsSectionsStandInTheirOrder) {
    double above = -1;
    for (const char* name : {"accessibility.allow", "hotKey.row", "tabCaptureHotKey.row",
                             "showDockIcon.switch", "copyToClipboard.switch", "startsAtLogin.switch",
                             "soundEnabled.switch", "captureSound", "testSound", "volume.slider"}) {
        const double y = item(name).mapToScene({}).y();
        EXPECT_GT(y, above) << name;
        above = y;
    }
}

TEST_F(SettingsFormView, eachRowHasItsOwnTextsAndSymbols) {
    struct Row {
        const char* control;
        QStringList texts; ///< Keys.
        QStringList symbols;
    };
    const auto check = [&](const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            // The row is the nearest ancestor that has a title.
            QQuickItem* found = item(row.control).parentItem();
            while (found && !found->property("title").isValid())
                found = found->parentItem();
            ASSERT_TRUE(found) << row.control;
            QStringList texts;
            for (const QString& key : row.texts)
                texts << localized(key);
            EXPECT_EQ(shownTexts(*found).mid(0, texts.size()), texts) << row.control;
            EXPECT_EQ(shownSymbols(*found), row.symbols) << row.control;
        }
    };
    const QString missing = QStringLiteral("exclamationmark.triangle.fill");
    check({{"accessibility.allow", {QStringLiteral("accessibility")}, {QStringLiteral("keyboard")}},
           {"screenRecording.allow", {QStringLiteral("screen.recording")}, {QStringLiteral("record.circle")}},
           {"showDockIcon.switch", {QStringLiteral("show dock icon")}, {QStringLiteral("dock.rectangle")}},
           {"copyToClipboard.switch",
            {QStringLiteral("copy to clipboard")},
            {QStringLiteral("doc.on.clipboard")}},
           {"soundEnabled.switch",
            {QStringLiteral("sound effects"), QStringLiteral("activate sound effects when capturing")},
            {QStringLiteral("speaker.wave.2.fill")}},
           {"captureSound",
            {QStringLiteral("capture sound"),
             QStringLiteral("choose a sound that will be played each time a capture is made")},
            {QStringLiteral("music.note"), QStringLiteral("chevron.down"),
             QStringLiteral("play.circle.fill")}}});
    EXPECT_EQ(shownSymbols(item("accessibility")).last(), missing);
    EXPECT_EQ(shownSymbols(item("screenRecording")).last(), missing);
    EXPECT_EQ(item("screenRecording.granted").property("symbol").toString(),
              QStringLiteral("checkmark.circle.fill"));
    EXPECT_EQ(shownTexts(item("testSound")), QStringList{localized(QStringLiteral("test the sound"))});
    EXPECT_EQ(shownSymbols(item("testSound")), QStringList{QStringLiteral("play.circle.fill")});
    const QQuickItem& volume = *item("volume").parentItem();
    EXPECT_EQ(shownTexts(volume).first(), localized(QStringLiteral("volume")));
    EXPECT_EQ(shownSymbols(volume).first(), QStringLiteral("speaker.wave.1.fill"));

    const QQuickItem& settingsTab = item("tab.settings");
    EXPECT_EQ(shownTexts(settingsTab), QStringList{QStringLiteral("Settings")});
    EXPECT_EQ(shownSymbols(settingsTab), QStringList{QStringLiteral("gearshape")});
    const QQuickItem& aboutTab = item("tab.about");
    EXPECT_EQ(shownTexts(aboutTab), QStringList{QStringLiteral("About")});
    EXPECT_EQ(shownSymbols(aboutTab), QStringList{QStringLiteral("info.circle")});
    item("tab.about").forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    check({{"version", {QStringLiteral("version")}, {QStringLiteral("info.circle")}}});
    const QStringList about = shownSymbols(*window.view().rootObject());
    EXPECT_TRUE(about.contains(QStringLiteral("camera.viewfinder"))) << about.join(u' ').toStdString();
}

TEST_F(SettingsFormView, theRecordersSayWhatToDo) {
    const auto texts = [&](const char* section) { return shownTexts(item(section)); };
    EXPECT_EQ(texts("hotKey").first(), QStringLiteral("Global Shortcut"));
    EXPECT_TRUE(texts("hotKey").contains(
        QStringLiteral("Click the area above then type the desired key combination")));
    EXPECT_EQ(texts("tabCaptureHotKey").first(), QStringLiteral("Window Capture"));
    EXPECT_TRUE(texts("tabCaptureHotKey")
                    .contains(QStringLiteral("Configure the shortcut to capture the active window")));
}

TEST_F(SettingsFormView, aShortcutWithoutAKeyIsCaptionedUntilTheNextIsRecorded) {
    const QQuickItem& caption = item("hotKey.caption");
    EXPECT_FALSE(caption.isVisible());
    platform.layout.texts = {{0, QStringLiteral("a")}};
    record("hotKey.row");
    platform.keys.pressHere({0, KeyModifier::command});
    EXPECT_EQ(item("hotKey.row").property("caps").toStringList(), QStringList{QStringLiteral("⌘")});
    EXPECT_TRUE(caption.isVisible());
    EXPECT_EQ(caption.property("text").toString(), QStringLiteral("Modifier-only shortcut"));
    record("hotKey.row");
    EXPECT_FALSE(caption.isVisible());
}

TEST_F(SettingsFormView, aRowIsClearUntilItRecords) {
    platform.appearance.reducedMotion = true;
    platform.appearance.accent = QColor(255, 0, 51);
    platform.notifications.post(notifications::appearanceChanged);
    const QQuickItem& row = ground("hotKey.row");
    const auto color = [&](const char* name) { return row.property(name).value<QColor>(); };
    EXPECT_EQ(color("color").alpha(), 0);
    EXPECT_EQ(color("outline"), QColor::fromRgbF(1, 1, 1, 0.1f));
    record("hotKey.row");
    EXPECT_EQ(color("color"), QColor::fromRgbF(1, 0, 0.2f, 0.2f));
    EXPECT_EQ(color("outline"), QColor::fromRgbF(1, 0, 0.2f, 0.5f));
    EXPECT_EQ(row.size(), item("hotKey.row").size());
    EXPECT_EQ(item("hotKey.row").property("padding").toDouble(), 12);
}

TEST_F(SettingsFormView, aVolumeWithoutAResetButtonIsNotResetUnseen) {
    QQuickItem& slider = item("volume.slider");
    slider.forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace})
        press(key);
    EXPECT_EQ(stored().soundEffectsVolume, 1.0);
    const QPoint end = slider.mapToScene({slider.width() - 2, slider.height() / 2}).toPoint();
    QTest::mouseClick(&window.view(), Qt::LeftButton, {}, end);
    QTest::mouseDClick(&window.view(), Qt::LeftButton, {}, end);
    EXPECT_EQ(stored().soundEffectsVolume, 1.0);
}

TEST_F(SettingsFormView, aKeyThatIsHeldTurnsASwitchOnce) {
    QQuickItem& toggle = item("copyToClipboard.switch");
    const bool before = toggle.property("checked").toBool();
    toggle.forceActiveFocus(Qt::TabFocusReason);
    hold(Qt::Key_Space, QStringLiteral(" "));
    QTest::keyRelease(&window.view(), Qt::Key_Space);
    EXPECT_NE(toggle.property("checked").toBool(), before);
}

TEST_F(SettingsFormView, aKeyThatIsHeldOpensAListOnce) {
    QQuickItem& list = item("captureSound");
    const auto isOpen = [&] {
        return list.property("popup").value<QObject*>()->property("visible").toBool();
    };
    list.forceActiveFocus(Qt::TabFocusReason);
    hold(Qt::Key_Space, QStringLiteral(" "));
    EXPECT_FALSE(isOpen());
    QTest::keyRelease(&window.view(), Qt::Key_Space);
    EXPECT_TRUE(isOpen());
    hold(Qt::Key_Space, QStringLiteral(" "));
    EXPECT_TRUE(isOpen());
}

TEST_F(SettingsFormView, aRepeatTakenForAPressOpensAListOnce) {
    QQmlComponent settling(window.view().engine());
    settling.setData("import QtQuick\nimport Framora.Controls\n"
                     "QtObject { Component.onCompleted: Theme.keySettling = 300 }",
                     {});
    const std::unique_ptr<QObject> set(settling.create()); // As where releases come amid the repeats.
    ASSERT_NE(set, nullptr) << settling.errorString().toStdString();
    QObject& list = *item("captureSound").property("popup").value<QObject*>();
    const QSignalSpy turned(&list, SIGNAL(visibleChanged()));
    item("captureSound").forceActiveFocus(Qt::TabFocusReason);
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Space);
    EXPECT_TRUE(QTest::qWaitFor([&] { return list.property("visible").toBool(); }));
    EXPECT_EQ(turned.size(), 1);
}

TEST_F(SettingsFormView, theKeysOpenAListAndChooseInIt) {
    QQuickItem& list = item("captureSound");
    const auto isOpen = [&] {
        return list.property("popup").value<QObject*>()->property("visible").toBool();
    };
    list.forceActiveFocus(Qt::TabFocusReason);
    for (const auto& [key, sound] :
         {std::pair(Qt::Key_Space, CaptureSound::funk), {Qt::Key_Return, CaptureSound::sosumi}}) {
        press(key);
        EXPECT_TRUE(isOpen());
        const CaptureSound before = stored().captureSound;
        press(Qt::Key_Down);
        EXPECT_EQ(stored().captureSound, before);
        press(key);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !isOpen(); }));
        EXPECT_EQ(stored().captureSound, sound);
    }
    EXPECT_EQ(list.property("displayText").toString(), QStringLiteral("Sosumi"));
    press(Qt::Key_Return);
    press(Qt::Key_Down);
    press(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isOpen(); }));
    EXPECT_TRUE(window.view().isVisible());
    EXPECT_EQ(stored().captureSound, CaptureSound::sosumi);
}

TEST_F(SettingsFormView, aHeldEscapeEndsTheRecordingAlone) {
    record("hotKey.row");
    ASSERT_EQ(platform.keys.recordings.size(), 1u);
    platform.keys.pressHere({53, 0});
    ASSERT_TRUE(platform.keys.recordings.empty());
    // The rest of the same long press.
    for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
        QKeyEvent repeat(type, Qt::Key_Escape, {}, QString(), true);
        QCoreApplication::sendEvent(&window.view(), &repeat);
    }
    QTest::keyRelease(&window.view(), Qt::Key_Escape);
    EXPECT_TRUE(window.view().isVisible());
    hold(Qt::Key_Escape, QString());
    EXPECT_TRUE(window.view().isVisible()) << "the repeats would fall on what is beneath";
    QTest::keyRelease(&window.view(), Qt::Key_Escape);
    EXPECT_FALSE(window.view().isVisible());
}

} // namespace
} // namespace framora
