#include "platform/desktop/PortalSharing.h"

#include "desktop/editor/PortalDouble.h"
#include "desktop/support/VirtualDesktop.h"

#include <QElapsedTimer>
#include <QFile>
#include <gtest/gtest.h>
#include <optional>

namespace framora {
namespace {

using Outcome = Sharing::Outcome;

/// The real sharing against a portal's double on a bus of their own.
class PortalSharingOnABus : public testing::Test {
public:
    PortalSharingOnABus() {
        DesktopOptions options;
        options.windowManager = WindowManager::none;
        desktop.emplace(options);
        path = desktop->scratchPath() + QStringLiteral("/Screenshot.png");
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("the picture");
        file.close();
        sharing.emplace([this](QWindow*) { return parent; },
                        QDBusConnection::connectToBus(desktop->busAddress(), QStringLiteral("sharing")));
    }
    ~PortalSharingOnABus() override {
        sharing.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("sharing"));
    }
    void startPortal(PortalDouble::Interfaces interfaces = {}) {
        portal = std::make_unique<PortalDouble>(desktop->busAddress(), interfaces);
    }
    Sharing::Abilities abilities() {
        std::optional<Sharing::Abilities> answer;
        sharing->queryAbilities([&](Sharing::Abilities found) { answer = found; });
        EXPECT_FALSE(answer) << "never inside the call";
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return answer.has_value(); }));
        return answer.value_or(Sharing::Abilities{});
    }
    /// What the finish said, once it came.
    static std::optional<Outcome> outcomeOf(const std::function<void(Sharing::Finished)>& share) {
        std::optional<Outcome> answer;
        share([&](Outcome was) { answer = was; });
        EXPECT_FALSE(answer) << "never inside the call";
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return answer.has_value(); }));
        return answer;
    }
    std::optional<Outcome> openTheFile() {
        return outcomeOf([&](auto finished) { sharing->openWith(path, nullptr, finished); });
    }
    std::optional<Outcome> mailTheFile() {
        return outcomeOf([&](auto finished) {
            sharing->composeMail(path, QStringLiteral("Screenshot"), nullptr, finished);
        });
    }

    std::optional<VirtualDesktop> desktop;
    std::unique_ptr<PortalDouble> portal;
    std::optional<PortalSharing> sharing;
    PortalWindowName parent = std::make_shared<const QString>(QStringLiteral("wayland:the editor"));
    QString path;
};

TEST_F(PortalSharingOnABus, FindsWhatThePortalHas) {
    startPortal({true, false});
    EXPECT_EQ(abilities(), (Sharing::Abilities{true, false}));
    portal.reset();
    startPortal({false, true});
    EXPECT_EQ(abilities(), (Sharing::Abilities{false, true}));
    portal.reset();
    startPortal();
    EXPECT_EQ(abilities(), (Sharing::Abilities{true, true}));
    portal.reset();
    startPortal({false, false});
    EXPECT_EQ(abilities(), Sharing::Abilities{});
}

TEST_F(PortalSharingOnABus, OffersTheFileWithAChoiceOfPrograms) {
    startPortal();
    EXPECT_EQ(openTheFile(), Outcome::taken);
    ASSERT_EQ(portal->calls.size(), 1U);
    const PortalDouble::Call& call = portal->calls[0];
    EXPECT_EQ(call.method, QStringLiteral("OpenFile"));
    EXPECT_EQ(call.path, path);
    EXPECT_EQ(call.bytes, "the picture");
    EXPECT_EQ(call.options, (QVariantMap{{QStringLiteral("ask"), true}}));
    EXPECT_EQ(call.parentWindow, *parent);
}

TEST_F(PortalSharingOnABus, AttachesTheFileToAMail) {
    startPortal();
    EXPECT_EQ(mailTheFile(), Outcome::taken);
    ASSERT_EQ(portal->calls.size(), 1U);
    const PortalDouble::Call& call = portal->calls[0];
    EXPECT_EQ(call.method, QStringLiteral("ComposeEmail"));
    EXPECT_EQ(call.options.value(QStringLiteral("subject")), QStringLiteral("Screenshot"));
    EXPECT_EQ(call.path, path);
    EXPECT_EQ(call.bytes, "the picture");
}

TEST_F(PortalSharingOnABus, SaysWhenItIsRefusedOrThereIsNoFile) {
    startPortal();
    ASSERT_TRUE(QFile::rename(path, path + QStringLiteral(".away")));
    EXPECT_EQ(openTheFile(), Outcome::failed);
    EXPECT_EQ(mailTheFile(), Outcome::failed);
    EXPECT_TRUE(portal->calls.empty());
    ASSERT_TRUE(QFile::rename(path + QStringLiteral(".away"), path));
    portal->refuses = true;
    EXPECT_EQ(openTheFile(), Outcome::failed);
    EXPECT_EQ(mailTheFile(), Outcome::failed);
    EXPECT_EQ(portal->calls.size(), 2U);
}

TEST_F(PortalSharingOnABus, TellsWhatItsUserAnswersThePortal) {
    startPortal();
    portal->response = 1;
    EXPECT_EQ(openTheFile(), Outcome::cancelled);
    EXPECT_EQ(mailTheFile(), Outcome::cancelled);
    portal->response = 2;
    EXPECT_EQ(openTheFile(), Outcome::failed);
    EXPECT_EQ(mailTheFile(), Outcome::failed);
}

TEST_F(PortalSharingOnABus, WaitsForTheAnswerAsLongAsThePortalDoes) {
    startPortal();
    portal->response.reset();
    std::optional<Outcome> answer;
    sharing->openWith(path, nullptr, [&](Outcome was) { answer = was; });
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return !portal->calls.empty(); }));
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return answer.has_value(); }, 200));
    EXPECT_GT(parent.use_count(), 1) << "the dialog stands on the window";
    portal.reset();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return answer.has_value(); }));
    EXPECT_EQ(answer, Outcome::failed);
}

TEST_F(PortalSharingOnABus, NeverWaitsAndLeavesNoDescriptorOpen) {
    startPortal();
    EXPECT_EQ(openTheFile(), Outcome::taken);
    const int before = ChildProcess::openDescriptors(getpid());
    for (int i = 0; i < 20; ++i) {
        portal->response = unsigned(i % 3);
        EXPECT_TRUE(openTheFile());
        EXPECT_TRUE(mailTheFile());
    }
    EXPECT_EQ(ChildProcess::openDescriptors(getpid()), before);
}

TEST_F(PortalSharingOnABus, AnswersNobodyAfterItsEnd) {
    startPortal();
    bool answered = false;
    sharing->queryAbilities([&](Sharing::Abilities) { answered = true; });
    sharing->openWith(path, nullptr, [&](Outcome) { answered = true; });
    sharing.reset();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !portal->calls.empty(); }));
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return answered; }, 200));
}

} // namespace
} // namespace framora
