#include "platform/NotificationCenter.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(NotificationCenter, callsObserversOfTheNameInTheOrderOfSubscription) {
    NotificationCenter center;
    std::string calls;
    const auto first = center.observe("a", [&] { calls += '1'; });
    const auto other = center.observe("b", [&] { calls += 'x'; });
    const auto second = center.observe("a", [&] { calls += '2'; });
    center.post("a");
    EXPECT_EQ(calls, "12");
}

TEST(NotificationCenter, anObserverRemovedDuringAPostIsNotCalled) {
    NotificationCenter center;
    std::string calls;
    NotificationCenter::Token second;
    const auto first = center.observe("a", [&] {
        calls += '1';
        second = {};
    });
    second = center.observe("a", [&] { calls += '2'; });
    center.post("a");
    center.post("a");
    EXPECT_EQ(calls, "11");
}

TEST(NotificationCenter, anObserverAddedDuringAPostIsCalledFromTheNextPostOn) {
    NotificationCenter center;
    std::string calls;
    NotificationCenter::Token late;
    const auto first = center.observe("a", [&] {
        calls += '1';
        if (calls == "1")
            late = center.observe("a", [&] { calls += 'L'; });
    });
    center.post("a");
    EXPECT_EQ(calls, "1");
    center.post("a");
    EXPECT_EQ(calls, "11L");
}

} // namespace
} // namespace framora
