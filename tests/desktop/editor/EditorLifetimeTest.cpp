#include "desktop/editor/EditorDesktop.h"

#include <QDir>
#include <algorithm>

namespace framora {
namespace {

class EditorLifetime : public EditorDesktop {
protected:
    struct Figures {
        qint64 kilobytes;
        int descriptors;
        int threads;
        int windows;
    };
    void cycle() {
        close();
        reopen();
    }
    void close() { ask(QStringLiteral("close"), QStringLiteral("closed")); }
    void reopen() {
        const int before = lineCount(QStringLiteral("background"));
        ask(QStringLiteral("open ") + picturePath, QStringLiteral("first-frame"));
        EXPECT_TRUE(
            VirtualDesktop::waitFor([&] { return lineCount(QStringLiteral("background")) > before; }));
    }
    /// With no editor open: what one holds for its work comes and goes by megabytes. Opens one again.
    Figures figures() {
        close();
        EXPECT_TRUE(VirtualDesktop::waitFor(
            [&] { return ask(QStringLiteral("count"), QStringLiteral("windows")) == QStringLiteral("0"); }));
        // What a window gives back when it has gone is given back by the next answer.
        ask(QStringLiteral("count"), QStringLiteral("windows"));
        const Figures read = readFigures();
        reopen();
        return read;
    }
    Figures readFigures() {
        const auto threads = QDir(QStringLiteral("/proc/%1/task").arg(host->pid()))
                                 .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                                 .size();
        return {host->residentKilobytes(), host->openDescriptors(), int(threads), display().windowCount()};
    }
};

TEST_F(EditorLifetime, AHundredOpeningsLeaveNothingBehind) {
    open();
    // The heap takes some tens of openings to find its size.
    for (int i = 0; i < 60; ++i)
        cycle();
    const Figures before = figures();
    for (int i = 0; i < 50; ++i)
        cycle();
    const qint64 between = figures().kilobytes;
    for (int i = 0; i < 50; ++i)
        cycle();
    const Figures after = figures();
    RecordProperty("kilobytes_before", int(before.kilobytes));
    RecordProperty("kilobytes_after", int(after.kilobytes));
    std::printf(
        "resident %lld KB before, %lld KB after; descriptors %d, %d; threads %d, %d; windows %d, %d\n",
        static_cast<long long>(before.kilobytes), static_cast<long long>(after.kilobytes), before.descriptors,
        after.descriptors, before.threads, after.threads, before.windows, after.windows);
    // 5 % in a hundred openings. What is left behind grows in both halves by its part; a free block of some
    // megabytes that the heap now holds and now does not is a step in one of them.
    const qint64 growth = std::min(between - before.kilobytes, after.kilobytes - between);
    EXPECT_LE(double(growth), double(before.kilobytes) * 0.025) << between << " KB between";
    EXPECT_LE(after.descriptors, before.descriptors);
    EXPECT_LE(after.threads, before.threads);
    EXPECT_EQ(after.windows, before.windows);
    ask(QStringLiteral("close"), QStringLiteral("closed"));
    EXPECT_EQ(ask(QStringLiteral("count"), QStringLiteral("windows")), QStringLiteral("0"));
}

} // namespace
} // namespace framora
