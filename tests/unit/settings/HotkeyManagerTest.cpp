#include "settings/HotkeyManager.h"

#include "platform/NotificationCenter.h"
#include "settings/Settings.h"
#include "support/ManualKeyMonitors.h"
#include "support/MemoryDefaults.h"

#include <gtest/gtest.h>
#include <memory>

namespace framora {
namespace {

constexpr std::uint64_t shift = 0x20000;
constexpr std::uint64_t control = 0x40000;
constexpr std::uint64_t option = 0x80000;
constexpr std::uint64_t command = 0x100000;
constexpr std::uint64_t capsLock = 0x10000;
constexpr std::uint64_t functionKey = 0x800000;
constexpr std::uint16_t key4 = 21;
constexpr std::uint16_t keyT = 17;

class HotkeyManagerTest : public testing::Test {
protected:
    void setHandlers() {
        manager.screenshotHandler = HotkeyHandler{{}, {}, {}, [this] { pressed += 'a'; }};
        manager.tabCaptureHandler = HotkeyHandler{{}, {}, {}, [this] { pressed += 'w'; }};
    }
    void registerBoth() {
        setHandlers();
        manager.registerHotkeys();
    }
    void store(HotkeyConfiguration area, HotkeyConfiguration window) {
        Settings settings;
        settings.hotkey = area;
        settings.tabCaptureHotkey = window;
        settings.save(defaults, notifications);
    }

    ManualKeyMonitors monitors;
    MemoryDefaults defaults;
    NotificationCenter notifications;
    HotkeyManager manager{monitors, defaults};
    std::string pressed;
};

TEST_F(HotkeyManagerTest, aNewManagerHasNoHandlersAndRegistersNothing) {
    EXPECT_FALSE(manager.screenshotHandler);
    EXPECT_FALSE(manager.tabCaptureHandler);
    manager.registerHotkeys();
    manager.removeMonitors();
    EXPECT_TRUE(monitors.log.empty());
}

TEST_F(HotkeyManagerTest, theDefaultShortcutsRunTheirActions) {
    registerBoth();
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "a");
    monitors.pressElsewhere({keyT, shift | option});
    EXPECT_EQ(pressed, "aw");
}

TEST_F(HotkeyManagerTest, everyOtherCombinationOfTheModifiersRunsNothing) {
    registerBoth();
    int combinations = 0;
    for (std::uint64_t flags = 0; flags <= (shift | control | option | command); flags += shift) {
        ++combinations;
        if (flags == (shift | option))
            continue;
        monitors.pressElsewhere({key4, flags});
        EXPECT_FALSE(monitors.pressHere({key4, flags})) << flags;
    }
    EXPECT_EQ(combinations, 16);
    EXPECT_EQ(pressed, "");
}

TEST_F(HotkeyManagerTest, anotherKeyRunsNothing) {
    registerBoth();
    for (std::uint16_t key = 0; key < 256; ++key) {
        if (key != key4 && key != keyT)
            monitors.pressElsewhere({key, shift | option});
    }
    EXPECT_EQ(pressed, "");
}

TEST_F(HotkeyManagerTest, capsLockTheFunctionKeyAndUnknownBitsDoNotMatter) {
    registerBoth();
    for (const std::uint64_t bits :
         {capsLock, functionKey, std::uint64_t{0x120}, std::uint64_t{1} << 63, ~std::uint64_t{0x1E0000}})
        monitors.pressElsewhere({key4, shift | option | bits});
    EXPECT_EQ(pressed, "aaaaa");
}

TEST_F(HotkeyManagerTest, storedBitsOutsideTheMaskDoNotMatter) {
    store({key4, shift | option | capsLock | functionKey | 1}, {keyT, shift});
    registerBoth();
    EXPECT_TRUE(monitors.pressHere({key4, shift | option}));
    EXPECT_EQ(pressed, "a");
}

TEST_F(HotkeyManagerTest, aMatchingKeyInTheProgramIsConsumedAndOthersPass) {
    registerBoth();
    EXPECT_TRUE(monitors.pressHere({key4, shift | option}));
    EXPECT_FALSE(monitors.pressHere({key4, option}));
    EXPECT_FALSE(monitors.pressHere({0, shift | option}));
    EXPECT_TRUE(monitors.pressHere({keyT, shift | option}));
    EXPECT_EQ(pressed, "aw");
}

TEST_F(HotkeyManagerTest, aHeldKeyRepeatsTheAction) {
    registerBoth();
    for (int repeat = 0; repeat < 3; ++repeat)
        monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "aaa");
}

TEST_F(HotkeyManagerTest, aShortcutWithoutModifiersAnswersToTheBareKey) {
    store({key4, 0}, {keyT, shift});
    registerBoth();
    monitors.pressElsewhere({key4, shift});
    monitors.pressElsewhere({key4, command});
    EXPECT_EQ(pressed, "");
    monitors.pressElsewhere({key4, 0});
    monitors.pressElsewhere({key4, capsLock});
    EXPECT_EQ(pressed, "aa");
}

TEST_F(HotkeyManagerTest, aMatchIsConsumedAlsoWithoutAnAction) {
    manager.screenshotHandler = HotkeyHandler{};
    manager.registerHotkeys();
    EXPECT_TRUE(monitors.pressHere({key4, shift | option}));
}

TEST_F(HotkeyManagerTest, theStoredShortcutWinsOverTheHandlers) {
    store({3, command}, {5, control});
    setHandlers();
    manager.screenshotHandler->configuration = {key4, shift | option};
    manager.registerHotkeys();
    EXPECT_EQ(manager.screenshotHandler->configuration, (HotkeyConfiguration{3, command}));
    EXPECT_EQ(manager.tabCaptureHandler->configuration, (HotkeyConfiguration{5, control}));
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "");
    monitors.pressElsewhere({3, command});
    EXPECT_EQ(pressed, "a");
}

TEST_F(HotkeyManagerTest, aChangeCountsFromTheNextRegistration) {
    registerBoth();
    store({3, command}, {keyT, shift | option});
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "a");
    manager.registerHotkeys();
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "a");
    monitors.pressElsewhere({3, command});
    EXPECT_EQ(pressed, "aa");
}

TEST_F(HotkeyManagerTest, registeringAgainLeavesOneMonitorOfEachKindAShortcut) {
    registerBoth();
    for (int again = 0; again < 3; ++again)
        manager.registerHotkeys();
    EXPECT_EQ(monitors.globals.size(), 2u);
    EXPECT_EQ(monitors.locals.size(), 2u);
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "a");
}

TEST_F(HotkeyManagerTest, monitorsAreRemovedAndAddedInOrder) {
    registerBoth();
    monitors.log.clear();
    manager.registerHotkeys();
    EXPECT_EQ(monitors.log,
              (std::vector<std::string>{"remove global", "remove local", "remove global", "remove local",
                                        "add global", "add local", "add global", "add local"}));
}

TEST_F(HotkeyManagerTest, onlyTheHandlerThatIsSetIsRegistered) {
    manager.tabCaptureHandler = HotkeyHandler{{}, {}, {}, [this] { pressed += 'w'; }};
    manager.registerHotkeys();
    EXPECT_EQ(monitors.globals.size(), 1u);
    EXPECT_EQ(monitors.locals.size(), 1u);
    EXPECT_FALSE(manager.screenshotHandler);
    monitors.pressElsewhere({keyT, shift | option});
    EXPECT_EQ(pressed, "w");
}

TEST_F(HotkeyManagerTest, afterRemovalNothingRunsUntilTheNextRegistration) {
    registerBoth();
    manager.removeMonitors();
    EXPECT_TRUE(monitors.globals.empty());
    EXPECT_TRUE(monitors.locals.empty());
    EXPECT_FALSE(manager.screenshotHandler->globalMonitor);
    EXPECT_FALSE(manager.screenshotHandler->localMonitor);
    EXPECT_FALSE(manager.tabCaptureHandler->globalMonitor);
    EXPECT_TRUE(manager.screenshotHandler->onPressed) << "the handler stays";
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_FALSE(monitors.pressHere({keyT, shift | option}));
    EXPECT_EQ(pressed, "");

    manager.registerHotkeys();
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_TRUE(monitors.pressHere({keyT, shift | option}));
    EXPECT_EQ(pressed, "aw");
}

TEST_F(HotkeyManagerTest, removingTwiceRemovesEachMonitorOnce) {
    registerBoth();
    manager.removeMonitors();
    monitors.log.clear();
    manager.removeMonitors();
    EXPECT_TRUE(monitors.log.empty());
}

TEST_F(HotkeyManagerTest, aRefusedMonitorIsAbsentAndTheOtherStillWorks) {
    monitors.refusesGlobal = true;
    registerBoth();
    EXPECT_FALSE(manager.screenshotHandler->globalMonitor);
    EXPECT_TRUE(manager.screenshotHandler->localMonitor);
    EXPECT_TRUE(monitors.pressHere({key4, shift | option}));
    monitors.log.clear();
    monitors.refusesGlobal = false;
    manager.registerHotkeys();
    EXPECT_EQ(monitors.log, (std::vector<std::string>{"remove local", "remove local", "add global",
                                                      "add local", "add global", "add local"}));
}

TEST_F(HotkeyManagerTest, anActionMayRegisterAnewFromWithinItsShortcut) {
    setHandlers();
    manager.screenshotHandler->onPressed = [this] {
        manager.registerHotkeys();
        pressed += 'a';
    };
    manager.registerHotkeys();
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_TRUE(monitors.pressHere({key4, shift | option}));
    EXPECT_EQ(pressed, "aa");
    EXPECT_EQ(monitors.globals.size(), 2u);
}

TEST_F(HotkeyManagerTest, monitorsOutliveTheManager) {
    auto other = std::make_unique<HotkeyManager>(monitors, defaults);
    other->screenshotHandler = HotkeyHandler{{}, {}, {}, [this] { pressed += 'o'; }};
    other->registerHotkeys();
    other.reset();
    monitors.pressElsewhere({key4, shift | option});
    EXPECT_EQ(pressed, "o");
}

} // namespace
} // namespace framora
