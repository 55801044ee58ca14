#include "platform/desktop/TrayStatusItem.h"

#include "support/FixedAppearance.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace framora {
namespace {

class TrayStatusItemTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        // Whatever tray the machine has is not for this item.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    }

    TrayStatusItemTest() {
        item.setMenu({{QStringLiteral("Area"), capture("area"), {}},
                      {QStringLiteral("Window"), capture("window"), {}}});
    }

    /// A capture as far as the menu is concerned: the gate is closed, and events are served meanwhile.
    std::function<void()> capture(const char* name) {
        return [this, name] {
            started.push_back(name);
            const CommandGate::Closing closing(gate);
            turn();
        };
    }

    /// Clicks an entry where the user sees it.
    void click(const QString& title) {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            auto* menu = qobject_cast<QMenu*>(window);
            for (QAction* action : menu ? menu->actions() : QList<QAction*>())
                if (action->text() == title)
                    return action->trigger();
        }
        FAIL() << "no entry " << title.toStdString();
    }

    /// Runs the event loop until nothing is queued any more.
    static void turn() {
        while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
        }
    }

    CommandGate gate;
    NotificationCenter notifications;
    FixedAppearance appearance;
    std::vector<std::string> started;
    TrayStatusItem item{gate, appearance, notifications};
};

TEST_F(TrayStatusItemTest, theKeyBesideATitleIsCalledSuper) {
    item.setMenu({{QStringLiteral("Quit"), [] {}, QStringLiteral("q")}});
    QStringList texts;
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (qobject_cast<const QMenu*>(window))
            for (const QAction* action : window->actions())
                texts << action->text();
    EXPECT_EQ(texts, QStringList{QStringLiteral("Quit\tSuper+Q")});
}

TEST_F(TrayStatusItemTest, aClickIsFollowedOnceTheMenuHasLetGo) {
    click(QStringLiteral("Window"));
    EXPECT_TRUE(started.empty()) << "the menu still holds pointer and keyboard";
    turn();
    EXPECT_EQ(started, std::vector<std::string>{"window"});
}

TEST_F(TrayStatusItemTest, theSecondOfTwoClicksInOneTurnIsDropped) {
    click(QStringLiteral("Area"));
    click(QStringLiteral("Window"));
    turn();
    EXPECT_EQ(started, std::vector<std::string>{"area"});
    turn();
    EXPECT_EQ(started.size(), 1U) << "also when the first capture is over";
    click(QStringLiteral("Window"));
    turn();
    EXPECT_EQ(started, (std::vector<std::string>{"area", "window"})) << "the next click counts again";
}

TEST_F(TrayStatusItemTest, aClickDuringACaptureIsDropped) {
    {
        const CommandGate::Closing closing(gate);
        click(QStringLiteral("Area"));
        turn();
    }
    turn();
    EXPECT_TRUE(started.empty());
}

TEST_F(TrayStatusItemTest, aClickThatACaptureOvertakesIsDropped) {
    click(QStringLiteral("Area"));
    {
        // A shortcut comes first.
        const CommandGate::Closing closing(gate);
        turn();
    }
    turn();
    EXPECT_TRUE(started.empty());
}

TEST_F(TrayStatusItemTest, aClickThatACaptureOvertakesIsDroppedEvenWhenThatIsOverAtOnce) {
    click(QStringLiteral("Area"));
    { const CommandGate::Closing closing(gate); }
    turn();
    EXPECT_TRUE(started.empty());
}

} // namespace
} // namespace framora
