#include "render-cli/RenderQueue.h"

#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace framora {
namespace {

const auto never = [] { return false; };

TEST(RenderQueue, EveryJobRunsOnceAndFailuresAreCounted) {
    std::vector<std::atomic<int>> runs(50);
    QStringList errors;
    int lastDone = 0;
    const int failed = RenderQueue(4).run(
        50,
        [&runs](int i) {
            ++runs[std::size_t(i)];
            return i % 10 == 3 ? QString::number(i) : QString();
        },
        [&](int done, const QString& error) {
            EXPECT_EQ(done, ++lastDone);
            if (!error.isEmpty())
                errors << error;
        },
        never);
    EXPECT_EQ(failed, 5);
    errors.sort();
    EXPECT_EQ(errors, QStringList({"13", "23", "3", "33", "43"}));
    EXPECT_EQ(lastDone, 50);
    for (const auto& count : runs)
        EXPECT_EQ(count, 1);
}

TEST(RenderQueue, NoMoreThanAskedForRunAtOnce) {
    for (const int jobs : {1, 3}) {
        std::atomic<int> running = 0;
        std::atomic<int> most = 0;
        RenderQueue(jobs).run(
            30,
            [&](int) {
                const int now = ++running;
                int seen = most;
                while (now > seen && !most.compare_exchange_weak(seen, now)) {
                }
                std::this_thread::yield();
                --running;
                return QString();
            },
            [](int, const QString&) {}, never);
        EXPECT_LE(most, jobs);
        EXPECT_GE(most, 1);
    }
}

TEST(RenderQueue, CancelledJobsCountAsFailed) {
    std::atomic<int> runs = 0;
    const int failed = RenderQueue(1).run(
        10,
        [&runs](int) {
            ++runs;
            return QString();
        },
        [](int, const QString&) {}, [&runs] { return runs >= 4; });
    EXPECT_EQ(runs, 4);
    EXPECT_EQ(failed, 6);
}

TEST(RenderQueue, NothingToDoIsNoFailure) {
    EXPECT_EQ(RenderQueue(0).run(
                  0, [](int) { return QString(); }, [](int, const QString&) {}, never),
              0);
}

} // namespace
} // namespace framora
