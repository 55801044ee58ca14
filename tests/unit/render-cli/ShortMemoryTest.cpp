#include "editor/render/PictureFile.h"
#include "render-cli/RenderQueue.h"
#include "unit/render/MemoryLimit.h"

#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <QProcess>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they take more than all memory

namespace framora {
namespace {

/// The command where memory is short, in a folder of its own.
class ShortMemory : public testing::Test {
protected:
    static constexpr int mebibyte = 1024; ///< In the shell's unit.

    void SetUp() override {
        ASSERT_TRUE(m_folder.isValid());
        m_least = leastToStart();
    }

    struct Outcome {
        bool hasExited = false;
        int status = -1;
        QByteArray errors;
    };

    /// Runs it with so many kilobytes of addresses.
    Outcome run(int kilobytes, const QStringList& words) {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start("bash", QStringList{"-c", R"(ulimit -v "$0"; exec "$@")", QString::number(kilobytes),
                                          FRAMORA_RENDER} +
                                  words);
        EXPECT_TRUE(process.waitForFinished(30'000)) << kilobytes << " KB: it hangs";
        return {process.exitStatus() == QProcess::NormalExit, process.exitCode(),
                process.readAllStandardError()};
    }

    /// The least that libraries and program take by themselves.
    int leastToStart() {
        int kilobytes = 32 * mebibyte;
        while (kilobytes < 1024 * mebibyte && run(kilobytes, {"--version"}).status != 0)
            kilobytes += 8 * mebibyte;
        return kilobytes;
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    void write(const QString& name, const QImage& image, const char* format, bool inScans = false) {
        QImageWriter writer(path(name), format);
        writer.setProgressiveScanWrite(inScans);
        ASSERT_TRUE(writer.write(image)) << format;
    }

    /// A small file that takes 200 MB.
    void writeLarge() {
        QImage large(10'000, 5'000, QImage::Format_ARGB32_Premultiplied);
        large.fill(Qt::red);
        ASSERT_TRUE(writeFileAtomically(path("large.png"), encodePng(large, 72)).isEmpty());
    }

    static QImage picture(int width, int height, QImage::Format format = QImage::Format_RGB32) {
        QImage image(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y) {
            auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < width; ++x)
                row[x] = qRgb(x * 7 % 256, y * 5 % 256, (x * y >> 4) % 256);
        }
        return image.convertToFormat(format);
    }

    QTemporaryDir m_folder;
    int m_least = 0;
};

TEST_F(ShortMemory, IsAnErrorOfItsOwnForEveryFormatAndNeverTheEnd) {
    const struct {
        const char* name;
        const char* format;
        QImage::Format pixels = QImage::Format_RGB32;
        bool inScans = false;
    } files[] = {{"plain.png", "png"},
                 {"grey.png", "png", QImage::Format_Grayscale8},
                 {"scans.jpg", "jpg", QImage::Format_RGB32, true},
                 {"a.webp", "webp"},
                 {"a.tiff", "tiff"},
                 {"a.bmp", "bmp"}};
    for (const auto& [name, format, pixels, inScans] : files) {
        SCOPED_TRACE(name);
        write(name, picture(2400, 1000, pixels), format, inScans);
        int drawn = 0;
        int refused = 0;
        for (int kilobytes = m_least; kilobytes < m_least + 100 * mebibyte && drawn < 3;
             kilobytes += 3 * mebibyte) {
            // A small output: the picture is what takes the memory.
            const Outcome outcome = run(kilobytes, {name, "-o", "out.png", "--pixel-ratio", "16", "--set",
                                                    "backgroundType=color", "--set", "padding=0"});
            ASSERT_TRUE(outcome.hasExited) << kilobytes << " KB";
            ASSERT_LE(outcome.status, 1) << kilobytes << " KB: " << outcome.errors.constData();
            ASSERT_EQ(outcome.errors.count('\n'), outcome.status) << outcome.errors.constData();
            ASSERT_EQ(outcome.errors.contains(": not enough memory for the "), outcome.status == 1)
                << kilobytes << " KB: " << outcome.errors.constData();
            ++(outcome.status == 0 ? drawn : refused);
        }
        EXPECT_GT(drawn, 0);
        EXPECT_GT(refused, 0);
    }
}

TEST_F(ShortMemory, OfManyTheOthersAreWritten) {
    writeLarge();
    QStringList words{"large.png", "--jobs", "2", "--output-dir", "d"};
    for (int i = 0; i < 6; ++i) {
        words << QStringLiteral("%1.png").arg(i);
        write(words.last(), picture(60, 40), "png");
    }
    const Outcome outcome = run(m_least + 150 * mebibyte, words);
    ASSERT_TRUE(outcome.hasExited);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "framora-render: large.png: not enough memory for the picture\n");
    EXPECT_EQ(QDir(path("d")).entryList(QDir::Files | QDir::Hidden).size(), 6);
}

TEST_F(ShortMemory, ForTheBackgroundIsSaidToo) {
    writeLarge();
    write("small.png", picture(60, 40), "png");
    const Outcome outcome = run(m_least + 150 * mebibyte,
                                {"small.png", "-o", "out.png", "--set", "backgroundImageURL=large.png"});
    ASSERT_TRUE(outcome.hasExited);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.constData();
    EXPECT_TRUE(outcome.errors.contains("large.png': not enough memory for the picture"))
        << outcome.errors.constData();
    EXPECT_FALSE(QFile::exists(path("out.png")));
}

TEST(ShortMemoryDeathTest, WithoutRoomForThreadsTheJobsAreDoneByThoseThatThereAre) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto work = [] {
        limitMemoryTo(rlim_t(2) << 20); // less than a thread's stack
        std::atomic<int> runs = 0;
        const int failed = RenderQueue(8).run(
            20,
            [&runs](int) {
                ++runs;
                return QString();
            },
            [](int, const QString&) {}, [] { return false; });
        std::_Exit(failed == 0 && runs == 20 ? 0 : 1);
    };
    EXPECT_EXIT(work(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace framora

#endif
