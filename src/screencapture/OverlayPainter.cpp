#include "screencapture/OverlayPainter.h"

#include <cmath>
#include <cstring>

namespace framora {

namespace {

// Points the highlight's glow reaches beyond the window.
constexpr int kGlow = 10;
constexpr double kAccent[] = {0.25, 0.55, 1.0};

/// Black at kDim over every channel, rounded as the server rounds it: what it dimmed and what is dimmed here
/// meet without a seam.
void dimRow(const uint32_t* from, uint32_t* to, int count) {
    constexpr uint32_t kPart = 255 - OverlayPainter::kDim;
    const auto pair = [](uint32_t channels) {
        const uint32_t t = (channels & 0xff00ffU) * kPart + 0x800080U;
        return (t + (t >> 8 & 0xff00ffU)) >> 8 & 0xff00ffU;
    };
    for (int i = 0; i < count; ++i)
        to[i] = pair(from[i]) | (pair(from[i] >> 8 & 0xffU) << 8);
}

/// The four sides of a box's frame that reaches `out` beyond it and `in` inside.
void addRing(std::vector<Rect>& to, const Rect& r, int out, int in) {
    const Rect o = r.grown(out);
    const int thick = out + in;
    to.push_back({o.x, o.y, o.width, thick});
    to.push_back({o.x, o.bottom() - thick, o.width, thick});
    to.push_back({o.x, o.y, thick, o.height});
    to.push_back({o.right() - thick, o.y, thick, o.height});
}

void addAll(std::vector<Rect>& to, const std::vector<Rect>& from) {
    to.insert(to.end(), from.begin(), from.end());
}

/// A box's frame of whole pixels, `thick` wide, inside the box.
void frameBox(cairo_t* cr, const Rect& r, int thick) {
    cairo_rectangle(cr, r.x, r.y, r.width, thick);
    cairo_rectangle(cr, r.x, r.bottom() - thick, r.width, thick);
    cairo_rectangle(cr, r.x, r.y + thick, thick, r.height - 2 * thick);
    cairo_rectangle(cr, r.right() - thick, r.y + thick, thick, r.height - 2 * thick);
    cairo_fill(cr);
}

} // namespace

OverlayPainter::OverlayPainter(const PixelImage& frozen, PixelImage& frame, double ratio)
    : OverlayPainter(frozen, frame, ratio, {0, 0, frame.width(), frame.height()}) {}

OverlayPainter::OverlayPainter(const PixelImage& frozen, PixelImage& frame, double ratio, const Rect& screen)
    : m_frozen(frozen), m_frame(frame), m_screen(screen), m_ratio(ratio),
      m_line(std::max(1, static_cast<int>(ratio))), m_label(ratio),
      m_surface(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(frame.row(0)),
                                                    CAIRO_FORMAT_RGB24, frame.width(), frame.height(),
                                                    static_cast<int>(frame.strideBytes()))),
      m_cairo(cairo_create(m_surface.get())) {}

std::vector<Rect> OverlayPainter::difference(const OverlayScene& before, const OverlayScene& after) const {
    std::vector<Rect> parts;
    if (before.selection != after.selection) {
        addAll(parts, subtracted({before.selection}, after.selection));
        addAll(parts, subtracted({after.selection}, before.selection));
        for (const Rect& selection : {before.selection, after.selection})
            if (!selection.empty())
                addRing(parts, selection, 2 * m_line, 2 * m_line);
    }
    if (before.highlight != after.highlight || before.inView != after.inView) {
        const int glow = static_cast<int>(std::ceil(kGlow * m_ratio)) + 1;
        for (const Rect& highlight : {before.highlight, after.highlight})
            if (!highlight.empty())
                parts.push_back(highlight.grown(glow));
    }
    if (before.guides != after.guides) {
        for (const auto& guides : {before.guides, after.guides}) {
            if (!guides)
                continue;
            const Rect& m = guides->monitor;
            parts.push_back({m.x, guides->at.y - m_line, m.width, 3 * m_line});
            parts.push_back({guides->at.x - m_line, m.y, 3 * m_line, m.height});
        }
    }
    if (before.label != after.label)
        for (const auto& label : {before.label, after.label})
            if (label)
                parts.push_back(label->box.grown(1));
    for (Rect& part : parts)
        part = part.intersected(bounds());
    std::erase_if(parts, [](const Rect& part) { return part.empty(); });
    return parts;
}

void OverlayPainter::paint(const OverlayScene& scene, const Rect& asked) {
    const Rect part = asked.intersected(bounds());
    if (part.empty())
        return;
    paintBase(scene, part);
    cairo_t* cr = m_cairo.get();
    cairo_surface_mark_dirty_rectangle(m_surface.get(), part.x, part.y, part.width, part.height);
    cairo_save(cr);
    cairo_rectangle(cr, part.x, part.y, part.width, part.height);
    cairo_clip(cr);
    if (scene.guides)
        paintGuides(cr, *scene.guides);
    if (!scene.highlight.empty())
        paintHighlight(cr, scene);
    if (!scene.selection.empty())
        paintSelection(cr, scene.selection);
    if (scene.label && scene.label->box.intersects(part))
        m_label.draw(cr, scene.label->box, scene.label->width, scene.label->height);
    cairo_restore(cr);
    cairo_surface_flush(m_surface.get());
}

void OverlayPainter::paintBase(const OverlayScene& scene, const Rect& part) {
    const auto& lit = scene.selection.empty() ? scene.inView : std::vector{scene.selection};
    std::vector<Rect> dimmed{part};
    for (const Rect& box : lit) {
        dimmed = subtracted(dimmed, box);
        const Rect bright = box.intersected(part);
        for (int y = bright.y; y < bright.bottom(); ++y)
            std::memcpy(m_frame.row(y) + bright.x, m_frozen.row(y) + bright.x,
                        static_cast<std::size_t>(bright.width) * 4);
    }
    for (const Rect& box : dimmed)
        for (int y = box.y; y < box.bottom(); ++y)
            dimRow(m_frozen.row(y) + box.x, m_frame.row(y) + box.x, box.width);
}

void OverlayPainter::paintSelection(cairo_t* cr, const Rect& selection) const {
    // White around the picked pixels, dark around the white: crisp on any picture. At the screen's edge the
    // line moves inside, as it would be lost outside.
    const Rect dark = selection.grown(2 * m_line).intersected(m_screen);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.35);
    frameBox(cr, dark, m_line);
    const Rect white = selection.grown(m_line).intersected(m_screen);
    cairo_set_source_rgba(cr, 1, 1, 1, 0.95);
    frameBox(cr, white, m_line);
}

void OverlayPainter::paintHighlight(cairo_t* cr, const OverlayScene& scene) const {
    const Rect shown = scene.highlight.intersected(m_screen);
    cairo_set_source_rgba(cr, kAccent[0], kAccent[1], kAccent[2], 0.24);
    for (const Rect& part : scene.inView)
        cairo_rectangle(cr, part.x, part.y, part.width, part.height);
    cairo_fill(cr);
    // The glow: rings that fade outwards.
    const int reach = static_cast<int>(std::lround(kGlow * m_ratio));
    for (int i = 1; i <= reach; ++i) {
        const double away = static_cast<double>(i) / (reach + 1);
        cairo_set_source_rgba(cr, kAccent[0], kAccent[1], kAccent[2], 0.5 * (1 - away) * (1 - away));
        cairo_rectangle(cr, shown.x - i + 0.5, shown.y - i + 0.5, shown.width + 2 * i - 1,
                        shown.height + 2 * i - 1);
        cairo_set_line_width(cr, 1);
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
        cairo_stroke(cr);
    }
    cairo_set_source_rgba(cr, kAccent[0], kAccent[1], kAccent[2], 1);
    frameBox(cr, shown, 2 * m_line);
}

void OverlayPainter::paintGuides(cairo_t* cr, const OverlayScene::Guides& guides) const {
    const Rect& m = guides.monitor;
    const auto lines = [&](int at, int thick) {
        cairo_rectangle(cr, m.x, guides.at.y + at, m.width, thick);
        cairo_fill(cr);
        cairo_rectangle(cr, guides.at.x + at, m.y, thick, m.height);
        cairo_fill(cr);
    };
    cairo_rectangle(cr, m.x, m.y, m.width, m.height);
    cairo_clip(cr);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.42);
    lines(-m_line, 3 * m_line);
    cairo_set_source_rgba(cr, 1, 1, 1, 0.82);
    lines(0, m_line);
}

} // namespace framora
