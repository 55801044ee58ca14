#pragma once

#include <QByteArray>
#include <QPoint>
#include <QSize>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace framora {

/// What a copy of an output is answered with.
struct CopyAnswer {
    enum class Ending { Ready, Failed, Never };

    Ending ending = Ending::Ready;
    std::vector<std::uint32_t> formats{1}; ///< wl_shm.format, in the order they are offered; 1 is XRGB8888.
    std::optional<QSize> size;             ///< Offered instead of the output's mode.
    std::optional<std::uint32_t> stride;   ///< Offered instead of tight lines; screencopy alone names one.
    bool bottomUp = false;                 ///< Screencopy's y_invert.
    /// Failed once for the buffer's size, which is then told anew; image-copy-capture alone.
    bool newConstraints = false;
    /// Runs on the compositor's thread when the copy is asked for, before anything is answered.
    std::function<void()> asked;
};

/// One monitor of a ScriptedCompositor.
struct ScriptedOutput {
    QString name = QStringLiteral("ONE");
    QSize mode{320, 200}; ///< Pixels, before it is turned.
    QPoint position;      ///< Logical.
    int scale = 1;        ///< What wl_output says.
    int transform = 0;    ///< wl_output.transform.
    QSize logicalSize;    ///< What xdg-output says; where it is empty, the turned mode by the scale.
    CopyAnswer copy;
};

/// What a ScriptedCompositor offers and how it answers. A version of 0 is a global that is not there.
struct CompositorScript {
    enum Capability : std::uint32_t { Pointer = 1, Keyboard = 2 };

    std::vector<ScriptedOutput> outputs{ScriptedOutput()};
    int compositor = 4;
    int layerShell = 4;
    int output = 4;
    int xdgOutput = 3;
    int viewporter = 1;
    int screencopy = 3;
    int imageCopy = 0; ///< With its source of outputs.
    int seat = 7;
    std::uint32_t capabilities = Pointer | Keyboard;
    int extDataControl = 0;
    int wlrDataControl = 2;

    /// Layer surfaces are told this size, as often as they commit without one; nothing when it is never told.
    /// An invalid size is the output's own.
    std::optional<QSize> configure = QSize();
    /// Layer surfaces are closed instead of configured.
    bool closeSurfaces = false;
    /// Data-control devices are finished as soon as they are made.
    bool finishDevices = false;
    /// Sources for the clipboard are cancelled as soon as they are set.
    bool cancelSources = false;
    /// The keyboard's keymap as it is told; empty for a usual one.
    QByteArray keymap;
};

} // namespace framora
