#pragma once

#include "screencapture/portal/RawPicture.h"
#include "screencapture/portal/SessionBus.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace framora {

/// KWin's screenshot interface. A call carries a pipe; its reply tells the picture's shape, and the pixels
/// come through the pipe. KWin serves only programs whose desktop entry asks for it by
/// X-KDE-DBUS-Restricted-Interfaces; it knows them by their executable.
class KwinScreenshots {
public:
    /// One picture on its way. It must not be moved while it is: the bus knows its place.
    class Picture {
    public:
        Picture() = default;
        ~Picture();
        Picture(const Picture&) = delete;
        Picture& operator=(const Picture&) = delete;

        bool answered() const { return m_answered; }
        /// Set when KWin refused.
        const BusError& error() const { return m_error; }
        const RawPicture& shape() const { return m_shape; }
        /// KWin's identifier of the captured window, if it is one.
        const std::string& window() const { return m_window; }
        bool isWhole() const { return m_answered && !isRefused() && m_have == m_shape.byteCount(); }
        /// The received picture, once; null when there is none.
        std::unique_ptr<MemoryImage> take();

    private:
        friend class KwinScreenshots;
        bool isRefused() const { return !m_error.name.empty() || m_shape.byteCount() == 0; }
        bool makeRoom();
        bool readPart();

        bool m_answered = false;
        BusError m_error;
        RawPicture m_shape;
        std::string m_window;
        /// Where the bytes go: the picture itself where they are its pixels, else a place to unpack them
        /// from.
        std::unique_ptr<MemoryImage> m_image;
        std::unique_ptr<std::byte[]> m_bytes;
        std::size_t m_have = 0;
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
    /// Waits for the answers and the pixels of all, in whatever order KWin sends them. What is refused, or
    /// not answered long after another was, stays without a picture. False when none comes, or one does not
    /// come as announced.
    bool receive(std::span<Picture> pictures);

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
