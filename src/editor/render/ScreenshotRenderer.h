#pragma once

#include "editor/render/Composition.h"

#include <QImage>
#include <optional>

namespace framora {

/// Pixels a point in every export.
inline constexpr double exportScale = 2.0;
/// The resolution that says so in a file.
inline constexpr double exportDotsPerInch = 72 * exportScale;

/// The composition of an export, with its background decoded. Nothing where its output frame is empty, not
/// finite or too large. Safe on any thread.
std::optional<Composition> exportComposition(const QImage& image, const ScreenshotStyleConfig& config);

/// The picture that Copy and Save hand out: the composition in its output frame at exportScale, which is also
/// its devicePixelRatio. Null where there is none or memory is short. Safe on any thread, several at once.
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
