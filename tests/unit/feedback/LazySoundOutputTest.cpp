#include "platform/desktop/LazySoundOutput.h"

#include <QTest>
#include <future>
#include <gtest/gtest.h>
#include <vector>

namespace framora {
namespace {

/// A sound output that takes as long to load as the test wants.
class LazySoundOutputTest : public testing::Test {
protected:
    struct Heard {
        QString name;
        float volume = 0;
    };
    class Player final : public AudioPlayer {
    public:
        Player(std::vector<Heard>& heard, const QString& name) : m_heard(heard), m_name(name) {}
        void setVolume(float volume) override { m_volume = volume; }
        void play() override { m_heard.push_back({m_name, m_volume}); }

    private:
        std::vector<Heard>& m_heard;
        QString m_name;
        float m_volume = -1;
    };
    class Output final : public SoundOutput {
    public:
        explicit Output(std::vector<Heard>& heard) : m_heard(heard) {}
        bool fileExists(const QString&) const override { return true; }
        std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override {
            return std::make_unique<Player>(m_heard, url.fileName());
        }
        std::unique_ptr<AudioPlayer> systemSound(const QString& name) override {
            return std::make_unique<Player>(m_heard, name);
        }

    private:
        std::vector<Heard>& m_heard;
    };

    std::vector<Heard> heard;
    std::promise<void> mayArrive;
    bool isMissing = false;
    const std::function<LazySoundOutput::Loaded()> load = [this]() -> LazySoundOutput::Loaded {
        mayArrive.get_future().wait();
        return isMissing ? nullptr : std::make_unique<Output>(heard);
    };
    LazySoundOutput output{load};
};

TEST_F(LazySoundOutputTest, aSoundBeforeItIsLoadedIsHeardOnceItIs) {
    const auto player = output.systemSound(QStringLiteral("Frog"));
    ASSERT_TRUE(player);
    player->setVolume(0.25f);
    player->play();
    EXPECT_TRUE(heard.empty());
    mayArrive.set_value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !heard.empty(); }));
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].name, QStringLiteral("Frog"));
    EXPECT_EQ(heard[0].volume, 0.25f);
    player->play();
    EXPECT_EQ(heard.size(), 2U);
}

TEST_F(LazySoundOutputTest, aSoundThatIsCutOffMeanwhileIsNotHeard) {
    auto first = output.systemSound(QStringLiteral("Frog"));
    first->play();
    first.reset();
    const auto second = output.systemSound(QStringLiteral("Pop"));
    second->play();
    mayArrive.set_value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !heard.empty(); }));
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].name, QStringLiteral("Pop"));
}

TEST_F(LazySoundOutputTest, aSoundThatWouldComeTooLateIsNotHeard) {
    LazySoundOutput strict(load, std::chrono::milliseconds(0));
    const auto player = strict.systemSound(QStringLiteral("Frog"));
    player->play();
    mayArrive.set_value();
    // Once it has arrived, this is in time.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        player->play();
        return !heard.empty();
    }));
    EXPECT_EQ(heard.size(), 1U);
}

TEST_F(LazySoundOutputTest, aFilesSoundIsPromisedOnlyOnceItIsLoaded) {
    const QUrl file(QStringLiteral("file:///sounds/Frog.aiff"));
    EXPECT_FALSE(output.playerForFile(file)) << "the caller takes the next sound that there is";
    mayArrive.set_value();
    std::unique_ptr<AudioPlayer> player;
    ASSERT_TRUE(QTest::qWaitFor([&] { return (player = output.playerForFile(file)) != nullptr; }));
    player->play();
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].name, QStringLiteral("Frog.aiff"));
}

TEST_F(LazySoundOutputTest, withoutTheModuleThereIsNoPlayerAndAnEarlyOneDoesNoHarm) {
    isMissing = true;
    const auto player = output.systemSound(QStringLiteral("Frog"));
    player->play();
    mayArrive.set_value();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !output.systemSound(QStringLiteral("Pop")); }));
    player->setVolume(0.5f);
    player->play();
}

} // namespace
} // namespace framora
