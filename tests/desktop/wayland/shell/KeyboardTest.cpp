#include "desktop/wayland/shell/OnSway.h"
#include "platform/Notifications.h"
#include "platform/wayland/WaylandKeyboardLayout.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr std::uint16_t keyFour = 21;
constexpr std::uint16_t keyT = 17;
constexpr std::uint16_t keyShift = 56;

TEST(WaylandKeyboardLayoutTest, namesKeysByTheCompositorsKeymap) {
    OnSway sway(OnSway::ofScale(1));
    NotificationCenter notifications;
    int changes = 0;
    const auto observer = notifications.observe(notifications::keyboardLayoutChanged, [&] { ++changes; });
    WaylandKeyboardLayout layout(sway.connection, notifications);
    EXPECT_EQ(layout.textOfKey(keyT), QStringLiteral("t"));
    EXPECT_EQ(layout.textOfKey(keyFour), QStringLiteral("4"));
    EXPECT_EQ(layout.shiftedTextOfKey(keyFour), QStringLiteral("$"));
    EXPECT_EQ(layout.textOfKey(keyShift), QString());
    EXPECT_EQ(changes, 0) << "the first answer is no news";
}

TEST(WaylandKeyboardLayoutTest, aCompositorThatHasGoneNamesNothingAndIsNotWaitedFor) {
    OnSway sway(OnSway::ofScale(1));
    NotificationCenter notifications;
    sway.endCompositor();
    ASSERT_TRUE(DesktopSession::waitFor([&] { return !sway.connection.isValid(); }));
    WaylandKeyboardLayout layout(sway.connection, notifications);
    EXPECT_EQ(layout.textOfKey(keyT), QString());
}

} // namespace
} // namespace framora
