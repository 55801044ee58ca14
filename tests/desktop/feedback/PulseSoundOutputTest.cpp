#include "platform/desktop/PulseSoundOutput.h"
#include "desktop/support/ChildProcess.h"
#include "desktop/support/VirtualDesktop.h"
#include "feedback/SoundManager.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <sys/stat.h>
#include <thread>

namespace framora {
namespace {

/// A private sound server with a sink that goes nowhere; what it would play is recorded.
class PulseSoundOutputTest : public testing::Test {
protected:
    PulseSoundOutputTest() {
        auto environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME"})
            environment.insert(QLatin1String(name), folder.path());
        environment.insert(QStringLiteral("PULSE_SERVER"), address());
        auto serverEnvironment = environment;
        serverEnvironment.remove(QStringLiteral("PULSE_SERVER"));
        server.emplace(QStringLiteral("pulseaudio"),
                       QStringList{QStringLiteral("-n"), QStringLiteral("--daemonize=no"),
                                   QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--disable-shm=yes"),
                                   QStringLiteral("-L"),
                                   QStringLiteral("module-null-sink sink_name=out rate=44100"),
                                   QStringLiteral("-L"),
                                   QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") +
                                       folder.filePath(QStringLiteral("socket"))},
                       serverEnvironment);
        EXPECT_TRUE(VirtualDesktop::waitFor(
            [&] { return QFile::exists(folder.filePath(QStringLiteral("socket"))); }));
        qputenv("PULSE_SERVER", address().toLocal8Bit());
        record();
    }
    ~PulseSoundOutputTest() override { qunsetenv("PULSE_SERVER"); }

    void record() {
        const qint64 before = QFileInfo(recording()).size();
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), folder.path());
        recorder.emplace(
            QStringLiteral("sh"),
            QStringList{QStringLiteral("-c"),
                        QStringLiteral("exec parec --device=out.monitor --format=float32le --rate=44100 "
                                       "--channels=1 --latency-msec=20 >> ") +
                            recording()},
            environment);
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return QFileInfo(recording()).size() > before + 4096; }));
    }
    /// What was started before is no longer in what comes next.
    void waitForSilence() {
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            const qint64 from = QFileInfo(recording()).size();
            QTest::qWait(120);
            return QFileInfo(recording()).size() > from + 4096 && peak(from) == 0;
        }));
    }

    QString address() { return QStringLiteral("unix:") + folder.filePath(QStringLiteral("socket")); }
    QString recording() { return folder.filePath(QStringLiteral("recording")); }

    /// The loudest sample since byte `from` of the recording.
    float peak(qint64 from = 0) {
        QFile file(recording());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        file.seek(from / 4 * 4);
        const QByteArray bytes = file.readAll();
        float most = 0;
        for (qsizetype i = 0; i + 4 <= bytes.size(); i += 4) {
            float sample;
            std::memcpy(&sample, bytes.constData() + i, 4);
            most = std::max(most, std::abs(sample));
        }
        return most;
    }

    /// An AIFF tone of one second, at half of full scale unless said otherwise.
    QString tone(double hertz = 440, double amplitude = 0.5) {
        QString path = folder.filePath(QStringLiteral("tone-%1-%2.aiff").arg(hertz).arg(amplitude));
        QByteArray body;
        const auto number = [&](QByteArray& to, quint32 value, int bytes) {
            for (int i = bytes - 1; i >= 0; --i)
                to.append(char(value >> (8 * i)));
        };
        QByteArray samples;
        for (int i = 0; i < 44100; ++i)
            number(samples,
                   quint32(int(32767 * amplitude * std::sin(i * hertz * 2 * 3.14159265 / 44100))) & 0xffff,
                   2);
        body.append("AIFFCOMM");
        number(body, 18, 4);
        number(body, 1, 2);
        number(body, 44100, 4);
        number(body, 16, 2);
        body.append(QByteArray::fromHex("400EAC44000000000000")); // 44100 as an 80-bit float.
        body.append("SSND");
        number(body, quint32(samples.size() + 8), 4);
        number(body, 0, 4);
        number(body, 0, 4);
        body.append(samples);
        QByteArray all("FORM");
        number(all, quint32(body.size()), 4);
        all.append(body);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(all);
        return path;
    }

    QTemporaryDir folder;
    std::optional<ChildProcess> server;
    std::optional<ChildProcess> recorder;
};

TEST_F(PulseSoundOutputTest, playsAnAiffFileAtTheVolumeThatIsAskedFor) {
    PulseSoundOutput output;
    const auto player = output.playerForFile(QUrl::fromLocalFile(tone()));
    ASSERT_TRUE(player);
    EXPECT_EQ(peak(), 0);
    player->setVolume(0.5f);
    player->play();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.2f; }, 5000));
    QTest::qWait(300);
    EXPECT_NEAR(peak(), 0.25, 0.01);
}

TEST_F(PulseSoundOutputTest, fallsSilentWhenThePlayerGoes) {
    PulseSoundOutput output;
    auto player = output.playerForFile(QUrl::fromLocalFile(tone()));
    player->play();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.4f; }, 5000));
    player.reset();
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] {
            const qint64 from = QFileInfo(recording()).size();
            QTest::qWait(100);
            return peak(from) == 0;
        },
        500))
        << "long before the tone's end";
}

TEST_F(PulseSoundOutputTest, aServerThatHangsHoldsNobodyUp) {
    std::optional<PulseSoundOutput> output(std::in_place);
    auto player = output->playerForFile(QUrl::fromLocalFile(tone()));
    player->play();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.4f; }, 5000));
    ASSERT_EQ(kill(pid_t(server->pid()), SIGSTOP), 0);
    // Lets it go on in the end, so that a program that waits for it fails instead of hanging.
    std::jthread waker([pid = pid_t(server->pid())](const std::stop_token& stop) {
        for (int tenths = 0; tenths < 100 && !stop.stop_requested(); ++tenths)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        kill(pid, SIGCONT);
    });
    QElapsedTimer timer;
    timer.start();
    player.reset();
    output.reset();
    EXPECT_LT(timer.elapsed(), 8000);
}

TEST_F(PulseSoundOutputTest, playsTheDesktopsSoundOfEveryName) {
    PulseSoundOutput output;
    EXPECT_FALSE(output.systemSound(QStringLiteral("Glass")));
    for (const char* name : {"Hero", "Submarine", "Blow", "Frog", "Funk", "Sosumi", "Basso", "Pop"}) {
        waitForSilence();
        const qint64 from = QFileInfo(recording()).size();
        const auto player = output.systemSound(QLatin1String(name));
        ASSERT_TRUE(player) << name;
        player->play();
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return peak(from) > 0.005f; }, 5000)) << name;
    }
}

TEST_F(PulseSoundOutputTest, theRecordedLevelFollowsTheVolume) {
    PulseSoundOutput output;
    const QString file = tone();
    std::map<float, float> levels;
    for (const float volume : {1.0f, 0.5f, 0.0f}) {
        waitForSilence();
        const qint64 from = QFileInfo(recording()).size();
        const auto player = output.playerForFile(QUrl::fromLocalFile(file));
        ASSERT_TRUE(player);
        player->setVolume(volume);
        player->play();
        // The tone's middle: half a second, after its start has been recorded or would have been.
        QTest::qWait(800);
        levels[volume] = peak(from);
    }
    EXPECT_EQ(levels[0.0f], 0);
    const auto decibels = [](float level, double full) { return 20 * std::log10(double(level) / full); };
    EXPECT_NEAR(decibels(levels[1.0f], 0.5), 0, 1) << "the tone is half of full scale";
    EXPECT_NEAR(decibels(levels[0.5f], 0.25), 0, 1);
}

TEST_F(PulseSoundOutputTest, theSecondSoundTakesTheFirstOnesPlace) {
    PulseSoundOutput output;
    auto first = output.playerForFile(QUrl::fromLocalFile(tone(880)));
    first->play();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.4f; }, 5000));
    const auto second = output.playerForFile(QUrl::fromLocalFile(tone(220)));
    second->setVolume(0.5f);
    second->play();
    // Together they would be louder than the second alone.
    EXPECT_TRUE(VirtualDesktop::waitFor(
        [&] {
            const qint64 from = QFileInfo(recording()).size();
            QTest::qWait(150);
            const float level = peak(from);
            return level > 0.2f && level < 0.27f;
        },
        700));
}

TEST_F(PulseSoundOutputTest, everyFormatIsHeard) {
    PulseSoundOutput output;
    const QString aiff = tone();
    for (const char* format : {"wav", "ogg", "oga", "aifc"}) {
        const QString file = folder.filePath(QStringLiteral("tone.") + QLatin1String(format));
        // AIFF-C is AIFF whose header names its coding.
        QStringList arguments{QStringLiteral("-y"), QStringLiteral("-loglevel"), QStringLiteral("error"),
                              QStringLiteral("-i"), aiff};
        if (QLatin1String(format).startsWith(QLatin1String("og")))
            arguments << QStringLiteral("-c:a") << QStringLiteral("libvorbis");
        if (QLatin1String(format) == QLatin1String("aifc"))
            arguments << QStringLiteral("-c:a") << QStringLiteral("pcm_s16le") << QStringLiteral("-f")
                      << QStringLiteral("aiff");
        ASSERT_EQ(QProcess::execute(QStringLiteral("ffmpeg"), arguments << file), 0) << format;
        waitForSilence();
        const qint64 from = QFileInfo(recording()).size();
        const auto player = output.playerForFile(QUrl::fromLocalFile(file));
        ASSERT_TRUE(player) << format;
        player->play();
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return peak(from) > 0.35f; }, 5000)) << format;
    }
}

TEST_F(PulseSoundOutputTest, aSinkThatVanishesLeavesSilenceAndTheNextOneIsHeard) {
    PulseSoundOutput output;
    const auto player = output.playerForFile(QUrl::fromLocalFile(tone()));
    player->play();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.4f; }, 5000));
    recorder.reset();
    const auto pactl = [&](const QStringList& arguments) {
        return QProcess::execute(QStringLiteral("pactl"),
                                 QStringList{QStringLiteral("-s"), address()} + arguments);
    };
    ASSERT_EQ(pactl({QStringLiteral("unload-module"), QStringLiteral("module-null-sink")}), 0);
    QElapsedTimer timer;
    timer.start();
    const auto nowhere = output.playerForFile(QUrl::fromLocalFile(tone()));
    nowhere->play();
    EXPECT_LT(timer.elapsed(), 1000);
    QTest::qWait(200);
    ASSERT_EQ(pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                     QStringLiteral("sink_name=out"), QStringLiteral("rate=44100")}),
              0);
    record();
    const qint64 from = QFileInfo(recording()).size();
    const auto again = output.playerForFile(QUrl::fromLocalFile(tone()));
    again->play();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return peak(from) > 0.4f; }, 5000));
}

TEST_F(PulseSoundOutputTest, aFileThatDoesNotAnswerIsSilenceAndHoldsUpNeitherTheCallNorTheNextSound) {
    const QString pipe = folder.filePath(QStringLiteral("pipe.aiff"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    PulseSoundOutput output;
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(output.playerForFile(QUrl::fromLocalFile(pipe)));
    // Nor one that the theme leads to.
    const QString themeFile = folder.filePath(QStringLiteral("sounds/freedesktop/stereo/complete.oga"));
    QDir().mkpath(QFileInfo(themeFile).path());
    ASSERT_EQ(mkfifo(QFile::encodeName(themeFile).constData(), 0600), 0);
    PulseSoundOutput themed([root = folder.path()] { return SoundTheme({root}); });
    const auto stuck = themed.systemSound(QStringLiteral("Hero"));
    ASSERT_TRUE(stuck);
    stuck->play();
    EXPECT_LT(timer.elapsed(), 500);
    const auto next = themed.playerForFile(QUrl::fromLocalFile(tone()));
    next->play();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.4f; }, 5000));
    // Ends the waiting of whoever opened it.
    QFile end(themeFile);
    ASSERT_TRUE(end.open(QIODevice::ReadWrite));
}

/// The manager's own order of places, with real files: a stand-in for the two fixed folders.
TEST_F(PulseSoundOutputTest, aFileInTheFirstFolderWinsOverTheSecondAndBothOverTheTheme) {
    class MovedOutput final : public SoundOutput {
    public:
        MovedOutput(PulseSoundOutput& output, QString root) : m_output(output), m_root(std::move(root)) {}
        bool fileExists(const QString& path) const override { return m_output.fileExists(m_root + path); }
        std::unique_ptr<AudioPlayer> playerForFile(const QUrl& url) override {
            return m_output.playerForFile(QUrl::fromLocalFile(m_root + url.toLocalFile()));
        }
        std::unique_ptr<AudioPlayer> systemSound(const QString& name) override {
            return m_output.systemSound(name);
        }

    private:
        PulseSoundOutput& m_output;
        QString m_root;
    };
    PulseSoundOutput real;
    MovedOutput output(real, folder.path());
    SoundManager manager(output);
    const auto levelOf = [&] {
        waitForSilence();
        const qint64 from = QFileInfo(recording()).size();
        manager.play(CaptureSound::hero, 1.0f);
        QTest::qWait(600);
        return peak(from);
    };
    const auto place = [&](const QString& path, double amplitude) {
        const QString file = folder.path() + path;
        QDir().mkpath(QFileInfo(file).path());
        QFile::remove(file);
        EXPECT_TRUE(QFile::copy(tone(440, amplitude), file));
    };
    place(QStringLiteral("/System/Library/Components/CoreAudio.component/Contents/SharedSupport/SystemSounds/"
                         "system/Hero.aif"),
          0.125);
    EXPECT_NEAR(levelOf(), 0.125, 0.015);
    place(QStringLiteral("/System/Library/Sounds/Hero.aiff"), 0.75);
    EXPECT_NEAR(levelOf(), 0.75, 0.03);
    QFile text(folder.path() + QStringLiteral("/System/Library/Sounds/Hero.aiff"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no sound at all");
    text.close();
    EXPECT_NEAR(levelOf(), 0.125, 0.015) << "an unreadable file gives way to the next";
}

TEST(PulseSoundOutputAlone, isSilentAtOnceWithoutAServerAndRefusesWhatIsNoSound) {
    qputenv("PULSE_SERVER", "unix:/nonexistent/socket");
    QTemporaryDir folder;
    QFile text(folder.filePath(QStringLiteral("text.aiff")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no sound at all");
    text.close();
    QElapsedTimer time;
    time.start();
    {
        PulseSoundOutput output;
        EXPECT_FALSE(output.playerForFile(QUrl::fromLocalFile(text.fileName())));
        EXPECT_FALSE(output.playerForFile(QUrl::fromLocalFile(QStringLiteral("/no/such.aiff"))));
        const auto player = output.systemSound(QStringLiteral("Frog"));
        ASSERT_TRUE(player);
        player->play();
        player->play();
    }
    EXPECT_LT(time.elapsed(), 5000) << "nothing waits for a server";
    qunsetenv("PULSE_SERVER");
}

} // namespace
} // namespace framora
