#include "platform/desktop/PulseSoundOutput.h"
#include "desktop/support/ChildProcess.h"
#include "desktop/support/VirtualDesktop.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>
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
        recorder.emplace(
            QStringLiteral("sh"),
            QStringList{QStringLiteral("-c"),
                        QStringLiteral("exec parec --device=out.monitor --format=float32le --rate=44100 "
                                       "--channels=1 --latency-msec=20 > ") +
                            recording()},
            environment);
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return QFileInfo(recording()).size() > 4096; }));
    }
    ~PulseSoundOutputTest() override { qunsetenv("PULSE_SERVER"); }

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

    /// An AIFF tone of one second at half of full scale.
    QString tone() {
        QString path = folder.filePath(QStringLiteral("tone.aiff"));
        QByteArray body;
        const auto number = [&](QByteArray& to, quint32 value, int bytes) {
            for (int i = bytes - 1; i >= 0; --i)
                to.append(char(value >> (8 * i)));
        };
        QByteArray samples;
        for (int i = 0; i < 44100; ++i)
            number(samples, quint32(int(16384 * std::sin(i * 0.0627))) & 0xffff, 2);
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
    for (const char* name : {"Hero", "Submarine", "Blow", "Frog", "Funk", "Sosumi", "Basso", "Pop"})
        EXPECT_TRUE(output.systemSound(QLatin1String(name))) << name;
    EXPECT_FALSE(output.systemSound(QStringLiteral("Glass")));
    const auto player = output.systemSound(QStringLiteral("Frog"));
    player->play();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return peak() > 0.01f; }, 5000));
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
