#include "platform/desktop/QtMainQueue.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace framora {
namespace {

class QtMainQueueTest : public testing::Test {
protected:
    MainQueue::Work note(int number) {
        return [this, number] { seen.push_back(number); };
    }
    /// Runs the event loop until nothing is queued any more.
    static void turn() { QCoreApplication::processEvents(); }
    bool soon(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 5000); }

    CommandGate gate;
    QtMainQueue queue{gate};
    std::vector<int> seen;
};

TEST_F(QtMainQueueTest, runsInTheOrderOfTheCallsAndNeverInsideThem) {
    queue.async(note(1));
    queue.async(note(2));
    EXPECT_TRUE(seen.empty());
    turn();
    EXPECT_EQ(seen, (std::vector{1, 2}));
}

TEST_F(QtMainQueueTest, workThatCameDueWhileTheGateWasClosedRunsInATurnAfterItsOpening) {
    queue.async(note(1));
    {
        const CommandGate::Closing closing(gate);
        turn();
        EXPECT_TRUE(seen.empty());
    }
    EXPECT_TRUE(seen.empty()) << "whoever closed the gate is still at work";
    turn();
    EXPECT_EQ(seen, std::vector{1});
}

TEST_F(QtMainQueueTest, workThatWaitedComesBeforeWorkThatWasQueuedLater) {
    {
        const CommandGate::Closing closing(gate);
        queue.async(note(1));
        turn();
        queue.async(note(2));
    }
    queue.async(note(3));
    turn();
    EXPECT_EQ(seen, (std::vector{1, 2, 3}));
}

TEST_F(QtMainQueueTest, workStillWaitsWhenTheGateIsClosedAgainAtOnce) {
    queue.async(note(1));
    std::optional<CommandGate::Closing> closing(gate);
    turn();
    closing.reset();
    closing.emplace(gate);
    turn();
    EXPECT_TRUE(seen.empty());
    closing.reset();
    turn();
    EXPECT_EQ(seen, std::vector{1});
}

TEST_F(QtMainQueueTest, aRepeatingTimerThatCameDueSeveralTimesRunsOnceAtTheOpening) {
    std::optional<CommandGate::Closing> closing(gate);
    const auto fast = queue.every(0.001, note(1));
    const auto mark = [this] { return std::ranges::count(seen, 2) > 0; };
    int dueTimes = 0;
    QTimer counter;
    QObject::connect(&counter, &QTimer::timeout, [&] { ++dueTimes; });
    counter.start(1);
    ASSERT_TRUE(soon([&] { return dueTimes >= 20; }));
    EXPECT_TRUE(seen.empty());
    queue.async(note(2));
    turn();
    closing.reset();
    // What waited runs before this turn ends; the timer itself may come due once more in it.
    turn();
    ASSERT_TRUE(soon(mark));
    EXPECT_LE(std::ranges::count(seen, 1), 3);
    EXPECT_GE(std::ranges::count(seen, 1), 1);
}

TEST_F(QtMainQueueTest, workOfAnItemThatIsCancelledOrDestroyedWhileItWaitsNeverRuns) {
    std::optional<CommandGate::Closing> closing(gate);
    auto cancelled = queue.after(0, note(1));
    auto destroyed = queue.after(0, note(2));
    bool due = false;
    QTimer::singleShot(5, [&] { due = true; });
    ASSERT_TRUE(soon([&] { return due; }));
    cancelled->cancel();
    destroyed.reset();
    closing.reset();
    const auto last = queue.after(0, note(3));
    ASSERT_TRUE(soon([&] { return !seen.empty(); }));
    EXPECT_EQ(seen, std::vector{3});
}

TEST_F(QtMainQueueTest, anItemMayBeDestroyedByItsOwnWork) {
    std::unique_ptr<WorkItem> item;
    item = queue.after(0, [&] {
        item.reset();
        seen.push_back(1);
    });
    ASSERT_TRUE(soon([&] { return !seen.empty(); }));
    EXPECT_EQ(item, nullptr);
}

} // namespace
} // namespace framora
