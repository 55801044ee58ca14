#pragma once

#include <systemd/sd-bus.h>

#include <cstring>
#include <functional>

namespace framora {

/// Goes through an a{sv}, calling `entry` with each key while the message stands before its value, which is a
/// variant; true from it when it has read that. False when the message holds something else.
bool readDictionary(sd_bus_message* message, const std::function<bool(const char* key)>& entry);

/// The variant's value when it is of that type; the message stands behind it then, else where it stood.
template <typename Value> bool readVariant(sd_bus_message* message, const char* type, Value* value) {
    const char* contents = nullptr;
    return sd_bus_message_peek_type(message, nullptr, &contents) > 0 && contents &&
           std::strcmp(contents, type) == 0 && sd_bus_message_read(message, "v", type, value) > 0;
}

} // namespace framora
