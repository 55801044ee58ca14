#include "desktop/path/FramoraDriver.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The program from an installed tree that stands somewhere else than where it was meant to be.
class InstalledTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        tree = std::make_unique<QTemporaryDir>();
        QProcess install;
        install.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        install.start(QStringLiteral("cmake"),
                      {QStringLiteral("--install"), QStringLiteral(FRAMORA_BUILD_FOLDER),
                       QStringLiteral("--prefix"), tree->path()});
        ASSERT_TRUE(install.waitForFinished(60000));
        ASSERT_EQ(install.exitCode(), 0);
    }
    static void TearDownTestSuite() { tree.reset(); }

    enum Folder { programs, executables, libraries, data };
    static QString path(Folder folder, const QString& file) {
        const QStringList folders = QStringLiteral(FRAMORA_INSTALL_FOLDERS).split(u':');
        return QFileInfo(QDir(tree->path()).filePath(folders[folder] + u'/' + file)).canonicalFilePath();
    }
    static QString module() { return path(libraries, QStringLiteral("framora/framora-windows.so")); }

    DesktopDisplay& display() { return desktop.display(); }

    /// Takes a picture of that size; gives the toast's card.
    QRect capture(QSize size) {
        EXPECT_TRUE(VirtualDesktop::waitFor([&] {
            driver.pressAreaShortcut();
            return VirtualDesktop::waitFor([&] { return driver.overlay().has_value(); }, 500);
        }));
        for (const qint64 child : framora->children())
            tools << QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(child));
        display().drag({200, 200}, {200 + size.width(), 200 + size.height()});
        driver.waitForNoOverlay();
        return driver.waitForInteractiveToast();
    }
    bool hasLoaded(const QString& file) {
        QFile maps(QStringLiteral("/proc/%1/maps").arg(framora->pid()));
        return !file.isEmpty() && maps.open(QIODevice::ReadOnly) &&
               maps.readAll().contains(QFile::encodeName(file));
    }

    static std::unique_ptr<QTemporaryDir> tree;
    VirtualDesktop desktop;
    FramoraDriver driver{desktop};
    ChildProcess* framora = nullptr;
    QStringList tools;
};

std::unique_ptr<QTemporaryDir> InstalledTest::tree;

TEST_F(InstalledTest, everyPartIsThere) {
    for (const char* name : {"framora", "framora-render"})
        EXPECT_TRUE(QFileInfo(path(programs, QString::fromLatin1(name))).isExecutable()) << name;
    for (const char* name : {"framora-screencapture", "framora-clipboard"})
        EXPECT_TRUE(QFileInfo(path(executables, QStringLiteral("framora/") + QString::fromLatin1(name)))
                        .isExecutable())
            << name;
    for (const char* name : {"framora-windows.so", "framora-sound.so", "framora-portals.so"})
        EXPECT_FALSE(path(libraries, QStringLiteral("framora/") + QString::fromLatin1(name)).isEmpty())
            << name;
    for (const char* name : {"framora/public/Black and White Gradient Macbook Wallpaper_Texture.png",
                             "applications/org.framora.Framora.desktop",
                             "applications/org.framora.Framora.ScreenCapture.desktop",
                             "dbus-1/services/org.framora.Framora.service",
                             "icons/hicolor/scalable/apps/org.framora.Framora.svg"})
        EXPECT_FALSE(path(data, QString::fromLatin1(name)).isEmpty()) << name;
}

TEST_F(InstalledTest, noPartLooksForLibrariesBesideTheSystems) {
    const QStringList parts{path(programs, QStringLiteral("framora")),
                            path(programs, QStringLiteral("framora-render")),
                            path(executables, QStringLiteral("framora/framora-screencapture")), module(),
                            // An empty entry would be the working folder.
                            QStringLiteral(FRAMORA_BUILD_FOLDER "/bin/framora"),
                            QStringLiteral(FRAMORA_BUILD_FOLDER "/bin/framora-windows.so")};
    for (const QString& part : parts) {
        const QByteArray header = desktop.run(QStringLiteral("readelf"), {QStringLiteral("-d"), part});
        EXPECT_TRUE(header.contains("NEEDED")) << part.toStdString();
        EXPECT_FALSE(header.contains("RUNPATH") || header.contains("RPATH")) << header.toStdString();
    }
}

TEST_F(InstalledTest, aCaptureAndTheEditorRunFromTheTreeAlone) {
    framora = &desktop.start(path(programs, QStringLiteral("framora")));
    const QRect card = capture({120, 80});
    EXPECT_TRUE(tools.contains(path(executables, QStringLiteral("framora/framora-screencapture"))))
        << tools.join(u' ').toStdString();
    EXPECT_EQ(desktop.clipboardImage().size(), QSize(120, 80));
    EXPECT_TRUE(hasLoaded(path(libraries, QStringLiteral("framora/framora-sound.so"))));
    display().click(card.center());
    driver.waitForEditor();
    EXPECT_TRUE(hasLoaded(module()));
    EXPECT_FALSE(hasLoaded(QStringLiteral(FRAMORA_BUILD_FOLDER)));
}

TEST_F(InstalledTest, theCommandStartsFromTheTreesTexture) {
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString input = desktop.scratchPath() + QStringLiteral("/in.png");
    ASSERT_TRUE(picture.save(input));
    const auto render = [&](const QStringList& more) {
        const QByteArray png =
            desktop.run(path(programs, QStringLiteral("framora-render")),
                        QStringList{input, QStringLiteral("-o"), QStringLiteral("-")} + more);
        return QImage::fromData(png);
    };
    const QImage plain = render({});
    ASSERT_FALSE(plain.isNull());
    const QString texture =
        path(data, QStringLiteral("framora/public/Black and White Gradient Macbook Wallpaper_Texture.png"));
    EXPECT_EQ(plain, render({QStringLiteral("--set"), QStringLiteral("backgroundImageURL=") + texture}));
    EXPECT_NE(plain, render({QStringLiteral("--set"), QStringLiteral("backgroundImageURL=none")}));
}

TEST_F(InstalledTest, aMissingEditorIsToldByAToast) {
    const QString editor = module();
    ASSERT_TRUE(QFile::rename(editor, editor + QStringLiteral(".away")));
    framora = &desktop.start(path(programs, QStringLiteral("framora")));
    const QRect card = capture({120, 80});
    const auto interactive = driver.toast();
    ASSERT_TRUE(interactive);
    display().click(card.center());
    // A plain toast takes no click.
    EXPECT_TRUE(VirtualDesktop::waitFor([&] {
        const auto toast = driver.toast();
        return toast && toast->id != interactive->id && display().inputArea(toast->id).isEmpty();
    }));
    EXPECT_FALSE(driver.editor());
    EXPECT_TRUE(framora->isRunning());

    // It is looked for anew with the next picture.
    ASSERT_TRUE(QFile::rename(editor + QStringLiteral(".away"), editor));
    driver.waitForNoToast();
    display().click(capture({100, 60}).center());
    driver.waitForEditor();
}

} // namespace
} // namespace framora
