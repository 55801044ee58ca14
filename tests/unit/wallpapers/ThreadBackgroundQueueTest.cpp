#include "platform/desktop/ThreadBackgroundQueue.h"

#include "platform/desktop/QtMainQueue.h"

#include <QTest>
#include <QThread>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <semaphore>
#include <sys/resource.h>
#include <unistd.h>

namespace framora {
namespace {

class BackgroundWork : public testing::Test {
protected:
    /// Calls `told` when the last copy has gone: a result that holds it has run, or never will.
    static std::shared_ptr<void> atTheEnd(std::function<void()> told) {
        return {nullptr, [told = std::move(told)](void*) { told(); }};
    }

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

TEST_F(BackgroundWork, GoingItDropsTheResultOfTheWorkUnderWay) {
    std::atomic<bool> isBack = false;
    std::atomic<bool> isDropped = false;
    {
        ThreadBackgroundQueue queue(mainQueue);
        queue.async([&]() -> MainQueue::Work {
            return [&isBack, end = atTheEnd([&] { isDropped = true; })] { isBack = true; };
        });
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDropped.load(); }));
    EXPECT_FALSE(isBack);
}

TEST_F(BackgroundWork, GoingItLeavesWorkThatDoesNotEnd) {
    struct Work {
        std::binary_semaphore begun{0};
        std::binary_semaphore mayEnd{0};
        std::atomic<bool> isBack = false;
        std::atomic<bool> isDropped = false;
    };
    const auto work = std::make_shared<Work>();
    {
        ThreadBackgroundQueue queue(mainQueue);
        queue.async([work]() -> MainQueue::Work {
            work->begun.release();
            work->mayEnd.acquire();
            return [work, end = atTheEnd([work] { work->isDropped = true; })] { work->isBack = true; };
        });
        work->begun.acquire();
    }
    // It ends only now, and has nobody to tell.
    EXPECT_TRUE(ThreadBackgroundQueue::hasLeftWork());
    work->mayEnd.release();
    EXPECT_TRUE(QTest::qWaitFor([&] { return work->isDropped.load(); }));
    EXPECT_FALSE(work->isBack);
}

} // namespace
} // namespace framora
