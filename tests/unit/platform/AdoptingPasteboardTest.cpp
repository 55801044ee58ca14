#include "platform/desktop/AdoptingPasteboard.h"
#include "support/ManualMainQueue.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

namespace framora {
namespace {

class AdoptingPasteboardTest : public testing::Test {
protected:
    AdoptingPasteboardTest() { QGuiApplication::clipboard()->setText(QStringLiteral("words")); }
    ~AdoptingPasteboardTest() override { QGuiApplication::clipboard()->clear(); }

    void focusWindow() {
        window.show();
        window.requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    static QByteArray offered() {
        return QGuiApplication::clipboard()->mimeData()->data(QStringLiteral("image/png"));
    }
    /// The file that a reading decodes; empty when there is none.
    QByteArray read() {
        decoded.clear();
        pasteboard.readImage();
        return decoded;
    }

    ManualMainQueue queue;
    QByteArray decoded;
    AdoptingPasteboard pasteboard{queue, [this](const QByteArray& file) {
                                      decoded = file;
                                      return QImage(1, 1, QImage::Format_RGB32);
                                  }};
    QWindow window;
};

TEST_F(AdoptingPasteboardTest, aPictureWaitsForTheFirstWindowAndIsReadMeanwhile) {
    pasteboard.adoptPicture("picture");
    EXPECT_EQ(pasteboard.changeCount(), 1);
    EXPECT_EQ(read(), "picture");
    EXPECT_EQ(offered(), QByteArray());
    queue.advance(29);
    focusWindow();
    EXPECT_EQ(offered(), "picture");
    EXPECT_EQ(read(), "picture");
    EXPECT_EQ(pasteboard.changeCount(), 1);
}

TEST_F(AdoptingPasteboardTest, aPictureThatWaitedTooLongReplacesNothingThatWasCopiedSince) {
    pasteboard.adoptPicture("picture");
    queue.advance(31);
    EXPECT_EQ(read(), QByteArray());
    focusWindow();
    EXPECT_EQ(offered(), QByteArray());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("words"));
}

TEST_F(AdoptingPasteboardTest, aLaterPictureWaitsForItsOwnTime) {
    pasteboard.adoptPicture("one");
    queue.advance(20);
    pasteboard.adoptPicture("two");
    queue.advance(20);
    EXPECT_EQ(read(), "two");
    focusWindow();
    EXPECT_EQ(offered(), "two");
}

TEST_F(AdoptingPasteboardTest, withTheFocusAPictureIsOfferedAtOnceAndOnlyOnce) {
    focusWindow();
    pasteboard.writePng("picture");
    EXPECT_EQ(offered(), "picture");
    QGuiApplication::clipboard()->setText(QStringLiteral("later words"));
    window.hide();
    focusWindow();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("later words"));
    EXPECT_EQ(queue.waitingCount(), 0u);
}

TEST_F(AdoptingPasteboardTest, aPictureThatIsTakenWaitsNoMore) {
    pasteboard.adoptPicture("picture");
    EXPECT_EQ(pasteboard.takeWaiting(), "picture");
    EXPECT_EQ(pasteboard.takeWaiting(), QByteArray());
    focusWindow();
    EXPECT_EQ(offered(), QByteArray());
}

} // namespace
} // namespace framora
