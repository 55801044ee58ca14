#include "desktop/wayland/path/FramoraOnSway.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QTest>
#include <gtest/gtest.h>
#include <string_view>
#include <wayland-client.h>
#include <wayland-protocols/xdg-activation-v1.h>

namespace framora {
namespace {

/// What a launcher gets from the compositor for the program that it starts.
QString activationToken(const QString& waylandDisplay) {
    wl_display* const display = wl_display_connect(waylandDisplay.toLocal8Bit().constData());
    wl_registry* const registry = wl_display_get_registry(display);
    xdg_activation_v1* activation = nullptr;
    static constexpr wl_registry_listener registryListener{
        [](void* data, wl_registry* offered, std::uint32_t name, const char* interface, std::uint32_t) {
            if (std::string_view(interface) == xdg_activation_v1_interface.name)
                *static_cast<xdg_activation_v1**>(data) = static_cast<xdg_activation_v1*>(
                    wl_registry_bind(offered, name, &xdg_activation_v1_interface, 1));
        },
        [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(registry, &registryListener, &activation);
    wl_display_roundtrip(display);
    QString result;
    if (activation) {
        xdg_activation_token_v1* const token = xdg_activation_v1_get_activation_token(activation);
        static constexpr xdg_activation_token_v1_listener tokenListener{
            [](void* data, xdg_activation_token_v1*, const char* text) {
                *static_cast<QString*>(data) = QString::fromUtf8(text);
            }};
        xdg_activation_token_v1_add_listener(token, &tokenListener, &result);
        xdg_activation_token_v1_commit(token);
        wl_display_roundtrip(display);
        xdg_activation_token_v1_destroy(token);
        xdg_activation_v1_destroy(activation);
    }
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return result;
}

/// The built program's windows as Qt shows them on a compositor. With FRAMORA_PICTURES_FOLDER the tests leave
/// there what they saw.
class WaylandWindowsTest : public testing::TestWithParam<double> {
protected:
    WaylandWindowsTest() : framora(FramoraOnSway::options(scale())) {}

    static double scale() {
        const auto* run = testing::UnitTest::GetInstance()->current_test_info();
        return run && run->value_param() ? GetParam() : 1.0;
    }
    SwayDesktop& desktop() { return framora.desktop(); }
    VirtualInput& input() { return framora.input(); }

    void keep(const char* name) {
        const QString folder = qEnvironmentVariable("FRAMORA_PICTURES_FOLDER");
        if (!folder.isEmpty())
            desktop().settledScreenshot().save(
                QStringLiteral("%1/%2-%3.png").arg(folder, QLatin1String(name)).arg(scale()));
    }

    std::optional<SwayWindow> settings() {
        for (const SwayWindow& window : desktop().windows())
            if (window.title == QStringLiteral("Preferences"))
                return window;
        return {};
    }
    SwayWindow openSettings() {
        framora.command(QStringLiteral("--settings"));
        framora.require(QStringLiteral("the settings"), [&] { return settings() && settings()->focused; });
        return *settings();
    }
    /// A control of the settings window, in the layout.
    QRect settingsControl(const QString& name, const QString& role = {}) {
        std::optional<AccessibleNode> found;
        framora.require(QStringLiteral("the control ") + name, [&] {
            if (!tree)
                tree.emplace(desktop().busAddress());
            found = tree->find(QString(), name, role);
            return found.has_value();
        });
        return found->area.translated(settings()->content.topLeft());
    }
    QByteArray stored() { return desktop().storedDefaults(); }

    FramoraOnSway framora;
    std::optional<AccessibleTree> tree;
};

INSTANTIATE_TEST_SUITE_P(, WaylandWindowsTest, testing::Values(1.0, 1.5, 2.0),
                         [](const auto& run) { return "scale" + std::to_string(int(run.param * 100)); });

TEST_P(WaylandWindowsTest, bothWindowsComeUpUnderTheApplicationsNameWithTheFocus) {
    framora.launch();
    const SwayWindow preferences = openSettings();
    EXPECT_EQ(preferences.appId, QStringLiteral("org.framora.Framora"));
    keep("settings");
    desktop().close(preferences);
    framora.require(QStringLiteral("the settings closing"), [&] { return !settings(); });
    const QRect toast = framora.capture(QRect(200, 150, 500, 300));
    keep("toast");
    input().click(QRectF(toast).center());
    const SwayWindow editor = framora.waitForEditor();
    EXPECT_EQ(editor.appId, QStringLiteral("org.framora.Framora"));
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return framora.editor()->focused; }));
    QTest::qWait(700);
    keep("editor");
    framora.quit();
    EXPECT_TRUE(framora.leavesNothing());
}

class WaylandDarkWindowsTest : public WaylandWindowsTest {};
INSTANTIATE_TEST_SUITE_P(, WaylandDarkWindowsTest, testing::Values(1.0, 2.0),
                         [](const auto& run) { return "scale" + std::to_string(int(run.param * 100)); });

TEST_P(WaylandDarkWindowsTest, onADarkDesktopTheyAreDark) {
    desktop().setEnvironmentVariable(QStringLiteral("GTK_THEME"), QStringLiteral("Adwaita:dark"));
    framora.launch();
    const SwayWindow preferences = openSettings();
    const QImage seen = desktop().settledScreenshot();
    EXPECT_LT(seen.pixelColor((preferences.content.center() * scale()).x(),
                              int((preferences.content.bottom() - 8) * scale()))
                  .lightness(),
              110);
    keep("dark-settings");
    desktop().close(preferences);
    const QRect toast = framora.capture(QRect(200, 150, 500, 300));
    keep("dark-toast");
    input().click(QRectF(toast).center());
    framora.waitForEditor();
    QTest::qWait(700);
    keep("dark-editor");
    framora.quit();
}

class WaylandWindowTest : public WaylandWindowsTest {};
INSTANTIATE_TEST_SUITE_P(, WaylandWindowTest, testing::Values(1.0));

TEST_P(WaylandWindowTest, theEditorComesToTheFrontOfTheWindowThatWasInUse) {
    framora.launch();
    const PaintedSurface other(
        desktop().waylandDisplay(),
        {PaintedSurface::pattern({900, 500}, 9), {900, 500}, QStringLiteral("other"), {}});
    framora.require(QStringLiteral("the other window"), [&] {
        const auto window = desktop().window(QStringLiteral("other"));
        return window && window->focused;
    });
    framora.openCapture();
    framora.selectArea(QRect(300, 200, 300, 200));
    // The toast stands in front of everything, at the bottom's middle.
    framora.require(QStringLiteral("the toast"), [&] {
        return desktop().screenshot().pixelColor(640 - 60, 800 - 80 - 12).lightness() > 230;
    });
    EXPECT_TRUE(desktop().window(QStringLiteral("other"))->focused);
    input().click({640, 800 - 80 - 40});
    framora.waitForEditor();
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return framora.editor()->focused; }));
    framora.quit();
}

TEST_P(WaylandWindowTest, theSettingsComeToTheFrontWhenTheyAreAskedForAgain) {
    framora.launch();
    openSettings();
    const PaintedSurface other(
        desktop().waylandDisplay(),
        {PaintedSurface::pattern({900, 500}, 9), {900, 500}, QStringLiteral("other"), {}});
    framora.require(QStringLiteral("the other window"), [&] {
        const auto window = desktop().window(QStringLiteral("other"));
        return window && window->focused;
    });
    // What launches programs gives them a token.
    desktop().setEnvironmentVariable(QStringLiteral("XDG_ACTIVATION_TOKEN"),
                                     activationToken(desktop().waylandDisplay()));
    framora.command(QStringLiteral("--settings"));
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return settings()->focused; }));
    framora.quit();
}

TEST_P(WaylandWindowTest, theTraysMenuBringsTheSettingsToTheFrontByTheHostsToken) {
    // A tray host, as far as the item is concerned.
    const QString name = QStringLiteral("tray host of the test");
    auto bus = QDBusConnection::connectToBus(desktop().busAddress(), name);
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher")));
    const ChildProcess& program = framora.launch();
    openSettings();
    const PaintedSurface other(
        desktop().waylandDisplay(),
        {PaintedSurface::pattern({900, 500}, 9), {900, 500}, QStringLiteral("other"), {}});
    framora.require(QStringLiteral("the other window"), [&] {
        const auto window = desktop().window(QStringLiteral("other"));
        return window && window->focused;
    });
    const QString item = QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(program.pid());
    framora.require(QStringLiteral("the item"), [&] { return desktop().serviceIsOnBus(item); });
    const auto tell = [&](const char* path, const char* interface, const char* method,
                          const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(item, QLatin1String(path), QLatin1String(interface),
                                                      QLatin1String(method));
        message.setArguments(arguments);
        return bus.call(message).type() == QDBusMessage::ReplyMessage;
    };
    EXPECT_TRUE(tell("/StatusNotifierItem", "org.kde.StatusNotifierItem", "ProvideXdgActivationToken",
                     {activationToken(desktop().waylandDisplay())}));
    EXPECT_TRUE(tell("/MenuBar", "com.canonical.dbusmenu", "Event",
                     {3, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(0)), 0u}));
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return settings()->focused; }));
    framora.quit();
    QDBusConnection::disconnectFromBus(name);
}

TEST_P(WaylandWindowTest, theEditorIsMovedAndResizedByTheCompositor) {
    framora.launch();
    framora.captureAndEdit(QRect(200, 150, 400, 250));
    QTest::qWait(500);
    const QRect before = framora.editor()->content;
    // The compositor takes a drag over a moment after the button went down: what it moves by is less.
    const auto drag = [&](const QPointF& from, const QPointF& by) {
        input().moveTo(from);
        input().press();
        input().moveTo(from + by / 8);
        QTest::qWait(300);
        input().moveTo(from + by);
        QTest::qWait(100);
        input().release();
    };
    drag(QPointF(before.center().x() + 40, before.top() + 6), QPointF(-56, 32));
    EXPECT_TRUE(SwayDesktop::waitFor([&] {
        const QPoint by = framora.editor()->content.topLeft() - before.topLeft();
        return by.x() <= -40 && by.x() >= -60 && by.y() >= 20 && by.y() <= 40;
    })) << framora.editor()->content.x()
        << ' ' << framora.editor()->content.y();
    const QRect moved = framora.editor()->content;
    drag(QPointF(moved.right() - 1, moved.bottom() - 1), QPointF(-80, -56));
    EXPECT_TRUE(SwayDesktop::waitFor([&] {
        const QRect now = framora.editor()->content;
        return now.width() < moved.width() - 40 && now.height() < moved.height() - 25 &&
               now.topLeft() == moved.topLeft();
    })) << framora.editor()->content.width();
    framora.quit();
}

TEST_P(WaylandWindowTest, aShortcutIsRecordedWithItsModifiersShownWhileTheyAreHeld) {
    framora.launch();
    openSettings();
    input().click(
        QRectF(settingsControl(QStringLiteral("Global Shortcut"), QStringLiteral("push button"))).center());
    settingsControl(QStringLiteral("Enter a key combination"));
    const QImage empty = desktop().settledScreenshot();
    input().keyDown("Alt_L");
    EXPECT_TRUE(SwayDesktop::waitFor([&] { return desktop().screenshot() != empty; }))
        << "the key that is held is shown";
    keep("recording");
    input().keyDown("Super_L");
    input().key({"7"});
    input().keyUp("Super_L");
    input().keyUp("Alt_L");
    // "7" is the key 26; Alt and Super are 0x80000 and 0x100000.
    EXPECT_TRUE(SwayDesktop::waitFor([&] {
        return stored().contains("\"keyCode\": 26") && stored().contains(QByteArray::number(0x180000));
    })) << stored().constData();
    keep("recorded");
    framora.quit();
}

TEST_P(WaylandWindowTest, restingItTakesNoMoreThanOnX11AndLoadsNoGraphicsStackForItsWindows) {
    ChildProcess& program = framora.launch();
    QTest::qWait(500);
    EXPECT_LT(program.residentKilobytes(), 40000);
    openSettings();
    QFile maps(QStringLiteral("/proc/%1/maps").arg(program.pid()));
    ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
    const QByteArray loaded = maps.readAll();
    EXPECT_TRUE(loaded.contains("framora-windows.so"));
    EXPECT_FALSE(loaded.contains("libEGL_mesa"));
    EXPECT_FALSE(loaded.contains("libLLVM"));
    framora.quit();
}

} // namespace
} // namespace framora
