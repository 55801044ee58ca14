#include "settings/Settings.h"

#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"

#include <cmath>
#include <concepts>
#include <limits>
#include <nlohmann/json.hpp>

namespace framora {
namespace {

using Json = nlohmann::json;

const Json* member(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

bool read(const Json* value, bool& result) {
    if (!value || !value->is_boolean())
        return false;
    result = value->get<bool>();
    return true;
}

bool read(const Json* value, double& result) {
    if (!value || !value->is_number())
        return false;
    result = value->get<double>();
    return true;
}

template <std::unsigned_integral Unsigned> bool read(const Json* value, Unsigned& result) {
    // A whole number without sign, fraction or exponent, and within the type: nothing is rounded or wrapped.
    if (!value || !value->is_number_unsigned())
        return false;
    const auto number = value->get<std::uint64_t>();
    if (number > std::numeric_limits<Unsigned>::max())
        return false;
    result = static_cast<Unsigned>(number);
    return true;
}

bool read(const Json* value, CaptureSound& result) {
    if (!value || !value->is_string())
        return false;
    const auto sound = captureSoundFromRawValue(value->get_ref<const std::string&>());
    if (sound)
        result = *sound;
    return sound.has_value();
}

bool read(const Json* value, HotkeyConfiguration& result) {
    return value && value->is_object() && read(member(*value, "keyCode"), result.keyCode) &&
           read(member(*value, "modifierFlagsRaw"), result.modifiers);
}

Json json(const HotkeyConfiguration& hotkey) {
    return {{"keyCode", hotkey.keyCode}, {"modifierFlagsRaw", hotkey.modifiers}};
}

} // namespace

std::optional<std::string> Settings::encoded() const {
    if (!std::isfinite(soundEffectsVolume))
        return std::nullopt;
    const Json document{{"hotkey", json(hotkey)},
                        {"tabCaptureHotkey", json(tabCaptureHotkey)},
                        {"showDockIcon", showDockIcon},
                        {"copyToClipboard", copyToClipboard},
                        {"soundEffectsEnabled", soundEffectsEnabled},
                        {"soundEffectsVolume", soundEffectsVolume},
                        {"captureSound", std::string(rawValue(captureSound))}};
    return document.dump();
}

std::optional<Settings> Settings::decoded(const std::string& text) {
    const Json document = Json::parse(text, nullptr, false);
    if (!document.is_object())
        return std::nullopt;
    Settings result;
    const bool complete = read(member(document, "hotkey"), result.hotkey) &&
                          read(member(document, "tabCaptureHotkey"), result.tabCaptureHotkey) &&
                          read(member(document, "showDockIcon"), result.showDockIcon) &&
                          read(member(document, "copyToClipboard"), result.copyToClipboard) &&
                          read(member(document, "soundEffectsEnabled"), result.soundEffectsEnabled) &&
                          read(member(document, "soundEffectsVolume"), result.soundEffectsVolume) &&
                          read(member(document, "captureSound"), result.captureSound);
    return complete ? std::optional(result) : std::nullopt;
}

Settings Settings::load(const UserDefaults& defaults) {
    const auto stored = defaults.dataForKey(storeKey);
    return stored ? decoded(*stored).value_or(Settings{}) : Settings{};
}

void Settings::save(UserDefaults& defaults, NotificationCenter& notifications) const {
    const auto json = encoded();
    if (json && defaults.setData(storeKey, *json))
        notifications.post(framora::notifications::settingsChanged);
}

} // namespace framora
