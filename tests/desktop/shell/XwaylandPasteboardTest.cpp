#include "platform/wayland/XwaylandPasteboard.h"
#include "desktop/support/VirtualDesktop.h"
#include "support/ManualMainQueue.h"

#include <QBuffer>
#include <gtest/gtest.h>

namespace framora {
namespace {

QByteArray somePng() {
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return png;
}

/// The program's clipboard on a desktop whose X server comes later.
class XwaylandPasteboardTest : public testing::Test {
protected:
    XwaylandPasteboardTest() { qputenv("DISPLAY", desktop.displayName().toLocal8Bit()); }
    ~XwaylandPasteboardTest() override {
        pasteboard.reset();
        // Whoever serves the clipboard ends when somebody else has it.
        desktop.setClipboard("end", QStringLiteral("text/plain"));
        if (before.isNull())
            qunsetenv("DISPLAY");
        else
            qputenv("DISPLAY", before);
        EXPECT_EQ(desktop.leftovers(), QStringList());
    }

    const QByteArray before = qgetenv("DISPLAY");
    VirtualDesktop desktop;
    ManualMainQueue queue;
    bool hasServer = false;
    int attempts = 0;
    std::unique_ptr<XwaylandPasteboard> pasteboard = std::make_unique<XwaylandPasteboard>(
        queue, [](const QByteArray& file) { return QImage::fromData(file); },
        [this]() -> std::unique_ptr<X11Connection> {
            ++attempts;
            return hasServer ? std::make_unique<X11Connection>() : nullptr;
        });
};

TEST_F(XwaylandPasteboardTest, aPictureThatWaitedIsHandedToTheServerThatComes) {
    const auto count = pasteboard->changeCount();
    pasteboard->adoptPicture(somePng());
    const auto adopted = pasteboard->changeCount();
    EXPECT_GT(adopted, count);
    hasServer = true;
    queue.advance(20);
    EXPECT_GE(pasteboard->changeCount(), adopted);
    EXPECT_EQ(pasteboard->readImage().size(), QSize(40, 30));
    EXPECT_EQ(desktop.clipboard(), somePng());
}

TEST_F(XwaylandPasteboardTest, aPictureThatWaitedTooLongReplacesNothing) {
    desktop.setClipboard("words", QStringLiteral("text/plain"));
    pasteboard->adoptPicture(somePng());
    hasServer = true;
    queue.advance(40);
    EXPECT_TRUE(pasteboard->readImage().isNull());
    EXPECT_EQ(desktop.clipboard(QStringLiteral("text/plain")), "words");
}

TEST_F(XwaylandPasteboardTest, aServerThatIsNotThereIsCalledOnceACapture) {
    for (int i = 0; i < 3; ++i)
        pasteboard->changeCount();
    EXPECT_TRUE(pasteboard->readImage().isNull());
    EXPECT_EQ(attempts, 1);
    queue.advance(60);
    EXPECT_EQ(attempts, 1) << "nobody asks";
    pasteboard->changeCount();
    EXPECT_EQ(attempts, 2);
}

TEST_F(XwaylandPasteboardTest, aServerThatIsThereCountsAndReads) {
    hasServer = true;
    const auto count = pasteboard->changeCount();
    desktop.setClipboard(somePng(), QStringLiteral("image/png"));
    EXPECT_GT(pasteboard->changeCount(), count);
    EXPECT_EQ(pasteboard->readImage().size(), QSize(40, 30));
    EXPECT_EQ(attempts, 1);
}

} // namespace
} // namespace framora
