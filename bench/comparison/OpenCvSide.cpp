#include "OpenCvSide.h"

#ifdef FRAMORA_COMPARE_OPENCV

#include "QPainterSide.h"
#include "editor/render/ScreenshotRenderer.h"

#include <memory>
#include <opencv2/imgproc.hpp>

namespace framora::comparison {
namespace {

cv::Mat matrixOf(QImage& image) {
    const int type = image.format() == QImage::Format_RGB888 ? CV_8UC3 : CV_8UC4;
    return {image.height(), image.width(), type, image.bits(), std::size_t(image.bytesPerLine())};
}

} // namespace

std::optional<Contender> openCvWarp(const Inputs& inputs) {
    const auto target = std::make_shared<QImage>(gradientTarget(inputs));
    const auto screenshot = std::make_shared<QImage>(inputs.screenshot.copy());
    const QTransform t = screenshotToOutput(Workload::tilted, inputs);
    // Its pixels have their centres at whole numbers, ours at halves.
    const QTransform map = QTransform::fromTranslate(0.5, 0.5) * t * QTransform::fromTranslate(-0.5, -0.5);
    const cv::Matx33d homography(map.m11(), map.m21(), map.m31(), map.m12(), map.m22(), map.m32(), map.m13(),
                                 map.m23(), map.m33());
    return Contender{
        .name = QStringLiteral("OpenCV cubic warp alone"),
        .run =
            [=] {
                cv::Mat to = matrixOf(*target);
                cv::warpPerspective(matrixOf(*screenshot), to, homography, to.size(), cv::INTER_CUBIC,
                                    cv::BORDER_TRANSPARENT);
            },
        .picture = [target] { return *target; },
    };
}

std::optional<Contender> openCvBlur(const Inputs& inputs) {
    // Three channels: its Gaussian takes more than twice as long for four.
    const auto target = std::make_shared<QImage>(outputSize, QImage::Format_RGB888);
    target->fill(Qt::black);
    const auto stretched = std::make_shared<QImage>(target->copy());
    const auto photograph =
        std::make_shared<QImage>(inputs.photograph.convertToFormat(QImage::Format_RGB888));
    return Contender{
        .name = QStringLiteral("OpenCV resize + Gaussian"),
        .run =
            [=] {
                cv::Mat between = matrixOf(*stretched);
                cv::Mat to = matrixOf(*target);
                cv::resize(matrixOf(*photograph), between, between.size(), 0, 0, cv::INTER_LINEAR);
                const double sigma = photoBlurRadius * exportScale;
                cv::GaussianBlur(between, to, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
            },
        .picture = [=] { return *target; },
    };
}

} // namespace framora::comparison

#else

namespace framora::comparison {

std::optional<Contender> openCvWarp(const Inputs&) {
    return std::nullopt;
}

std::optional<Contender> openCvBlur(const Inputs&) {
    return std::nullopt;
}

} // namespace framora::comparison

#endif
