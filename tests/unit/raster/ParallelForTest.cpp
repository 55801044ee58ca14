#include "editor/render/raster/ParallelFor.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <new>
#include <thread>
#include <vector>

namespace framora::raster {
namespace {

TEST(ParallelFor, CallsEveryIndexExactlyOnce) {
    for (const int count : {0, 1, 2, 7, 1000}) {
        std::vector<int> calls(static_cast<std::size_t>(count), 0);
        parallelFor(count, [&](int i) { ++calls[std::size_t(i)]; });
        EXPECT_EQ(calls, std::vector<int>(static_cast<std::size_t>(count), 1)) << count;
    }
}

TEST(ParallelFor, HasFinishedEveryCallWhenItReturns) {
    for (int round = 0; round < 500; ++round) {
        int plain[16] = {}; // not atomic: the return itself must make the writes visible
        parallelFor(16, [&](int i) { plain[i] = i + round; });
        for (int i = 0; i < 16; ++i)
            ASSERT_EQ(plain[i], i + round);
    }
}

TEST(ParallelFor, ServesSeveralCallersAndNestedCallsAtOnce) {
    std::atomic<int> calls = 0;
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                parallelFor(8, [&](int) { parallelFor(3, [&](int) { ++calls; }); });
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(calls, 4 * 50 * 8 * 3);
}

TEST(ParallelFor, KeepsToTheThreadLimit) {
    setParallelThreadLimit(1);
    const std::thread::id caller = std::this_thread::get_id();
    std::vector<std::thread::id> ids(64);
    parallelFor(64, [&](int i) { ids[std::size_t(i)] = std::this_thread::get_id(); });
    setParallelThreadLimit(0);
    EXPECT_EQ(ids, std::vector<std::thread::id>(64, caller));
}

TEST(ParallelFor, LetsAnExceptionOutOnceNobodyIsAtWorkAnyMore) {
    const std::thread::id caller = std::this_thread::get_id();
    enum Thrower { anyone, caller_, worker };
    for (const int threads : {1, 4})
        for (const Thrower thrower : {anyone, caller_, worker})
            for (int round = 0; round < 50; ++round) {
                setParallelThreadLimit(threads);
                std::atomic<int> inside = 0;
                std::atomic<bool> hasThrown = false;
                const auto body = [&](int i) {
                    ++inside;
                    const bool isCaller = std::this_thread::get_id() == caller;
                    if (i >= 3 && (thrower == anyone || isCaller == (thrower == caller_))) {
                        hasThrown = true;
                        --inside;
                        throw std::bad_alloc();
                    }
                    --inside;
                };
                bool isOut = false;
                try {
                    parallelFor(64, body);
                } catch (const std::bad_alloc&) {
                    isOut = true;
                }
                ASSERT_EQ(isOut, hasThrown);
                ASSERT_EQ(inside, 0);
                // A call inside another one's, too; and the threads go on serving.
                ASSERT_THROW(
                    parallelFor(4, [&](int) { parallelFor(4, [](int) { throw std::bad_alloc(); }); }),
                    std::bad_alloc);
                std::atomic<int> calls = 0;
                parallelFor(64, [&](int) { ++calls; });
                ASSERT_EQ(calls, 64);
            }
    setParallelThreadLimit(0);
}

/// Gives way to other threads until something holds. False when it does not for seconds.
template <typename Condition> bool comesTrue(const Condition& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

TEST(CallBeside, MakesBothCallsOnceAndTheFirstOneOnItsOwnThread) {
    for (const int threads : {0, 1})
        for (int round = 0; round < 500; ++round) {
            setParallelThreadLimit(threads);
            int calls[2] = {}; // not atomic: the return itself must make the writes visible
            std::thread::id here;
            callBeside(
                [&] {
                    ++calls[0];
                    here = std::this_thread::get_id();
                },
                [&] { ++calls[1]; });
            ASSERT_EQ(here, std::this_thread::get_id());
            ASSERT_EQ(calls[0], 1);
            ASSERT_EQ(calls[1], 1);
        }
    setParallelThreadLimit(0);
}

TEST(CallBeside, TakesPartInWhatTheOtherCallSpreads) {
    if (!mayUseThreads())
        GTEST_SKIP() << "one processor";
    std::atomic<bool> hasBegun = false;
    std::atomic<int> inside = 0;
    std::atomic<bool> haveMet = false;
    callBeside([&] { EXPECT_TRUE(comesTrue([&] { return hasBegun.load(); })); },
               [&] {
                   hasBegun = true;
                   parallelFor(2, [&](int) {
                       if (++inside == 2)
                           haveMet = true;
                       EXPECT_TRUE(comesTrue([&] { return haveMet.load(); }));
                   });
               });
    EXPECT_TRUE(haveMet);
}

TEST(CallBeside, TakesPartInNobodyElsesWork) {
    if (!mayUseThreads())
        GTEST_SKIP() << "one processor";
    const std::thread::id caller = std::this_thread::get_id();
    std::atomic<bool> hasBegun = false;
    std::atomic<bool> isOver = false;
    std::atomic<bool> hasHelped = false;
    std::thread other([&] {
        comesTrue([&] { return hasBegun.load(); });
        parallelFor(200, [&](int) {
            for (int i = 0; i < 100; ++i)
                std::this_thread::yield();
            hasHelped = hasHelped || std::this_thread::get_id() == caller;
        });
        isOver = true;
    });
    callBeside([&] { EXPECT_TRUE(comesTrue([&] { return hasBegun.load(); })); },
               [&] {
                   hasBegun = true;
                   EXPECT_TRUE(comesTrue([&] { return isOver.load(); }));
               });
    other.join();
    EXPECT_FALSE(hasHelped);
}

TEST(CallBeside, LetsAnExceptionOutOnceNobodyIsAtWorkAnyMore) {
    for (const int threads : {0, 1})
        for (const bool isFromHere : {true, false})
            for (int round = 0; round < 200; ++round) {
                setParallelThreadLimit(threads);
                std::atomic<int> inside = 0;
                const auto call = [&](bool throws) {
                    ++inside;
                    parallelFor(4, [](int) {});
                    --inside;
                    if (throws)
                        throw std::bad_alloc();
                };
                ASSERT_THROW(callBeside([&] { call(isFromHere); }, [&] { call(!isFromHere); }),
                             std::bad_alloc);
                ASSERT_EQ(inside, 0);
                // What the other call spreads, too; and the threads go on serving.
                ASSERT_THROW(callBeside([] {}, [] { parallelFor(8, [](int) { throw std::bad_alloc(); }); }),
                             std::bad_alloc);
                std::atomic<int> calls = 0;
                parallelFor(64, [&](int) { ++calls; });
                ASSERT_EQ(calls, 64);
            }
    setParallelThreadLimit(0);
}

TEST(CallBeside, ServesSeveralCallersAtOnceAndInsideOneAnother) {
    std::atomic<int> calls = 0;
    const auto spread = [&] { parallelFor(5, [&](int) { ++calls; }); };
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                parallelFor(3, [&](int) { callBeside(spread, [&] { callBeside(spread, spread); }); });
        });
    for (std::thread& caller : callers)
        caller.join();
    EXPECT_EQ(calls, 4 * 50 * 3 * 3 * 5);
}

} // namespace
} // namespace framora::raster
