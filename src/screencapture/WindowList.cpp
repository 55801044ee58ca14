#include "screencapture/WindowList.h"

#include "screencapture/XConnection.h"

#include <array>
#include <span>
#include <xcb/shape.h>

namespace framora {

namespace {

// Windows smaller than this (pixels) are helpers of a window manager, not things to take pictures of.
constexpr int kSpeck = 6;
// How far below its frame a client window is looked for, and among how many siblings.
constexpr int kFrameLevels = 4;
constexpr std::size_t kMostSiblings = 64;

struct Raw {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_shape_query_extents_cookie_t extents;
    xcb_shape_get_rectangles_cookie_t input;
};

/// The window that belongs to a program inside a frame, with its place in the frame.
struct Client {
    xcb_window_t window = XCB_WINDOW_NONE;
    Point offset;
};

std::vector<Rect> rectanglesOf(const xcb_shape_get_rectangles_reply_t* reply, Point origin) {
    std::vector<Rect> result;
    const auto* rects = xcb_shape_get_rectangles_rectangles(reply);
    for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply); ++i)
        result.push_back({origin.x + rects[i].x, origin.y + rects[i].y, rects[i].width, rects[i].height});
    return result;
}

bool isManaged(const XConnection& c, xcb_get_property_cookie_t cookie) {
    const auto state = c.reply(cookie, xcb_get_property_reply);
    return state && state->type != XCB_ATOM_NONE;
}

Client findClient(const XConnection& c, xcb_window_t frame) {
    std::vector<Client> level{{frame, {}}};
    for (int depth = 0; depth < kFrameLevels && !level.empty(); ++depth) {
        std::vector<xcb_get_property_cookie_t> states;
        std::vector<xcb_query_tree_cookie_t> trees;
        for (const Client& candidate : level) {
            states.push_back(
                xcb_get_property(c, 0, candidate.window, c.atoms().wmState, XCB_GET_PROPERTY_TYPE_ANY, 0, 0));
            trees.push_back(xcb_query_tree(c, candidate.window));
        }
        Client found;
        std::vector<Client> next;
        for (std::size_t i = 0; i < level.size(); ++i) {
            if (isManaged(c, states[i]) && !found.window)
                found = level[i];
            const auto tree = c.reply(trees[i], xcb_query_tree_reply);
            if (!tree || found.window)
                continue;
            const std::span children(xcb_query_tree_children(tree.get()),
                                     static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
            for (const xcb_window_t child : children.first(std::min(children.size(), kMostSiblings)))
                next.push_back({child, {}});
        }
        if (found.window) {
            const auto at = c.reply(xcb_translate_coordinates(c, found.window, frame, 0, 0),
                                    xcb_translate_coordinates_reply);
            if (at)
                found.offset = {at->dst_x, at->dst_y};
            return found;
        }
        level = std::move(next);
    }
    return {frame, {}};
}

bool isDesktop(const XConnection& c, xcb_window_t client) {
    const auto type = c.reply(xcb_get_property(c, 0, client, c.atoms().windowType, XCB_ATOM_ATOM, 0, 16),
                              xcb_get_property_reply);
    if (!type || type->format != 32)
        return false;
    const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(type.get()));
    const auto count = static_cast<std::size_t>(xcb_get_property_value_length(type.get())) / 4;
    return std::find(atoms, atoms + count, c.atoms().windowTypeDesktop) != atoms + count;
}

/// The client's box without its shadow margins, in root coordinates; `outer` where it has none.
Rect withoutMargins(const XConnection& c, const Client& client, const Rect& outer, int frameBorder) {
    const auto property =
        c.reply(xcb_get_property(c, 0, client.window, c.atoms().frameExtents, XCB_ATOM_CARDINAL, 0, 4),
                xcb_get_property_reply);
    if (!property || property->format != 32 || xcb_get_property_value_length(property.get()) != 16)
        return outer;
    const auto geometry = c.reply(xcb_get_geometry(c, client.window), xcb_get_geometry_reply);
    if (!geometry)
        return outer;
    const auto* extents = static_cast<const uint32_t*>(xcb_get_property_value(property.get()));
    std::array<int, 4> margin{}; // left, right, top, bottom
    for (std::size_t i = 0; i < margin.size(); ++i)
        margin[i] = static_cast<int>(std::min<uint32_t>(extents[i], 1024));
    if (margin == std::array<int, 4>{})
        return outer;
    const Rect box{outer.x + frameBorder + client.offset.x + margin[0],
                   outer.y + frameBorder + client.offset.y + margin[2],
                   geometry->width - margin[0] - margin[1], geometry->height - margin[2] - margin[3]};
    const Rect kept = box.intersected(outer);
    return kept.empty() ? outer : kept;
}

} // namespace

bool TopLevel::covers(Point p) const {
    if (!visible.contains(p))
        return false;
    return shape.empty() ||
           std::any_of(shape.begin(), shape.end(), [p](const Rect& part) { return part.contains(p); });
}

WindowList WindowList::scan(const XConnection& c, xcb_window_t except) {
    WindowList list;
    const auto tree = c.reply(xcb_query_tree(c, c.root()), xcb_query_tree_reply);
    if (!tree)
        return list;
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    std::vector<Raw> raws;
    for (const xcb_window_t window : children) {
        if (window == except)
            continue;
        Raw raw{window, xcb_get_window_attributes(c, window), xcb_get_geometry(c, window), {}, {}};
        if (c.hasShape()) {
            raw.extents = xcb_shape_query_extents(c, window);
            raw.input = xcb_shape_get_rectangles(c, window, XCB_SHAPE_SK_INPUT);
        }
        raws.push_back(raw);
    }
    for (const Raw& raw : raws) {
        const auto attributes = c.reply(raw.attributes, xcb_get_window_attributes_reply);
        const auto geometry = c.reply(raw.geometry, xcb_get_geometry_reply);
        const auto extents = c.hasShape() ? c.reply(raw.extents, xcb_shape_query_extents_reply) : nullptr;
        const auto input = c.hasShape() ? c.reply(raw.input, xcb_shape_get_rectangles_reply) : nullptr;
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            continue;
        TopLevel top;
        top.window = raw.window;
        top.depth = geometry->depth;
        top.visual = attributes->visual;
        const int border = geometry->border_width;
        top.outer = {geometry->x, geometry->y, geometry->width + 2 * border, geometry->height + 2 * border};
        top.selectable = top.outer.width >= kSpeck && top.outer.height >= kSpeck;
        if (input && xcb_shape_get_rectangles_rectangles_length(input.get()) == 0)
            top.selectable = false;
        if (extents && extents->bounding_shaped) {
            const auto shape = c.reply(xcb_shape_get_rectangles(c, raw.window, XCB_SHAPE_SK_BOUNDING),
                                       xcb_shape_get_rectangles_reply);
            if (shape)
                top.shape = rectanglesOf(shape.get(), {top.outer.x + border, top.outer.y + border});
            if (top.shape.empty())
                top.selectable = false;
        }
        top.visible = top.outer;
        const bool lowest = list.m_windows.empty();
        if (attributes->override_redirect && lowest && top.outer.contains(c.rootRect()))
            top.selectable = false; // a desktop that no window manager knows
        if (top.selectable) {
            const Client client = findClient(c, raw.window);
            top.visible = withoutMargins(c, client, top.outer, border);
            top.selectable = !isDesktop(c, client.window);
        }
        list.m_windows.push_back(std::move(top));
    }
    return list;
}

const TopLevel* WindowList::at(Point p) const {
    const auto found = std::find_if(m_windows.rbegin(), m_windows.rend(), [p](const TopLevel& window) {
        return window.selectable && window.covers(p);
    });
    return found == m_windows.rend() ? nullptr : &*found;
}

std::vector<Rect> WindowList::inView(const TopLevel& window) const {
    std::vector<Rect> parts;
    for (const Rect& part : window.shape.empty() ? std::vector{window.visible} : window.shape)
        if (const Rect seen = part.intersected(window.visible); !seen.empty())
            parts.push_back(seen);
    bool above = false;
    for (const TopLevel& other : m_windows) {
        if (above && other.selectable)
            for (const Rect& cover : other.shape.empty() ? std::vector{other.visible} : other.shape)
                parts = subtracted(parts, cover);
        above = above || other.window == window.window;
    }
    return parts;
}

std::vector<Rect> WindowList::uncovered(const TopLevel& window, const Rect& screen) const {
    std::vector<Rect> parts{window.outer.intersected(screen)};
    bool above = false;
    for (const TopLevel& other : m_windows) {
        if (above)
            parts = subtracted(parts, other.outer);
        above = above || other.window == window.window;
    }
    std::erase_if(parts, [](const Rect& part) { return part.empty(); });
    return parts;
}

} // namespace framora
