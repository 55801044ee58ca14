#pragma once

#include <QColor>
#include <functional>
#include <optional>

class QWindow;

namespace framora {

/// Lets the user point at a pixel anywhere on the screen. Nothing here waits: answers come in a later turn of
/// the event loop, on the main thread, and not at all once the object is gone.
class ScreenColorPicker {
public:
    /// The pixel's colour, opaque; nothing when the user let it be.
    using Picked = std::function<void(std::optional<QColor>)>;
    /// Called instead where it could not be done.
    using Failed = std::function<void()>;

    virtual ~ScreenColorPicker() = default;
    virtual void queryAvailable(std::function<void(bool)> answer) = 0;
    /// In front of `parent`, which may be null. One that is under way ends first, with nothing.
    virtual void pick(QWindow* parent, Picked picked, Failed failed) = 0;
    /// Ends what is under way as if the user had let it be: the screen is free at once, `picked` is told of
    /// no colour.
    virtual void dismiss() = 0;
    /// Ends what is under way; nobody hears of it any more, nor of what has ended in this turn.
    virtual void cancel() = 0;
};

} // namespace framora
