#include "screencapture/SingleInstance.h"

#include "screencapture/XConnection.h"

namespace framora {

bool claimSingleInstance(const XConnection& c) {
    if (c.selectionOwned(c.atoms().instance))
        return false;
    // Two that come at the same moment both get here; the pointer grab then lets one of them through.
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, c.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, c.atoms().instance, XCB_CURRENT_TIME);
    return true;
}

} // namespace framora
