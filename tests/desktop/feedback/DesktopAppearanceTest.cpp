#include "platform/desktop/DesktopAppearance.h"

#include "desktop/support/VirtualDesktop.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QPalette>
#include <gtest/gtest.h>
#include <memory>
#include <optional>

namespace framora {
namespace {

using Groups = QMap<QString, QVariantMap>;

/// The desktop's Settings portal, as far as appearance goes.
class FakePortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    Groups groups;
    int reads = 0;

public Q_SLOTS:
    Groups ReadAll(const QStringList&) {
        ++reads;
        return groups;
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString scheme = QStringLiteral("color-scheme");

class DesktopAppearanceTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        DesktopOptions options;
        options.windowManager = WindowManager::none;
        desktop = std::make_unique<VirtualDesktop>(options);
    }
    static void TearDownTestSuite() { desktop.reset(); }

    DesktopAppearanceTest() {
        qunsetenv("GTK_THEME");
        qDBusRegisterMetaType<Groups>();
        const QString address = desktop->environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        EXPECT_FALSE(address.isEmpty());
        service.emplace(QDBusConnection::connectToBus(address, connectionName(QStringLiteral("portal"))));
        client.emplace(QDBusConnection::connectToBus(address, connectionName(QStringLiteral("program"))));
        EXPECT_TRUE(
            service->registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                    QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        // The test before gives the name back a moment after it ended.
        EXPECT_TRUE(VirtualDesktop::waitFor(
            [&] { return service->registerService(QStringLiteral("org.freedesktop.portal.Desktop")); }));
    }
    ~DesktopAppearanceTest() override {
        for (auto* connection : {&service, &client}) {
            const QString name = (*connection)->name();
            connection->reset();
            QDBusConnection::disconnectFromBus(name);
        }
    }

    /// Each test has connections of its own.
    static QString connectionName(const QString& role) {
        static int number = 0;
        return role + QString::number(++number);
    }

    FakePortal portal;
    static inline std::unique_ptr<VirtualDesktop> desktop;
    std::optional<QDBusConnection> service;
    std::optional<QDBusConnection> client;
    NotificationCenter notifications;
    int changes = 0;
    NotificationCenter::Token token =
        notifications.observe(notifications::appearanceChanged, [this] { ++changes; });
};

TEST_F(DesktopAppearanceTest, takesThePortalsWordAndAnnouncesIt) {
    portal.groups[appearanceGroup][scheme] = QVariant::fromValue(1u);
    const DesktopAppearance appearance(notifications, *client);
    EXPECT_FALSE(appearance.isDark()) << "nobody waits for the portal";
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return appearance.isDark(); }));
    EXPECT_EQ(changes, 1);
}

TEST_F(DesktopAppearanceTest, followsTheDesktopWhileItRuns) {
    portal.groups[appearanceGroup][scheme] = QVariant::fromValue(2u);
    const DesktopAppearance appearance(notifications, *client);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return portal.reads == 1; }));
    Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(1u)));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return appearance.isDark(); }));
    Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(2u)));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !appearance.isDark(); }));
    EXPECT_EQ(changes, 2);
    EXPECT_FALSE(appearance.prefersReducedMotion());
    Q_EMIT portal.SettingChanged(QStringLiteral("org.gnome.desktop.interface"),
                                 QStringLiteral("enable-animations"), QDBusVariant(false));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return appearance.prefersReducedMotion(); }));
}

TEST_F(DesktopAppearanceTest, takesTheAccentColour) {
    const DesktopAppearance appearance(notifications, *client);
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return portal.reads == 1; }));
    QDBusArgument rgb;
    rgb.beginStructure();
    rgb << 1.0 << 0.5 << 0.0;
    rgb.endStructure();
    Q_EMIT portal.SettingChanged(appearanceGroup, QStringLiteral("accent-color"),
                                 QDBusVariant(QVariant::fromValue(rgb)));
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] { return appearance.accentColor() == QColor::fromRgbF(1.0f, 0.5f, 0.0f); }));
}

TEST_F(DesktopAppearanceTest, withoutAPreferenceTheThemesNameDecides) {
    portal.groups[appearanceGroup][scheme] = QVariant::fromValue(0u);
    portal.groups[QStringLiteral("org.gnome.desktop.interface")][QStringLiteral("gtk-theme")] =
        QStringLiteral("Arc-Dark");
    const DesktopAppearance appearance(notifications, *client);
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return appearance.isDark(); }));
    qputenv("GTK_THEME", "Adwaita");
    EXPECT_FALSE(appearance.isDark());
    qputenv("GTK_THEME", "Adwaita:dark");
    EXPECT_TRUE(appearance.isDark());
    qunsetenv("GTK_THEME");
}

TEST_F(DesktopAppearanceTest, withoutAPortalThePaletteDecides) {
    const DesktopAppearance appearance(notifications, QDBusConnection(QStringLiteral("no such bus")));
    EXPECT_FALSE(appearance.isDark());
    EXPECT_GT(appearance.accentColor().saturation(), 40);
    const QPalette before = QGuiApplication::palette();
    QGuiApplication::setPalette(QPalette(QColor(40, 40, 44)));
    EXPECT_TRUE(appearance.isDark());
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return changes >= 1; }));
    QGuiApplication::setPalette(before);
}

TEST_F(DesktopAppearanceTest, whatTheToolkitDrawsFollowsTheDesktop) {
    const QPalette before = QGuiApplication::palette();
    const auto lightness = [](QPalette::ColorRole role) {
        return QGuiApplication::palette().color(role).lightness();
    };
    portal.groups[appearanceGroup][scheme] = QVariant::fromValue(1u);
    {
        DesktopAppearance appearance(notifications, *client);
        EXPECT_EQ(QGuiApplication::palette(), before) << "only on request";
        appearance.colorApplication();
        EXPECT_GT(lightness(QPalette::Window), 200);
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return lightness(QPalette::Window) < 60; }));
        EXPECT_GT(lightness(QPalette::WindowText), 200);
        EXPECT_LT(lightness(QPalette::Base), 60);
        EXPECT_EQ(QGuiApplication::palette().color(QPalette::Highlight), appearance.accentColor());
        Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(2u)));
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return lightness(QPalette::Window) > 200; }));
        EXPECT_LT(lightness(QPalette::WindowText), 60);
        Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(1u)));
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return appearance.isDark(); }));
        // Without a preference the desktop's own palette decides, not the one that was put over it.
        Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(0u)));
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !appearance.isDark(); }));
        EXPECT_GT(lightness(QPalette::Window), 200);
    }
    QGuiApplication::setPalette(before);
}

TEST_F(DesktopAppearanceTest, aPaletteOfTheDesktopThatAgreesStays) {
    const QPalette before = QGuiApplication::palette();
    QPalette themed(QColor(50, 30, 60), QColor(50, 30, 60));
    themed.setColor(QPalette::All, QPalette::Highlight, QColor(200, 60, 90));
    QGuiApplication::setPalette(themed);
    {
        DesktopAppearance appearance(notifications, *client);
        appearance.colorApplication();
        ASSERT_TRUE(VirtualDesktop::waitFor([&] { return portal.reads == 1; }));
        EXPECT_TRUE(appearance.isDark());
        EXPECT_EQ(QGuiApplication::palette().color(QPalette::Window), QColor(50, 30, 60));
        Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(2u)));
        EXPECT_TRUE(VirtualDesktop::waitFor(
            [&] { return QGuiApplication::palette().color(QPalette::Window).lightness() > 200; }));
        Q_EMIT portal.SettingChanged(appearanceGroup, scheme, QDBusVariant(QVariant::fromValue(1u)));
        EXPECT_TRUE(VirtualDesktop::waitFor(
            [&] { return QGuiApplication::palette().color(QPalette::Window) == QColor(50, 30, 60); }));
    }
    QGuiApplication::setPalette(before);
}

} // namespace
} // namespace framora

#include "DesktopAppearanceTest.moc"
