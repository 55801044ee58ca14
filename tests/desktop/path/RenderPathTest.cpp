#include "desktop/path/PathDesktop.h"
#include "support/PrintQt.h"

#include <QFile>
#include <gtest/gtest.h>

namespace framora {
namespace {

QImage pixels(const QImage& image) {
    return image.convertToFormat(QImage::Format_ARGB32);
}

class RenderPathTest : public testing::Test, protected PathDesktop {
protected:
    RenderPathTest() : PathDesktop(options({1600, 1000})) {
        m_driver.launch();
        m_driver.captureAndEdit(QRect(500, 400, 420, 280));
        QFile source(scratch("source.png"));
        if (source.open(QIODevice::WriteOnly))
            source.write(m_desktop.clipboard());
    }

    QImage rendered(const QStringList& fields) {
        QStringList arguments = {scratch("source.png"), QStringLiteral("-o"), scratch("rendered.png")};
        for (const QString& field : fields)
            arguments << QStringLiteral("--set") << field;
        ChildProcess& command =
            m_desktop.start(FramoraDriver::program(QStringLiteral("framora-render")), arguments);
        EXPECT_TRUE(command.waitForExit(60000));
        EXPECT_EQ(command.exitCode(), 0) << command.output().toStdString();
        return QImage(scratch("rendered.png"));
    }

    QImage saved() {
        m_driver.save(scratch("saved.png"));
        return QImage(scratch("saved.png"));
    }
};

TEST_F(RenderPathTest, theCommandDrawsWhatANewEditorSaves) {
    const QImage edited = saved();
    ASSERT_FALSE(edited.isNull());
    EXPECT_TRUE(pixels(rendered({})) == pixels(edited));
}

TEST_F(RenderPathTest, theCommandDrawsWhatADressedEditorSaves) {
    m_driver.showTab(QStringLiteral("Appearance"));
    m_driver.clickControl(QStringLiteral("Border"));
    m_driver.clickControl(QStringLiteral("Sharp"));
    m_driver.showTab(QStringLiteral("Background"));
    m_driver.clickControl(QStringLiteral("Gradient"));
    m_driver.clickControl(QStringLiteral("Angular"));
    // At 100 percent a pixel of the drag is a point of the picture.
    m_driver.clickControl(QStringLiteral("Actual Size"));
    const QRect canvas = m_driver.control(QStringLiteral("Preview")).area;
    const QImage before = m_driver.display().screenshot(canvas);
    m_driver.display().drag(canvas.center(), canvas.center() + QPoint(48, -20));
    ASSERT_TRUE(VirtualDesktop::waitFor([&] { return m_driver.display().screenshot(canvas) != before; }));

    const QImage edited = saved();
    ASSERT_FALSE(edited.isNull());
    const QStringList fields = {QStringLiteral("mockupStyle=border"),
                                QStringLiteral("borderStyle=sharp"),
                                QStringLiteral("borderRadius=0"),
                                QStringLiteral("backgroundType=gradient"),
                                QStringLiteral("gradientConfig.style=angular"),
                                QStringLiteral("screenshotOffset=48,-20")};
    EXPECT_TRUE(pixels(rendered(fields)) == pixels(edited));
    EXPECT_FALSE(pixels(rendered({})) == pixels(edited)) << "the dress shows";
}

} // namespace
} // namespace framora
