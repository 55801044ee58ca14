#include "editor/render/MemoryBudget.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

namespace framora {
namespace {

TEST(MemoryBudget, IsNeverExceededByWhatIsTakenAtOnce) {
    MemoryBudget budget(100);
    std::atomic<qint64> taken = 0;
    std::atomic<qint64> most = 0;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 8; ++thread)
            threads.emplace_back([&, thread] {
                for (int i = 0; i < 500; ++i) {
                    const qint64 bytes = (thread * 37 + i * 13) % 60 + 1;
                    const MemoryBudget::Share share(budget, bytes, {});
                    const qint64 now = taken += bytes;
                    qint64 earlier = most;
                    while (now > earlier && !most.compare_exchange_weak(earlier, now)) {
                    }
                    taken -= bytes;
                }
            });
    }
    EXPECT_LE(most, 100);
    EXPECT_GT(most, 0);
}

TEST(MemoryBudget, GivesAllOfItToWhoAsksForMore) {
    MemoryBudget budget(100);
    std::atomic<bool> isLargeIn = false;
    auto small = std::make_unique<MemoryBudget::Share>(budget, 1, std::stop_token());
    std::jthread large([&] {
        const MemoryBudget::Share share(budget, 1000, {});
        isLargeIn = true;
    });
    EXPECT_FALSE(isLargeIn);
    small.reset();
    large.join();
    EXPECT_TRUE(isLargeIn);
    const MemoryBudget::Share all(budget, 100, {}); // given back
}

TEST(MemoryBudget, GivesWhatIsFreeNowOrNothing) {
    MemoryBudget budget(100);
    auto most = std::make_unique<MemoryBudget::Share>(budget, 60);
    EXPECT_TRUE(most->isTaken());
    EXPECT_FALSE(MemoryBudget::Share(budget, 41).isTaken());
    EXPECT_TRUE(MemoryBudget::Share(budget, 40).isTaken());
    EXPECT_FALSE(MemoryBudget::Share(budget, 1000).isTaken());
    most.reset();
    EXPECT_TRUE(MemoryBudget::Share(budget, 1000).isTaken());
}

TEST(MemoryBudget, NobodyWaitsOnceStopIsAskedFor) {
    MemoryBudget budget(100);
    const MemoryBudget::Share all(budget, 100, {});
    std::stop_source source;
    std::jthread waiting([&] { const MemoryBudget::Share share(budget, 50, source.get_token()); });
    source.request_stop();
    waiting.join();
}

} // namespace
} // namespace framora
