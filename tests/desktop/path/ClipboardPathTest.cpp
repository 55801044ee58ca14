#include "desktop/path/PathDesktop.h"
#include "support/PrintQt.h"

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

namespace framora {
namespace {

QByteArray pngOf(const QImage& image) {
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return png;
}

QImage pixels(const QImage& image) {
    return image.convertToFormat(QImage::Format_ARGB32);
}

/// Stands where a sound server would and counts who comes.
class SoundServerCounter {
public:
    explicit SoundServerCounter(VirtualDesktop& desktop) {
        const QString folder = desktop.runtimePath() + QStringLiteral("/pulse");
        QDir().mkpath(folder);
        const QString path = folder + QStringLiteral("/native");
        EXPECT_TRUE(m_server.listen(path)) << m_server.errorString().toStdString();
        desktop.setEnvironmentVariable(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:") + path);
        QObject::connect(&m_server, &QLocalServer::newConnection, [this] {
            ++m_visits;
            delete m_server.nextPendingConnection();
        });
    }
    int visits() const { return m_visits; }

private:
    QLocalServer m_server;
    int m_visits = 0;
};

class ClipboardPathTest : public testing::Test, protected PathDesktop {
protected:
    /// Starts Framora, captures, and copies out of the editor, which closes with it: what was copied.
    QImage copyFromTheEditor() {
        m_driver.launch();
        const QRect area(200, 200, 300, 200);
        m_driver.captureAndEdit(area);
        m_driver.clickControl(QStringLiteral("Copy to Clipboard"));
        m_driver.waitForNoEditor();
        // Until Copy the clipboard holds the bare capture.
        QImage copied;
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            copied = m_desktop.clipboardImage();
            return copied.width() > area.width();
        }));
        return copied;
    }

    void quit() {
        m_driver.framora().process().terminate();
        EXPECT_TRUE(VirtualDesktop::waitFor([&] { return !m_driver.framora().isRunning(); }));
    }
};

TEST_F(ClipboardPathTest, copyOffersPixelForPixelWhatSaveWrites) {
    m_driver.launch();
    m_driver.captureAndEdit(QRect(200, 200, 360, 240));
    m_driver.showTab(QStringLiteral("Appearance"));
    m_driver.clickControl(QStringLiteral("Border"));
    const QString path = scratch("saved.png");
    m_driver.save(path);
    const QImage saved(path);
    ASSERT_FALSE(saved.isNull());

    const QImage captured = m_desktop.clipboardImage();
    EXPECT_EQ(captured.size(), QSize(360, 240)) << "until Copy the clipboard holds the capture";
    m_driver.clickControl(QStringLiteral("Copy to Clipboard"));
    m_driver.waitForNoEditor();
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return m_desktop.clipboardImage().size() == saved.size(); }));
    const QImage copied = m_desktop.clipboardImage();
    EXPECT_EQ(pixels(copied), pixels(saved));
    EXPECT_EQ(copied.dotsPerMeterX(), saved.dotsPerMeterX());

    m_driver.waitForToast();
    m_driver.waitForNoToast();
    EXPECT_TRUE(pixels(m_desktop.clipboardImage()) == pixels(saved)) << "also when the editor is gone";
}

TEST_F(ClipboardPathTest, aClipboardManagerKeepsTheCopyWhenFramoraQuits) {
    m_desktop.start(QStringLiteral("xfce4-clipman"));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return display().selectionIsOwned("CLIPBOARD_MANAGER"); }));
    const QImage copied = copyFromTheEditor();
    quit();
    EXPECT_TRUE(
        VirtualDesktop::waitFor([&] { return pixels(m_desktop.clipboardImage()) == pixels(copied); }));
}

TEST_F(ClipboardPathTest, theCopyStaysWhenFramoraQuitsWithoutAClipboardManager) {
    const QImage copied = copyFromTheEditor();
    quit();
    EXPECT_TRUE(pixels(m_desktop.clipboardImage()) == pixels(copied));
}

TEST_F(ClipboardPathTest, escapeLeavesEverythingAsItWas) {
    SoundServerCounter sound(m_desktop);
    QImage earlier(9, 7, QImage::Format_RGB32);
    earlier.fill(QColor(20, 160, 90));
    m_desktop.setClipboard(pngOf(earlier), QStringLiteral("image/png"));
    m_driver.launch();

    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    display().moveTo({300, 300});
    display().press();
    display().moveTo({500, 400});
    display().key({"Escape"});
    display().release();
    m_driver.waitForNoOverlay();
    // A toast would come within moments of the tool's end.
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.toast().has_value(); }, 700));
    EXPECT_EQ(sound.visits(), 0);
    EXPECT_TRUE(pixels(m_desktop.clipboardImage()) == pixels(earlier));

    // The same eyes and ears do notice a capture that succeeds.
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    m_driver.selectArea(QRect(300, 300, 100, 80));
    m_driver.waitForToast();
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return sound.visits() > 0; }));
}

TEST_F(ClipboardPathTest, whatFramoraCopiedCanBePastedWhileACaptureIsOnScreen) {
    const QImage copied = copyFromTheEditor();
    m_driver.waitForToast();
    m_driver.waitForNoToast();

    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    EXPECT_TRUE(pixels(m_desktop.clipboardImage()) == pixels(copied));
    EXPECT_TRUE(m_driver.overlay());
    display().key({"Escape"});
    m_driver.waitForNoOverlay();
}

TEST_F(ClipboardPathTest, aToolThatIsKilledLeavesNothingOnScreen) {
    QImage earlier(9, 7, QImage::Format_RGB32);
    earlier.fill(Qt::red);
    m_desktop.setClipboard(pngOf(earlier), QStringLiteral("image/png"));
    m_driver.launch();
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    for (const qint64 tool : m_driver.captureTools())
        m_desktop.run(QStringLiteral("kill"), {QStringLiteral("-KILL"), QString::number(tool)});
    m_driver.waitForNoOverlay();
    EXPECT_FALSE(VirtualDesktop::waitFor([&] { return m_driver.toast().has_value(); }, 500));
    EXPECT_TRUE(pixels(m_desktop.clipboardImage()) == pixels(earlier));
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    display().key({"Escape"});
    m_driver.waitForNoOverlay();
}

TEST_F(ClipboardPathTest, aPictureThatTheToolCannotOfferIsOfferedByTheProgram) {
    m_driver.launch();
    m_driver.pressAreaShortcut();
    m_driver.waitForOverlay();
    // The server takes nobody else: what the tool would leave behind cannot reach it.
    std::vector<xcb_connection_t*> others;
    do
        others.push_back(xcb_connect(m_desktop.displayName().toUtf8().constData(), nullptr));
    while (!xcb_connection_has_error(others.back()));
    const std::uint32_t before = display().selectionOwner("CLIPBOARD");
    m_driver.selectArea(QRect(300, 300, 120, 80));
    EXPECT_TRUE(VirtualDesktop::waitFor([&] { return display().selectionOwner("CLIPBOARD") != before; }));
    for (xcb_connection_t* each : others)
        xcb_disconnect(each);
    EXPECT_EQ(m_desktop.clipboardImage().size(), QSize(120, 80));
    // Nor was there a place for its toast's connection; the next has one.
    m_driver.capture(QRect(200, 200, 300, 200));
}

TEST_F(ClipboardPathTest, aToolThatCannotBeLaunchedIsTold) {
    // A Framora that was moved without its tool.
    const QString moved = scratch("framora");
    ASSERT_TRUE(QFile::copy(FramoraDriver::program(QStringLiteral("framora")), moved));
    QImage earlier(9, 7, QImage::Format_RGB32);
    earlier.fill(Qt::blue);
    m_desktop.setClipboard(pngOf(earlier), QStringLiteral("image/png"));
    ChildProcess& framora = m_desktop.start(moved);
    QElapsedTimer sincePress;
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        if (!sincePress.isValid() || sincePress.elapsed() > 500) {
            m_driver.pressAreaShortcut();
            sincePress.start();
        }
        return m_driver.toast().has_value();
    }));
    EXPECT_TRUE(display().inputArea(m_driver.waitForToast().id).isEmpty())
        << "the plain toast lets clicks through";
    EXPECT_TRUE(framora.isRunning());
    EXPECT_TRUE(pixels(m_desktop.clipboardImage()) == pixels(earlier));
}

} // namespace
} // namespace framora
