#include "CairoSide.h"

#ifdef FRAMORA_COMPARE_CAIRO

#include <cairo.h>
#include <memory>
#include <numbers>

namespace framora::comparison {
namespace {

/// The picture's memory as Cairo's; both keep premultiplied 32 bits a pixel.
cairo_surface_t* surfaceOf(QImage& image) {
    return cairo_image_surface_create_for_data(image.bits(), CAIRO_FORMAT_ARGB32, image.width(),
                                               image.height(), int(image.bytesPerLine()));
}

void addStop(cairo_pattern_t* gradient, double offset, const Color& color) {
    cairo_pattern_add_color_stop_rgb(gradient, offset, color.red, color.green, color.blue);
}

void roundedRectangle(cairo_t* context, double width, double height, double radius) {
    constexpr double quarter = std::numbers::pi / 2;
    cairo_new_path(context);
    cairo_arc(context, width - radius, radius, radius, -quarter, 0);
    cairo_arc(context, width - radius, height - radius, radius, 0, quarter);
    cairo_arc(context, radius, height - radius, radius, quarter, 2 * quarter);
    cairo_arc(context, radius, radius, radius, 2 * quarter, 3 * quarter);
    cairo_close_path(context);
}

void drawWithCairo(QImage& target, QImage& screenshot, const ScreenshotStyleConfig& style,
                   const QTransform& map) {
    cairo_surface_t* const surface = surfaceOf(target);
    cairo_surface_t* const source = surfaceOf(screenshot);
    cairo_t* const context = cairo_create(surface);

    const QLineF line = gradientLine(style);
    cairo_pattern_t* const gradient = cairo_pattern_create_linear(line.x1(), line.y1(), line.x2(), line.y2());
    addStop(gradient, 0, style.gradientConfig.color1);
    addStop(gradient, 0.5, style.gradientConfig.color2);
    addStop(gradient, 1, style.gradientConfig.color3);
    cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
    cairo_set_source(context, gradient);
    cairo_paint(context);

    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, map.m11(), map.m12(), map.m21(), map.m22(), map.dx(), map.dy());
    cairo_set_matrix(context, &matrix);
    cairo_set_source_surface(context, source, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BILINEAR);
    cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
    roundedRectangle(context, screenshot.width(), screenshot.height(), style.borderRadius);
    cairo_fill(context);

    cairo_pattern_destroy(gradient);
    cairo_destroy(context);
    cairo_surface_destroy(source);
    cairo_surface_destroy(surface);
}

} // namespace

std::optional<Contender> cairoExport(const Inputs& inputs) {
    const auto target = std::make_shared<QImage>(outputSize, QImage::Format_ARGB32_Premultiplied);
    target->fill(Qt::black);
    const auto screenshot = std::make_shared<QImage>(inputs.screenshot.copy());
    const ScreenshotStyleConfig style = comparison::style(Workload::gradient, inputs);
    const QTransform map = screenshotToOutput(Workload::gradient, inputs);
    return Contender{
        .name = QStringLiteral("Cairo"),
        .run = [=] { drawWithCairo(*target, *screenshot, style, map); },
        .picture = [target] { return *target; },
    };
}

} // namespace framora::comparison

#else

namespace framora::comparison {

std::optional<Contender> cairoExport(const Inputs&) {
    return std::nullopt;
}

} // namespace framora::comparison

#endif
