#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/settings.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tremor {

// The view of the main map, as texts of the page ("42.5", "13", "7"); an empty text is unknown.
struct MapViewTexts {
    std::string centreLatitude;
    std::string centreLongitude;
    std::string zoom;
};

// Reads and writes settings.ini beside the program: "[SECTION]" lines for people, "key=value"
// lines in a fixed order, each ended by CR LF:
//
//     [MAP]
//     CenterLatitude=42,5
//
// Numbers are in the locale's form. The reader does without sections and in any order. The file
// holds passwords as plain text and is therefore written with mode 0600, through a temporary file
// and a rename.
class SettingsUtilities {
  public:
    struct Environment {
        std::string applicationPath; // folder of the executable, no "/" at its end
        std::int32_t screenWidthTwips = 0;
        std::int32_t screenHeightTwips = 0;
        NumberLocale locale;
    };

    SettingsUtilities(AppSettings& settings, ErrorReport& errors, Environment environment);

    // Sets every default.
    void InitializeSettings();

    // InitializeSettings, then the file when there is one. A missing file is no error. A value
    // that a locale conversion refuses raises the runtime-error dialog; Ignore keeps the default.
    void ReadSettings();

    // The lines of a settings.ini over the values as they stand. Lines end with CR, LF or both.
    void readText(std::string_view fileText);

    // Writes the whole file. Before that the view of the main map, when `mapView` gives one, goes
    // into CenterLatitude, CenterLongitude and Zoom (dot text; an empty or bad text keeps the old
    // value). A failed write goes to the runtime-error dialog.
    void WriteSettings();

    void setMapView(std::function<std::optional<MapViewTexts>()> mapView);

    const std::string& filePath() const { return filePath_; }

  private:
    void readLines(std::string_view fileText, ProcedureTrace& trace);

    AppSettings& settings_;
    ErrorReport& errors_;
    Environment environment_;
    std::function<std::optional<MapViewTexts>()> mapView_;
    std::string filePath_;
};

// The text of settings.ini for these settings: what WriteSettings puts into the file. A line break
// inside a text becomes a blank.
std::string settingsText(const AppSettings& settings, const NumberLocale& locale);

} // namespace tremor
