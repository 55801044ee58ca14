#include "settings/Settings.h"

#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "support/MemoryDefaults.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>

namespace framora {
namespace {

using Json = nlohmann::json;

Json defaultDocument() {
    return Json::parse(R"({"hotkey": {"keyCode": 21, "modifierFlagsRaw": 655360},
        "tabCaptureHotkey": {"keyCode": 17, "modifierFlagsRaw": 655360}, "showDockIcon": true,
        "copyToClipboard": true, "soundEffectsEnabled": true, "soundEffectsVolume": 0.5,
        "captureSound": "Frog"})");
}

/// Differs from the defaults in every field.
Json otherDocument() {
    return Json::parse(R"({"hotkey": {"keyCode": 65535, "modifierFlagsRaw": 18446744073709551615},
        "tabCaptureHotkey": {"keyCode": 0, "modifierFlagsRaw": 0}, "showDockIcon": false,
        "copyToClipboard": false, "soundEffectsEnabled": false, "soundEffectsVolume": 0.25,
        "captureSound": "Hero"})");
}

Settings otherSettings() {
    return {{65535, std::numeric_limits<std::uint64_t>::max()},
            {0, 0},
            false,
            false,
            false,
            0.25,
            CaptureSound::hero};
}

Settings loadedFrom(const std::string& text) {
    MemoryDefaults defaults;
    defaults.values["Settings"] = text;
    return Settings::load(defaults);
}

class SettingsTest : public testing::Test {
protected:
    MemoryDefaults defaults;
    NotificationCenter notifications;
    int changes = 0;
    NotificationCenter::Token token =
        notifications.observe(notifications::settingsChanged, [this] { ++changes; });
};

TEST_F(SettingsTest, anEmptyStoreGivesTheDefaults) {
    const Settings settings = Settings::load(defaults);
    EXPECT_EQ(settings.hotkey, (HotkeyConfiguration{21, 0xA0000}));
    EXPECT_EQ(settings.tabCaptureHotkey, (HotkeyConfiguration{17, 0xA0000}));
    EXPECT_TRUE(settings.showDockIcon);
    EXPECT_TRUE(settings.copyToClipboard);
    EXPECT_TRUE(settings.soundEffectsEnabled);
    EXPECT_EQ(settings.soundEffectsVolume, 0.5);
    EXPECT_EQ(settings.captureSound, CaptureSound::frog);
}

TEST_F(SettingsTest, theDefaultsAreStoredUnderTheirNames) {
    Settings{}.save(defaults, notifications);
    EXPECT_EQ(Json::parse(defaults.values.at("Settings")), defaultDocument());
}

TEST_F(SettingsTest, everyFieldIsReadAndWritten) {
    EXPECT_EQ(loadedFrom(otherDocument().dump()), otherSettings());
    otherSettings().save(defaults, notifications);
    EXPECT_EQ(Json::parse(defaults.values.at("Settings")), otherDocument());
}

TEST_F(SettingsTest, everyModifierBitSurvives) {
    for (int bit = 0; bit < 64; ++bit) {
        Settings settings;
        settings.hotkey.modifiers = std::uint64_t{1} << bit;
        settings.tabCaptureHotkey.modifiers = ~settings.hotkey.modifiers;
        settings.save(defaults, notifications);
        EXPECT_EQ(Settings::load(defaults), settings) << "bit " << bit;
    }
}

TEST_F(SettingsTest, volumesSurviveToTheLastBit) {
    for (const double volume :
         {0.0, 0.1, 1.0 / 3, 0.7000000000000001, std::nextafter(1.0, 0.0), 1.0, 5e-324, 2.5e-17}) {
        Settings settings;
        settings.soundEffectsVolume = volume;
        settings.save(defaults, notifications);
        EXPECT_EQ(Settings::load(defaults).soundEffectsVolume, volume);
    }
}

TEST_F(SettingsTest, everySoundSurvives) {
    for (const auto sound : allCaptureSounds) {
        Settings settings;
        settings.captureSound = sound;
        settings.save(defaults, notifications);
        EXPECT_EQ(Settings::load(defaults).captureSound, sound);
    }
}

TEST_F(SettingsTest, recordsDifferByAnyField) {
    const Settings other = otherSettings();
    const std::vector<std::function<void(Settings&)>> changesOfOneField{
        [&](Settings& s) { s.hotkey.keyCode = other.hotkey.keyCode; },
        [&](Settings& s) { s.hotkey.modifiers |= 1; },
        [&](Settings& s) { s.tabCaptureHotkey = other.tabCaptureHotkey; },
        [&](Settings& s) { s.showDockIcon = false; },
        [&](Settings& s) { s.copyToClipboard = false; },
        [&](Settings& s) { s.soundEffectsEnabled = false; },
        [&](Settings& s) { s.soundEffectsVolume = std::nextafter(0.5, 1.0); },
        [&](Settings& s) { s.captureSound = CaptureSound::pop; },
    };
    for (const auto& change : changesOfOneField) {
        Settings settings;
        change(settings);
        EXPECT_NE(settings, Settings{});
    }
}

TEST_F(SettingsTest, aMissingMemberGivesTheDefaultsWhole) {
    const Json whole = otherDocument();
    for (const auto& [name, value] : whole.items()) {
        Json document = otherDocument();
        document.erase(name);
        EXPECT_EQ(loadedFrom(document.dump()), Settings{}) << name;
    }
    for (const char* shortcut : {"hotkey", "tabCaptureHotkey"}) {
        for (const char* name : {"keyCode", "modifierFlagsRaw"}) {
            Json document = otherDocument();
            document[shortcut].erase(name);
            EXPECT_EQ(loadedFrom(document.dump()), Settings{}) << shortcut << "." << name;
        }
    }
}

TEST_F(SettingsTest, aValueOfAnotherTypeOrOutOfRangeGivesTheDefaultsWhole) {
    const std::vector<std::pair<std::string, const char*>> bad{
        {"/hotkey", "21"},
        {"/hotkey", "null"},
        {"/hotkey", "[21, 655360]"},
        {"/hotkey/keyCode", "65536"},
        {"/hotkey/keyCode", "-1"},
        {"/hotkey/keyCode", "21.5"},
        {"/hotkey/keyCode", "\"21\""},
        {"/hotkey/keyCode", "true"},
        {"/tabCaptureHotkey/keyCode", "null"},
        {"/hotkey/modifierFlagsRaw", "-1"},
        {"/hotkey/modifierFlagsRaw", "18446744073709551616"},
        {"/tabCaptureHotkey/modifierFlagsRaw", "\"655360\""},
        {"/showDockIcon", "1"},
        {"/showDockIcon", "\"true\""},
        {"/copyToClipboard", "0"},
        {"/soundEffectsEnabled", "null"},
        {"/soundEffectsVolume", "\"0.5\""},
        {"/soundEffectsVolume", "true"},
        {"/soundEffectsVolume", "null"},
        {"/captureSound", "\"frog\""},
        {"/captureSound", "\"Glass\""},
        {"/captureSound", "\"Frog \""},
        {"/captureSound", "\"\""},
        {"/captureSound", "3"},
    };
    for (const auto& [path, value] : bad) {
        Json document = otherDocument();
        document[Json::json_pointer(path)] = Json::parse(value);
        EXPECT_EQ(loadedFrom(document.dump()), Settings{}) << path << " = " << value;
    }
}

TEST_F(SettingsTest, aWholeNumberIsAVolume) {
    Json document = otherDocument();
    document["soundEffectsVolume"] = 1;
    EXPECT_EQ(loadedFrom(document.dump()).soundEffectsVolume, 1.0);
}

TEST_F(SettingsTest, membersOfOtherNamesAreIgnored) {
    Json document = otherDocument();
    document["future"] = {1, 2, 3};
    EXPECT_EQ(loadedFrom(document.dump()), otherSettings());
}

TEST_F(SettingsTest, whatIsNoDocumentGivesTheDefaultsAndStaysStored) {
    const std::string cut = otherDocument().dump();
    for (const std::string& text :
         {std::string(), std::string("{"), cut.substr(0, cut.size() - 1), cut + "}", std::string("[]"),
          std::string("null"), std::string("\"Frog\""), std::string("\xff\xfe")}) {
        defaults.values["Settings"] = text;
        EXPECT_EQ(Settings::load(defaults), Settings{}) << text;
        EXPECT_EQ(defaults.values.at("Settings"), text);
    }
    Settings{}.save(defaults, notifications);
    EXPECT_EQ(Json::parse(defaults.values.at("Settings")), defaultDocument());
}

TEST_F(SettingsTest, eachSavePostsOnceAfterTheRecordIsStored) {
    std::optional<Settings> seen;
    const auto reader =
        notifications.observe(notifications::settingsChanged, [&] { seen = Settings::load(defaults); });
    otherSettings().save(defaults, notifications);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(seen, otherSettings());
    otherSettings().save(defaults, notifications);
    EXPECT_EQ(changes, 2) << "also when nothing changed";
}

TEST_F(SettingsTest, aRecordThatCannotBeEncodedIsNeitherStoredNorAnnounced) {
    otherSettings().save(defaults, notifications);
    for (const double volume :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        Settings settings;
        settings.soundEffectsVolume = volume;
        settings.save(defaults, notifications);
    }
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(Settings::load(defaults), otherSettings());
}

TEST_F(SettingsTest, aStoreThatRefusesKeepsTheOldRecordAndNothingIsAnnounced) {
    otherSettings().save(defaults, notifications);
    defaults.isReadOnly = true;
    Settings{}.save(defaults, notifications);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(Settings::load(defaults), otherSettings());
}

TEST(CaptureSound, isListedInOrderAndMadeOnlyFromItsOwnText) {
    std::vector<std::string> names;
    for (const auto sound : allCaptureSounds) {
        names.emplace_back(rawValue(sound));
        EXPECT_EQ(captureSoundFromRawValue(rawValue(sound)), sound);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Hero", "Submarine", "Blow", "Frog", "Funk", "Sosumi", "Basso",
                                               "Pop"}));
    for (const char* text : {"hero", "FROG", "Glass", "", " Pop", "Pop "})
        EXPECT_EQ(captureSoundFromRawValue(text), std::nullopt) << text;
}

} // namespace
} // namespace framora
