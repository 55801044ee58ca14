#include "PreviewDrag.h"

#include <algorithm>

namespace framora::comparison {

Measurement dragPreview(Workload workload, const Inputs& inputs, int frames) {
    Composition drawn = composition(workload, inputs);
    drawn.isRendering = false;
    const CompositionRasterizer::Viewport viewport = previewViewport(drawn);
    CompositionRasterizer rasterizer;
    QImage target;
    const double first = timed([&] { rasterizer.drawInto(target, drawn, viewport); });
    Measurement measurement{.name = name(workload),
                            .milliseconds = {},
                            .note = QStringLiteral("the first frame %1 ms").arg(first, 0, 'f', 1),
                            .meanDifference = {},
                            .farShare = {}};
    for (int i = 0; i < frames; ++i) {
        // A pointer's way: a few pixels a frame, back and forth in both directions.
        const int x = std::abs(i * 3 % 240 - 120) - 60;
        const int y = std::abs(i * 2 % 160 - 80) - 40;
        drawn.dragOffset = {x / viewport.pixelsPerPoint, y / viewport.pixelsPerPoint};
        measurement.milliseconds.push_back(timed([&] { rasterizer.drawInto(target, drawn, viewport); }));
    }
    std::sort(measurement.milliseconds.begin(), measurement.milliseconds.end());
    return measurement;
}

} // namespace framora::comparison
