#include "feedback/SoundManager.h"

#include "support/RecordingSoundOutput.h"

#include <gmock/gmock.h>

namespace framora {
namespace {

using testing::ElementsAre;

const QString first = QStringLiteral("/System/Library/Sounds/Frog.aiff");
const QString second = QStringLiteral(
    "/System/Library/Components/CoreAudio.component/Contents/SharedSupport/SystemSounds/system/Frog.aif");

class SoundManagerTest : public testing::Test {
protected:
    RecordingSoundOutput output;
    SoundManager manager{output};
};

TEST_F(SoundManagerTest, playsTheFirstCandidateAndDoesNotLookAtTheSecond) {
    output.files = {{first, true}, {second, true}};
    manager.play(CaptureSound::frog, 0.5f);
    EXPECT_THAT(output.log, ElementsAre("exists " + first.toStdString(), "open file://" + first.toStdString(),
                                        "volume 0.5", "play " + first.toStdString()));
}

TEST_F(SoundManagerTest, playsTheSecondCandidateWhereTheFirstIsMissing) {
    output.files = {{second, true}};
    manager.play(CaptureSound::frog, 1);
    EXPECT_THAT(output.log, ElementsAre("exists " + first.toStdString(), "exists " + second.toStdString(),
                                        "open file://" + second.toStdString(), "volume 1",
                                        "play " + second.toStdString()));
}

TEST_F(SoundManagerTest, goesOnWhereAFileIsNoSound) {
    output.files = {{first, false}, {second, true}};
    manager.play(CaptureSound::frog, 1);
    EXPECT_EQ(output.log.back(), "play " + second.toStdString());
}

TEST_F(SoundManagerTest, asksTheDesktopWhereNeitherFileIsThere) {
    manager.play(CaptureSound::frog, 0.25f);
    EXPECT_THAT(output.log, ElementsAre("exists " + first.toStdString(), "exists " + second.toStdString(),
                                        "system Frog", "volume 0.25", "play system Frog"));
}

TEST_F(SoundManagerTest, asksTheDesktopWhereNeitherFileCanBePlayed) {
    output.files = {{first, false}, {second, false}};
    manager.play(CaptureSound::frog, 1);
    EXPECT_EQ(output.log.back(), "play system Frog");
}

TEST_F(SoundManagerTest, isSilentWhereTheDesktopHasNoSuchSound) {
    output.hasSystemSounds = false;
    manager.play(CaptureSound::pop, 1);
    EXPECT_EQ(output.log.back(), "system Pop");
}

TEST_F(SoundManagerTest, theSecondSoundReplacesTheFirst) {
    const QString pop = QStringLiteral("/System/Library/Sounds/Pop.aiff");
    output.files = {{first, true}, {pop, true}};
    manager.play(CaptureSound::frog, 1);
    output.log.clear();
    manager.play(CaptureSound::pop, 1);
    EXPECT_THAT(output.log,
                ElementsAre("exists " + pop.toStdString(), "open file://" + pop.toStdString(),
                            "release " + first.toStdString(), "volume 1", "play " + pop.toStdString()));
}

TEST_F(SoundManagerTest, theDesktopsSoundLeavesThePlayerOfAFileAlone) {
    output.files = {{first, true}};
    manager.play(CaptureSound::frog, 1);
    output.log.clear();
    manager.play(CaptureSound::hero, 1);
    EXPECT_EQ(output.log.back(), "play system Hero");
    EXPECT_EQ(std::count(output.log.begin(), output.log.end(), "release " + first.toStdString()), 0);
}

TEST_F(SoundManagerTest, aVolumeOfZeroStillPlays) {
    output.files = {{first, true}};
    manager.play(CaptureSound::frog, 0);
    EXPECT_EQ(output.log[2], "volume 0");
    EXPECT_EQ(output.log[3], "play " + first.toStdString());
}

TEST_F(SoundManagerTest, everySoundHasItsOwnName) {
    for (const CaptureSound sound : allCaptureSounds) {
        output.log.clear();
        manager.play(sound, 1);
        EXPECT_EQ(output.log[2], "system " + std::string(rawValue(sound)));
    }
}

TEST(SharedSoundManager, isOneForTheWholeProgramAndSilentBeforeItHasAnOutput) {
    // The shared manager keeps it for the rest of the process: made first, it goes last.
    static RecordingSoundOutput output;
    SoundManager& manager = SoundManager::shared();
    EXPECT_EQ(&manager, &SoundManager::shared());
    manager.play(CaptureSound::frog, 1);
    EXPECT_EQ(output.log, std::vector<std::string>());
    SoundManager::setSharedOutput(output);
    manager.play(CaptureSound::frog, 1);
    EXPECT_EQ(output.log.back(), "play system Frog");
}

} // namespace
} // namespace framora
