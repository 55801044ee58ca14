#include "screencapture/portal/KwinScreenshots.h"

#include "screencapture/portal/BusDictionary.h"

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
/// For the others once one has answered: an output that is switched off has no next frame.
constexpr std::chrono::milliseconds kStragglerTime{1000};
/// A few turns a picture instead of hundreds.
constexpr int kPipeBytes = 1 << 20;

constexpr uint32_t kPickWindow = 0;

void readShape(sd_bus_message* message, RawPicture& shape, std::string& window) {
    readDictionary(message, [&](const char* key) {
        const char* text = nullptr;
        if (std::strcmp(key, "width") == 0)
            return readVariant(message, "u", &shape.width);
        if (std::strcmp(key, "height") == 0)
            return readVariant(message, "u", &shape.height);
        if (std::strcmp(key, "stride") == 0)
            return readVariant(message, "u", &shape.stride);
        if (std::strcmp(key, "format") == 0)
            return readVariant(message, "u", &shape.format);
        if (std::strcmp(key, "scale") == 0)
            return readVariant(message, "d", &shape.scale);
        if (std::strcmp(key, "windowId") != 0 || !readVariant(message, "s", &text))
            return false;
        window = text;
        return true;
    });
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

bool KwinScreenshots::Picture::makeRoom() {
    if (isRefused())
        return false;
    if (m_shape.isPlain())
        m_image = MemoryImage::create(static_cast<int>(m_shape.width), static_cast<int>(m_shape.height));
    else
        m_bytes = std::make_unique_for_overwrite<std::byte[]>(m_shape.byteCount());
    return m_image || m_bytes;
}

/// False when nothing more is wanted or will come.
bool KwinScreenshots::Picture::readPart() {
    std::byte* const begin = m_image ? reinterpret_cast<std::byte*>(m_image->row(0)) : m_bytes.get();
    const ssize_t count = read(m_pipe, begin + m_have, m_shape.byteCount() - m_have);
    if (count < 0 && errno == EINTR)
        return true;
    m_have += static_cast<std::size_t>(count > 0 ? count : 0);
    return count > 0 && !isWhole();
}

std::unique_ptr<MemoryImage> KwinScreenshots::Picture::take() {
    if (!isWhole())
        return nullptr;
    return m_image ? std::move(m_image) : m_shape.unpack({m_bytes.get(), m_have});
}

bool KwinScreenshots::receive(std::span<Picture> pictures) {
    // KWin answers before it writes, so no answer waits for a pipe to be read.
    const auto isAnswered = [](const Picture& picture) { return picture.m_answered && !picture.isRefused(); };
    const auto allHaveAnswered = [&] { return std::ranges::all_of(pictures, &Picture::m_answered); };
    auto turn = m_bus.run([&] { return allHaveAnswered() || std::ranges::any_of(pictures, isAnswered); },
                          kTransferTime);
    if (turn == SessionBus::Turn::Condition)
        turn = m_bus.run(allHaveAnswered, kStragglerTime);
    if (turn != SessionBus::Turn::Condition && turn != SessionBus::Turn::TimedOut)
        return false;
    // An answer that comes from here on is too late.
    std::vector<Picture*> coming;
    for (Picture& picture : pictures)
        if (isAnswered(picture))
            coming.push_back(&picture);
    if (coming.empty() || !std::ranges::all_of(coming, &Picture::makeRoom))
        return false;
    std::size_t open = coming.size();
    std::vector<SessionBus::Reader> readers;
    for (Picture* const picture : coming)
        readers.push_back({picture->m_pipe, [picture, &open] {
                               const bool more = picture->readPart();
                               open -= !more;
                               return more;
                           }});
    m_bus.run([&] { return open == 0; }, kTransferTime, std::move(readers));
    return std::ranges::all_of(coming, &Picture::isWhole);
}

std::optional<KwinScreenshots::FrameSize> KwinScreenshots::frameSizeOf(const std::string& window) {
    const BusMessage question = m_bus.newCall("org.kde.KWin", "/KWin", "org.kde.KWin", "getWindowInfo");
    sd_bus_message_append(question.get(), "s", window.c_str());
    const BusReply reply = m_bus.call(question.get());
    if (!reply)
        return std::nullopt;
    sd_bus_message* const m = reply.message.get();
    FrameSize size;
    readDictionary(m, [&](const char* key) {
        if (std::strcmp(key, "width") == 0)
            return readVariant(m, "d", &size.width);
        return std::strcmp(key, "height") == 0 && readVariant(m, "d", &size.height);
    });
    return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
}

} // namespace framora
