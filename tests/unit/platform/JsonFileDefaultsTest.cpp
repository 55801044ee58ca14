#include "platform/desktop/JsonFileDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <random>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace framora {
namespace {

using Json = nlohmann::ordered_json;

class JsonFileDefaultsTest : public testing::Test {
protected:
    void write(const QByteArray& content) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray content() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }
    QStringList filesInFolder() const {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("defaults.json"));
    JsonFileDefaults defaults{path};
};

TEST_F(JsonFileDefaultsTest, aMissingFileHoldsNothing) {
    EXPECT_EQ(defaults.dataForKey("Settings"), std::nullopt);
    EXPECT_TRUE(filesInFolder().isEmpty());
}

TEST_F(JsonFileDefaultsTest, whatIsStoredIsReadAgainByAnother) {
    EXPECT_TRUE(defaults.setData("Settings", R"({"volume":0.1,"bits":18446744073709551615})"));
    EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), R"({"volume":0.1,"bits":18446744073709551615})");
    EXPECT_EQ(filesInFolder(), QStringList{QStringLiteral("defaults.json")});
}

TEST_F(JsonFileDefaultsTest, onlyAFileThatIsMissingOrHoldsNothingIsEmpty) {
    EXPECT_TRUE(defaults.isEmpty());
    write("{}");
    EXPECT_TRUE(defaults.isEmpty());
    for (const char* some : {R"({"Other":1})", "{", "[]", ""}) {
        write(some);
        EXPECT_FALSE(defaults.isEmpty()) << some;
    }
    ASSERT_TRUE(QFile::remove(path) && QDir().mkdir(path));
    EXPECT_FALSE(defaults.isEmpty()) << "what cannot be read may hold something";
}

/// Does it in an event loop, which ends then.
void inEventLoop(const std::function<void()>& act) {
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        act();
        loop.quit();
    });
    loop.exec();
}

constexpr std::chrono::hours never{1};

TEST_F(JsonFileDefaultsTest, stepsInAnEventLoopAreKeptAndWrittenAtTheEndTogether) {
    {
        JsonFileDefaults drag(path, never);
        inEventLoop([&] {
            ASSERT_TRUE(drag.setData("Settings", "0"));
            EXPECT_FALSE(drag.isSavePending()) << "a change of its own is in the file at once";
            for (int i = 1; i <= 5; ++i) {
                ASSERT_TRUE(drag.setData("Settings", std::to_string(i)));
                EXPECT_EQ(drag.dataForKey("Settings"), std::to_string(i));
                EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), "0");
            }
            ASSERT_TRUE(drag.setData("window", R"({ "x" : 1 })"));
            EXPECT_EQ(drag.dataForKey("window"), R"({"x":1})");
            EXPECT_FALSE(drag.setData("Settings", "{"));
            EXPECT_EQ(drag.dataForKey("Settings"), "5");
        });
        EXPECT_TRUE(drag.isSavePending());
        EXPECT_TRUE(JsonFileDefaults(path).setData("other", "7")) << "by another process meanwhile";
        EXPECT_EQ(drag.dataForKey("other"), "7");
    }
    EXPECT_EQ(Json::parse(content().toStdString()).dump(), R"({"Settings":5,"other":7,"window":{"x":1}})");
    EXPECT_EQ(filesInFolder(), QStringList{QStringLiteral("defaults.json")});
}

TEST_F(JsonFileDefaultsTest, withoutAnEventLoopEverySaveIsInTheFileAtOnce) {
    JsonFileDefaults quick(path, never);
    for (int i = 0; i <= 5; ++i) {
        ASSERT_TRUE(quick.setData("Settings", std::to_string(i)));
        EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), std::to_string(i));
    }
    // It takes along what was kept before.
    inEventLoop([&] { ASSERT_TRUE(quick.setData("Settings", "6")); });
    EXPECT_TRUE(quick.isSavePending());
    ASSERT_TRUE(quick.setData("other", "1"));
    EXPECT_FALSE(quick.isSavePending());
    EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), "6");
}

TEST_F(JsonFileDefaultsTest, aDragThatDoesNotEndIsWrittenAllTheSame) {
    JsonFileDefaults drag(path, std::chrono::milliseconds(100));
    ASSERT_TRUE(drag.setData("Settings", "0"));
    int last = 0;
    QElapsedTimer timer;
    timer.start();
    QEventLoop loop;
    QTimer step;
    step.callOnTimeout([&] {
        ASSERT_TRUE(drag.setData("Settings", std::to_string(++last)));
        if (JsonFileDefaults(path).dataForKey("Settings") != "0" || timer.elapsed() > 10'000)
            loop.quit();
    });
    step.start(5);
    loop.exec();
    EXPECT_NE(JsonFileDefaults(path).dataForKey("Settings"), "0") << "while there were steps";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !drag.isSavePending(); }));
    EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), std::to_string(last)) << "when there were none";
}

TEST_F(JsonFileDefaultsTest, whatIsKeptIsWrittenWhenTheProgramQuits) {
    JsonFileDefaults drag(path, never);
    const auto stepAndQuit = [&](const std::string& number) {
        QTimer::singleShot(0, qApp, [&drag, number] {
            ASSERT_TRUE(drag.setData("Settings", number));
            EXPECT_TRUE(drag.isSavePending());
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
    };
    ASSERT_TRUE(drag.setData("Settings", "0"));
    stepAndQuit("1");
    EXPECT_FALSE(drag.isSavePending());
    EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), "1");

    // What cannot be written then is not lost yet.
    const int held = open(folder.path().toLocal8Bit().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    stepAndQuit("2");
    EXPECT_TRUE(drag.isSavePending());
    EXPECT_FALSE(drag.setData("other", "3"));
    EXPECT_EQ(drag.dataForKey("Settings"), "2");
    EXPECT_EQ(drag.dataForKey("other"), std::nullopt);
    close(held);
    EXPECT_TRUE(drag.setData("other", "4"));
    EXPECT_EQ(JsonFileDefaults(path).dataForKey("Settings"), "2");
    EXPECT_EQ(JsonFileDefaults(path).dataForKey("other"), "4");
}

TEST_F(JsonFileDefaultsTest, theFoldersOnTheWayAreMade) {
    JsonFileDefaults deep(folder.filePath(QStringLiteral("a/b/defaults.json")));
    EXPECT_TRUE(deep.setData("Settings", "1"));
    EXPECT_EQ(deep.dataForKey("Settings"), "1");
}

TEST_F(JsonFileDefaultsTest, otherMembersAndTheirOrderAreKept) {
    write(R"({"z": {"deep": [1, 2.5, null]}, "Settings": 1, "a": "ä", "Z": false})");
    EXPECT_TRUE(defaults.setData("Settings", "2"));
    EXPECT_EQ(Json::parse(content().toStdString()).dump(),
              R"({"z":{"deep":[1,2.5,null]},"Settings":2,"a":"ä","Z":false})");
}

TEST_F(JsonFileDefaultsTest, aDamagedFileGivesNothingAndStaysUntilTheNextSave) {
    for (const QByteArray damaged : {"", "{", "{\"Settings\": 1", "[1]", "null", "\xff\xfe{}", "{}x"}) {
        write(damaged);
        EXPECT_EQ(defaults.dataForKey("Settings"), std::nullopt) << damaged.toStdString();
        EXPECT_EQ(content(), damaged);
        EXPECT_TRUE(defaults.setData("Settings", "3"));
        EXPECT_EQ(defaults.dataForKey("Settings"), "3");
    }
}

TEST_F(JsonFileDefaultsTest, whatIsNoJsonIsNotStored) {
    EXPECT_TRUE(defaults.setData("Settings", "1"));
    EXPECT_FALSE(defaults.setData("Settings", "{"));
    EXPECT_EQ(defaults.dataForKey("Settings"), "1");
}

TEST_F(JsonFileDefaultsTest, theFilesModeIsKeptWhateverTheUmask) {
    write("{}");
    for (const mode_t mode : {0600u, 0640u, 0666u}) {
        ASSERT_EQ(chmod(path.toLocal8Bit().constData(), mode), 0);
        ASSERT_TRUE(defaults.setData("Settings", "1"));
        struct stat now {};
        ASSERT_EQ(stat(path.toLocal8Bit().constData(), &now), 0);
        EXPECT_EQ(now.st_mode & 07777, mode);
    }
}

TEST_F(JsonFileDefaultsTest, aNewFileIsTheUsersAlone) {
    ASSERT_TRUE(defaults.setData("Settings", "1"));
    struct stat now {};
    ASSERT_EQ(stat(path.toLocal8Bit().constData(), &now), 0);
    EXPECT_EQ(now.st_mode & 07777, 0600u);
}

TEST_F(JsonFileDefaultsTest, aLinkStaysALinkAndItsFileIsReplaced) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("kept")));
    // The first is there, the second is only where the link points.
    for (const bool exists : {true, false}) {
        const QString target = folder.filePath(QStringLiteral("kept/%1.json").arg(exists));
        if (exists) {
            QFile file(target);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(R"({"other": 5})");
        }
        QFile::remove(path);
        ASSERT_TRUE(QFile::link(QStringLiteral("kept/%1.json").arg(exists), path));
        EXPECT_TRUE(defaults.setData("Settings", "7"));
        EXPECT_TRUE(QFileInfo(path).isSymLink());
        EXPECT_EQ(JsonFileDefaults(target).dataForKey("Settings"), "7");
        EXPECT_EQ(JsonFileDefaults(target).dataForKey("other"),
                  exists ? std::optional<std::string>("5") : std::nullopt);
    }
}

TEST_F(JsonFileDefaultsTest, whereNothingCanBeWrittenTheSaveFails) {
    // A folder stands where the file should be: it holds for the superuser too.
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("defaults.json")));
    EXPECT_FALSE(defaults.setData("Settings", "1"));
    EXPECT_EQ(defaults.dataForKey("Settings"), std::nullopt);
    EXPECT_EQ(filesInFolder(), QStringList{QStringLiteral("defaults.json")});
    JsonFileDefaults below(path + QStringLiteral("/../file/defaults.json"));
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(below.setData("Settings", "1"));
}

TEST_F(JsonFileDefaultsTest, aPipeADeviceAndAHugeFileAreNeitherReadNorReplaced) {
    const QByteArray name = QFile::encodeName(path);
    const auto isLeftAlone = [&] {
        return !defaults.dataForKey("Settings") && !defaults.isEmpty() && !defaults.setData("Settings", "1");
    };
    ASSERT_EQ(mkfifo(name.constData(), 0600), 0); // Nobody writes into it: to open it would wait.
    EXPECT_TRUE(isLeftAlone());
    ASSERT_EQ(unlink(name.constData()), 0);
    ASSERT_EQ(symlink("/dev/zero", name.constData()), 0);
    EXPECT_TRUE(isLeftAlone());
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    ASSERT_EQ(unlink(name.constData()), 0);
    write(R"({"Settings": 2})");
    ASSERT_TRUE(QFile::resize(path, 17 << 20));
    EXPECT_TRUE(isLeftAlone());
    EXPECT_EQ(QFileInfo(path).size(), 17 << 20);
}

TEST_F(JsonFileDefaultsTest, aSaverThatHangsIsNotWaitedForForever) {
    ASSERT_TRUE(defaults.setData("Settings", "1"));
    const int held = open(folder.path().toLocal8Bit().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(held, LOCK_EX), 0);
    EXPECT_FALSE(defaults.setData("Settings", "2"));
    EXPECT_EQ(defaults.dataForKey("Settings"), "1");
    close(held);
    EXPECT_TRUE(defaults.setData("Settings", "2"));
}

/// A saver that runs until it is killed.
class RunningSaver {
public:
    RunningSaver(const QString& path, bool inEventLoop) {
        QByteArray program(FRAMORA_DEFAULTS_SAVER);
        QByteArray file = path.toLocal8Bit();
        QByteArray kind("event-loop");
        char* arguments[] = {program.data(), file.data(), inEventLoop ? kind.data() : nullptr, nullptr};
        m_started = posix_spawn(&m_pid, program.constData(), nullptr, nullptr, arguments, environ) == 0;
    }
    /// True when it had been saving to the last.
    bool kill() {
        int status = 0;
        return m_started && ::kill(m_pid, SIGKILL) == 0 && waitpid(m_pid, &status, 0) == m_pid &&
               WIFSIGNALED(status);
    }

private:
    pid_t m_pid = 0;
    bool m_started = false;
};

/// Whether it saves in an event loop, where most saves are steps.
class KilledSaver : public JsonFileDefaultsTest, public testing::WithParamInterface<bool> {};

INSTANTIATE_TEST_SUITE_P(JsonFileDefaults, KilledSaver, testing::Bool(),
                         [](const auto& run) { return run.param ? "inAnEventLoop" : "withoutOne"; });

TEST_P(KilledSaver, atAnyMomentLeavesTheOldOrTheNewFileWhole) {
    const QByteArray untouched = R"({"other": "kept", "Settings": {"number": 0, "text": ""}})";
    write(untouched);
    // How long a saver takes to its first save differs much between machines and builds.
    QElapsedTimer timer;
    timer.start();
    RunningSaver first(path, GetParam());
    while (content() == untouched && timer.elapsed() < 10'000)
        usleep(200);
    const auto firstSave = useconds_t(timer.nsecsElapsed() / 1000);
    ASSERT_TRUE(first.kill());

    constexpr int kills = 300;
    std::mt19937 random(20);
    std::uniform_int_distribution<useconds_t> delay(firstSave / 2, 2 * firstSave);
    int saved = 0;
    int leftovers = 0;
    for (int round = 0; round < kills; ++round) {
        write(untouched);
        RunningSaver saver(path, GetParam());
        usleep(delay(random));
        ASSERT_TRUE(saver.kill());

        const Json document = Json::parse(content().toStdString(), nullptr, false);
        ASSERT_TRUE(document.is_object()) << content().toStdString();
        ASSERT_EQ(document["other"], "kept");
        const auto number = document["Settings"]["number"].get<unsigned>();
        const auto text = document["Settings"]["text"].get<std::string>();
        ASSERT_EQ(text, number > 0 ? std::string(20'000, static_cast<char>('a' + number % 26)) : "");
        saved += number > 0;
        ASSERT_LE(filesInFolder().size(), 2) << "what killed savers leave must not pile up";
        leftovers += filesInFolder().size() == 2;
    }
    RecordProperty("killedAfterASave", saved);
    RecordProperty("killedInsideASave", leftovers);
    EXPECT_GT(saved, 0) << "the savers were killed before they saved anything";
    EXPECT_GT(leftovers, 0) << "no saver was killed in the middle of a save";
    EXPECT_TRUE(defaults.setData("Settings", "1"));
    EXPECT_EQ(filesInFolder(), QStringList{QStringLiteral("defaults.json")});
}

TEST_F(JsonFileDefaultsTest, savesOfSeveralProcessesDoNotLoseOneAnothersKeys) {
    constexpr int savers = 3;
    constexpr int saves = 30;
    std::vector<pid_t> children;
    for (int saver = 0; saver < savers; ++saver) {
        const pid_t child = fork();
        if (child == 0) {
            // A save that the others kept waiting too long says so, and is tried again; none fails silently.
            int refused = 0;
            for (int save = 0; save < saves; ++save)
                while (!defaults.setData(std::to_string(saver * saves + save), "true"))
                    if (++refused == saves)
                        _exit(1);
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(Json::parse(content().toStdString()).size(), std::size_t{savers * saves});
}

TEST(JsonFileDefaultsPath, isInTheUsersConfiguration) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", "/somewhere/conf");
    EXPECT_EQ(JsonFileDefaults::defaultPath(), QStringLiteral("/somewhere/conf/framora/defaults.json"));
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(JsonFileDefaults::defaultPath(), QDir::homePath() + "/.config/framora/defaults.json");
    if (!before.isEmpty())
        qputenv("XDG_CONFIG_HOME", before);
}

} // namespace
} // namespace framora
