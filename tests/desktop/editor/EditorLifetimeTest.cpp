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
        ask(QStringLiteral("close"), QStringLiteral("closed"));
        const int before = lineCount(QStringLiteral("background"));
        ask(QStringLiteral("open ") + picturePath, QStringLiteral("first-frame"));
        EXPECT_TRUE(
            VirtualDesktop::waitFor([&] { return lineCount(QStringLiteral("background")) > before; }));
    }
    Figures figures() {
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
    for (int i = 0; i < 100; ++i)
        cycle();
    const Figures after = figures();
    RecordProperty("kilobytes_before", int(before.kilobytes));
    RecordProperty("kilobytes_after", int(after.kilobytes));
    std::printf(
        "resident %lld KB before, %lld KB after; descriptors %d, %d; threads %d, %d; windows %d, %d\n",
        static_cast<long long>(before.kilobytes), static_cast<long long>(after.kilobytes), before.descriptors,
        after.descriptors, before.threads, after.threads, before.windows, after.windows);
    EXPECT_LE(double(after.kilobytes), double(before.kilobytes) * 1.05);
    EXPECT_LE(after.descriptors, before.descriptors);
    EXPECT_LE(after.threads, before.threads);
    EXPECT_EQ(after.windows, before.windows);
    ask(QStringLiteral("close"), QStringLiteral("closed"));
    EXPECT_EQ(ask(QStringLiteral("count"), QStringLiteral("windows")), QStringLiteral("0"));
}

} // namespace
} // namespace framora
