#pragma once

#include "screencapture/portal/RawPicture.h"
#include "screencapture/portal/SessionBus.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace framora {

/// KWin's screenshot interface. A call carries a pipe; its reply tells the picture's shape, and the pixels
/// come through the pipe. KWin serves only programs whose desktop entry asks for it by
/// X-KDE-DBUS-Restricted-Interfaces; it knows them by their executable.
class KwinScreenshots {
public:
    /// One picture on its way. It must not be moved while it is: the bus knows its place.
    struct Picture {
        Picture() = default;
        ~Picture();
        Picture(const Picture&) = delete;
        Picture& operator=(const Picture&) = delete;

        std::unique_ptr<MemoryImage> unpack() const { return shape.unpack(bytes); }

        bool answered = false;
        BusError error; ///< set when KWin refused
        RawPicture shape;
        std::string window; ///< KWin's identifier of the captured window, if it is one
        std::vector<std::byte> bytes;

    private:
        friend class KwinScreenshots;
        int m_pipe = -1;
        BusSlot m_slot;
    };

    explicit KwinScreenshots(SessionBus& bus) : m_bus(bus) {}

    /// Whether KWin runs, has the interface and lets us use it. Nothing is shown or captured.
    bool permitted();

    /// Asks for an output as it is now, without the pointer, in its own pixels. The pictures of several
    /// outputs are asked for together and then waited for.
    bool requestOutput(const std::string& name, Picture& picture);
    /// Lets the user pick a window, with its decoration. KWin shows what to do.
    bool requestPickedWindow(Picture& picture);
    /// Waits for KWin's answer; however long without a limit.
    SessionBus::Turn waitForAnswer(const Picture& picture, std::chrono::milliseconds limit = {});
    /// Reads the pixels of an answered picture. False when they do not come as announced.
    bool readPixels(Picture& picture);

    /// Size of a window with its frame and without its shadow, in logical pixels, as KWin tells it.
    struct FrameSize {
        double width = 0;
        double height = 0;
    };
    std::optional<FrameSize> frameSizeOf(const std::string& window);

private:
    BusMessage newCall(const char* method);
    bool send(BusMessage message, Picture& picture, const char* const* switches);

    static int onAnswer(sd_bus_message* message, void* picture, sd_bus_error*);

    SessionBus& m_bus;
};

} // namespace framora
