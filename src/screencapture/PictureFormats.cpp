#include "screencapture/PictureFormats.h"

#include "screencapture/XConnection.h"

namespace framora {

namespace {

bool isArgb(const xcb_render_pictforminfo_t& f) {
    return f.type == XCB_RENDER_PICT_TYPE_DIRECT && f.depth == 32 && f.direct.alpha_mask == 0xff &&
           f.direct.alpha_shift == 24 && f.direct.red_shift == 16 && f.direct.green_shift == 8 &&
           f.direct.blue_shift == 0;
}

} // namespace

PictureFormats PictureFormats::of(const XConnection& c) {
    PictureFormats result;
    if (!c.hasRender())
        return result;
    const auto reply = c.reply(xcb_render_query_pict_formats(c), xcb_render_query_pict_formats_reply);
    if (!reply)
        return result;
    auto formats = xcb_render_query_pict_formats_formats_iterator(reply.get());
    for (; formats.rem && !result.argb; xcb_render_pictforminfo_next(&formats))
        if (isArgb(*formats.data))
            result.argb = formats.data->id;
    auto screens = xcb_render_query_pict_formats_screens_iterator(reply.get());
    for (; screens.rem; xcb_render_pictscreen_next(&screens))
        for (auto depths = xcb_render_pictscreen_depths_iterator(screens.data); depths.rem;
             xcb_render_pictdepth_next(&depths))
            for (auto visuals = xcb_render_pictdepth_visuals_iterator(depths.data); visuals.rem;
                 xcb_render_pictvisual_next(&visuals))
                if (visuals.data->visual == c.screen().root_visual)
                    result.root = visuals.data->format;
    return result;
}

} // namespace framora
