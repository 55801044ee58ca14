#include "desktop/wayland/shell/OnSway.h"

#include <QTest>
#include <stdexcept>

namespace framora {

OnSway::Environment::Environment(const QProcessEnvironment& desktop)
    : before(QProcessEnvironment::systemEnvironment()), names(desktop.keys()) {
    for (const QString& name : names)
        qputenv(name.toLatin1().constData(), desktop.value(name).toLocal8Bit());
}

OnSway::Environment::~Environment() {
    for (const QString& name : names) {
        if (before.contains(name))
            qputenv(name.toLatin1().constData(), before.value(name).toLocal8Bit());
        else
            qunsetenv(name.toLatin1().constData());
    }
}

OnSway::OnSway(const SwayOptions& options) : desktop(options), m_environment(desktop.environment()) {
    connection.listen();
}

OnSway::~OnSway() = default;

SwayOptions OnSway::ofScale(double scale, QSize mode) {
    SwayOptions options;
    options.outputs = {SwayOutput{mode, scale}};
    options.sessionBus = false;
    return options;
}

void OnSway::paintGround(int output, const QColor& color) {
    const QString name = desktop.outputName(output);
    const WaylandOutput* const known = outputs.named(name);
    QImage picture(known->pixelSize(), QImage::Format_RGB32);
    picture.fill(color);
    PaintedSurface::Options options;
    options.picture = picture;
    options.size = known->logicalSize();
    options.output = name;
    m_grounds.push_back(std::make_unique<PaintedSurface>(desktop.waylandDisplay(), options));
    DesktopSession::waitFor([&] { return desktop.screenshot(output).pixelColor(4, 4) == color; });
}

void OnSway::endCompositor() {
    try {
        desktop.command(QStringLiteral("exit"));
    } catch (const std::runtime_error&) {
        // It may be gone before it has answered.
    }
}

bool OnSway::isQuietFor(int milliseconds) {
    QTest::qWait(50); // What is on its way.
    bool quiet = true;
    // The same socket is watched as by the connection itself.
    const QSocketNotifier notifier(wl_display_get_fd(connection), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] { quiet = false; });
    QTest::qWait(milliseconds);
    return quiet;
}

} // namespace framora
