#include "screencapture/portal/KwinScreenshots.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace framora {

namespace {

constexpr const char* kService = "org.kde.KWin.ScreenShot2";
constexpr const char* kPath = "/org/kde/KWin/ScreenShot2";

/// For all outputs together, the next frame of each included. KWin writes as fast as it is read.
constexpr std::chrono::milliseconds kTransferTime{3000};
/// A few turns a picture instead of hundreds.
constexpr int kPipeBytes = 1 << 20;

constexpr uint32_t kPickWindow = 0;

/// A value of the reply, when it has that type.
template <typename Value> bool readVariant(sd_bus_message* message, const char* type, Value* value) {
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, nullptr, &contents) > 0 && contents &&
        std::strcmp(contents, type) == 0)
        return sd_bus_message_read(message, "v", type, value) > 0;
    sd_bus_message_skip(message, "v");
    return false;
}

void readShape(sd_bus_message* message, RawPicture& shape, std::string& window) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") < 0)
        return;
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* key = nullptr;
        const char* text = nullptr;
        if (sd_bus_message_read(message, "s", &key) <= 0)
            return;
        if (std::strcmp(key, "width") == 0)
            readVariant(message, "u", &shape.width);
        else if (std::strcmp(key, "height") == 0)
            readVariant(message, "u", &shape.height);
        else if (std::strcmp(key, "stride") == 0)
            readVariant(message, "u", &shape.stride);
        else if (std::strcmp(key, "format") == 0)
            readVariant(message, "u", &shape.format);
        else if (std::strcmp(key, "scale") == 0)
            readVariant(message, "d", &shape.scale);
        else if (std::strcmp(key, "windowId") != 0)
            sd_bus_message_skip(message, "v");
        else if (readVariant(message, "s", &text))
            window = text;
        sd_bus_message_exit_container(message);
    }
}

} // namespace

KwinScreenshots::Picture::~Picture() {
    m_slot.reset();
    if (m_pipe >= 0)
        close(m_pipe);
}

BusMessage KwinScreenshots::newCall(const char* method) {
    return m_bus.newCall(kService, kPath, kService, method);
}

bool KwinScreenshots::send(BusMessage message, Picture& picture, const char* const* switches) {
    int ends[2];
    if (!message || pipe2(ends, O_CLOEXEC) != 0)
        return false;
    picture.m_pipe = ends[0];
    fcntl(ends[0], F_SETPIPE_SZ, kPipeBytes);
    sd_bus_message* const m = message.get();
    sd_bus_message_open_container(m, SD_BUS_TYPE_ARRAY, "{sv}");
    for (; *switches; ++switches)
        sd_bus_message_append(m, "{sv}", *switches, "b", 1);
    sd_bus_message_close_container(m);
    const bool filled = sd_bus_message_append(m, "h", ends[1]) >= 0; // It keeps a copy.
    close(ends[1]);
    sd_bus_slot* slot = nullptr;
    if (!filled || sd_bus_call_async(m_bus, &slot, m, onAnswer, &picture, UINT64_MAX) < 0)
        return false;
    picture.m_slot.reset(slot);
    return true;
}

int KwinScreenshots::onAnswer(sd_bus_message* message, void* data, sd_bus_error*) {
    auto& picture = *static_cast<Picture*>(data);
    picture.m_answered = true;
    if (const sd_bus_error* error = sd_bus_message_get_error(message))
        picture.m_error = {error->name ? error->name : "", error->message ? error->message : ""};
    else
        readShape(message, picture.m_shape, picture.m_window);
    return 0;
}

bool KwinScreenshots::permitted() {
    if (!m_bus.valid())
        return false;
    // Whether we may is asked before whether there is such an output.
    Picture probe;
    BusMessage message = newCall("CaptureScreen");
    sd_bus_message_append(message.get(), "s", "");
    const char* const none[] = {nullptr};
    return send(std::move(message), probe, none) &&
           waitForAnswer(probe, SessionBus::kReplyTime) == SessionBus::Turn::Condition &&
           probe.error().is("org.kde.KWin.ScreenShot2.Error.InvalidScreen");
}

bool KwinScreenshots::requestOutput(const std::string& name, Picture& picture) {
    BusMessage message = newCall("CaptureScreen");
    sd_bus_message_append(message.get(), "s", name.c_str());
    const char* const switches[] = {"native-resolution", nullptr};
    return send(std::move(message), picture, switches);
}

bool KwinScreenshots::requestPickedWindow(Picture& picture) {
    BusMessage message = newCall("CaptureInteractive");
    sd_bus_message_append(message.get(), "u", kPickWindow);
    const char* const switches[] = {"native-resolution", "include-decoration", nullptr};
    return send(std::move(message), picture, switches);
}

SessionBus::Turn KwinScreenshots::waitForAnswer(const Picture& picture, std::chrono::milliseconds limit) {
    return m_bus.run([&] { return picture.answered(); }, limit);
}

/// False when nothing more is wanted or will come.
bool KwinScreenshots::Picture::readPart() {
    if (refused())
        return false;
    // The shape may still be on its way; an honest picture is not much larger than the pipe then.
    const std::size_t expected = m_answered ? m_shape.byteCount() : m_bytes.size() + kPipeBytes;
    const std::size_t before = m_bytes.size();
    if (before >= expected)
        return false;
    m_bytes.resize(expected);
    const ssize_t count = read(m_pipe, m_bytes.data() + before, expected - before);
    m_bytes.resize(before + static_cast<std::size_t>(count > 0 ? count : 0));
    m_pipeEnded = count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN);
    return !m_pipeEnded;
}

bool KwinScreenshots::receive(std::span<Picture> pictures) {
    std::vector<SessionBus::Reader> readers;
    for (Picture& picture : pictures)
        readers.push_back({picture.m_pipe, [&picture] { return picture.readPart(); }});
    const auto settled = [](const Picture& picture) {
        return picture.refused() || picture.whole() || (picture.m_answered && picture.m_pipeEnded);
    };
    m_bus.run([&] { return std::ranges::all_of(pictures, settled); }, kTransferTime, std::move(readers));
    return std::ranges::all_of(pictures, &Picture::whole);
}

std::optional<KwinScreenshots::FrameSize> KwinScreenshots::frameSizeOf(const std::string& window) {
    const BusMessage question = m_bus.newCall("org.kde.KWin", "/KWin", "org.kde.KWin", "getWindowInfo");
    sd_bus_message_append(question.get(), "s", window.c_str());
    const BusReply reply = m_bus.call(question.get());
    if (!reply)
        return std::nullopt;
    sd_bus_message* const m = reply.message.get();
    FrameSize size;
    if (sd_bus_message_enter_container(m, SD_BUS_TYPE_ARRAY, "{sv}") < 0)
        return std::nullopt;
    while (sd_bus_message_enter_container(m, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* key = nullptr;
        if (sd_bus_message_read(m, "s", &key) <= 0)
            return std::nullopt;
        if (std::strcmp(key, "width") == 0)
            readVariant(m, "d", &size.width);
        else if (std::strcmp(key, "height") == 0)
            readVariant(m, "d", &size.height);
        else
            sd_bus_message_skip(m, "v");
        sd_bus_message_exit_container(m);
    }
    return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
}

} // namespace framora
