#include "platform/desktop/PortalShortcuts.h"

#include "platform/CommandGate.h"
#include "platform/KeyboardLayout.h"
#include "platform/Notifications.h"
#include "support/ManualMainQueue.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

using Route = GlobalShortcuts::Route;
using Outcome = ShortcutsPortal::Outcome;
using Binding = ShortcutsPortal::Binding;

class SilentLayout final : public KeyboardLayout {
public:
    QString textOfKey(std::uint16_t) const override { return {}; }
};

/// A portal that writes down what it is asked and answers when the test says so.
class ManualPortal final : public ShortcutsPortal {
public:
    void listen(Listener heard) override { listener = std::move(heard); }
    void begin(std::function<void(std::optional<unsigned>)> answer) override {
        log.emplace_back("begin");
        begun = std::move(answer);
    }
    void createSession(const std::vector<Wish>& wishes,
                       std::function<void(std::optional<QString>)> answer) override {
        log.emplace_back("create");
        asked = wishes;
        created = std::move(answer);
    }
    void bind(const QString& session, const std::vector<Wish>& wishes,
              std::function<void(Outcome, std::vector<Binding>)> answer) override {
        log.push_back("bind " + session.toStdString());
        asked = wishes;
        bound = std::move(answer);
    }
    void list(const QString& session, std::function<void(std::vector<Binding>)> answer) override {
        log.push_back("list " + session.toStdString());
        listed = std::move(answer);
    }
    void close(const QString& session, std::function<void()> done) override {
        log.push_back("close " + session.toStdString());
        closed = std::move(done);
    }
    void configure(const QString& session) override { log.push_back("configure " + session.toStdString()); }

    std::vector<std::string> taken() { return std::exchange(log, {}); }

    Listener listener;
    std::vector<std::string> log;
    std::vector<Wish> asked;
    std::function<void(std::optional<unsigned>)> begun;
    std::function<void(std::optional<QString>)> created;
    std::function<void(Outcome, std::vector<Binding>)> bound;
    std::function<void(std::vector<Binding>)> listed;
    std::function<void()> closed;
};

class PortalShortcutsTest : public testing::Test {
protected:
    using Log = std::vector<std::string>;

    void start() {
        shortcuts.reset();
        shortcuts = std::make_unique<PortalShortcuts>(
            PortalShortcuts::Services{portal, queue, notifications, gate, layout, [this] { return stored; },
                                      [this](const QString& token) { tokens.push_back(token); }});
    }
    /// As the hotkey manager does it: everything anew.
    void registerMonitors() {
        for (; firstToken < nextToken; ++firstToken)
            shortcuts->removeMonitor(firstToken);
        for (int i = 0; i < 2; ++i)
            accepted =
                shortcuts->addMonitor(nextToken++, [this](const KeyEvent& key) { keys.push_back(key); });
        queue.runPending();
    }
    void bindEverything() {
        start();
        registerMonitors();
        portal.begun(1);
        portal.created(session);
        portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}, {"capture-window", "Alt+Shift+T"}});
        portal.taken();
    }

    ManualPortal portal;
    ManualMainQueue queue;
    NotificationCenter notifications;
    CommandGate gate;
    SilentLayout layout;
    std::vector<GlobalShortcut> stored{
        {"capture-area", "Capture Area", 21, KeyModifier::shift | KeyModifier::option},
        {"capture-window", "Capture Window", 17, KeyModifier::shift | KeyModifier::option}};
    std::unique_ptr<PortalShortcuts> shortcuts;
    std::vector<KeyEvent> keys;
    std::vector<QString> tokens;
    PortalShortcuts::Token firstToken = 1;
    PortalShortcuts::Token nextToken = 1;
    bool accepted = false;
    const QString session = QStringLiteral("/s");
};

TEST_F(PortalShortcutsTest, bothShortcutsAreBoundUnderTheirIdsWithNamesAndTriggers) {
    start();
    registerMonitors();
    EXPECT_TRUE(accepted);
    EXPECT_EQ(portal.taken(), Log{"begin"}) << "nothing is asked before the portal is known";
    portal.begun(1);
    EXPECT_EQ(portal.taken(), Log{"create"});
    const std::vector<ShortcutsPortal::Wish> wishes{{"capture-area", "Capture Area", "ALT+SHIFT+4"},
                                                    {"capture-window", "Capture Window", "ALT+SHIFT+t"}};
    EXPECT_EQ(portal.asked, wishes) << "some desktops read them here";
    portal.created(session);
    EXPECT_EQ(portal.taken(), Log{"bind /s"});
    EXPECT_EQ(portal.asked, wishes);
    EXPECT_EQ(shortcuts->route(), Route::desktop);
}

TEST_F(PortalShortcutsTest, anActivationComesAsTheStoredKeyToEveryMonitor) {
    bindEverything();
    portal.listener.activated(session, "capture-window", "token");
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].keyCode, 17);
    EXPECT_EQ(keys[0].modifierFlags, KeyModifier::shift | KeyModifier::option);
    EXPECT_EQ(keys[0].type, KeyEventType::keyDown);
    EXPECT_EQ(tokens, std::vector<QString>{"token"});
}

TEST_F(PortalShortcutsTest, otherSessionsAndUnknownIdsAreNobodysKeys) {
    bindEverything();
    portal.listener.activated("/other", "capture-area", {});
    portal.listener.activated(session, "capture-moon", {});
    EXPECT_TRUE(keys.empty());
}

TEST_F(PortalShortcutsTest, whileTheGateIsClosedActivationsAreDropped) {
    bindEverything();
    {
        const CommandGate::Closing closing(gate);
        portal.listener.activated(session, "capture-area", {});
    }
    EXPECT_TRUE(keys.empty());
    portal.listener.activated(session, "capture-area", {});
    EXPECT_EQ(keys.size(), 2U);
}

TEST_F(PortalShortcutsTest, registeringAgainWithTheSameKeysAsksNothing) {
    bindEverything();
    registerMonitors();
    registerMonitors();
    EXPECT_EQ(portal.taken(), Log{});
    portal.listener.activated(session, "capture-area", {});
    EXPECT_EQ(keys.size(), 2U) << "the old monitors are gone";
}

TEST_F(PortalShortcutsTest, anotherRecordedShortcutIsBoundInASessionOfItsOwn) {
    bindEverything();
    stored[0].keyCode = 22;
    registerMonitors();
    EXPECT_EQ(portal.taken(), Log{"close /s"});
    portal.closed();
    EXPECT_EQ(portal.taken(), Log{"create"}) << "not before the old one is closed: it has the same name";
    EXPECT_EQ(portal.asked[0].trigger, "ALT+SHIFT+6");
    portal.created(session);
    portal.bound(Outcome::done, {});
    portal.listener.activated(session, "capture-area", {});
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0].keyCode, 22);
}

TEST_F(PortalShortcutsTest, whatIsRecordedWhileTheOldSessionClosesIsWhatIsBound) {
    bindEverything();
    stored[0].keyCode = 22;
    registerMonitors();
    stored[0].keyCode = 23;
    registerMonitors();
    portal.closed();
    EXPECT_EQ(portal.asked[0].trigger, "ALT+SHIFT+5");
}

TEST_F(PortalShortcutsTest, theSessionEndsWithTheLastMonitorAndWithTheProgram) {
    bindEverything();
    shortcuts->removeMonitor(1);
    queue.runPending();
    shortcuts->removeMonitor(2);
    queue.runPending();
    EXPECT_EQ(portal.taken(), Log{"close /s"});
    portal.closed();
    EXPECT_EQ(portal.taken(), Log{});

    bindEverything();
    shortcuts.reset();
    EXPECT_EQ(portal.taken(), Log{"close /s"});
}

TEST_F(PortalShortcutsTest, theKeysThatTheDesktopGaveAreToldWhereTheyDiffer) {
    bindEverything();
    EXPECT_EQ(shortcuts->differingKeys("capture-area"), std::nullopt);
    int posts = 0;
    const auto token = notifications.observe(notifications::shortcutBindingsChanged, [&] { ++posts; });
    portal.listener.changed(session, {{"capture-area", "Print"}, {"capture-window", ""}});
    EXPECT_EQ(posts, 1);
    EXPECT_EQ(shortcuts->differingKeys("capture-area"), QStringLiteral("Print"));
    EXPECT_EQ(shortcuts->differingKeys("capture-window"), QString());
    portal.listener.changed(session, {{"capture-window", "Print"}});
    EXPECT_EQ(shortcuts->differingKeys("capture-area"), std::nullopt)
        << "of what is not told nothing is known";
}

TEST_F(PortalShortcutsTest, aPortalThatAnswersWithNothingIsAskedForItsList) {
    start();
    registerMonitors();
    portal.begun(1);
    portal.created(session);
    portal.bound(Outcome::done, {});
    EXPECT_EQ(portal.taken().back(), "list /s");
    portal.listed({{"capture-area", "Meta+1"}});
    EXPECT_EQ(shortcuts->differingKeys("capture-area"), QStringLiteral("Meta+1"));
    EXPECT_EQ(shortcuts->differingKeys("capture-window"), std::nullopt) << "of this one nothing is known";
}

TEST_F(PortalShortcutsTest, withoutAPortalNoMonitorIsGivenAndTheUserBindsByHand) {
    start();
    registerMonitors();
    EXPECT_TRUE(shortcuts->canMonitor()) << "there may be one";
    portal.begun(std::nullopt);
    EXPECT_FALSE(shortcuts->canMonitor());
    EXPECT_EQ(shortcuts->route(), Route::byHand);
    registerMonitors();
    EXPECT_FALSE(accepted);
}

TEST_F(PortalShortcutsTest, aPortalThatNeverAnswersIsNone) {
    start();
    queue.advance(29);
    EXPECT_TRUE(shortcuts->canMonitor());
    queue.advance(2);
    EXPECT_FALSE(shortcuts->canMonitor());
    registerMonitors();
    portal.begun(1);
    EXPECT_FALSE(shortcuts->canMonitor()) << "too late";
    EXPECT_EQ(portal.taken(), Log{"begin"});
}

TEST_F(PortalShortcutsTest, whatTheUserRefusesIsNotAskedAgainByItself) {
    start();
    registerMonitors();
    portal.begun(1);
    portal.created(session);
    portal.bound(Outcome::refused, {});
    portal.taken();
    EXPECT_EQ(shortcuts->route(), Route::refused);
    EXPECT_FALSE(shortcuts->canMonitor());
    queue.advance(1000);
    EXPECT_EQ(portal.taken(), Log{});
    shortcuts->askAgain();
    EXPECT_EQ(portal.taken(), Log{"close /s"});
    portal.closed();
    EXPECT_EQ(portal.taken(), Log{"create"});
    portal.created(session);
    portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}});
    EXPECT_EQ(shortcuts->route(), Route::desktop);
    EXPECT_TRUE(shortcuts->canMonitor());
}

TEST_F(PortalShortcutsTest, aDialogMayStandForAsLongAsItTakes) {
    start();
    registerMonitors();
    portal.begun(1);
    portal.created(session);
    queue.advance(3600);
    EXPECT_TRUE(shortcuts->canMonitor());
    portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}});
    portal.listener.activated(session, "capture-area", {});
    EXPECT_EQ(keys.size(), 2U);
}

TEST_F(PortalShortcutsTest, aFailureIsTriedAgainAfterAWhileAndNotForEver) {
    start();
    registerMonitors();
    portal.begun(1);
    for (const double pause : {1.0, 4.0, 16.0}) {
        EXPECT_EQ(portal.taken().back(), "create");
        portal.created(std::nullopt);
        queue.advance(pause - 0.5);
        EXPECT_EQ(portal.taken(), Log{});
        queue.advance(1);
    }
    EXPECT_EQ(portal.taken().back(), "create");
    portal.created(std::nullopt);
    queue.advance(1000);
    EXPECT_EQ(portal.taken(), Log{});
    EXPECT_EQ(shortcuts->route(), Route::byHand);
}

TEST_F(PortalShortcutsTest, aSessionThatComesTooLateIsClosedAtOnce) {
    start();
    registerMonitors();
    portal.begun(1);
    const auto late = portal.created;
    queue.advance(30.5); // Given up, to be tried again half a second later.
    EXPECT_EQ(portal.taken(), (Log{"begin", "create"}));
    late(session);
    EXPECT_EQ(portal.taken(), Log{"close /s"});
    queue.advance(1);
    EXPECT_EQ(portal.taken(), Log{"create"});
}

TEST_F(PortalShortcutsTest, aSessionForAProgramThatHasGoneIsClosed) {
    start();
    registerMonitors();
    portal.begun(1);
    const auto late = portal.created;
    shortcuts.reset();
    portal.taken();
    late(session);
    EXPECT_EQ(portal.taken(), Log{"close /s"});
}

TEST_F(PortalShortcutsTest, whenThePortalIsRestartedEverythingIsBoundAnew) {
    bindEverything();
    portal.listener.vanished();
    EXPECT_TRUE(shortcuts->canMonitor()) << "it will come back";
    portal.listener.activated(session, "capture-area", {});
    EXPECT_TRUE(keys.empty());
    portal.listener.appeared();
    EXPECT_EQ(portal.taken(), Log{"begin"});
    portal.begun(1);
    portal.created(session);
    EXPECT_EQ(portal.taken(), (Log{"create", "bind /s"})) << "the dead session is not closed";
    portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}});
    portal.listener.activated(session, "capture-area", {});
    EXPECT_EQ(keys.size(), 2U);
}

TEST_F(PortalShortcutsTest, aPortalThatStaysAwayIsCalledOnce) {
    bindEverything();
    portal.listener.vanished();
    queue.advance(1);
    EXPECT_EQ(portal.taken(), Log{"begin"});
    portal.begun(std::nullopt);
    EXPECT_FALSE(shortcuts->canMonitor());
    queue.advance(100);
    EXPECT_EQ(portal.taken(), Log{});
    portal.listener.appeared();
    EXPECT_EQ(portal.taken(), Log{"begin"});
}

TEST_F(PortalShortcutsTest, aPortalThatFallsOverWheneverItIsAskedIsLeftAloneInTheEnd) {
    start();
    registerMonitors();
    portal.begun(1);
    for (const double pause : {1.0, 4.0, 16.0}) {
        EXPECT_EQ(portal.taken().back(), "create");
        portal.listener.vanished();
        queue.advance(pause - 0.5);
        EXPECT_EQ(portal.taken(), Log{});
        queue.advance(1);
        EXPECT_EQ(portal.taken(), Log{"begin"});
        portal.begun(1);
    }
    EXPECT_EQ(portal.taken(), Log{"create"});
    portal.listener.vanished();
    EXPECT_EQ(shortcuts->route(), Route::byHand);
    queue.advance(1000);
    portal.listener.appeared();
    EXPECT_EQ(portal.taken(), Log{});
    EXPECT_FALSE(shortcuts->canMonitor());
}

TEST_F(PortalShortcutsTest, aPortalThatFallsOverAtTheFirstQuestionIsLeftAloneInTheEnd) {
    start();
    registerMonitors();
    for (const double pause : {1.0, 4.0, 16.0}) {
        EXPECT_EQ(portal.taken(), Log{"begin"});
        portal.listener.vanished();
        queue.advance(pause - 0.5);
        EXPECT_EQ(portal.taken(), Log{});
        queue.advance(1);
    }
    EXPECT_EQ(portal.taken(), Log{"begin"});
    portal.listener.vanished();
    EXPECT_EQ(shortcuts->route(), Route::byHand);
    queue.advance(1000);
    portal.listener.appeared();
    EXPECT_EQ(portal.taken(), Log{});
}

TEST_F(PortalShortcutsTest, aPortalWithoutTheInterfaceThatEndsWhenNobodyAsksIsNotStartedForEver) {
    start();
    for (int i = 0; i < 20; ++i) {
        portal.begun(std::nullopt);
        portal.listener.vanished();
        queue.advance(100);
    }
    EXPECT_LE(portal.taken().size(), 4U);
    EXPECT_EQ(shortcuts->route(), Route::byHand);
}

TEST_F(PortalShortcutsTest, aPortalThatAnswersInTheEndHasItsFirstFallsForgiven) {
    start();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 3; ++i) {
            portal.listener.vanished();
            queue.advance(20);
        }
        portal.begun(1);
        EXPECT_EQ(shortcuts->route(), Route::desktop);
        portal.listener.vanished();
        portal.listener.appeared();
    }
}

TEST_F(PortalShortcutsTest, aPortalThatOnceBoundMayBeRestartedAsOftenAsOneLikes) {
    bindEverything();
    for (int i = 0; i < 10; ++i) {
        portal.listener.vanished();
        portal.listener.appeared();
        portal.begun(1);
        portal.created(session);
        portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}});
        EXPECT_EQ(shortcuts->route(), Route::desktop);
    }
}

TEST_F(PortalShortcutsTest, aRestartInTheMiddleForgetsTheAnswersOfTheOldOne) {
    start();
    registerMonitors();
    portal.begun(1);
    portal.created(session);
    const auto old = portal.bound;
    portal.listener.vanished();
    portal.listener.appeared();
    portal.begun(1);
    portal.taken();
    old(Outcome::refused, {});
    EXPECT_EQ(shortcuts->route(), Route::desktop);
    portal.created("/t");
    portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}});
    portal.listener.activated("/t", "capture-area", {});
    EXPECT_EQ(keys.size(), 2U);
}

TEST_F(PortalShortcutsTest, aSessionThatThePortalClosesIsOpenedAgain) {
    bindEverything();
    portal.listener.closed("/another");
    EXPECT_EQ(portal.taken(), Log{});
    portal.listener.closed(session);
    queue.advance(1);
    EXPECT_EQ(portal.taken(), Log{"create"}) << "what is closed is not closed again";
}

TEST_F(PortalShortcutsTest, theDesktopsPageIsOpenedWhereItCanBeAskedFor) {
    bindEverything();
    EXPECT_FALSE(shortcuts->canConfigure());
    start();
    registerMonitors();
    portal.begun(2);
    portal.created(session);
    portal.bound(Outcome::done, {{"capture-area", "Alt+Shift+4"}});
    portal.taken();
    EXPECT_TRUE(shortcuts->canConfigure());
    shortcuts->configure();
    EXPECT_EQ(portal.taken(), Log{"configure /s"});
}

TEST_F(PortalShortcutsTest, aHandlerMayRemoveMonitorsOrEndEverything) {
    start();
    ASSERT_TRUE(shortcuts->addMonitor(1, [this](const KeyEvent&) { shortcuts->removeMonitor(2); }));
    int calls = 0;
    ASSERT_TRUE(shortcuts->addMonitor(2, [&](const KeyEvent&) { ++calls; }));
    queue.runPending();
    portal.begun(1);
    portal.created(session);
    portal.bound(Outcome::done, {});
    portal.listener.activated(session, "capture-area", {});
    EXPECT_EQ(calls, 0);
}

} // namespace
} // namespace framora
