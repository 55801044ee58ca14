#include "platform/desktop/BusShortcutsPortal.h"

#include "desktop/support/VirtualDesktop.h"
#include "platform/desktop/PortalRequest.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTimer>
#include <QUuid>
#include <gtest/gtest.h>

namespace framora {
namespace {

using Outcome = ShortcutsPortal::Outcome;

/// A portal on a bus of the test's own. It answers as the test says.
class PortalOnBus final : public QDBusVirtualObject {
public:
    explicit PortalOnBus(const QString& address)
        : m_name(QUuid::createUuid().toString()), m_bus(QDBusConnection::connectToBus(address, m_name)) {
        if (!m_bus.registerVirtualObject(root, this, QDBusConnection::SubPath) ||
            !m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")))
            throw std::runtime_error("The portal's double cannot get onto the bus");
    }
    ~PortalOnBus() override { QDBusConnection::disconnectFromBus(m_name); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        calls << call.member();
        last[call.member()] = call;
        if (call.member() == hangsAt)
            return true;
        if (call.member() == u"Get") {
            bus.send(version == 0
                         ? call.createErrorReply(QDBusError::UnknownInterface, QStringLiteral("none"))
                         : call.createReply(QVariant::fromValue(QDBusVariant(version))));
            return true;
        }
        if (call.member() == u"Register" || call.member() == u"Close") {
            bus.send(call.createReply());
            return true;
        }
        const QVariantMap options = qdbus_cast<QVariantMap>(call.arguments().last());
        const QString sender = call.service().mid(1).replace(u'.', u'_');
        const QString request = QStringLiteral("%1/request/%2/%3")
                                    .arg(root, sender, options[QStringLiteral("handle_token")].toString());
        const QString path = strangePaths ? request + QStringLiteral("x") : request;
        bus.send(call.createReply(QVariant::fromValue(QDBusObjectPath(path))));
        QDBusMessage response = QDBusMessage::createSignal(
            path, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        QVariantMap results;
        if (call.member() == u"CreateSession")
            results[QStringLiteral("session_handle")] = session;
        response << (call.member() == u"BindShortcuts" ? bindResponse : 0U) << results;
        if (isSilent)
            return true;
        // As a portal does it, whose dialog comes later.
        QTimer::singleShot(strangePaths ? 100 : 0, this, [bus, response] { bus.send(response); });
        return true;
    }
    void emitSignal(const QString& path, const char* interface, const char* name,
                    const QVariantList& values) {
        QDBusMessage signal = QDBusMessage::createSignal(path, QLatin1String(interface), QLatin1String(name));
        signal.setArguments(values);
        m_bus.send(signal);
    }

    static inline const QString root = QStringLiteral("/org/freedesktop/portal/desktop");
    static inline const QString session = root + QStringLiteral("/session/1_2/framora");
    uint version = 1;
    uint bindResponse = 0;
    bool strangePaths = false;
    bool isSilent = false; ///< Takes every request and never responds to it.
    QString hangsAt;       ///< A call that is not answered at all.
    QStringList calls;
    QMap<QString, QDBusMessage> last;

private:
    QString m_name;
    QDBusConnection m_bus;
};

class ShortcutsPortalTest : public testing::Test {
protected:
    static bool waitFor(const std::function<bool()>& condition, int milliseconds = 5000) {
        return DesktopSession::waitFor(condition, milliseconds);
    }
    std::optional<unsigned> begin() {
        bool isAnswered = false;
        std::optional<unsigned> version;
        portal.begin([&](std::optional<unsigned> answer) {
            isAnswered = true;
            version = answer;
        });
        EXPECT_TRUE(waitFor([&] { return isAnswered; }));
        return version;
    }
    std::optional<QString> create() {
        bool isAnswered = false;
        std::optional<QString> session;
        portal.createSession(wishes, [&](std::optional<QString> answer) {
            isAnswered = true;
            session = std::move(answer);
        });
        EXPECT_TRUE(waitFor([&] { return isAnswered; }));
        return session;
    }
    std::optional<Outcome> bind() {
        std::optional<Outcome> outcome;
        portal.bind(PortalOnBus::session, wishes,
                    [&](Outcome answer, const std::vector<ShortcutsPortal::Binding>&) { outcome = answer; });
        EXPECT_TRUE(waitFor([&] { return outcome.has_value(); }));
        return outcome;
    }

    VirtualDesktop desktop;
    BusShortcutsPortal portal{desktop.busAddress()};
    std::vector<ShortcutsPortal::Wish> wishes{{"capture-area", "Capture Area", "ALT+SHIFT+4"}};
};

TEST_F(ShortcutsPortalTest, itSaysWhoItIsBeforeAnythingElse) {
    PortalOnBus server(desktop.busAddress());
    server.version = 2;
    EXPECT_EQ(begin(), 2U);
    EXPECT_EQ(server.calls, (QStringList{"Register", "Get"}));
    EXPECT_EQ(server.last["Register"].arguments().first().toString(), "org.framora.Framora");
}

TEST_F(ShortcutsPortalTest, withoutAPortalOrItsInterfaceThereIsNoVersion) {
    EXPECT_EQ(begin(), std::nullopt);
    PortalOnBus server(desktop.busAddress());
    server.version = 0;
    EXPECT_EQ(begin(), std::nullopt);
}

TEST_F(ShortcutsPortalTest, sessionAndBindingAreAskedForUnderAStableNameWithTheShortcutsInBoth) {
    PortalOnBus server(desktop.busAddress());
    EXPECT_EQ(create(), PortalOnBus::session);
    const auto options = qdbus_cast<QVariantMap>(server.last["CreateSession"].arguments().first());
    EXPECT_EQ(options["session_handle_token"].toString(), "framora");
    EXPECT_TRUE(options.contains("shortcuts"));
    EXPECT_EQ(bind(), Outcome::done);
    EXPECT_EQ(server.last["BindShortcuts"].signature(), "oa(sa{sv})sa{sv}");
}

TEST_F(ShortcutsPortalTest, refusalsAndOtherEndsAreTold) {
    PortalOnBus server(desktop.busAddress());
    server.bindResponse = 1;
    EXPECT_EQ(bind(), Outcome::refused);
    server.bindResponse = 2;
    EXPECT_EQ(bind(), Outcome::failed);
}

TEST_F(ShortcutsPortalTest, aPortalThatChoosesItsOwnPathsIsFollowed) {
    PortalOnBus server(desktop.busAddress());
    server.strangePaths = true;
    EXPECT_EQ(create(), PortalOnBus::session);
}

TEST_F(ShortcutsPortalTest, aRequestEndsWithThePortalThatTookIt) {
    auto server = std::make_unique<PortalOnBus>(desktop.busAddress());
    server->isSilent = true;
    QStringList heard;
    portal.listen({[] {}, [&] { heard << "vanished"; }, {}, {}, {}});
    portal.bind(PortalOnBus::session, wishes,
                [&](Outcome outcome, const std::vector<ShortcutsPortal::Binding>&) {
                    heard << (outcome == Outcome::failed ? "failed" : "another outcome");
                });
    ASSERT_TRUE(waitFor([&] { return server->calls.contains("BindShortcuts"); }));
    EXPECT_EQ(portal.findChildren<PortalRequest*>().size(), 1);
    server.reset();
    EXPECT_TRUE(waitFor([&] { return portal.findChildren<PortalRequest*>().isEmpty(); }));
    EXPECT_EQ(heard, (QStringList{"vanished", "failed"})) << "what its end means is known by then";
}

TEST_F(ShortcutsPortalTest, aPortalThatFallsOverAtItsRegistryIsNotStartedByAFurtherQuestion) {
    auto server = std::make_unique<PortalOnBus>(desktop.busAddress());
    server->hangsAt = "Register";
    bool isAnswered = false;
    std::optional<unsigned> version;
    portal.begin([&](std::optional<unsigned> answer) {
        isAnswered = true;
        version = answer;
    });
    ASSERT_TRUE(waitFor([&] { return server->calls.contains("Register"); }));
    server.reset();
    const PortalOnBus next(desktop.busAddress());
    EXPECT_TRUE(waitFor([&] { return isAnswered; }));
    EXPECT_EQ(version, std::nullopt);
    EXPECT_EQ(next.calls, QStringList());
}

TEST_F(ShortcutsPortalTest, whatThePortalTellsIsHeard) {
    QStringList heard;
    portal.listen(
        {[&] { heard << "appeared"; }, [&] { heard << "vanished"; },
         [&](const QString& session) { heard << "closed " + session.section(u'/', -1); },
         [&](const QString&, const QString& id, const QString& token) { heard << id + u' ' + token; },
         [&](const QString&, const std::vector<ShortcutsPortal::Binding>&) { heard << "changed"; }});
    auto server = std::make_unique<PortalOnBus>(desktop.busAddress());
    ASSERT_TRUE(waitFor([&] { return heard == QStringList{"appeared"}; }));
    server->emitSignal(PortalOnBus::root, "org.freedesktop.portal.GlobalShortcuts", "Activated",
                       {QVariant::fromValue(QDBusObjectPath(PortalOnBus::session)), "capture-area",
                        QVariant::fromValue(qulonglong{5}),
                        QVariantMap{{QStringLiteral("activation_token"), QStringLiteral("t1")}}});
    server->emitSignal(PortalOnBus::session, "org.freedesktop.portal.Session", "Closed", {QVariantMap()});
    server.reset();
    EXPECT_TRUE(waitFor([&] { return heard.size() == 4; }));
    EXPECT_EQ(heard, (QStringList{"appeared", "capture-area t1", "closed framora", "vanished"}));
}

} // namespace
} // namespace framora
