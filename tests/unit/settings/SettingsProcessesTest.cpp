#include "settings/Settings.h"

#include "platform/NotificationCenter.h"
#include "platform/desktop/JsonFileDefaults.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace framora {
namespace {

Settings of(int process, int save) {
    Settings settings;
    settings.hotkey.keyCode = std::uint16_t(1000 * process + save);
    settings.soundEffectsVolume = process / 4.0;
    return settings;
}

TEST(SettingsProcesses, twoThatSaveInTurnNeverLeaveABrokenFile) {
    constexpr int saves = 60;
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("defaults.json"));
    NotificationCenter notifications;
    JsonFileDefaults defaults(path);
    of(1, 0).save(defaults, notifications);
    pid_t children[2];
    for (int process : {1, 2}) {
        children[process - 1] = fork();
        ASSERT_GE(children[process - 1], 0);
        if (children[process - 1] != 0)
            continue;
        for (int save = 0; save < saves; ++save)
            of(process, save).save(defaults, notifications);
        _exit(0);
    }
    int running = 2;
    int reads = 0;
    while (running > 0) {
        const Settings read = Settings::load(defaults);
        ++reads;
        const int process = int(read.soundEffectsVolume * 4);
        // Any of the records that were written, whole; never the defaults that a broken file would give.
        ASSERT_TRUE(process == 1 || process == 2);
        ASSERT_EQ(read, of(process, read.hotkey.keyCode - 1000 * process));
        while (waitpid(-1, nullptr, WNOHANG) > 0)
            --running;
    }
    EXPECT_GT(reads, 10);
    const Settings last = Settings::load(defaults);
    EXPECT_EQ(last.hotkey.keyCode % 1000, saves - 1);
}

} // namespace
} // namespace framora
