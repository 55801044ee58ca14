#include "render-cli/ProgressBar.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>
#include <unistd.h>

namespace framora {
namespace {

TEST(ProgressBar, ItFillsFromEmptyToFull) {
    EXPECT_EQ(ProgressBar::barText(0, 4, 80), "[" + QByteArray(40, ' ') + "] 0/4");
    EXPECT_EQ(ProgressBar::barText(1, 4, 80), "[" + QByteArray(10, '#') + QByteArray(30, ' ') + "] 1/4");
    EXPECT_EQ(ProgressBar::barText(4, 4, 80), "[" + QByteArray(40, '#') + "] 4/4");
}

TEST(ProgressBar, ItNeverFillsALineOfTheTerminal) {
    for (int columns = 1; columns < 120; ++columns)
        for (const int done : {0, 7, 1000})
            EXPECT_LT(ProgressBar::barText(done, 1000, columns).size(), std::max(columns, 1)) << columns;
}

TEST(ProgressBar, APipeGetsLinesOnly) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::FILE* out = fdopen(ends[1], "w");
    {
        ProgressBar bar(out, 2, true);
        bar.setDone(1);
        bar.writeLine("a line");
        bar.setDone(2);
    }
    std::fclose(out);
    char text[100] = {};
    EXPECT_EQ(read(ends[0], text, sizeof text - 1), 7);
    EXPECT_STREQ(text, "a line\n");
    close(ends[0]);
}

std::string shownOnATerminal(bool isWanted) {
    const int controller = posix_openpt(O_RDWR | O_NOCTTY);
    grantpt(controller);
    unlockpt(controller);
    std::FILE* terminal = std::fopen(ptsname(controller), "w");
    if (!terminal)
        return "no terminal";
    {
        ProgressBar bar(terminal, 2, isWanted);
        bar.setDone(1);
        bar.writeLine("a line");
        bar.setDone(2);
    }
    std::fclose(terminal);
    // A terminal hands over what was written piece by piece; its end is an error.
    std::string shown;
    char text[1000];
    for (ssize_t size = 0; (size = read(controller, text, sizeof text)) > 0;)
        shown.append(text, std::size_t(size));
    close(controller);
    return shown;
}

TEST(ProgressBar, ATerminalGetsABarThatGoesAgain) {
    const std::string shown = shownOnATerminal(true);
    EXPECT_NE(shown.find("] 0/2"), std::string::npos) << shown;
    EXPECT_NE(shown.find("] 2/2"), std::string::npos);
    EXPECT_NE(shown.find("\r\x1b[Ka line"), std::string::npos);
    EXPECT_EQ(shown.substr(shown.size() - 4), "\r\x1b[K");
}

TEST(ProgressBar, AQuietTerminalGetsLinesOnly) {
    EXPECT_EQ(shownOnATerminal(false), "a line\r\n");
}

} // namespace
} // namespace framora
