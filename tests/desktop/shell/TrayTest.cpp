#include "desktop/path/FramoraDriver.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QRegularExpression>
#include <QUuid>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// Trays that come, go and come again while Framora runs.
class TrayTest : public testing::Test {
protected:
    TrayTest() { m_framora = &m_desktop.start(FramoraDriver::program(QStringLiteral("framora"))); }
    ~TrayTest() override { QDBusConnection::disconnectFromBus(m_busName); }

    /// Icons of Framora's that a tray has taken in.
    int embeddedIcons() {
        const QString tree = QString::fromUtf8(m_desktop.run(
            QStringLiteral("xwininfo"), {QStringLiteral("-root"), QStringLiteral("-tree")}, 5000));
        // Indented below the window that holds it; a child of the root would be at the first level.
        static const QRegularExpression icon(
            QStringLiteral("^ {6,}0x.*\\(\"framora\" \"framora\"\\)\\s+(\\d+)x(\\d+)\\+"),
            QRegularExpression::MultilineOption);
        int count = 0;
        for (auto matches = icon.globalMatch(tree); matches.hasNext();) {
            const auto match = matches.next();
            const int width = match.captured(1).toInt();
            const int height = match.captured(2).toInt();
            count += width >= 12 && width <= 64 && height >= 12 && height <= 64;
        }
        return count;
    }

    /// Items that the StatusNotifierWatcher knows; -1 while there is none.
    int registeredItems() {
        auto bus = QDBusConnection::connectToBus(m_desktop.busAddress(), m_busName);
        QDBusInterface watcher(QStringLiteral("org.kde.StatusNotifierWatcher"),
                               QStringLiteral("/StatusNotifierWatcher"),
                               QStringLiteral("org.kde.StatusNotifierWatcher"), bus);
        return watcher.isValid()
                   ? int(watcher.property("RegisteredStatusNotifierItems").toStringList().size())
                   : -1;
    }

    /// Asks the item's menu the way a host does. Empty when there is no item, or it does not know the call.
    QString callMenu(const QString& method, const QStringList& arguments) {
        auto bus = QDBusConnection::connectToBus(m_desktop.busAddress(), m_busName);
        const QStringList items = bus.interface()->registeredServiceNames().value().filter(
            QStringLiteral("org.kde.StatusNotifierItem-%1-").arg(m_framora->pid()));
        if (items.size() != 1)
            return {};
        return QString::fromUtf8(m_desktop.run(
            QStringLiteral("gdbus"),
            QStringList{QStringLiteral("call"), QStringLiteral("--session"), QStringLiteral("--dest"),
                        items.first(), QStringLiteral("--object-path"), QStringLiteral("/MenuBar"),
                        QStringLiteral("--method"), QStringLiteral("com.canonical.dbusmenu.") + method} +
                arguments));
    }

    bool captureIsOpen() {
        return m_desktop.display().windowTitled(QStringLiteral("framora-screencapture")).has_value();
    }

    bool soon(const std::function<bool()>& condition) { return VirtualDesktop::waitFor(condition, 15000); }

    VirtualDesktop m_desktop;
    ChildProcess* m_framora = nullptr;
    const QString m_busName = QUuid::createUuid().toString();
};

TEST_F(TrayTest, theIconAppearsInEveryXEmbedTrayThatComes) {
    for (const TrayHost host : {TrayHost::trayer, TrayHost::tint2, TrayHost::trayer}) {
        ChildProcess& tray = m_desktop.startTrayHost(host);
        EXPECT_TRUE(soon([&] { return embeddedIcons() == 1; }));
        tray.end();
        EXPECT_TRUE(soon([&] { return embeddedIcons() == 0; }));
    }
    EXPECT_TRUE(m_framora->isRunning());
}

TEST_F(TrayTest, theItemIsRegisteredWithEveryWatcherThatComes) {
    for (int round = 0; round < 2; ++round) {
        ChildProcess& panel = m_desktop.startTrayHost(TrayHost::xfcePanel);
        EXPECT_TRUE(soon([&] { return registeredItems() == 1; })) << registeredItems();
        panel.end();
        EXPECT_TRUE(soon([&] { return registeredItems() < 0; }));
    }
    EXPECT_TRUE(m_framora->isRunning());
}

TEST_F(TrayTest, theMenuHasItsFourEntriesWithTheirKeyEquivalents) {
    m_desktop.startTrayHost(TrayHost::xfcePanel);
    ASSERT_TRUE(soon([&] { return registeredItems() == 1; }));
    const QString layout =
        callMenu(QStringLiteral("GetLayout"),
                 {QStringLiteral("--"), QStringLiteral("0"), QStringLiteral("-1"), QStringLiteral("[]")});
    EXPECT_EQ(layout.count(QStringLiteral("'label'")), 4) << layout.toStdString();
    EXPECT_FALSE(layout.contains(QStringLiteral("Super+"))) << "the host shows the key itself";
    EXPECT_EQ(layout.count(QStringLiteral("'shortcut'")), 2) << layout.toStdString();
    EXPECT_TRUE(layout.contains(QStringLiteral("[['Super', ',']]"))) << layout.toStdString();
    EXPECT_TRUE(layout.contains(QStringLiteral("[['Super', 'q']]"))) << layout.toStdString();
}

TEST_F(TrayTest, twoClicksInOneTurnOfTheEventLoopTakeOneCapture) {
    m_desktop.startTrayHost(TrayHost::xfcePanel);
    ASSERT_TRUE(soon([&] { return registeredItems() == 1; }));
    // One message carries both, so nothing comes between them. The first two entries take an area and a
    // window.
    const QString answer =
        callMenu(QStringLiteral("EventGroup"),
                 {QStringLiteral("[(1, 'clicked', <0>, uint32 0), (2, 'clicked', <0>, uint32 0)]")});
    EXPECT_EQ(answer.trimmed(), QStringLiteral("(@ai [],)"));
    ASSERT_TRUE(soon([&] { return captureIsOpen(); }));
    const auto secondComes = [&] {
        return m_framora->children().size() > 1 ||
               m_desktop.display().windowTitled(QStringLiteral("Framora toast"));
    };
    EXPECT_FALSE(VirtualDesktop::waitFor(secondComes, 500)) << "nor does it fail to start";
    m_desktop.display().key({"Escape"});
    ASSERT_TRUE(soon([&] { return !captureIsOpen(); }));
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return captureIsOpen() || secondComes(); }, 700))
        << "nor does it wait its turn";
}

TEST_F(TrayTest, theIconMovesFromOneKindOfTrayToTheOther) {
    ChildProcess& tray = m_desktop.startTrayHost(TrayHost::trayer);
    ASSERT_TRUE(soon([&] { return embeddedIcons() == 1; }));
    tray.end();
    ChildProcess& panel = m_desktop.startTrayHost(TrayHost::xfcePanel);
    EXPECT_TRUE(soon([&] { return registeredItems() == 1; })) << registeredItems();
    panel.end();
    ASSERT_TRUE(soon([&] { return registeredItems() < 0; }));
    m_desktop.startTrayHost(TrayHost::tint2);
    EXPECT_TRUE(soon([&] { return embeddedIcons() == 1; }));
}

} // namespace
} // namespace framora
