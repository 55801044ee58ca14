#pragma once

#include "screencapture/CaptureMode.h"
#include "screencapture/portal/SessionBus.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace framora {

/// The Screenshot interface of the desktop's portal, for one request.
///
/// The portal answers a request by a signal from an object whose path can be told beforehand, so that nothing
/// is missed. The answer says 0 and where the picture's file is, 1 when the user cancelled, 2 for everything
/// else: a stored denial, a denial just given, a fault of the desktop.
class ScreenshotPortal {
public:
    struct Request {
        /// Lets the user choose, and asks no permission where the portal is version 2 or later. Without it
        /// the portal takes the whole desktop, and asks for the permission where it has none.
        bool interactive = true;
        CaptureMode mode =
            CaptureMode::Area;       ///< of an interactive request, where the portal tells them apart
        std::string parentWindow;    ///< as portals name windows; empty for none
        std::string activationToken; ///< empty for none
    };
    struct Answer {
        enum class Kind {
            Picture,
            Cancelled,
            Denied,
            NotHere, ///< there is no such portal; nobody has been asked
            Failed,
        };
        Kind kind = Kind::NotHere;
        std::string uri; ///< of the picture
        std::string why; ///< one line for Denied, NotHere and Failed
    };

    explicit ScreenshotPortal(SessionBus& bus) : m_bus(bus) {}

    /// Blocks until there is an answer, however long the user takes. `asking` is called once when the user is
    /// about to see something: not with an answer that comes at once, as a stored denial's does.
    Answer ask(const Request& request, const std::function<void()>& asking);

private:
    struct Properties {
        uint32_t version = 0;
        uint32_t targets = 0; ///< a bit for each target that may be asked for; since version 3
    };
    /// What the portal's signal says.
    struct Response {
        uint32_t code = 0;
        std::string uri;
    };

    std::optional<Answer> find();
    std::optional<Answer> readProperties();
    BusReply send(const Request& request, const std::string& token, uint32_t target);
    std::optional<Answer> start(const Request& request, const std::string& token);
    BusSlot responseSlot(const std::string& handle);
    uint32_t targetOf(const Request& request) const;
    Answer answer() const;
    void closeRequest();

    static int onResponse(sd_bus_message* message, void* self, sd_bus_error*);
    static int onOwnerChanged(sd_bus_message* message, void* self, sd_bus_error*);

    SessionBus& m_bus;
    std::string m_owner; ///< the portal's unique name
    Properties m_properties;
    std::string m_handle; ///< the request's object
    std::optional<Response> m_response;
    bool m_ownerGone = false;
};

} // namespace framora
