#include "core/settings_utilities.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/files.h"
#include "core/settings_table.h"

#include <algorithm>
#include <exception>
#include <type_traits>
#include <utility>
#include <variant>

namespace tremor {

namespace {

constexpr std::string_view moduleLabel = "Module - SettingsUtilities";

// One key is one line: a line break inside a text would end it early and begin a line of its own.
std::string oneLine(std::string value) {
    std::replace_if(
        value.begin(), value.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return value;
}

std::string valueText(const AppSettings& settings, const SettingsField& field,
                      const NumberLocale& locale) {
    return std::visit(
        [&](auto member) -> std::string {
            const auto& value = settings.*member;
            using Value = std::remove_cvref_t<decltype(value)>;
            if constexpr (std::is_same_v<Value, std::string>)
                return oneLine(value);
            else if constexpr (std::is_same_v<Value, float>)
                return singleToText(value, locale);
            else if constexpr (std::is_same_v<Value, double>)
                return doubleToText(value, locale);
            else
                return std::to_string(value);
        },
        field);
}

// A number of the page as the map gives it, always with a point. Nothing for an empty or bad text.
std::optional<double> pageNumber(const std::string& value) {
    try {
        return textToDouble(value, NumberLocale::point());
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

void takeMapView(AppSettings& settings, const MapViewTexts& view) {
    settings.CenterLatitude = pageNumber(view.centreLatitude).value_or(settings.CenterLatitude);
    settings.CenterLongitude = pageNumber(view.centreLongitude).value_or(settings.CenterLongitude);
    if (const std::optional<double> zoom = pageNumber(view.zoom))
        settings.Zoom = doubleToLong(*zoom);
}

} // namespace

SettingsUtilities::SettingsUtilities(AppSettings& settings, ErrorReport& errors,
                                     Environment environment)
    : settings_(settings),
      errors_(errors),
      environment_(std::move(environment)),
      filePath_(environment_.applicationPath + "/settings.ini") {}

void SettingsUtilities::InitializeSettings() {
    settings_ = AppSettings{};
    settings_.PrimaryDataSource = "http://iside.rm.ingv.it/iside/standard/index.jsp";
    settings_.PathPins = replaceAll(environment_.applicationPath + "/Img/", "\\", "/");
}

void SettingsUtilities::ReadSettings() {
    ProcedureTrace trace(errors_, moduleLabel, "ReadSettings");
    InitializeSettings();
    std::string fileText;
    if (FileExists(filePath_))
        trace.step([&] { fileText = readWholeFile(filePath_); });
    readLines(fileText, trace);
}

void SettingsUtilities::readText(std::string_view fileText) {
    ProcedureTrace trace(errors_, moduleLabel, "ReadSettings");
    readLines(fileText, trace);
}

void SettingsUtilities::readLines(std::string_view fileText, ProcedureTrace& trace) {
    while (!fileText.empty()) {
        const std::size_t lineEnd = std::min(fileText.find_first_of("\r\n"), fileText.size());
        const std::string_view line = fileText.substr(0, lineEnd);
        fileText.remove_prefix(std::min(lineEnd + 1, fileText.size()));

        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
            continue;
        const Setting* const setting = findSetting(line.substr(0, equals));
        if (setting == nullptr)
            continue;
        const std::string_view value = trim(line.substr(equals + 1));
        trace.step([&] { setting->read({settings_, setting->field, value, environment_}); });
    }
}

void SettingsUtilities::WriteSettings() {
    ProcedureTrace trace(errors_, moduleLabel, "WriteSettings");
    try {
        if (const auto view = mapView_ ? mapView_() : std::nullopt)
            takeMapView(settings_, *view);
    } catch (const std::exception&) {
        // A page that cannot answer leaves the old view.
    }
    trace.step([&] {
        writeFileAtomically(filePath_, settingsText(settings_, environment_.locale), true);
    });
}

void SettingsUtilities::setMapView(std::function<std::optional<MapViewTexts>()> mapView) {
    mapView_ = std::move(mapView);
}

std::string settingsText(const AppSettings& settings, const NumberLocale& locale) {
    std::string result;
    for (const SettingsSection& section : settingsSections()) {
        if (section.heading.empty())
            continue;
        result.append(section.heading).append("\r\n");
        for (const Setting& setting : section.settings) {
            result.append(setting.key).append("=");
            result.append(valueText(settings, setting.field, locale)).append("\r\n");
        }
    }
    return result;
}

} // namespace tremor
