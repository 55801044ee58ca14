#include "screencapture/portal/BusDictionary.h"

namespace framora {

bool readDictionary(sd_bus_message* message, const std::function<bool(const char* key)>& entry) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") < 0)
        return false;
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* key = nullptr;
        if (sd_bus_message_read(message, "s", &key) <= 0)
            return false;
        if (!entry(key) && sd_bus_message_skip(message, "v") < 0)
            return false;
        if (sd_bus_message_exit_container(message) < 0)
            return false;
    }
    return sd_bus_message_exit_container(message) >= 0;
}

} // namespace framora
