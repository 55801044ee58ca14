#include "platform/wayland/ScreenshotPermission.h"

#include "desktop/portal/PortalDesktop.h"
#include "desktop/portal/ScreenshotPortalDouble.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

using State = ScreenshotPermission::State;
using Code = ScreenshotPortalDouble::Code;

/// Against the portals' own permission store; the capture tool is the test's.
class ScreenshotPermissionTest : public testing::Test {
protected:
    ScreenshotPermissionTest() {
        m_desktop.start(QStringLiteral("/usr/libexec/xdg-permission-store"));
        EXPECT_TRUE(waitFor([&] {
            return m_desktop.serviceIsOnBus(QStringLiteral("org.freedesktop.impl.portal.PermissionStore"));
        }));
    }
    ~ScreenshotPermissionTest() override { QDBusConnection::disconnectFromBus(m_connection); }
    void TearDown() override { EXPECT_EQ(m_desktop.leftovers(), QStringList()); }

    static bool waitFor(const std::function<bool()>& condition) { return DesktopSession::waitFor(condition); }
    bool becomes(ScreenshotPermission& permission, State state) {
        return waitFor([&] { return permission.state() == state; });
    }

    /// As the portal writes down what the user said.
    void store(const QString& answer) {
        m_desktop.run(QStringLiteral("busctl"),
                      {QStringLiteral("--user"), QStringLiteral("call"),
                       QStringLiteral("org.freedesktop.impl.portal.PermissionStore"),
                       QStringLiteral("/org/freedesktop/impl/portal/PermissionStore"),
                       QStringLiteral("org.freedesktop.impl.portal.PermissionStore"),
                       QStringLiteral("SetPermission"), QStringLiteral("sbssas"),
                       QStringLiteral("screenshot"), QStringLiteral("true"), QStringLiteral("screenshot"),
                       m_id, QStringLiteral("1"), answer});
    }

    ScreenshotPermission::Services services() {
        return {QDBusConnection::connectToBus(m_desktop.busAddress(), m_connection), m_id,
                [this](const QStringList& arguments, const QString& token, std::function<void(int)> ended) {
                    m_runs.push_back(arguments);
                    m_tokens.push_back(token);
                    if (arguments.contains(QStringLiteral("--check-route")))
                        ended(m_routeWithoutAsking ? 0 : 3);
                    else
                        m_ended = std::move(ended);
                }};
    }

    PortalDesktop m_desktop;
    const QString m_connection = QStringLiteral("permission test");
    QString m_id = QStringLiteral("org.framora.Framora");
    bool m_routeWithoutAsking = false;
    std::vector<QStringList> m_runs;
    QStringList m_tokens;
    std::function<void(int)> m_ended;
};

TEST_F(ScreenshotPermissionTest, IsGrantedByARouteThatAsksNobody) {
    m_routeWithoutAsking = true;
    ScreenshotPermission permission(services());
    EXPECT_TRUE(m_runs.empty()) << "nothing is asked before somebody wants to know";
    EXPECT_EQ(permission.state(), State::granted);
    EXPECT_EQ(m_runs.size(), 1U);
}

TEST_F(ScreenshotPermissionTest, IsUnknownUntilTheStoreAnswersAndNotAskedWithoutAnEntry) {
    ScreenshotPermission permission(services());
    EXPECT_EQ(permission.state(), State::unknown);
    EXPECT_TRUE(becomes(permission, State::notAsked));
    EXPECT_EQ(permission.commandToForget(), QString());
    EXPECT_EQ(m_runs.size(), 1U) << "the tool is asked once";
}

TEST_F(ScreenshotPermissionTest, FollowsWhatTheStoreSays) {
    store(QStringLiteral("yes"));
    ScreenshotPermission permission(services());
    EXPECT_TRUE(becomes(permission, State::granted));
    store(QStringLiteral("no"));
    EXPECT_TRUE(becomes(permission, State::denied));
    store(QStringLiteral("ask"));
    EXPECT_TRUE(becomes(permission, State::notAsked));
}

TEST_F(ScreenshotPermissionTest, HasNothingToDoWithOtherPrograms) {
    store(QStringLiteral("yes"));
    m_id = QStringLiteral("org.example.Other");
    ScreenshotPermission permission(services());
    EXPECT_TRUE(becomes(permission, State::notAsked));
}

TEST_F(ScreenshotPermissionTest, GivesACommandThatTakesAStoredDenialBack) {
    for (const QString& id : {m_id, QString()}) { // Without an id in one common record.
        m_id = id;
        store(QStringLiteral("no"));
        QDBusConnection::disconnectFromBus(m_connection);
        ScreenshotPermission permission(services());
        ASSERT_TRUE(becomes(permission, State::denied));
        EXPECT_FALSE(permission.ask({}, {}, [] {})) << "the desktop would not ask";
        m_desktop.run(QStringLiteral("sh"), {QStringLiteral("-c"), permission.commandToForget()});
        EXPECT_TRUE(becomes(permission, State::notAsked));
        EXPECT_TRUE(permission.ask({}, {}, [] {}));
    }
}

TEST_F(ScreenshotPermissionTest, AsksOnceAtATimeForTheWindowThatTheUserLooksAt) {
    ScreenshotPermission permission(services());
    ASSERT_TRUE(becomes(permission, State::notAsked));
    int answers = 0;
    EXPECT_TRUE(permission.ask(QStringLiteral("wayland:w"), QStringLiteral("token"), [&] { ++answers; }));
    EXPECT_EQ(m_runs.back(), QStringList({QStringLiteral("--ask-permission"), QStringLiteral("--parent"),
                                          QStringLiteral("wayland:w")}));
    EXPECT_EQ(m_tokens.back(), QStringLiteral("token"));
    EXPECT_FALSE(permission.ask({}, {}, [] {}));
    store(QStringLiteral("yes"));
    m_ended(0);
    EXPECT_EQ(answers, 1);
    EXPECT_TRUE(becomes(permission, State::granted));
}

TEST_F(ScreenshotPermissionTest, TakesTheDesktopsPictureForAYesWhereItRemembersNone) {
    ScreenshotPermission permission(services());
    ASSERT_TRUE(becomes(permission, State::notAsked));
    permission.ask({}, {}, [] {});
    m_ended(0);
    EXPECT_TRUE(becomes(permission, State::granted));
    store(QStringLiteral("no"));
    EXPECT_TRUE(becomes(permission, State::denied));
}

TEST_F(ScreenshotPermissionTest, MayBeAskedAgainWhenTheUserDidNotAnswer) {
    ScreenshotPermission permission(services());
    ASSERT_TRUE(becomes(permission, State::notAsked));
    permission.ask({}, {}, [] {});
    m_ended(1);
    EXPECT_TRUE(becomes(permission, State::notAsked));
    EXPECT_TRUE(permission.ask({}, {}, [] {}));
}

TEST_F(ScreenshotPermissionTest, IsNotAskedWhereThereIsNoStore) {
    PortalDesktop bare;
    auto bus = QDBusConnection::connectToBus(bare.busAddress(), QStringLiteral("bare"));
    auto elsewhere = services();
    elsewhere.bus = bus;
    ScreenshotPermission permission(std::move(elsewhere));
    EXPECT_TRUE(becomes(permission, State::notAsked));
    QDBusConnection::disconnectFromBus(QStringLiteral("bare"));
}

} // namespace
} // namespace framora
