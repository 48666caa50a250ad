// Bytes as a settings.ini and as a hosts.ini. What was read without a refused value must read back
// from the text that the program would write.

#include "core/hosts.h"
#include "core/settings_table.h"
#include "core/settings_utilities.h"
#include "ignoring_prompts.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <type_traits>

namespace {

using namespace tremor;

// Texts and whole numbers must be equal, floats as far as their written digits reach.
template <class Value>
bool same(const Value& a, const Value& b) {
    if constexpr (std::is_floating_point_v<Value>) {
        const double digits = std::is_same_v<Value, float> ? 1e-6 : 1e-14;
        return std::abs(static_cast<double>(a) - static_cast<double>(b)) <=
               digits * std::abs(static_cast<double>(a));
    } else {
        return a == b;
    }
}

// In the written digits such a value can round to its bound, which the reader refuses.
bool justInside(double degrees, double bound) {
    return std::abs(degrees) < bound && std::abs(degrees) > bound - 1e-10;
}

// A port that no line has given is empty; its line in the written file reads as 0.
bool mayDiffer(const Setting& setting, const AppSettings& first) {
    return (setting.key == "PGLport" && first.PGLport.empty()) ||
           (setting.key == "CenterLatitude" && justInside(first.CenterLatitude, 90)) ||
           (setting.key == "CenterLongitude" && justInside(first.CenterLongitude, 180));
}

void expectSame(const AppSettings& first, const AppSettings& second) {
    for (const SettingsSection& section : settingsSections()) {
        if (section.heading.empty())
            continue;
        for (const Setting& setting : section.settings) {
            const bool equal = std::visit(
                [&](auto member) { return same(first.*member, second.*member); }, setting.field);
            if (!equal && !mayDiffer(setting, first))
                std::abort();
        }
    }
}

void readBothWays(std::string_view text, const NumberLocale& locale) {
    fuzzing::BoxCounter prompts;
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { std::abort(); }, 0, ticksHeld);
    const SettingsUtilities::Environment environment{"/", 19200, 15360, locale};

    AppSettings first;
    SettingsUtilities reader(first, errors, environment);
    reader.InitializeSettings();
    reader.readText(text);
    if (prompts.errors > 0)
        return;

    AppSettings second;
    SettingsUtilities again(second, errors, environment);
    again.InitializeSettings();
    again.readText(settingsText(first, locale));
    if (prompts.errors > 0)
        std::abort();
    expectSame(first, second);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    readBothWays(text, NumberLocale::point());
    readBothWays(text, NumberLocale::comma());
    parseHosts(text);
    return 0;
}
