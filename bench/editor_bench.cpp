// How long the editor takes to show itself, and one frame of the preview while the screenshot is dragged.
// Needs a display: on a virtual one, run it under xvfb-run. With the argument "open" nothing is dragged.

#include "desktop/editor/EditorHostServices.h"
#include "editor/model/ScreenshotEditorViewModel.h"
#include "editor/views/EditorSession.h"
#include "editor/views/ScreenshotPreviewCanvas.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPainter>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <string_view>

using namespace framora;

namespace {

void print(const char* what, std::vector<double> milliseconds) {
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("%-46s median %7.2f ms   worst %7.2f ms   (%zu)\n", what,
                milliseconds[milliseconds.size() / 2], milliseconds.back(), milliseconds.size());
}

QImage makePicture() {
    QImage image(1440, 900, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(245, 246, 248));
    QPainter painter(&image);
    for (int i = 0; i < 40; ++i)
        painter.drawText(60, 40 + i * 20,
                         QStringLiteral("The quick brown fox jumps over the lazy dog %1").arg(i));
    return image;
}

/// From the call to the frame on screen, by the window's own account.
double openOnce(ScreenshotEditorWindow& editor, const QImage& picture) {
    QElapsedTimer timer;
    timer.start();
    double elapsed = -1;
    editor.open(picture);
    QObject::connect(editor.editorWindow(), &QQuickWindow::frameSwapped, [&] {
        if (elapsed < 0)
            elapsed = double(timer.nsecsElapsed()) / 1e6;
    });
    while (elapsed < 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return elapsed;
}

void settle(int milliseconds) {
    QTest::qWait(milliseconds);
}

/// A drag by real mouse events in the window: each frame from the event to the swap.
std::vector<double> dragFrames(QQuickView& window, int count) {
    auto* canvas = window.rootObject()->findChild<ScreenshotPreviewCanvas*>();
    const QPointF middle = canvas->mapToScene({canvas->width() / 2, canvas->height() / 2});
    std::vector<double> frames;
    bool swapped = false;
    QElapsedTimer timer;
    const auto connection = QObject::connect(&window, &QQuickWindow::frameSwapped, [&] { swapped = true; });
    QTest::mousePress(&window, Qt::LeftButton, {}, middle.toPoint());
    for (int i = 1; i <= count; ++i) {
        swapped = false;
        timer.start();
        QTest::mouseMove(&window, (middle + QPointF(i % 90, i % 40)).toPoint());
        while (!swapped)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        frames.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    QTest::mouseRelease(&window, Qt::LeftButton, {}, middle.toPoint());
    QObject::disconnect(connection);
    return frames;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    EditorHostServices services;
    const QImage picture = makePicture();
    {
        ScreenshotEditorWindow editor(services.forWindow());
        print("open to first frame, first of the process", {openOnce(editor, picture)});
        std::vector<double> again;
        for (int i = 0; i < 9; ++i) {
            settle(300);
            editor.close();
            settle(50);
            again.push_back(openOnce(editor, picture));
        }
        print("open to first frame, later ones", again);
        if (argc > 1 && std::string_view(argv[1]) == "open")
            return 0;
        settle(500);
        QQuickView& window = *editor.editorWindow();
        std::printf("window %d x %d, zoom %.0f %%, ratio %.2f\n", window.width(), window.height(),
                    editor.session()->viewModel()->config().zoom, window.effectiveDevicePixelRatio());
        ScreenshotEditorViewModel& model = *editor.session()->viewModel();
        const auto measure = [&](const char* what) {
            settle(200);
            dragFrames(window, 20);
            print(what, dragFrames(window, 120));
        };
        measure("drag frame, image background");
        model.set(QStringLiteral("backgroundType"), QStringLiteral("gradient"));
        measure("drag frame, gradient background");
        model.set(QStringLiteral("rotationX"), 20);
        model.set(QStringLiteral("rotation"), 10);
        measure("drag frame, gradient, turned and tilted");
        model.set(QStringLiteral("rotationX"), 0);
        model.set(QStringLiteral("rotation"), 0);
        model.set(QStringLiteral("zoom"), 100);
        measure("drag frame, gradient, at 100 %");
    }
    return 0;
}
