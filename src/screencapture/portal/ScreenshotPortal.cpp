#include "screencapture/portal/ScreenshotPortal.h"

#include "screencapture/portal/BusDictionary.h"

#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace framora {

namespace {

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kScreenshot = "org.freedesktop.portal.Screenshot";
constexpr const char* kRequest = "org.freedesktop.portal.Request";

/// Bits of AvailableTargets and values of the option "target".
constexpr uint32_t kWindowTarget = 2;
constexpr uint32_t kAreaTarget = 4;
constexpr uint32_t kTargetVersion = 3;

/// A portal that has just told its version lives; starting its backend may take a moment.
constexpr std::chrono::milliseconds kRequestTime{5000};

/// Nobody reads a dialog and answers it in this time: what is answered so soon was never asked.
constexpr std::chrono::milliseconds kUnseen{500};

/// Unlike any other request's of this connection, and hard to guess for other programs.
std::string newToken() {
    uint64_t random = 0;
    if (getrandom(&random, sizeof random, 0) != sizeof random)
        random = static_cast<uint64_t>(getpid());
    char text[40];
    std::snprintf(text, sizeof text, "framora%llx", static_cast<unsigned long long>(random));
    return text;
}

/// Where the portal puts the request that a connection calls `token`.
std::string predictedHandle(const std::string& connection, const std::string& token) {
    std::string sender = connection.substr(connection.starts_with(':') ? 1 : 0);
    std::ranges::replace(sender, '.', '_');
    return std::string(kPath) + "/request/" + sender + "/" + token;
}

void appendEntry(sd_bus_message* message, const char* key, const char* type, auto value) {
    sd_bus_message_append(message, "{sv}", key, type, value);
}

using Answer = ScreenshotPortal::Answer;

Answer notHere(std::string why) {
    return {Answer::Kind::NotHere, {}, std::move(why)};
}

Answer failed(std::string why) {
    return {Answer::Kind::Failed, {}, std::move(why)};
}

} // namespace

std::optional<Answer> ScreenshotPortal::find() {
    if (!m_bus.valid())
        return notHere("there is no session bus");
    m_owner = m_bus.ownerOf(kService);
    if (m_owner.empty())
        return notHere("the desktop has no portal");
    return readProperties();
}

std::optional<Answer> ScreenshotPortal::readProperties() {
    const BusMessage question = m_bus.newCall(m_owner, kPath, "org.freedesktop.DBus.Properties", "GetAll");
    sd_bus_message_append(question.get(), "s", kScreenshot);
    const BusReply reply = m_bus.call(question.get());
    if (!reply)
        return reply.error.timedOut() ? failed("the desktop's portal does not answer")
                                      : notHere("the desktop's portal takes no pictures");
    readDictionary(reply.message.get(), [&](const char* key) {
        if (std::strcmp(key, "version") == 0)
            return readVariant(reply.message.get(), "u", &m_properties.version);
        if (std::strcmp(key, "AvailableTargets") == 0)
            return readVariant(reply.message.get(), "u", &m_properties.targets);
        return false;
    });
    // A portal that has the interface says its version; one that has not may still answer, with nothing.
    if (m_properties.version == 0)
        return notHere("the desktop's portal takes no pictures");
    return std::nullopt;
}

uint32_t ScreenshotPortal::targetOf(const Request& request) const {
    if (!request.interactive || m_properties.version < kTargetVersion)
        return 0;
    return m_properties.targets & (request.mode == CaptureMode::Window ? kWindowTarget : kAreaTarget);
}

BusReply ScreenshotPortal::send(const Request& request, const std::string& token, uint32_t target) {
    const BusMessage message = m_bus.newCall(m_owner, kPath, kScreenshot, "Screenshot");
    sd_bus_message* const m = message.get();
    sd_bus_message_append(m, "s", request.parentWindow.c_str());
    sd_bus_message_open_container(m, SD_BUS_TYPE_ARRAY, "{sv}");
    appendEntry(m, "handle_token", "s", token.c_str());
    appendEntry(m, "interactive", "b", static_cast<int>(request.interactive));
    appendEntry(m, "modal", "b", static_cast<int>(!request.parentWindow.empty()));
    if (!request.activationToken.empty())
        appendEntry(m, "activation_token", "s", request.activationToken.c_str());
    if (target)
        appendEntry(m, "target", "u", target);
    sd_bus_message_close_container(m);
    return m_bus.call(m, kRequestTime);
}

BusSlot ScreenshotPortal::responseSlot(const std::string& handle) {
    sd_bus_slot* slot = nullptr;
    sd_bus_match_signal(m_bus, &slot, m_owner.c_str(), handle.c_str(), kRequest, "Response", onResponse,
                        this);
    return BusSlot(slot);
}

std::optional<Answer> ScreenshotPortal::start(const Request& request, const std::string& token) {
    const uint32_t target = targetOf(request);
    BusReply reply = send(request, token, target);
    // A portal that says it knows the target and then does not take it still lets the user choose.
    if (!reply && target && reply.error.is("org.freedesktop.portal.Error.InvalidArgument"))
        reply = send(request, token, 0);
    if (!reply) {
        if (m_ownerGone || reply.error.is("org.freedesktop.DBus.Error.NoReply"))
            return failed("the desktop's portal does not answer or has gone");
        if (reply.error.is("org.freedesktop.portal.Error.NotAllowed"))
            return Answer{Answer::Kind::Denied, {}, "the desktop does not allow pictures of the screen"};
        return failed(reply.error.timedOut() ? "the desktop's portal does not answer"
                                             : "the desktop's portal refuses: " + reply.error.text);
    }
    const char* handle = nullptr;
    if (sd_bus_message_read(reply.message.get(), "o", &handle) <= 0)
        return failed("the desktop's portal gave no request");
    m_handle = handle;
    return std::nullopt;
}

Answer ScreenshotPortal::answer() const {
    switch (m_response->code) {
    case 0:
        return m_response->uri.empty() ? failed("the desktop's portal names no picture")
                                       : Answer{Answer::Kind::Picture, m_response->uri, {}};
    case 1:
        return {Answer::Kind::Cancelled, {}, {}};
    default:
        return {Answer::Kind::Denied, {}, "the desktop did not allow a picture of the screen"};
    }
}

void ScreenshotPortal::closeRequest() {
    const BusMessage close = m_bus.newCall(m_owner, m_handle.c_str(), kRequest, "Close");
    m_bus.call(close.get());
}

Answer ScreenshotPortal::ask(const Request& request, const std::function<void()>& asking) {
    if (const auto missing = find())
        return *missing;
    const std::string token = newToken();
    m_handle = predictedHandle(m_bus.uniqueName(), token);
    sd_bus_slot* ownerSlot = nullptr;
    const std::string ownerRule = std::string("type='signal',sender='org.freedesktop.DBus',interface='org."
                                              "freedesktop.DBus',member='NameOwnerChanged',arg0='") +
                                  kService + "'";
    sd_bus_add_match(m_bus, &ownerSlot, ownerRule.c_str(), onOwnerChanged, this);
    const BusSlot owner(ownerSlot);
    const std::string predicted = m_handle;
    const BusSlot response = responseSlot(predicted);
    if (!owner || !response)
        return failed("the session bus has gone");

    if (const auto refused = start(request, token))
        return *refused;
    // Portals before version 0.9 chose the path themselves.
    const BusSlot otherResponse = m_handle == predicted ? BusSlot() : responseSlot(m_handle);

    const auto answered = [&] { return m_response || m_ownerGone; };
    auto turn = m_bus.run(answered, kUnseen);
    if (turn == SessionBus::Turn::TimedOut) {
        asking();
        turn = m_bus.run(answered);
    }
    if (m_response)
        return answer();
    if (turn == SessionBus::Turn::Ended) {
        closeRequest();
        return {Answer::Kind::Cancelled, {}, {}};
    }
    return failed(m_ownerGone ? "the desktop's portal has gone" : "the session bus has gone");
}

int ScreenshotPortal::onResponse(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& portal = *static_cast<ScreenshotPortal*>(self);
    Response response;
    if (portal.m_response || sd_bus_message_read(message, "u", &response.code) <= 0)
        return 0;
    readDictionary(message, [&](const char* key) {
        const char* uri = nullptr;
        if (std::strcmp(key, "uri") != 0 || !readVariant(message, "s", &uri))
            return false;
        response.uri = uri;
        return true;
    });
    portal.m_response = std::move(response);
    return 0;
}

int ScreenshotPortal::onOwnerChanged(sd_bus_message* message, void* self, sd_bus_error*) {
    auto& portal = *static_cast<ScreenshotPortal*>(self);
    const char* name = nullptr;
    const char* before = nullptr;
    if (sd_bus_message_read(message, "ss", &name, &before) > 0 && portal.m_owner == before)
        portal.m_ownerGone = true;
    return 0;
}

} // namespace framora
