#include "screencapture/wayland/PictureCut.h"

#include <cairo.h>

namespace framora {

namespace {

void copyExactly(const PixelImage& from, const Rect& monitor, const Rect& shared, const Rect& part,
                 MemoryImage& to) {
    for (int y = shared.y; y < shared.bottom(); ++y) {
        const uint32_t* source = from.row(y - monitor.y) + (shared.x - monitor.x);
        uint32_t* target = to.row(y - part.y) + (shared.x - part.x);
        // The fourth byte of an output's pixels means nothing.
        for (int x = 0; x < shared.width; ++x)
            target[x] = source[x] | 0xff000000U;
    }
}

void copyResampled(const PixelImage& from, const Rect& monitor, const Rect& shared, const Rect& part,
                   MemoryImage& to) {
    cairo_surface_t* target =
        cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(to.row(0)), CAIRO_FORMAT_ARGB32,
                                            to.width(), to.height(), static_cast<int>(to.strideBytes()));
    // Cairo only reads it.
    auto* pixels = const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(from.row(0)));
    cairo_surface_t* source = cairo_image_surface_create_for_data(
        pixels, CAIRO_FORMAT_RGB24, from.width(), from.height(), static_cast<int>(from.strideBytes()));
    cairo_t* cr = cairo_create(target);
    cairo_translate(cr, -part.x, -part.y);
    cairo_rectangle(cr, shared.x, shared.y, shared.width, shared.height);
    cairo_clip(cr);
    cairo_translate(cr, monitor.x, monitor.y);
    cairo_scale(cr, static_cast<double>(monitor.width) / from.width(),
                static_cast<double>(monitor.height) / from.height());
    cairo_set_source_surface(cr, source, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(source);
    cairo_surface_destroy(target);
}

} // namespace

std::unique_ptr<MemoryImage> cutPicture(const PixelSpace& space, std::span<const Output> outputs,
                                        std::span<const std::unique_ptr<PixelImage>> frozen,
                                        const Rect& asked) {
    // Holes between outputs stay, what lies beyond all of them does not.
    const Rect part = asked.intersected(boundingBox(space.monitors()));
    auto picture = part.empty() ? nullptr : MemoryImage::create(part.width, part.height);
    if (!picture)
        return nullptr;
    const auto add = [&](std::size_t i) {
        const Rect& monitor = space.monitors()[i];
        const Rect shared = part.intersected(monitor);
        if (shared.empty())
            return;
        (space.exact(i) ? copyExactly : copyResampled)(*frozen[i], monitor, shared, part, *picture);
    };
    for (std::size_t i = 0; i < outputs.size(); ++i)
        if (i != space.home())
            add(i);
    add(space.home());
    return picture;
}

} // namespace framora
