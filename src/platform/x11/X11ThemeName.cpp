#include "platform/x11/X11ThemeName.h"

#include "platform/x11/XcbReply.h"

#include <QtEndian>
#include <optional>
#include <string>
#include <xcb/xcb.h>

namespace framora {
namespace {

/// Reads numbers and texts one after the other, each padded to four bytes; nothing past the end.
class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : m_bytes(bytes), m_bigEndian(!bytes.isEmpty() && bytes[0] != 0) {}

    bool skip(qsizetype count) {
        if (count < 0 || count > m_bytes.size() - m_position)
            return false;
        m_position += count;
        return true;
    }
    template <typename T> std::optional<T> number() {
        const qsizetype at = m_position;
        if (!skip(sizeof(T)))
            return std::nullopt;
        const void* from = m_bytes.constData() + at;
        return m_bigEndian ? qFromBigEndian<T>(from) : qFromLittleEndian<T>(from);
    }
    std::optional<QByteArray> text(qsizetype length) {
        const qsizetype at = m_position;
        if (!skip((length + 3) / 4 * 4))
            return std::nullopt;
        return m_bytes.mid(at, length);
    }

private:
    const QByteArray& m_bytes;
    bool m_bigEndian;
    qsizetype m_position = 0;
};

xcb_atom_t atom(xcb_connection_t* connection, const std::string& name) {
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, std::uint16_t(name.size()), name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QByteArray readProperty(xcb_connection_t* connection, int screen) {
    const xcb_atom_t selection = atom(connection, "_XSETTINGS_S" + std::to_string(screen));
    const xcb_atom_t property = atom(connection, "_XSETTINGS_SETTINGS");
    if (selection == XCB_ATOM_NONE || property == XCB_ATOM_NONE)
        return {};
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    if (!owner || owner->owner == XCB_NONE)
        return {};
    constexpr std::uint32_t mostWords = 64 * 1024;
    const XcbReply<xcb_get_property_reply_t> value(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, owner->owner, property, property, 0, mostWords),
        nullptr));
    if (!value)
        return {};
    return QByteArray(static_cast<const char*>(xcb_get_property_value(value.get())),
                      xcb_get_property_value_length(value.get()));
}

} // namespace

QString textInXSettings(const QByteArray& property, QByteArrayView wanted) {
    enum Type : std::uint8_t { integer = 0, string = 1, color = 2 };
    Reader reader(property);
    if (!reader.skip(8)) // Byte order and serial.
        return {};
    const auto count = reader.number<std::uint32_t>();
    for (std::uint32_t i = 0; count && i < *count; ++i) {
        const auto type = reader.number<std::uint8_t>();
        if (!type || !reader.skip(1))
            return {};
        const auto nameLength = reader.number<std::uint16_t>();
        const auto name = nameLength ? reader.text(*nameLength) : std::nullopt;
        if (!name || !reader.skip(4)) // The serial of its last change.
            return {};
        if (*type == string) {
            const auto length = reader.number<std::uint32_t>();
            const auto value = length ? reader.text(qsizetype(*length)) : std::nullopt;
            if (!value)
                return {};
            if (*name == wanted)
                return QString::fromUtf8(*value);
        } else if (*type > color || !reader.skip(*type == integer ? 4 : 8)) {
            return {};
        }
    }
    return {};
}

namespace {

QString x11Setting(QByteArrayView name) {
    int screen = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &screen);
    const QByteArray property =
        xcb_connection_has_error(connection) ? QByteArray() : readProperty(connection, screen);
    xcb_disconnect(connection);
    return textInXSettings(property, name);
}

} // namespace

QString x11ThemeName() {
    return x11Setting("Net/ThemeName");
}

QString x11SoundThemeName() {
    return x11Setting("Net/SoundThemeName");
}

} // namespace framora
