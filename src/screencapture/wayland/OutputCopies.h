#pragma once

#include "screencapture/wayland/ScreenFreezer.h"
#include "screencapture/wayland/WaylandConnection.h"

#include <functional>

namespace framora {

/// The copy of one output on its way.
class OutputCopy {
public:
    virtual ~OutputCopy() = default;

    /// Nothing more comes.
    virtual bool settled() const = 0;
    /// The picture is there.
    virtual bool ready() const = 0;
    /// Null when the copy failed or is not of the output's size.
    virtual std::unique_ptr<PixelImage> take() = 0;
};

/// Copies all outputs at once and waits for them. An output that cannot be copied beside one that can is
/// switched off: it shows black. Empty when none can.
std::vector<std::unique_ptr<PixelImage>>
copyOutputs(WaylandConnection& connection, std::span<const Output> outputs,
            const std::function<std::unique_ptr<OutputCopy>(const Output&)>& begin);

} // namespace framora
