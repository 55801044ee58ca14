// The picture's own costs: one preview frame at the default window size, exports, and the PNG behind Copy and
// Save.

#include "editor/render/CompositionRasterizer.h"
#include "editor/render/RasterView.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/PicturePaint.h"
#include "editor/render/raster/PngEncoder.h"

#include <QBuffer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <random>

namespace {

using namespace framora;

/// Something like a screenshot: flat areas, lines of fine detail, a photograph in a corner.
QImage makeScreenshot(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    std::mt19937 random(3);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            row[x] = y < 40 ? qRgb(52, 70, 110) : qRgb(250, 250, 252);
            if (y > 60 && y % 20 < 11 && x > 20 && x < width * 2 / 3 && random() % 3 == 0)
                row[x] = qRgb(40, 40, 48);
            if (x > width * 3 / 4 && y > height / 2)
                row[x] = qRgb(x % 256, y % 256, int(random() % 32) + (x + y) % 200);
        }
    }
    return image;
}

/// A soft picture, as backgrounds are.
QImage makeTexture(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int grey = (x * 97 / width + y * 131 / height) % 256;
            image.setPixel(x, y, qRgb(grey, grey, grey));
        }
    return image;
}

enum Scene { gradient, textured, zoomedIn, turned, tilted };

Composition makeComposition(Scene scene) {
    Composition composition;
    composition.image = makeScreenshot(2560, 1440);
    ScreenshotStyleConfig& config = composition.config;
    config.backgroundType = scene == gradient ? BackgroundType::gradient : BackgroundType::image;
    if (scene != gradient)
        composition.loadedBackgroundImage = makeTexture(2560, 1440);
    if (scene == turned)
        config.rotation = 12;
    if (scene == tilted) {
        config.rotationX = 20;
        config.rotationY = -25;
    }
    return composition;
}

/// A drag in the default window: the preview fits the canvas into 1256 x 940 pixels.
void previewDrag(benchmark::State& state, Scene scene) {
    Composition composition = makeComposition(scene);
    const QSizeF canvas = canvasSize(pointSize(composition.image), composition.config);
    const double fit = std::min(1256 / canvas.width(), 940 / canvas.height());
    const CompositionRasterizer::Viewport viewport{QSize(1256, 940), scene == zoomedIn ? 1.0 : fit,
                                                   QPointF(628, 470)};
    CompositionRasterizer rasterizer;
    QImage target;
    rasterizer.drawInto(target, composition, viewport);
    int step = 0;
    for (auto _ : state) {
        composition.dragOffset = {step % 60 / viewport.pixelsPerPoint, step % 40 / viewport.pixelsPerPoint};
        ++step;
        rasterizer.drawInto(target, composition, viewport);
        benchmark::DoNotOptimize(target.constBits());
    }
}
BENCHMARK_CAPTURE(previewDrag, gradient, gradient)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(previewDrag, textured, textured)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(previewDrag, zoomedIn, zoomedIn)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(previewDrag, turned, turned)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(previewDrag, tilted, tilted)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The first frame of a picture that was never drawn before.
void previewFirstFrame(benchmark::State& state) {
    const Composition composition = makeComposition(textured);
    for (auto _ : state) {
        const QImage image =
            CompositionRasterizer().draw(composition, {QSize(1256, 940), 0.46, QPointF(628, 470)});
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(previewFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Copy and Save before the PNG: 5440 x 3200 pixels.
void exportFrame(benchmark::State& state, Scene scene) {
    Composition composition = makeComposition(scene);
    composition.isRendering = true;
    for (auto _ : state) {
        const QImage image = CompositionRasterizer().drawFrame(
            composition, outputFrame(pointSize(composition.image), composition.config), exportScale);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK_CAPTURE(exportFrame, textured, textured)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(exportFrame, tilted, tilted)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The PNG behind Save and, as the fastest, behind Copy; the usual encoder's time and size stand beside it.
void encodeExport(benchmark::State& state, raster::PngSpeed speed) {
    Composition composition = makeComposition(gradient);
    composition.isRendering = true;
    const QImage image = CompositionRasterizer().drawFrame(
        composition, outputFrame(pointSize(composition.image), composition.config), exportScale);
    std::size_t size = 0;
    for (auto _ : state)
        size = raster::encodePng(rasterView(image), 5669, speed).size();
    QBuffer usual;
    usual.open(QIODevice::WriteOnly);
    const auto start = std::chrono::steady_clock::now();
    image.convertToFormat(QImage::Format_RGB32).save(&usual, "PNG");
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    state.counters["bytes"] = double(size);
    state.counters["ofQtsBytes"] = double(size) / double(usual.size());
    state.counters["QtsMs"] = taken.count();
}
BENCHMARK_CAPTURE(encodeExport, compact, raster::PngSpeed::compact)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(encodeExport, fastest, raster::PngSpeed::fastest)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void encodeCapture(benchmark::State& state) {
    const QImage image = makeScreenshot(2560, 1440);
    for (auto _ : state)
        benchmark::DoNotOptimize(raster::encodePng(rasterView(image), 2835, raster::PngSpeed::fastest));
}
BENCHMARK(encodeCapture)->Unit(benchmark::kMillisecond)->UseRealTime();

/// One row of 1024 pixels of a gradient.
void shadeGradient(benchmark::State& state, raster::GradientPaint::Kind kind) {
    const raster::GradientPaint paint(kind, 30, 1024, 768,
                                      {raster::premultiplied(1, 0, 0, 1), raster::premultiplied(0, 1, 0, 1),
                                       raster::premultiplied(0, 0, 1, 1)},
                                      raster::Homography::translation(-512, -384));
    std::vector<raster::Float4> row(1024);
    for (auto _ : state) {
        paint.shade(0, 100, 1024, row.data());
        benchmark::DoNotOptimize(row.data());
    }
    state.SetItemsProcessed(state.iterations() * 1024);
}
BENCHMARK_CAPTURE(shadeGradient, linear, raster::GradientPaint::Kind::linear);
BENCHMARK_CAPTURE(shadeGradient, radial, raster::GradientPaint::Kind::radial);
BENCHMARK_CAPTURE(shadeGradient, angular, raster::GradientPaint::Kind::angular);

/// One row of 1024 pixels of a picture under a map.
void shadePicture(benchmark::State& state, const raster::Homography& map) {
    static const QImage image = makeScreenshot(2560, 1440);
    static const auto pyramid = std::make_shared<raster::PicturePyramid>(rasterView(image));
    const raster::PicturePaint paint(pyramid, 2560, 1440, {raster::Homography::translation(512, 384) * map},
                                     1024, 768);
    std::vector<raster::Float4> row(1024);
    for (auto _ : state) {
        paint.shade(0, 400, 1024, row.data());
        benchmark::DoNotOptimize(row.data());
    }
    state.SetItemsProcessed(state.iterations() * 1024);
}
BENCHMARK_CAPTURE(shadePicture, copied, raster::Homography());
BENCHMARK_CAPTURE(shadePicture, halved, raster::Homography::scaling(0.45, 0.45));
BENCHMARK_CAPTURE(shadePicture, doubled, raster::Homography::scaling(2, 2));
BENCHMARK_CAPTURE(shadePicture, turned, raster::Homography::rotation(12));
BENCHMARK_CAPTURE(shadePicture, turnedAndHalved,
                  raster::Homography::rotation(12) * raster::Homography::scaling(0.45, 0.45));
BENCHMARK_CAPTURE(shadePicture, tiltedAndDoubled,
                  raster::Homography::scaling(2, 2) * raster::Homography::tiltY(25, 2560));
BENCHMARK_CAPTURE(shadePicture, tiltedAndHalved,
                  raster::Homography::scaling(0.45, 0.45) * raster::Homography::tiltY(25, 2560));

} // namespace

BENCHMARK_MAIN();
