#include "ForeignCommands.h"

#include "editor/render/ScreenshotRenderer.h"

#include <QFile>
#include <QStandardPaths>
#include <QUrl>
#include <cmath>

namespace framora::comparison {
namespace {

QString firstOnPath(std::initializer_list<const char*> names) {
    for (const char* name : names)
        if (QString path = QStandardPaths::findExecutable(QLatin1String(name)); !path.isEmpty())
            return path;
    return {};
}

QString webColor(const Color& color) {
    return QStringLiteral("#%1").arg(colorNumber(color), 6, 16, QLatin1Char('0'));
}

QString page(Workload workload, const Inputs& inputs) {
    const ScreenshotStyleConfig wanted = style(workload, inputs);
    const SimpleGradientConfig& gradient = wanted.gradientConfig;
    // In the page's points, the origin in the middle of the screenshot.
    const QSizeF half = QSizeF(inputs.screenshot.size()) / 2;
    const QPointF middle(outputSize.width() / 2.0, outputSize.height() / 2.0);
    const QTransform map = QTransform::fromTranslate(half.width(), half.height()) *
                           screenshotToOutput(workload, inputs) *
                           QTransform::fromTranslate(-middle.x(), -middle.y()) *
                           QTransform::fromScale(1 / exportScale, 1 / exportScale);
    QStringList matrix;
    for (const double entry : {map.m11(), map.m12(), 0.0, map.m13(), map.m21(), map.m22(), 0.0, map.m23(),
                               0.0, 0.0, 1.0, 0.0, map.m31(), map.m32(), 0.0, map.m33()})
        matrix << QString::number(entry, 'g', 15);
    return QStringLiteral("<!DOCTYPE html><style>"
                          "html,body{margin:0;overflow:hidden}"
                          "body{width:%1px;height:%2px;background:linear-gradient(%3deg,%4,%5,%6)}"
                          "img{position:absolute;left:%7px;top:%7px;border-radius:%8px;"
                          "transform:matrix3d(%9)}</style><img src=\"%10\">")
        .arg(outputSize.width() / 2)
        .arg(outputSize.height() / 2)
        .arg(gradient.angle)
        .arg(webColor(gradient.color1), webColor(gradient.color2), webColor(gradient.color3))
        .arg(wanted.padding)
        .arg(wanted.borderRadius)
        .arg(matrix.join(u','), QUrl::fromLocalFile(inputs.screenshotPath).toString(QUrl::FullyEncoded));
}

} // namespace

QString browserProgram() {
    return firstOnPath({"chromium-headless-shell", "chromium", "google-chrome"});
}

QString magickProgram() {
    return firstOnPath({"magick", "convert-im6.q16", "convert-im6", "convert"});
}

QStringList browserCommand(const QString& program, Workload workload, const Inputs& inputs,
                           const QString& file) {
    const QString path = file + QStringLiteral(".html");
    QFile html(path);
    if (html.open(QIODevice::WriteOnly | QIODevice::Truncate))
        html.write(page(workload, inputs).toUtf8());
    return {program,
            QStringLiteral("--headless"),
            QStringLiteral("--no-sandbox"),
            QStringLiteral("--disable-gpu"),
            QStringLiteral("--hide-scrollbars"),
            QStringLiteral("--force-device-scale-factor=%1").arg(exportScale),
            QStringLiteral("--window-size=%1,%2").arg(outputSize.width() / 2).arg(outputSize.height() / 2),
            QStringLiteral("--screenshot=") + file,
            QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)};
}

QStringList magickCommand(const QString& program, const Inputs& inputs, const QString& file) {
    const ScreenshotStyleConfig wanted = style(Workload::gradient, inputs);
    const SimpleGradientConfig& gradient = wanted.gradientConfig;
    const QLineF line = gradientLine(wanted);
    const QSize screenshot = inputs.screenshot.size() * int(exportScale);
    const double radius = wanted.borderRadius * exportScale;
    const auto size = [](QSize s) { return QStringLiteral("%1x%2").arg(s.width()).arg(s.height()); };
    return {program,
            // The gradient in grey, then its colours.
            QStringLiteral("-size"), size(outputSize), QStringLiteral("-define"),
            QStringLiteral("gradient:vector=%1,%2,%3,%4")
                .arg(line.x1())
                .arg(line.y1())
                .arg(line.x2())
                .arg(line.y2()),
            QStringLiteral("gradient:black-white"), QStringLiteral("("), QStringLiteral("-size"),
            QStringLiteral("1x1"), QStringLiteral("xc:") + webColor(gradient.color1),
            QStringLiteral("xc:") + webColor(gradient.color2),
            QStringLiteral("xc:") + webColor(gradient.color3), QStringLiteral("+append"), QStringLiteral(")"),
            QStringLiteral("-interpolate"), QStringLiteral("bilinear"), QStringLiteral("-clut"),
            // The screenshot, doubled, with its corners cut.
            QStringLiteral("("), inputs.screenshotPath, QStringLiteral("-filter"), QStringLiteral("Catrom"),
            QStringLiteral("-resize"), size(screenshot), QStringLiteral("("), QStringLiteral("-size"),
            size(screenshot), QStringLiteral("xc:black"), QStringLiteral("-fill"), QStringLiteral("white"),
            QStringLiteral("-draw"),
            QStringLiteral("roundrectangle 0,0 %1,%2 %3,%3")
                .arg(screenshot.width() - 1)
                .arg(screenshot.height() - 1)
                .arg(radius),
            QStringLiteral(")"), QStringLiteral("-alpha"), QStringLiteral("off"), QStringLiteral("-compose"),
            QStringLiteral("CopyOpacity"), QStringLiteral("-composite"), QStringLiteral(")"),
            QStringLiteral("-gravity"), QStringLiteral("center"), QStringLiteral("-compose"),
            QStringLiteral("over"), QStringLiteral("-composite"), QStringLiteral("-depth"),
            QStringLiteral("8"), file};
}

unsigned colorNumber(const Color& color) {
    const auto level = [](double component) { return unsigned(std::lround(component * 255)); };
    return level(color.red) << 16 | level(color.green) << 8 | level(color.blue);
}

} // namespace framora::comparison
