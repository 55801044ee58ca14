#include "desktop/support/DisplayWithoutExtension.h"

#include "desktop/support/VirtualDesktop.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstring>

namespace framora {
namespace {

QByteArray request(unsigned char opcode, const QByteArray& body) {
    const auto words = quint16((4 + body.size() + 3) / 4);
    QByteArray bytes(words * 4, '\0');
    bytes[0] = char(opcode);
    std::memcpy(bytes.data() + 2, &words, sizeof words);
    std::memcpy(bytes.data() + 4, body.constData(), std::size_t(body.size()));
    return bytes;
}

QByteArray question(const QByteArray& extension) {
    QByteArray body(4, '\0');
    body[0] = char(extension.size());
    return request(98, body + extension);
}

const QByteArray greeting = QByteArray("l\0\x0b\0\0\0\0\0\0\0\0\0", 12);

TEST(ExtensionHiderTest, changesTheQuestionWhereverItsBytesAreSplit) {
    const QByteArray sent = greeting + question("MIT-SHM") + question("XInputExtension") + question("XTEST");
    const QByteArray wanted =
        greeting + question("MIT-SHM") + question("-InputExtension") + question("XTEST");
    for (qsizetype split = 0; split <= sent.size(); ++split) {
        ExtensionHider hider("XInputExtension");
        const QByteArray first = hider.passed(sent.left(split));
        EXPECT_EQ(first + hider.passed(sent.mid(split)), wanted) << split;
    }
}

TEST(ExtensionHiderTest, leavesTheNameAloneInEveryOtherRequest) {
    ExtensionHider hider("XInputExtension");
    const QByteArray atom = request(16, QByteArray("\x0f\0\0\0", 4) + "XInputExtension");
    EXPECT_EQ(hider.passed(greeting + atom), greeting + atom);
}

TEST(ExtensionHiderTest, keepsNothingOfAWholeRequestBack) {
    ExtensionHider hider("XInputExtension");
    const QByteArray endsLikeTheName = request(16, "XXXX");
    EXPECT_EQ(hider.passed(greeting + endsLikeTheName), greeting + endsLikeTheName);
}

TEST(DisplayWithoutExtensionTest, isTheSameScreenWithOneExtensionLess) {
    DesktopOptions options;
    options.windowManager = WindowManager::none;
    options.sessionBus = false;
    VirtualDesktop desktop(options);
    const auto has = [](const QString& display, const char* name) {
        xcb_connection_t* connection = xcb_connect(qPrintable(display), nullptr);
        EXPECT_EQ(xcb_connection_has_error(connection), 0);
        auto* reply = xcb_query_extension_reply(
            connection, xcb_query_extension(connection, std::uint16_t(std::strlen(name)), name), nullptr);
        const bool present = reply && reply->present;
        free(reply);
        xcb_disconnect(connection);
        return present;
    };
    const DisplayWithoutExtension poor(desktop.displayName(), "XInputExtension");
    EXPECT_TRUE(has(desktop.displayName(), "XInputExtension"));
    EXPECT_FALSE(has(poor.displayName(), "XInputExtension"));
    EXPECT_TRUE(has(poor.displayName(), "XTEST"));
    DisplayWithoutExtension second(desktop.displayName(), "XInputExtension");
    EXPECT_NE(second.displayName(), poor.displayName());
    DesktopDisplay screen(poor.displayName());
    screen.moveTo({321, 123});
    EXPECT_EQ(desktop.display().pointerPosition(), QPoint(321, 123));
}

} // namespace
} // namespace framora
