#include "platform/PromptFrames.h"

#include <QAbstractEventDispatcher>
#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr const char* delay = "QT_QPA_UPDATE_IDLE_TIME";

/// How long a window of Qt's waits before it draws what has changed, in milliseconds.
int delayOfWindows() {
    QWindow window;
    window.create();
    window.requestUpdate();
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&window);
    return timers.size() == 1 ? timers.first().interval : -1;
}

// Qt asks once in a program's life: one test, a program of its own.
TEST(PromptFramesTest, windowsDrawAtOnceAndWhatIsStartedFromHereKnowsNothingOfIt) {
    ASSERT_FALSE(qEnvironmentVariableIsSet(delay));
    drawFramesPromptly();
    EXPECT_FALSE(qEnvironmentVariableIsSet(delay));
    EXPECT_EQ(delayOfWindows(), 1);
    qputenv(delay, "7");
    drawFramesPromptly();
    EXPECT_EQ(qgetenv(delay), "7") << "the user's own";
    qunsetenv(delay);
}

} // namespace
} // namespace framora
