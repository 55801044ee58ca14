// How long the editor takes to show itself, and what each frame of it takes of the main thread while
// something is dragged. Needs a display: on a virtual one, run it under xvfb-run. See usage() for what it can
// be asked.

#include "PointerLatency.h"
#include "desktop/editor/EditorHostServices.h"
#include "editor/model/ScreenshotEditorViewModel.h"
#include "editor/views/EditorSession.h"
#include "editor/views/ScreenshotPreviewCanvas.h"
#include "platform/PromptFrames.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QQuickItem>
#include <QQuickView>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

using namespace framora;

namespace {

/// As many as ten seconds have at 60 a second.
int framesPerGesture = 600;

int usage() {
    std::puts(
        "editor_bench                     opening, dragging the screenshot and every slider, wheel zoom\n"
        "editor_bench open                opening only\n"
        "editor_bench frames NUMBER       as without arguments, with other than 600 frames a gesture\n"
        "editor_bench only NAME           of the gestures only those with NAME in theirs\n"
        "editor_bench latency             from the pointer's movement to its pixels on screen, while "
        "dragging\n"
        "editor_bench scan                dragging while 60 wallpapers of 6000 x 4000 are looked through");
    return 2;
}

double milliseconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// A window full of text and shapes, as most captures are.
QImage makePicture(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(245, 246, 248));
    QPainter painter(&image);
    painter.fillRect(0, 0, size.width(), 48, QColor(40, 42, 48));
    for (int y = 80; y < size.height(); y += 20)
        for (int x = 60; x < size.width(); x += 640)
            painter.drawText(x, y,
                             QStringLiteral("The quick brown fox jumps over the lazy dog, line %1").arg(y));
    return image;
}

/// Knows how long the main thread was at work, and not waiting for something to do.
class MeteredApplication final : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        bool result = false;
        meter([&] { result = QApplication::notify(receiver, event); });
        return result;
    }
    void meter(const std::function<void()>& work) {
        // What this thread does is delivered as events, which deliver others.
        const double start = m_depth++ == 0 ? milliseconds(CLOCK_MONOTONIC) : 0;
        work();
        if (--m_depth == 0)
            m_busy += milliseconds(CLOCK_MONOTONIC) - start;
    }
    /// In milliseconds, since the start.
    double busy() const { return m_busy; }

private:
    int m_depth = 0;
    double m_busy = 0;
};

MeteredApplication& application() {
    return static_cast<MeteredApplication&>(*QCoreApplication::instance());
}

struct Frames {
    std::vector<double> busy; ///< Of the main thread.
    std::vector<double> own;  ///< The processor's time for it, without what others had the processor for.
    std::vector<double> all;  ///< The processors' time for all threads.
};

double quantile(std::vector<double>& sorted, double part) {
    return sorted[std::min(sorted.size() - 1, std::size_t(part * double(sorted.size())))];
}

void printHead() {
    std::printf(
        "\nmilliseconds of the main thread a frame; aims: median under 4, 99 %% under 12, none over 50\n");
    std::printf("%-40s %8s %8s %8s %8s   %s\n", "", "median", "99 %", "worst", "over 50",
                "of it on the processor: median, 99 %, worst; all threads");
}

void print(const std::string& what, Frames frames) {
    std::sort(frames.busy.begin(), frames.busy.end());
    std::sort(frames.own.begin(), frames.own.end());
    std::sort(frames.all.begin(), frames.all.end());
    const auto over =
        std::count_if(frames.busy.begin(), frames.busy.end(), [](double each) { return each > 50; });
    std::printf("%-40s %8.2f %8.2f %8.2f %8td   %8.2f %8.2f %8.2f %8.2f\n", what.c_str(),
                quantile(frames.busy, 0.5), quantile(frames.busy, 0.99), frames.busy.back(), over,
                quantile(frames.own, 0.5), quantile(frames.own, 0.99), frames.own.back(),
                quantile(frames.all, 0.5));
}

void printTimes(const char* what, std::vector<double> times) {
    if (times.empty())
        return;
    std::sort(times.begin(), times.end());
    std::printf("%-44s median %7.2f ms   99 %% %7.2f ms   worst %7.2f ms   (%zu)\n", what,
                quantile(times, 0.5), quantile(times, 0.99), times.back(), times.size());
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

/// One open editor, and gestures in it.
class Editor {
public:
    explicit Editor(ScreenshotEditorWindow& editor)
        : m_window(*editor.editorWindow()), m_session(*editor.session()), m_model(*m_session.viewModel()),
          m_canvas(*m_window.rootObject()->findChild<ScreenshotPreviewCanvas*>()) {}

    ScreenshotEditorViewModel& model() { return m_model; }
    QQuickView& window() { return m_window; }

    /// Takes step 0, 1, ... `count` - 1 and the frame that follows each.
    Frames measure(int count, const std::function<void(int)>& step) {
        Frames frames;
        bool swapped = false;
        QObject context;
        QObject::connect(&m_window, &QQuickWindow::frameSwapped, &context, [&] { swapped = true; });
        QTimer waking; // From waiting for a frame that does not come.
        waking.start(50);
        for (int i = 0; i < count; ++i) {
            swapped = false;
            const double own = milliseconds(CLOCK_THREAD_CPUTIME_ID);
            const double all = milliseconds(CLOCK_PROCESS_CPUTIME_ID);
            const double busy = application().busy();
            application().meter([&] { step(i); });
            // A step at the end of a range changes nothing.
            QElapsedTimer patience;
            patience.start();
            while (!swapped && patience.elapsed() < 200)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
            if (!swapped)
                continue;
            frames.busy.push_back(application().busy() - busy);
            frames.own.push_back(milliseconds(CLOCK_THREAD_CPUTIME_ID) - own);
            frames.all.push_back(milliseconds(CLOCK_PROCESS_CPUTIME_ID) - all);
        }
        return frames;
    }

    /// By real mouse events in the window.
    Frames drag(int count) {
        const QPointF middle = m_canvas.mapToScene({m_canvas.width() / 2, m_canvas.height() / 2});
        QTest::mousePress(&m_window, Qt::LeftButton, {}, middle.toPoint());
        Frames frames = measure(count, [&](int i) {
            const QPointF away(150.0 * std::sin((i + 1) / 40.0), 90.0 * std::sin((i + 1) / 27.0));
            QTest::mouseMove(&m_window, (middle + away + QPointF(i % 2, 0)).toPoint());
        });
        QTest::mouseRelease(&m_window, Qt::LeftButton, {}, middle.toPoint());
        m_model.undo();
        return frames;
    }

    /// Back and forth over the range, as the slider does it while it is held.
    Frames slide(int count, const QString& field, double from, double to) {
        const QVariant before = m_model.property("config");
        m_model.beginEdit(field);
        Frames frames = measure(count, [&](int i) {
            constexpr int there = 150;
            const int step = (i + 1) % (2 * there);
            const double part = double(step < there ? step : 2 * there - step) / there;
            m_model.set(field, from + part * (to - from));
        });
        m_model.endEdit();
        m_model.setProperty("config", before);
        return frames;
    }

    /// By a pointer that the X server moves.
    void measureLatency(int count) {
        const QPoint middle = m_canvas.mapToGlobal({m_canvas.width() / 2, m_canvas.height() / 2}).toPoint();
        const PointerLatency latency = PointerLatency::measure(m_window.winId(), middle, count);
        printTimes("from the pointer's movement to first pixels", latency.toFirstPixels);
        printTimes("to the last ones", latency.toLastPixels);
    }

    Frames wheel(int count) {
        const QPointF middle = m_canvas.mapToScene({m_canvas.width() * 0.6, m_canvas.height() * 0.4});
        return measure(count, [&](int i) {
            constexpr int notches = 10;
            QWheelEvent event(middle, m_window.mapToGlobal(middle), {}, {0, i / notches % 2 ? -120 : 120},
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(&m_window, &event);
        });
    }

    /// As the window manager does it while a corner is dragged.
    Frames resize(int count) {
        const QSize before = m_window.size();
        // Qt hears of it from the server, as it does then: a call of resize() has a frame drawn before that,
        // of the old layout in the new size.
        auto* connection = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        Frames frames = measure(count, [&](int i) {
            const int away = 2 * std::abs(i % 100 - 50);
            const std::uint32_t size[] = {std::uint32_t(before.width() - away - i % 2),
                                          std::uint32_t(before.height() - away)};
            xcb_configure_window(connection, xcb_window_t(m_window.winId()),
                                 XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
            xcb_flush(connection);
        });
        m_window.resize(before);
        return frames;
    }

    void showTab(int index) { m_session.setProperty("selectedTab", index); }

private:
    QQuickView& m_window;
    EditorSession& m_session;
    ScreenshotEditorViewModel& m_model;
    ScreenshotPreviewCanvas& m_canvas;
};

struct Slider {
    const char* field;
    double from, to;
    int tab;
    /// What the style has beside it.
    std::vector<std::pair<const char*, QVariant>> style;
};

/// Every slider of the editor, by the tab that it is in.
std::vector<Slider> sliders() {
    const QVariant gradient = QStringLiteral("gradient");
    const QVariant image = QStringLiteral("image");
    return {
        {"mockupBorderSize", 0, 10, 0, {{"mockupStyle", QStringLiteral("border")}}},
        {"borderRadius", 0, 40, 0, {}},
        {"scale", 0.1, 3, 0, {}},
        {"rotationX", -90, 90, 0, {}},
        {"rotationY", -90, 90, 0, {}},
        {"gradientConfig.angle", 0, 360, 1, {{"backgroundType", gradient}}},
        {"gradientConfig.blurAmount", 0, 50, 1, {{"backgroundType", image}}},
        {"gradientConfig.blurAmount", 0, 50, 1, {{"backgroundType", gradient}}},
        {"gradientConfig.noiseAmount", 0, 100, 1, {{"backgroundType", image}}},
        {"gradientConfig.noiseAmount", 0, 100, 1, {{"backgroundType", gradient}}},
        {"gradientConfig.saturation", 0, 200, 1, {{"backgroundType", gradient}}},
        {"gradientConfig.brightness", 0, 200, 1, {{"backgroundType", gradient}}},
        {"padding", 0, 200, 2, {}},
        {"imageScale", 10, 200, 2, {}},
    };
}

void measureGestures(Editor& editor, const std::string& only) {
    const auto wanted = [&](const std::string& name) { return name.find(only) != std::string::npos; };
    const auto run = [&](const std::string& name, const std::function<Frames(int)>& gesture) {
        if (!wanted(name))
            return;
        settle(250);
        gesture(20);
        settle(150);
        print(name, gesture(framesPerGesture));
    };
    ScreenshotEditorViewModel& model = editor.model();
    const ScreenshotStyleConfig start = model.config();
    const auto restore = [&] {
        ScreenshotStyleConfig config = start;
        config.zoom = model.config().zoom;
        model.setConfig(config);
    };
    printHead();
    run("drag, image background", [&](int count) { return editor.drag(count); });
    model.set(QStringLiteral("backgroundType"), QStringLiteral("gradient"));
    run("drag, gradient", [&](int count) { return editor.drag(count); });
    model.set(QStringLiteral("rotationX"), 20);
    model.set(QStringLiteral("rotation"), 10);
    run("drag, gradient, turned and tilted", [&](int count) { return editor.drag(count); });
    restore();
    model.zoomToActualSize();
    run("drag at 100 %, image background", [&](int count) { return editor.drag(count); });
    model.zoomTo(300);
    run("drag at 300 %, image background", [&](int count) { return editor.drag(count); });
    model.fitToWindow();
    settle(300);
    model.set(QStringLiteral("mockupStyle"), QStringLiteral("glassEffect"));
    run("drag, frame of glass", [&](int count) { return editor.drag(count); });
    restore();
    const auto dragWith = [&](const char* what, const std::function<void(ScreenshotStyleConfig&)>& change) {
        ScreenshotStyleConfig config = model.config();
        change(config);
        model.setConfig(config);
        run(std::string("drag, ") + what, [&](int count) { return editor.drag(count); });
        restore();
    };
    using Config = ScreenshotStyleConfig;
    dragWith("transparent", [](Config& config) { config.backgroundType = BackgroundType::transparent; });
    ShadowScene scene;
    scene.colors = {Color::white(), Color{0.2, 0.3, 0.6, 1}};
    dragWith("shadow scene under it", [&](Config& config) { config.selectedShadowScene = scene; });
    dragWith("shadow scene over it", [&](Config& config) {
        config.selectedShadowScene = scene;
        config.shadowSceneMode = ShadowSceneMode::overlay;
    });
    dragWith("texts, a blurred one too", [](Config& config) {
        for (const bool isBlurred : {false, true}) {
            TextOverlay text;
            text.text = QStringLiteral("A caption of a few words");
            text.fontSize = 120;
            text.position = {1900, isBlurred ? 1500.0 : 500.0};
            text.isBlurred = isBlurred;
            config.textOverlays.append(text);
        }
    });
    run("window's size", [&](int count) { return editor.resize(count); });
    model.fitToWindow();
    settle(300);
    for (const Slider& slider : sliders()) {
        editor.showTab(slider.tab);
        restore();
        std::string name = slider.field;
        for (const auto& [field, value] : slider.style) {
            model.set(QString::fromLatin1(field), value);
            name += ", " + value.toString().toStdString();
        }
        run(name, [&](int count) {
            return editor.slide(count, QString::fromLatin1(slider.field), slider.from, slider.to);
        });
    }
    restore();
    editor.showTab(1);
    run("wheel zoom", [&](int count) { return editor.wheel(count); });
}

/// Every name is another picture to the scan.
void makePhotographs(const QString& folder, int count) {
    QDir().mkpath(folder);
    QImage noise(750, 500, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, random.generate());
    const QImage picture = noise.scaled(6000, 4000, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QString first = folder + QStringLiteral("/photograph-0.jpg");
    picture.save(first, "jpeg", 92);
    for (int i = 1; i < count; ++i)
        QFile::copy(first, folder + QStringLiteral("/photograph-%1.jpg").arg(i));
}

void measureScan(Editor& editor) {
    printHead();
    int rounds = 0;
    QElapsedTimer timer;
    timer.start();
    Frames all;
    while (editor.model().isLoadingWallpapers()) {
        const Frames frames = editor.drag(60);
        all.busy.insert(all.busy.end(), frames.busy.begin(), frames.busy.end());
        all.own.insert(all.own.end(), frames.own.begin(), frames.own.end());
        all.all.insert(all.all.end(), frames.all.begin(), frames.all.end());
        ++rounds;
    }
    const double seconds = double(timer.elapsed()) / 1e3;
    if (rounds == 0)
        std::puts("the scan was over before the first frame");
    else
        print("drag while wallpapers are looked for", all);
    std::printf("%zu frames in %.1f s until %zu wallpapers were there\n", all.busy.size(), seconds,
                editor.model().wallpaperImages().size());
    editor.showTab(1);
    settle(500);
    print("drag afterwards", editor.drag(framesPerGesture));
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const std::string mode = argc > 1 ? argv[1] : "";
    const std::string operand = argc > 2 ? argv[2] : "";
    const bool scans = mode == "scan";
    const bool isLatency = mode == "latency";
    if (mode == "frames" && !operand.empty())
        framesPerGesture = std::max(20, std::atoi(operand.c_str()));
    else if (!(mode.empty() || scans || isLatency || mode == "open" || (mode == "only" && !operand.empty())))
        return usage();

    qputenv("QT_QUICK_BACKEND", "software");
    // Nobody's own pictures are in the figures.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    MeteredApplication application(argc, argv);
    drawFramesPromptly();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    if (scans)
        makePhotographs(home.path() + QStringLiteral("/Pictures"), 60);
    EditorHostServices services;
    const QImage picture = makePicture({3840, 2160});
    ScreenshotEditorWindow window(services.forWindow());
    printTimes("open to first frame, first of the process", {openOnce(window, picture)});
    if (!scans && !isLatency && mode != "only") {
        std::vector<double> again;
        for (int i = 0; i < 9; ++i) {
            settle(300);
            window.close();
            settle(50);
            again.push_back(openOnce(window, picture));
        }
        printTimes("open to first frame, later ones", again);
    }
    if (mode == "open")
        return 0;
    settle(scans ? 150 : 800);
    Editor editor(window);
    std::printf("window %d x %d, picture %d x %d, zoom %.0f %%, ratio %.2f\n", editor.window().width(),
                editor.window().height(), picture.width(), picture.height(), editor.model().config().zoom,
                editor.window().effectiveDevicePixelRatio());
    if (scans)
        measureScan(editor);
    else if (isLatency)
        editor.measureLatency(framesPerGesture);
    else
        measureGestures(editor, mode == "only" ? operand : "");
    return 0;
}
