#pragma once

#include "screencapture/wayland/Output.h"

#include <memory>
#include <vector>

struct zxdg_output_manager_v1;

namespace framora {

class WaylandConnection;

/// Every output of the compositor, and whether one of them changes.
class OutputList {
public:
    /// Asks for all; they are known after the connection's next roundtrip. One list at a time.
    explicit OutputList(WaylandConnection& connection);
    ~OutputList();
    OutputList(const OutputList&) = delete;
    OutputList& operator=(const OutputList&) = delete;

    /// Those that show something, as they are now. From here on, changed() tells about every change.
    std::vector<Output> take();
    bool changed() const { return m_changed; }

private:
    struct Entry;

    void touched() { m_changed = m_taken; }

    WaylandConnection& m_connection;
    std::vector<std::unique_ptr<Entry>> m_entries;
    zxdg_output_manager_v1* m_manager;
    bool m_taken = false;
    bool m_changed = false;
};

} // namespace framora
