#include "platform/x11/X11Pasteboard.h"

#include "platform/desktop/ClipboardKeeper.h"

#include <QClipboard>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <algorithm>
#include <string>
#include <utility>
#include <xcb/xfixes.h>

namespace framora {

namespace {

constexpr int answerMilliseconds = 5000;
/// Properties that take turns after an owner that did not answer.
constexpr std::size_t answerPlaces = 8;
/// Larger than any screen's picture; more is a broken or hostile owner.
constexpr qsizetype maximumBytes = qsizetype(512) << 20;
const QString pngType = QStringLiteral("image/png");

/// Null where Qt draws on no X server.
xcb_connection_t* connectionOfQt() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

/// Whether the clipboard's owner is Qt's clipboard at this moment. What Qt itself believes is as old as the
/// last event that it has taken.
bool isOwnedByQt(xcb_atom_t clipboard) {
    xcb_connection_t* const connection = connectionOfQt();
    if (!connection)
        return false;
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, clipboard), nullptr));
    // A window's number says which client made it.
    const auto* setup = xcb_get_setup(connection);
    return reply && reply->owner != XCB_NONE &&
           (reply->owner & ~setup->resource_id_mask) == setup->resource_id_base;
}

/// The server has done all that Qt asked of it, and Qt has got all that the server told it before.
void syncWithServer() {
    if (auto* connection = connectionOfQt()) {
        XcbReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
}

} // namespace

X11Pasteboard::X11Pasteboard(X11Connection& connection, DecodePicture decodePicture)
    : m_connection(connection), m_decodePicture(std::move(decodePicture)) {
    if (!connection.isValid())
        return;
    m_clipboard = connection.atom("CLIPBOARD");
    m_property = connection.atom("FRAMORA_CLIPBOARD");
    m_incr = connection.atom("INCR");
    m_targets = connection.atom("TARGETS");
    m_window = xcb_generate_id(connection);
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, connection.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);

    const auto* xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (xfixes && xfixes->present) {
        const XcbReply<xcb_xfixes_query_version_reply_t> version(
            xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 4, 0), nullptr));
        m_xfixesFirstEvent = xfixes->first_event;
        xcb_xfixes_select_selection_input(connection, m_window, m_clipboard,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    }
    connection.addEventHandler([this](const xcb_generic_event_t& event) { handleEvent(event); });
    connection.flush();

    m_untilQuit = std::make_unique<QObject>();
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, m_untilQuit.get(), [this] { handOver(); });
}

std::int64_t X11Pasteboard::changeCount() {
    m_connection.processEvents(true);
    if (!m_xfixesFirstEvent)
        lookAtOwner();
    return m_changeCount;
}

void X11Pasteboard::lookAtOwner() {
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, m_clipboard), nullptr));
    const xcb_window_t owner = reply ? reply->owner : xcb_window_t{XCB_NONE};
    if (owner != XCB_NONE && owner != m_seenOwner)
        ++m_changeCount;
    m_seenOwner = owner;
}

void X11Pasteboard::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7F;
    if (m_xfixesFirstEvent && type == m_xfixesFirstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (notify.selection != m_clipboard)
            return;
        if (notify.subtype == XCB_XFIXES_SELECTION_EVENT_SELECTION_CLIENT_CLOSE) {
            m_ownerIsGone = m_ownerIsAsked;
        } else if (notify.owner != XCB_NONE) {
            // An owner that only gives the clipboard up brings nothing new.
            ++m_changeCount;
            m_ownerIsAsked = false;
        }
    } else if (type == XCB_SELECTION_NOTIFY) {
        const auto& notify = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
        if (answersRequest(notify)) {
            m_answered = true;
            m_refused = notify.property == XCB_NONE;
        }
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (notify.window == m_window && notify.atom == m_property && notify.state == XCB_PROPERTY_NEW_VALUE)
            m_newChunk = true;
        if (notify.window == m_window)
            m_serverTime = notify.time;
    }
}

QImage X11Pasteboard::readImage() {
    // Our own content must not be asked for over the wire: nobody would answer while this thread waits.
    if (isOwnedByQt(m_clipboard)) {
        const auto* data = QGuiApplication::clipboard()->mimeData();
        return data ? m_decodePicture(data->data(pngType)) : QImage();
    }
    if (!m_connection.isValid() || m_window == 0)
        return {};

    const auto targets = offeredTargets();
    for (const char* type : {"image/png", "image/tiff", "image/webp", "image/bmp", "image/jpeg"}) {
        const auto target = m_connection.atom(type);
        if (std::find(targets.begin(), targets.end(), target) == targets.end())
            continue;
        if (QImage image = m_decodePicture(readTarget(target)); !image.isNull())
            return image;
    }
    return {};
}

std::vector<xcb_atom_t> X11Pasteboard::offeredTargets() {
    const QByteArray bytes = readTarget(m_targets);
    std::vector<xcb_atom_t> targets(static_cast<std::size_t>(bytes.size()) / sizeof(xcb_atom_t));
    std::copy_n(bytes.constData(), targets.size() * sizeof(xcb_atom_t),
                reinterpret_cast<char*>(targets.data()));
    return targets;
}

bool X11Pasteboard::waitUntil(const bool& done, int milliseconds) {
    const QDeadlineTimer timer(milliseconds);
    while (!done) {
        const auto left = static_cast<int>(timer.remainingTime());
        if (left <= 0 || m_ownerIsGone || !m_connection.isValid())
            return false;
        m_connection.waitForEvents(left);
    }
    return true;
}

QByteArray X11Pasteboard::takeProperty(xcb_atom_t& type) {
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection,
                               xcb_get_property(m_connection, true, m_window, m_property,
                                                XCB_GET_PROPERTY_TYPE_ANY, 0, maximumBytes / 4),
                               nullptr));
    type = reply ? reply->type : xcb_atom_t{XCB_ATOM_NONE};
    // The reply's wait may have read the next chunk's announcement already.
    m_connection.processEvents();
    if (!reply)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

bool X11Pasteboard::answersRequest(const xcb_selection_notify_event_t& notify) const {
    // Not every owner repeats the time of the question: some say the current one, or one of their own.
    return notify.requestor == m_window && notify.selection == m_clipboard &&
           notify.target == m_requestTarget &&
           (notify.property == m_property || notify.property == XCB_NONE) &&
           std::find(m_givenUp.begin(), m_givenUp.end(), notify.time) == m_givenUp.end();
}

void X11Pasteboard::giveUpRequest() {
    m_givenUp.push_back(m_requestTime);
    // Another place for the next answer.
    m_property = m_connection.atom("FRAMORA_CLIPBOARD_" + std::to_string(m_givenUp.size() % answerPlaces));
}

QByteArray X11Pasteboard::readTarget(xcb_atom_t target) {
    // A real time of the server, which a change of a property of ours tells.
    xcb_delete_property(m_connection, m_window, m_property);
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        "");
    m_connection.processEvents(true);

    m_answered = m_refused = m_ownerIsGone = false;
    m_ownerIsAsked = true;
    m_requestTime = m_serverTime;
    m_requestTarget = target;
    xcb_convert_selection(m_connection, m_window, m_clipboard, target, m_property, m_requestTime);
    if (!waitUntil(m_answered, answerMilliseconds)) {
        giveUpRequest();
        return {};
    }
    if (m_refused)
        return {};

    m_newChunk = false;
    xcb_atom_t type = XCB_ATOM_NONE;
    QByteArray bytes = takeProperty(type);
    if (type != m_incr)
        return bytes;

    bytes.clear();
    for (;;) {
        // The time limit is for each part: a large picture may take long, a dead owner may not.
        if (!waitUntil(m_newChunk, answerMilliseconds)) {
            giveUpRequest();
            return {};
        }
        m_newChunk = false;
        const QByteArray chunk = takeProperty(type);
        if (chunk.isEmpty())
            return bytes;
        if (bytes.size() + chunk.size() > maximumBytes)
            return {};
        bytes += chunk;
    }
}

void X11Pasteboard::handOver() {
    // Handing it to a clipboard manager is what Qt would do; but not every desktop runs one, and large
    // pictures do not arrive.
    const auto* data = isOwnedByQt(m_clipboard) ? QGuiApplication::clipboard()->mimeData() : nullptr;
    const QByteArray png = data ? data->data(pngType) : QByteArray();
    if (png.isEmpty())
        return;
    leaveWithClipboardKeeper(png);
    // Qt learns that it is the owner no more, and then asks no manager.
    syncWithServer();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void X11Pasteboard::writePng(const QByteArray& png) {
    // Where Qt's clipboard is another one, X11's is served from outside from the start.
    if (!connectionOfQt() && leaveWithClipboardKeeper(png))
        return;
    auto data = std::make_unique<QMimeData>();
    data->setData(pngType, png);
    QGuiApplication::clipboard()->setMimeData(data.release());
    // The server has to have seen it before our own connection asks for the count.
    syncWithServer();
    // Qt takes it as of the last event that it knows, and is refused where somebody took it after that.
    if (connectionOfQt() && !isOwnedByQt(m_clipboard))
        leaveWithClipboardKeeper(png);
}

} // namespace framora
