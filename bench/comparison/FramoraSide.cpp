#include "FramoraSide.h"

#include "editor/render/BackgroundDecoder.h"

#include <QUrl>
#include <memory>

namespace framora::comparison {

QList<Contender> framoraExport(Workload workload, const Inputs& inputs) {
    const auto target = std::make_shared<QImage>();
    const auto drawn = std::make_shared<Composition>(composition(workload, inputs));
    const Contender touched{
        .name = QStringLiteral("Framora"),
        .run =
            [target, drawn] {
                // What a rasterizer keeps between frames is for previews: every export starts anew.
                CompositionRasterizer().drawInto(*target, *drawn, exportViewport());
            },
        .picture = [target] { return *target; },
    };
    const auto fresh = std::make_shared<QImage>();
    const Contender own{
        .name = QStringLiteral("Framora, fresh target"),
        .run = [fresh, drawn] { *fresh = CompositionRasterizer().draw(*drawn, exportViewport()); },
        .picture = [fresh] { return *fresh; },
        .note = {},
        .prepare = [fresh] { *fresh = QImage(); },
    };
    return {touched, own};
}

Contender framoraDecode(const Inputs& inputs) {
    const QUrl url = QUrl::fromLocalFile(inputs.photographPath);
    const auto decoded = std::make_shared<QImage>();
    return {
        .name = QStringLiteral("Framora"),
        .run = [url, decoded] { *decoded = BackgroundDecoder::decode(url); },
        .picture = [decoded] { return *decoded; },
        .note = {},
        .prepare = [decoded] { *decoded = QImage(); },
    };
}

} // namespace framora::comparison
