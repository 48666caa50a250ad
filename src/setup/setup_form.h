#pragma once

#include "core/error_report.h"
#include "core/hosts.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tremor {

// What the controls of the window "Setup" show. Numbers are texts as the operator sees them:
// magnitudes with the locale's decimal mark, everything else as digits.
struct SetupValues {
    bool useLocalSource = false;
    bool seisComp = false; // else LIVELOC
    std::string localSourcePath{};
    std::string localPollEvery{}; // minutes
    bool usePrimarySource = false;
    bool ingv = false; // else ISIDE
    std::string primaryDataSource{};
    std::string primaryUsername{};
    std::string primaryPassword{};
    std::string primaryPollEvery{};  // minutes
    std::string primaryLastNHours{}; // hours
    bool useAlternateSource = false;
    bool usgs = false; // else EMSC
    std::string alternateDataSource{};
    std::string alternateUsername{};
    std::string alternatePassword{};
    std::string alternatePollEvery{};
    std::string alternateLastNHours{};
    int priorityEvents = 1; // 1 primary source, 2 alternate source, 3 all
    std::string rangeHours{};
    bool automaticPins = true; // circles drawn by size; else images from a folder
    std::string pathPins{};
    std::string animatedGif{};
    std::string pinScale{};
    std::string defaultZoom{};
    std::string lastEventZoom{};
    std::string pathDbStationKit{};
    std::array<std::string, 4> magLevel{};
    std::array<std::string, 4> magLevelSound{}; // WAV files
    bool telegram = false;
    bool pagerlink = false;
    bool email = false;
};

// What applying the settings does outside of them, in the order in which it happens.
class SetupSteps {
  public:
    virtual ~SetupSteps() = default;

    virtual void showProgress(int percent, std::string_view text) = 0;
    virtual void setPinPath(std::string_view path) = 0; // of the markers of the main map
    virtual void hideProgress() = 0;
    virtual void unloadForm() = 0;
    virtual void WriteSettings() = 0;
    virtual void gotoWRK() = 0;
};

// The window "Setup" without its controls. Options take effect when they are clicked, also when
// the window is cancelled afterwards; everything else when CmdOk_Click applies it. Bad numbers are
// corrected in silence, except magnitudes, zoom levels and a pin size that is out of range, which
// raise a runtime error.
class SetupForm {
  public:
    SetupForm(AppSettings& settings, const Session& session, const Hosts& hosts,
              const NumberLocale& locale, ErrorReport& errors, Prompts& prompts, SetupSteps& steps);

    // What the controls show at first. Raises a `LocalPollEvery` below 1 to 1.
    SetupValues Form_Load();

    // Each sets its source and gives the address that then stands in the source's box.
    std::string opt_Ingv_Click();
    std::string opt_Iside_Click();
    std::string opt_EMSC_Click();
    std::string opt_USGS_Click();

    void setPriorityEvents(int priority);  // optPr 1, optAl 2, optAll 3
    void setAutomaticPins(bool automatic); // chk_auto_PIN, chk_user_PIN
    void txt_sizeSizePins_Change(std::string_view text);

    // What is to stand in a box of hours in place of a number below 1: nothing when it may stay.
    std::optional<std::string> correctedHours(std::string_view text) const;

    // The path chosen, or nothing when cancelled.
    std::optional<std::string> browseSound();
    std::optional<std::string> browseGif();
    std::optional<std::string> browseStationKit();
    std::optional<std::string> browsePins(); // "/" at its end
    std::optional<std::string> browseLocalSource(bool seisComp);

    void CmdOk_Click(const SetupValues& values);

  private:
    void applySources(const SetupValues& values);
    void applyMap(ProcedureTrace& trace, const SetupValues& values);
    void applyAlerts(ProcedureTrace& trace, const SetupValues& values);
    void holdZoom(std::string& level) const;
    std::optional<std::string> browseFile(std::string_view title, std::string_view filter);
    std::int32_t atLeastOne(std::string_view text) const;

    AppSettings& settings_;
    const Session& session_;
    const Hosts& hosts_;
    const NumberLocale& locale_;
    ErrorReport& errors_;
    Prompts& prompts_;
    SetupSteps& steps_;
};

} // namespace tremor
