#include "golden/GoldenComparison.h"

#include "editor/render/CompositionRasterizer.h"
#include "editor/render/ScreenshotRenderer.h"

#include <QDir>
#include <algorithm>
#include <cmath>

namespace framora::golden {
namespace {

QImage toImage(const ReferenceComposition::Picture& picture) {
    QImage image(picture.size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const Sample& pixel =
                picture.pixels[std::size_t(y) * std::size_t(image.width()) + std::size_t(x)];
            const auto byte = [&pixel](std::size_t i) { return static_cast<quint32>(std::lround(pixel[i])); };
            reinterpret_cast<quint32*>(image.scanLine(y))[x] =
                byte(3) << 24 | byte(0) << 16 | byte(1) << 8 | byte(2);
        }
    return image;
}

void keep(const QImage& image, const QString& name) {
    const QString folder = qEnvironmentVariable("FRAMORA_GOLDEN_OUT");
    if (!folder.isEmpty())
        image.save(QDir(folder).filePath(name + QStringLiteral(".png")));
}

} // namespace

QImage exported(const GoldenCase& golden) {
    Composition composition;
    composition.image = golden.screenshot.image();
    composition.config = golden.style;
    composition.isRendering = true;
    if (golden.background)
        composition.preloadedBackgroundImage = golden.background->image();
    return CompositionRasterizer().drawFrame(
        composition, outputFrame(pointSize(composition.image), golden.style), exportScale);
}

testing::AssertionResult matchesReference(const GoldenCase& golden, const QString& name) {
    const QImage drawn = exported(golden);
    const auto expected =
        ReferenceComposition(golden.style, golden.screenshot, golden.background).frame(exportScale);
    if (drawn.size() != expected.size)
        return testing::AssertionFailure()
               << name.toStdString() << ": drawn at " << drawn.width() << " x " << drawn.height()
               << ", expected " << expected.size.width() << " x " << expected.size.height();

    double sum = 0.0;
    double rounding = 0.0; // what whole steps alone leave
    double worst = 0.0;
    QPoint worstPlace;
    std::size_t far = 0;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x) {
            const quint32 pixel = reinterpret_cast<const quint32*>(drawn.constScanLine(y))[x];
            const int bytes[] = {int(pixel >> 16 & 255), int(pixel >> 8 & 255), int(pixel & 255),
                                 int(pixel >> 24)};
            const Sample& wanted =
                expected.pixels[std::size_t(y) * std::size_t(drawn.width()) + std::size_t(x)];
            double largest = 0.0;
            for (std::size_t i = 0; i < 4; ++i) {
                const double difference = std::abs(bytes[i] - wanted[i]);
                sum += difference;
                rounding += std::abs(std::round(wanted[i]) - wanted[i]);
                largest = std::max(largest, difference);
            }
            far += largest >= 16.0;
            if (largest > worst) {
                worst = largest;
                worstPlace = QPoint(x, y);
            }
        }
    const double pixels = double(drawn.width()) * drawn.height();
    const double mean = sum / (4.0 * pixels);
    // A plain surface near the middle between two steps is half a step off, and as much when it falls to the
    // other one.
    const double least = rounding / (4.0 * pixels);
    if (mean < std::max(0.5, least + 0.2) && double(far) < 0.001 * pixels)
        return testing::AssertionSuccess();
    keep(drawn, name + QStringLiteral("-drawn"));
    keep(toImage(expected), name + QStringLiteral("-expected"));
    return testing::AssertionFailure()
           << name.toStdString() << ": mean difference " << mean << " (by rounding " << least << "), "
           << 100.0 * double(far) / pixels << " % of the pixels by 16 or more, worst " << worst << " at "
           << worstPlace.x() << ", " << worstPlace.y() << " of " << drawn.width() << " x " << drawn.height();
}

} // namespace framora::golden
