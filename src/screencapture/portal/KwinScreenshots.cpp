#include "screencapture/portal/KwinScreenshots.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace framora {

namespace {

constexpr const char* kService = "org.kde.KWin.ScreenShot2";
constexpr const char* kPath = "/org/kde/KWin/ScreenShot2";

/// KWin writes as fast as it is read; a pause this long is its end.
constexpr int kPauseMilliseconds = 2000;

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

void readShape(sd_bus_message* message, KwinScreenshots::Picture& picture) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") < 0)
        return;
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* key = nullptr;
        const char* text = nullptr;
        if (sd_bus_message_read(message, "s", &key) <= 0)
            return;
        if (std::strcmp(key, "width") == 0)
            readVariant(message, "u", &picture.shape.width);
        else if (std::strcmp(key, "height") == 0)
            readVariant(message, "u", &picture.shape.height);
        else if (std::strcmp(key, "stride") == 0)
            readVariant(message, "u", &picture.shape.stride);
        else if (std::strcmp(key, "format") == 0)
            readVariant(message, "u", &picture.shape.format);
        else if (std::strcmp(key, "scale") == 0)
            readVariant(message, "d", &picture.shape.scale);
        else if (std::strcmp(key, "windowId") == 0 && readVariant(message, "s", &text))
            picture.window = text;
        else if (std::strcmp(key, "windowId") != 0)
            sd_bus_message_skip(message, "v");
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
    picture.answered = true;
    if (const sd_bus_error* error = sd_bus_message_get_error(message))
        picture.error = {error->name ? error->name : "", error->message ? error->message : ""};
    else
        readShape(message, picture);
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
           probe.error.is("org.kde.KWin.ScreenShot2.Error.InvalidScreen");
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
    return m_bus.run([&] { return picture.answered; }, limit);
}

bool KwinScreenshots::readPixels(Picture& picture) {
    const std::size_t expected = picture.error.name.empty() ? picture.shape.byteCount() : 0;
    if (expected == 0)
        return false;
    picture.bytes.resize(expected);
    std::size_t have = 0;
    while (have < expected) {
        pollfd waiting{picture.m_pipe, POLLIN, 0};
        if (const int ready = poll(&waiting, 1, kPauseMilliseconds); ready <= 0) {
            if (ready < 0 && errno == EINTR)
                continue;
            return false;
        }
        const ssize_t count = read(picture.m_pipe, picture.bytes.data() + have, expected - have);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        have += static_cast<std::size_t>(count);
    }
    return true;
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
