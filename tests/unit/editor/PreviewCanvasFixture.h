#pragma once

#include "editor/views/ScreenshotPreviewCanvas.h"

#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

namespace framora {

/// A picture of 200 x 100 on a canvas of 300 x 200, in the middle of a window of 600 x 400.
class Canvas : public testing::Test {
public:
    static void SetUpTestSuite() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }

    Canvas() {
        image = QImage(200, 100, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor(200, 30, 40));
        config.backgroundType = BackgroundType::color;
        config.padding = 50;
        window.resize(600, 400);
        canvas = new ScreenshotPreviewCanvas(window.contentItem());
        canvas->setSize({600, 400});
        canvas->setImage(image);
        canvas->setConfig(config);
        // What the view model does with the answer.
        QObject::connect(canvas, &ScreenshotPreviewCanvas::screenshotOffsetChanged, canvas,
                         [this](QSizeF offset) {
                             offsets.append(offset);
                             config.screenshotOffset = {offset.width(), offset.height()};
                             canvas->setConfig(config);
                         });
        // What the view model and the editor's view do.
        QObject::connect(canvas, &ScreenshotPreviewCanvas::zoomRequested, canvas, [this](double percent) {
            set([&](auto& style) { style.zoom = std::clamp(percent, 10.0, 300.0); });
        });
        QObject::connect(canvas, &ScreenshotPreviewCanvas::nudged, canvas,
                         [this](QSizeF distance) { nudges.append(distance); });
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    void set(auto apply) {
        apply(config);
        canvas->setConfig(config);
    }
    QColor shown(int x, int y) { return window.grabWindow().pixelColor(x, y); }

    QQuickWindow window;
    ScreenshotPreviewCanvas* canvas = nullptr;
    QImage image;
    ScreenshotStyleConfig config;
    QList<QSizeF> offsets;
    QList<QSizeF> nudges;
};

} // namespace framora
