#pragma once

#include "core/settings.h"
#include "core/settings_utilities.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

// The one list of the keys of settings.ini. The reader looks keys up in it, the writer walks
// through it: a new key is one new line in settings_table.cpp.
namespace tremor {

using SettingsField =
    std::variant<std::int16_t AppSettings::*, std::int32_t AppSettings::*, float AppSettings::*,
                 double AppSettings::*, std::string AppSettings::*>;

// What a read rule works on: the trimmed value of one line and the field where it goes.
struct SettingReading {
    AppSettings& settings;
    const SettingsField& field;
    std::string_view value;
    const SettingsUtilities::Environment& environment;

    template <class Value>
    void set(Value newValue) const {
        settings.*std::get<Value AppSettings::*>(field) = std::move(newValue);
    }
};

struct Setting {
    std::string_view key;
    SettingsField field;
    // Converts, holds to the key's bounds and stores, or leaves the field as it is. Raises a
    // RuntimeError where the key's conversion refuses the text.
    void (*read)(const SettingReading&);
};

struct SettingsSection {
    std::string_view heading; // empty: its keys are read and never written
    std::span<const Setting> settings;
};

// All sections and keys in the order of the file.
std::span<const SettingsSection> settingsSections();

// The setting of that exact key, or null.
const Setting* findSetting(std::string_view key);

} // namespace tremor
