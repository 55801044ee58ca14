#pragma once

#include "editor/model/ScreenshotStyleConfig.h"
#include "editor/render/Composition.h"
#include "editor/render/CompositionRasterizer.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QTransform>

namespace framora::comparison {

/// What everything is drawn from.
struct Inputs {
    QString screenshotPath; ///< a PNG
    QImage screenshot;      ///< 2560 x 1600, decoded
    QString photographPath; ///< a JPEG
    QImage photograph;      ///< 5120 x 3200, decoded
    QString folder;         ///< for files that are written
};

/// The pictures that are drawn, by their usual numbers.
enum class Workload {
    gradient,     ///< W1: a linear gradient of three colours, the default frame
    tilted,       ///< W2: the same, turned and tilted
    blurredPhoto, ///< W3: a stretched and blurred photograph, the default frame
    everything,   ///< W4: the same in a glass frame, with a text, under a shadow scene
};

/// Of every output; with a screenshot of 2560 x 1600 and the default padding, what an export has.
inline constexpr QSize outputSize(5440, 3520);
inline constexpr QSize screenshotSize(2560, 1600);
inline constexpr QSize photographSize(5120, 3200);
/// Of W6.
inline constexpr QSize previewSize(1216, 900);
/// Of W3's background, in points; an export has two pixels a point.
inline constexpr double photoBlurRadius = 20;

QString name(Workload workload);
ScreenshotStyleConfig style(Workload workload, const Inputs& inputs);
/// The composition for an export.
Composition composition(Workload workload, const Inputs& inputs);
/// The canvas in the middle of `outputSize`, at export scale.
CompositionRasterizer::Viewport exportViewport();
/// The canvas fitted into `previewSize`.
CompositionRasterizer::Viewport previewViewport(const Composition& composition);

/// The geometry, worked out apart from the composition's: pixels of the screenshot to pixels of the output.
QTransform screenshotToOutput(Workload workload, const Inputs& inputs);
/// The ends of W1's gradient line, in pixels of the output.
QLineF gradientLine(const ScreenshotStyleConfig& style);

} // namespace framora::comparison
