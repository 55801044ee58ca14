#pragma once

#include "golden/ReferenceComposition.h"

#include <QImage>
#include <QString>
#include <gtest/gtest.h>

namespace framora::golden {

/// One style over one screenshot, drawn by the program and by the reference.
struct GoldenCase {
    ScreenshotStyleConfig style;
    SmoothPicture screenshot{90, 60, 1.0, 0.3};
    std::optional<SmoothPicture> background = SmoothPicture(70, 50, 1.0, 1.7);
};

/// Succeeds when the export differs from the reference by less than half a step of 255 in the mean and by
/// less than 16 in all but a thousandth of the pixels. With FRAMORA_GOLDEN_OUT set to a folder, a failing
/// case leaves its two pictures there under `name`.
testing::AssertionResult matchesReference(const GoldenCase& golden, const QString& name);

/// The export without a file for its background.
QImage exported(const GoldenCase& golden);

} // namespace framora::golden
