#include "platform/desktop/ThreadBackgroundQueue.h"

#include "platform/desktop/QtMainQueue.h"

#include <QTest>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace framora {
namespace {

class BackgroundWork : public testing::Test {
protected:
    CommandGate gate;
    QtMainQueue mainQueue{gate};
};

TEST_F(BackgroundWork, RunsElsewhereAtLowPriorityAndComesBackToTheMainThread) {
    ThreadBackgroundQueue queue(mainQueue);
    const QThread* main = QThread::currentThread();
    std::atomic<int> priority = -100;
    std::atomic<bool> wasElsewhere = false;
    bool isBack = false;
    queue.async([&]() -> MainQueue::Work {
        wasElsewhere = QThread::currentThread() != main;
        priority = getpriority(PRIO_PROCESS, id_t(gettid()));
        return [&] { isBack = QThread::currentThread() == main; };
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return isBack; }, 5000));
    EXPECT_TRUE(wasElsewhere);
    EXPECT_EQ(priority, 19);
    EXPECT_LT(getpriority(PRIO_PROCESS, id_t(gettid())), 19);
}

TEST_F(BackgroundWork, GoingItWaitsForTheWorkAndDropsItsResult) {
    std::atomic<bool> isDone = false;
    bool isBack = false;
    {
        ThreadBackgroundQueue queue(mainQueue);
        queue.async([&]() -> MainQueue::Work {
            QThread::msleep(50);
            isDone = true;
            return [&] { isBack = true; };
        });
    }
    EXPECT_TRUE(isDone);
    QCoreApplication::processEvents();
    EXPECT_FALSE(isBack);
}

} // namespace
} // namespace framora
