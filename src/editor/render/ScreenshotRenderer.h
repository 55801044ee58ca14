#pragma once

#include "editor/render/Composition.h"

#include <QImage>

namespace framora {

/// Pixels a point in every export.
inline constexpr double exportScale = 2.0;

/// The picture that Copy and Save hand out: the composition in its output frame at exportScale, which is also
/// its devicePixelRatio. It decodes the background first. Null when the frame is empty, not finite or too
/// large. Safe on any thread, several at once.
QImage renderComposition(const QImage& image, const ScreenshotStyleConfig& config);

/// One export of one screenshot; bound to the main thread.
class ScreenshotRenderer {
public:
    ScreenshotRenderer(QImage image, ScreenshotStyleConfig config)
        : m_image(std::move(image)), m_config(std::move(config)) {}

    /// renderComposition(). Off the main thread it ends the program.
    QImage render() const;

private:
    QImage m_image;
    ScreenshotStyleConfig m_config;
};

} // namespace framora
