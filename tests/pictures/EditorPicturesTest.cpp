#include "editor/views/EditorSession.h"
#include "editor/window/ScreenshotEditorWindow.h"
#include "feedback/ToastManager.h"
#include "pictures/Drawn.h"
#include "platform/Application.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/Pasteboard.h"
#include "support/FixedAppearance.h"
#include "support/FixedDesktopPictures.h"
#include "support/FixedScreens.h"
#include "support/MemoryDefaults.h"
#include "support/RecordingColorPicker.h"
#include "support/RecordingToastPanels.h"
#include "unit/editor/ModelFixture.h"

#include <QPainter>
#include <QTest>

namespace framora {
namespace {

class NoPasteboard final : public Pasteboard {
public:
    std::int64_t changeCount() override { return 0; }
    QImage readImage() override { return {}; }
    void writePng(const QByteArray&) override {}
    void adoptPicture(const QByteArray&) override {}
};

class QuietApplication final : public Application {
public:
    void setActivationPolicy(ActivationPolicy) override {}
    void activate() override {}
    void setFrontWindow(QWindow&) override {}
    void useActivationToken(const QString&) override {}
    void terminate() override {}
};

/// A window of text lines and panes, as people take pictures of.
QImage sampleScreenshot() {
    QImage image(640, 400, QImage::Format_RGB32);
    image.fill(QColor(0xfb, 0xfb, 0xfd));
    QPainter painter(&image);
    painter.fillRect(0, 0, 640, 44, QColor(0xec, 0xed, 0xf2));
    painter.fillRect(0, 44, 160, 356, QColor(0xf3, 0xf4, 0xf8));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < 3; ++i) {
        painter.setBrush(QColor::fromHsv(i * 55, 150, 235));
        painter.drawEllipse(16 + 20 * i, 16, 12, 12);
    }
    for (int i = 0; i < 7; ++i) {
        painter.setBrush(i == 1 ? QColor(0x4c, 0x7d, 0xf0) : QColor(0xd6, 0xd9, 0xe2));
        painter.drawRoundedRect(16, 64 + 30 * i, 90 + 12 * (i % 3), 12, 4, 4);
    }
    for (int i = 0; i < 9; ++i) {
        painter.setBrush(i % 4 ? QColor(0xdf, 0xe2, 0xea) : QColor(0x9a, 0xa3, 0xb8));
        painter.drawRoundedRect(192, 72 + 32 * i, 260 + 43 * (i * 7 % 5), 12, 4, 4);
    }
    return image;
}

class EditorPictures : public ModelFixture {
public:
    static void SetUpTestSuite() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }

    EditorPictures() { addTexture(); }

    QQuickView& window() { return *editor.editorWindow(); }
    ScreenshotEditorViewModel& model() { return *editor.session()->viewModel(); }

    /// Runs `show` in a light and in a dark editor.
    void inBothAppearances(const std::function<void()>& show) {
        for (const bool dark : {false, true}) {
            appearance.dark = dark;
            appearance.reducedMotion = true;
            editor.open(sampleScreenshot());
            window().resize(windowSize);
            model().zoomToActualSize();
            settle();
            show();
            editor.close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            settle();
        }
    }
    void settle(int milliseconds = 30) {
        QTest::qWait(milliseconds);
        queue.advance(1);
    }

    QPoint centreOf(const char* name) {
        QQuickItem* found = drawn::find(window().contentItem(), QString::fromLatin1(name));
        EXPECT_TRUE(found) << name;
        return found ? found->mapToScene({found->width() / 2, found->height() / 2}).toPoint() : QPoint();
    }
    void click(const char* name) {
        QTest::mouseClick(&window(), Qt::LeftButton, {}, centreOf(name));
        settle();
    }
    void hover(const char* name, int milliseconds = 60) {
        QTest::mouseMove(&window(), centreOf(name));
        settle(milliseconds);
    }
    void key(Qt::Key which, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&window(), which, modifiers);
        settle();
    }
    /// By Tab, until the control has the keys.
    void tabTo(const char* name) {
        for (int i = 0; i < 80; ++i) {
            QTest::keyClick(&window(), Qt::Key_Tab);
            if (window().activeFocusItem() && window().activeFocusItem()->objectName() == QLatin1String(name))
                return settle();
        }
        FAIL() << name << " is out of Tab's reach";
    }
    void leaveControls() {
        QTest::mouseMove(&window(), QPoint(700, windowSize.height() - 10));
        settle();
    }

    void save(const char* name) {
        settle();
        drawn::save(window(), folder, QLatin1String(name), windowSize, appearance.dark);
    }

    drawn::Complaints complaints;
    QSize windowSize{1200, 800};
    NotificationCenter notifications;
    NoPasteboard pasteboard;
    QuietApplication application;
    FixedAppearance appearance;
    FixedScreens screens;
    RecordingToastPanels toastPanels{queue};
    FixedDesktopPictures desktopPictures;
    RecordingColorPicker colorPicker{queue};
    MemoryDefaults defaults;
    ScreenshotEditorWindow editor{ScreenshotEditorWindow::Services{
        queue, queue, panels, resources, notifications, pasteboard, application, appearance,
        [this] {
            return std::make_unique<ToastManager>(ToastServices{queue, toastPanels, screens, appearance});
        },
        background, desktopPictures, nullptr, &colorPicker, &defaults}};
    QDir folder = drawn::folder(QStringLiteral("editor"));
};

TEST_F(EditorPictures, OfTheAppearanceTab) {
    inBothAppearances([this] {
        click("tabs.0");
        leaveControls();
        save("appearance");
        click("mockupStyle.glassEffect");
        model().set(QStringLiteral("rotationX"), 14);
        model().set(QStringLiteral("rotationY"), -21);
        model().set(QStringLiteral("scale"), 0.8);
        model().set(QStringLiteral("rotation"), 90);
        leaveControls();
        save("appearance-glass-changed");
        click("mockupStyle.border");
        hover("borderRadius.slider");
        save("appearance-border-hovered-slider");
        click("mockupBorderSize.text");
        leaveControls();
        save("appearance-typing");
        key(Qt::Key_Escape);
        tabTo("borderRadius.slider");
        save("appearance-focused-slider");
        hover("rotation.left", 700);
        save("appearance-help");
    });
}

TEST_F(EditorPictures, OfTheBackgroundTab) {
    inBothAppearances([this] {
        click("backgroundType.transparent");
        leaveControls();
        save("background-transparent");
        click("backgroundType.color");
        click("magicPreset.2");
        hover("magicPreset.3");
        save("background-color");
        click("backgroundType.gradient");
        leaveControls();
        save("background-gradient");
        click("useThreeColors");
        click("gradientStyle.radial");
        click("randomize");
        tabTo("gradientPreset.0");
        key(Qt::Key_Right);
        save("background-gradient-radial-focused-preset");
        click("gradientConfig.color2.well");
        hover("colorPanel.swatch.4");
        save("background-color-panel");
        tabTo("colorPanel.hue");
        leaveControls();
        save("background-color-panel-focused");
        for (const char* swatch : {"colorPanel.swatch.5", "colorPanel.swatch.8", "colorPanel.swatch.12"}) {
            click(swatch);
            click("gradientConfig.color1.well");
            click(swatch);
            click("gradientConfig.color3.well");
        }
        hover("colorPanel.eyedropper", 700);
        save("background-color-panel-recent");
        editor.session()->setCanPickFromScreen(false);
        leaveControls();
        hover("colorPanel.eyedropper", 700);
        save("background-color-panel-unavailable");
    });
}

TEST_F(EditorPictures, OfTheWallpapers) {
    inBothAppearances([this] {
        click("backgroundType.image");
        leaveControls();
        save("wallpapers-one");
        std::vector<ScreenshotEditorViewModel::Wallpaper> wallpapers;
        for (int i = 0; i < 17; ++i) {
            QImage image(400, 300, QImage::Format_RGB32);
            QPainter painter(&image);
            QLinearGradient sky(0, 0, 120, 300);
            sky.setColorAt(0, QColor::fromHsv(i * 43 % 360, 150, 240));
            sky.setColorAt(1, QColor::fromHsv((i * 43 + 60) % 360, 190, 90));
            painter.fillRect(image.rect(), sky);
            painter.end();
            wallpapers.emplace_back(
                QUrl::fromLocalFile(writePicture(QStringLiteral("wall%1.png").arg(i), image)), image);
        }
        model().mergeWallpapers(wallpapers);
        settle();
        click("wallpaper.4");
        hover("wallpaper.7");
        save("wallpapers-many");
        tabTo("wallpaper.4");
        key(Qt::Key_Down);
        key(Qt::Key_Down);
        key(Qt::Key_Down);
        leaveControls();
        save("wallpapers-scrolled-focused");
    });
}

TEST_F(EditorPictures, OfTheLayoutTab) {
    inBothAppearances([this] {
        click("tabs.2");
        leaveControls();
        save("layout");
        model().setScreenshotOffset({40, -25});
        model().set(QStringLiteral("imageScale"), 70);
        click("socialPreset.4");
        hover("socialPreset.5");
        save("layout-chosen");
        tabTo("socialPreset.4");
        key(Qt::Key_End);
        leaveControls();
        save("layout-scrolled-focused");
    });
}

TEST_F(EditorPictures, OfTheSmallestWindow) {
    windowSize = {800, 600};
    inBothAppearances([this] {
        click("tabs.0");
        leaveControls();
        save("small-appearance");
        click("sidebar.toggle");
        leaveControls();
        settle(250);
        save("small-without-sidebar");
    });
}

TEST_F(EditorPictures, OfTheTabsAsTheyAreReadInTheUsersLanguage) {
    ASSERT_TRUE(qEnvironmentVariableIsSet("LANGUAGE"));
    inBothAppearances([this] {
        for (const char* tab : {"tabs.0", "tabs.2", "tabs.1"}) {
            click(tab);
            leaveControls();
            save(tab);
        }
        for (const char* type : {"transparent", "color", "gradient", "image"}) {
            click((std::string("backgroundType.") + type).c_str());
            if (model().backgroundType() == QLatin1String("gradient"))
                click("useThreeColors");
            leaveControls();
            save((std::string("background-") + type).c_str());
        }
        hover("undo", 700);
        save("help");
    });
}

} // namespace
} // namespace framora
