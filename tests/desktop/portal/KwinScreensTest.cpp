#include "screencapture/portal/KwinScreens.h"

#include "desktop/support/VirtualDesktop.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QImage>
#include <QThread>
#include <gtest/gtest.h>
#include <unistd.h>

namespace framora {
namespace {

constexpr int width = 64;
constexpr int height = 48;
constexpr std::uint32_t color = 0xFF336699;

/// KWin's screenshots on a bus of the test's own. Outputs give one colour, are refused, or never answer, by
/// their names.
class KwinOnBus final : public QDBusVirtualObject {
public:
    explicit KwinOnBus(const QString& address)
        : m_bus(QDBusConnection::connectToBus(address, QStringLiteral("kwin"))) {
        moveToThread(&m_thread);
        if (!m_bus.registerVirtualObject(QStringLiteral("/org/kde/KWin/ScreenShot2"), this) ||
            !m_bus.registerService(QStringLiteral("org.kde.KWin.ScreenShot2")))
            throw std::runtime_error("KWin's double cannot get onto the bus");
        // The test's own thread waits for the answers.
        m_thread.start();
    }
    ~KwinOnBus() override {
        m_thread.quit();
        m_thread.wait();
        QDBusConnection::disconnectFromBus(QStringLiteral("kwin"));
    }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        const QString output = call.arguments().first().toString();
        if (output == u"off") {
            m_unanswered = call;
            return true;
        }
        if (output == u"refused") {
            bus.send(call.createErrorReply(QStringLiteral("org.kde.KWin.ScreenShot2.Error.InvalidScreen"),
                                           QStringLiteral("none")));
            return true;
        }
        bus.send(call.createReply(QVariantMap{
            {QStringLiteral("width"), uint(width)},
            {QStringLiteral("height"), uint(height)},
            {QStringLiteral("stride"), uint(width * 4)},
            {QStringLiteral("format"), uint(QImage::Format_ARGB32_Premultiplied)},
            {QStringLiteral("scale"), 1.0},
        }));
        const std::vector<std::uint32_t> pixels(std::size_t(width) * height, color);
        const int pipe = call.arguments().last().value<QDBusUnixFileDescriptor>().fileDescriptor();
        const std::size_t bytes = pixels.size() * sizeof(pixels[0]);
        EXPECT_EQ(write(pipe, pixels.data(), bytes), ssize_t(bytes));
        return true;
    }

private:
    QThread m_thread;
    QDBusConnection m_bus;
    QDBusMessage m_unanswered; ///< Its pipe stays open.
};

class KwinScreensTest : public testing::Test {
protected:
    KwinScreensTest() { qputenv("DBUS_SESSION_BUS_ADDRESS", desktop.busAddress().toLocal8Bit()); }
    ~KwinScreensTest() override {
        if (m_before.isNull())
            qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        else
            qputenv("DBUS_SESSION_BUS_ADDRESS", m_before);
    }

    /// The first pixel of every output of these names; empty when there are no pictures.
    static std::vector<std::uint32_t> frozen(const std::vector<std::string>& names) {
        std::vector<Output> outputs;
        for (const std::string& name : names) {
            Output output;
            output.name = name;
            output.pixelWidth = width;
            output.pixelHeight = height;
            outputs.push_back(output);
        }
        std::vector<std::uint32_t> pixels;
        for (const auto& image : KwinScreens().freeze(outputs)) {
            EXPECT_EQ(image->width(), width);
            EXPECT_EQ(image->height(), height);
            pixels.push_back(image->row(height - 1)[width - 1]);
        }
        return pixels;
    }

    VirtualDesktop desktop;
    KwinOnBus kwin{desktop.busAddress()};

private:
    QByteArray m_before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
};

TEST_F(KwinScreensTest, everyOutputGivesItsPicture) {
    EXPECT_EQ(frozen({"one", "two", "three"}), (std::vector<std::uint32_t>{color, color, color}));
}

TEST_F(KwinScreensTest, anOutputThatIsSwitchedOffShowsBlackBesideTheOthers) {
    EXPECT_EQ(frozen({"one", "off", "two"}), (std::vector<std::uint32_t>{color, 0, color}));
    EXPECT_EQ(frozen({"refused", "one"}), (std::vector<std::uint32_t>{0, color}));
}

TEST_F(KwinScreensTest, withoutAnyPictureThereIsNone) {
    EXPECT_EQ(frozen({"refused", "refused"}), std::vector<std::uint32_t>());
    EXPECT_EQ(frozen({"off"}), std::vector<std::uint32_t>());
}

} // namespace
} // namespace framora
