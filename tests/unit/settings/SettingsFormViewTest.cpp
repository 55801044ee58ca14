#include "settings/Settings.h"
#include "settings/window/QuickSettingsWindow.h"
#include "support/SettingsPlatform.h"

#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <gtest/gtest.h>

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
        QQuickItem* found = find(window.view().rootObject(), QLatin1String(name));
        if (!found)
            qFatal("there is no %s", name);
        return *found;
    }
    Settings stored() { return Settings::load(platform.defaults); }
    void press(Qt::Key key) { QTest::keyClick(&window.view(), key); }

    SettingsPlatform platform;
    QuickSettingsWindow window{platform.services(), [] {}};

private:
    static QQuickItem* find(QQuickItem* item, const QString& name) {
        if (item->objectName() == name)
            return item;
        for (QQuickItem* child : item->childItems())
            if (QQuickItem* found = find(child, name))
                return found;
        return nullptr;
    }
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
    QTest::keyPress(&window.view(), Qt::Key_Space);
    for (int i = 0; i < 3; ++i)
        for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
            QKeyEvent repeat(type, Qt::Key_Space, {}, QStringLiteral(" "), true);
            QCoreApplication::sendEvent(&window.view(), &repeat);
        }
    QTest::keyRelease(&window.view(), Qt::Key_Space);
    EXPECT_NE(toggle.property("checked").toBool(), before);
}

} // namespace
} // namespace framora
