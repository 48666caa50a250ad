#include "setup/setup_form.h"

#include "core/common_text.h"
#include "core/conversions.h"

#include <algorithm>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - FrmSetup";
constexpr std::string_view applying = "Applying settings...";
constexpr std::int32_t defaultHours = 24;
constexpr double lowestZoom = 1;
constexpr double highestZoom = 100;
constexpr std::string_view zoomInstead = "15";

// The four levels of `settings`, from the lowest.
std::array<float*, 4> levels(AppSettings& settings) {
    return {&settings.MagLevel1, &settings.MagLevel2, &settings.MagLevel3, &settings.MagLevel4};
}

std::array<std::string*, 4> sounds(AppSettings& settings) {
    return {&settings.MagLevelSound1, &settings.MagLevelSound2, &settings.MagLevelSound3,
            &settings.MagLevelSound4};
}

std::int16_t flag(bool on) {
    return on ? 1 : 0;
}

} // namespace

SetupForm::SetupForm(AppSettings& settings, const Session& session, const Hosts& hosts,
                     const NumberLocale& locale, ErrorReport& errors, Prompts& prompts,
                     SetupSteps& steps)
    : settings_(settings),
      session_(session),
      hosts_(hosts),
      locale_(locale),
      errors_(errors),
      prompts_(prompts),
      steps_(steps) {}

SetupValues SetupForm::Form_Load() {
    const ProcedureTrace trace(errors_, module, "Form_Load");
    AppSettings& s = settings_;
    s.LocalPollEvery = std::max(s.LocalPollEvery, 1);
    SetupValues values{
        .useLocalSource = s.UseLocalSource == 1,
        .seisComp = s.SeisCompOrLIVELOC == 0,
        .localSourcePath = s.LocalSourcePath,
        .localPollEvery = std::to_string(s.LocalPollEvery),
        .usePrimarySource = s.UsePrimaryDataSource == 1,
        .ingv = s.IsideOrIngv == 1,
        .primaryDataSource = s.PrimaryDataSource,
        .primaryUsername = s.PrimarySourceUsername,
        .primaryPassword = s.PrimarySourcePassword,
        .primaryPollEvery = std::to_string(s.PrimaryPollEvery),
        .primaryLastNHours = std::to_string(s.PrimaryLastNHours),
        .useAlternateSource = s.UseAlternateDataSource == 1,
        .usgs = s.EmscOrUsgs == 1,
        .alternateDataSource = s.AlternateDataSource,
        .alternateUsername = s.AlternateSourceUsername,
        .alternatePassword = s.AlternateSourcePassword,
        .alternatePollEvery = std::to_string(s.AlternatePollEvery),
        .alternateLastNHours = std::to_string(s.AlternateLastNHours),
        .priorityEvents = s.PriorityEvents,
        .rangeHours = std::to_string(s.RangeHoursOfEventsInMap),
        .automaticPins = s.PinMode == 1,
        .pathPins = s.PathPins,
        .animatedGif = s.AnimatedGif,
        .pinScale = std::to_string(s.PinScale),
        .defaultZoom = s.DefaultMapZoomLevel,
        .lastEventZoom = s.LastEventMapZoomLevel,
        .pathDbStationKit = s.PathDbStationKit,
        .telegram = s.enableTelegram == 1,
        .pagerlink = s.enablePagerlink == 1,
        .email = s.enableEmail == 1,
    };
    for (std::size_t level = 0; level < values.magLevel.size(); ++level) {
        values.magLevel[level] = singleToText(*levels(s)[level], locale_);
        values.magLevelSound[level] = *sounds(s)[level];
    }
    return values;
}

std::string SetupForm::opt_Ingv_Click() {
    settings_.IsideOrIngv = 1;
    return hosts_.Ingv + "/fdsnws/event/";
}

std::string SetupForm::opt_Iside_Click() {
    settings_.IsideOrIngv = 0;
    return hosts_.Iside + "/iside/standard/index.jsp";
}

std::string SetupForm::opt_EMSC_Click() {
    settings_.EmscOrUsgs = 0;
    return hosts_.Emsc;
}

std::string SetupForm::opt_USGS_Click() {
    settings_.EmscOrUsgs = 1;
    return hosts_.Usgs + "/earthquakes/search/";
}

void SetupForm::setPriorityEvents(int priority) {
    settings_.PriorityEvents = priority;
}

void SetupForm::setAutomaticPins(bool automatic) {
    settings_.PinMode = flag(automatic);
}

void SetupForm::txt_sizeSizePins_Change(std::string_view text) {
    ProcedureTrace trace(errors_, module, "txt_sizeSizePins_Change");
    if (isNumericText(text, locale_))
        trace.step([&] { settings_.PinScale = doubleToLong(ParseDotDouble(text, locale_)); });
}

std::optional<std::string> SetupForm::correctedHours(std::string_view text) const {
    if (!isNumericText(text, locale_) || ParseDotDouble(text, locale_) >= 1)
        return std::nullopt;
    return std::to_string(defaultHours);
}

std::optional<std::string> SetupForm::browseSound() {
    return browseFile("Select Wav file...", "Wav File (*.Wav)|*.Wav");
}

std::optional<std::string> SetupForm::browseGif() {
    return browseFile("Select Gif file...", "Gif File (*.gif)|*.gif");
}

std::optional<std::string> SetupForm::browseStationKit() {
    return browseFile("Select DB of StationKit...", "Sqlite File (*.sqlite)|*.sqlite");
}

std::optional<std::string> SetupForm::browseFile(std::string_view title, std::string_view filter) {
    FileDialogRequest request;
    request.title = title;
    request.filter = filter;
    return prompts_.showFileDialog(request);
}

std::optional<std::string> SetupForm::browsePins() {
    std::string folder = prompts_.browseForFolder("Select Pins folder.");
    if (folder.empty())
        return std::nullopt;
    return folder.ends_with('/') ? folder : folder + '/';
}

std::optional<std::string> SetupForm::browseLocalSource(bool seisComp) {
    const std::string folder =
        prompts_.browseForFolder(seisComp ? "Select subfolder 'Autoloc/events' in Seiscomp folder."
                                          : "Select a database inside REA in SEISAN folder.");
    return folder.empty() ? std::nullopt : std::optional(folder);
}

void SetupForm::CmdOk_Click(const SetupValues& values) {
    ProcedureTrace trace(errors_, module, "CmdOk_Click");
    steps_.showProgress(10, applying);
    applySources(values);
    steps_.showProgress(50, applying);
    applyMap(trace, values);
    steps_.showProgress(70, applying);
    applyAlerts(trace, values);
    steps_.showProgress(100, applying);
    steps_.hideProgress();
    steps_.unloadForm();
    trace.step([&] { steps_.WriteSettings(); });
    if (session_.DatabaseOpen && session_.SearchModeOn == 0)
        trace.step([&] { steps_.gotoWRK(); });
}

std::int32_t SetupForm::atLeastOne(std::string_view text) const {
    return std::max(SafeToLong(text, locale_), 1);
}

void SetupForm::applySources(const SetupValues& values) {
    AppSettings& s = settings_;
    s.UseLocalSource = flag(values.useLocalSource);
    s.LocalSourcePath = values.localSourcePath;
    s.LocalPollEvery = atLeastOne(values.localPollEvery);
    s.UsePrimaryDataSource = flag(values.usePrimarySource);
    s.PrimaryDataSource = values.primaryDataSource;
    s.PrimarySourceUsername = values.primaryUsername;
    s.PrimarySourcePassword = values.primaryPassword;
    s.PrimaryPollEvery = atLeastOne(values.primaryPollEvery);
    s.PrimaryLastNHours = SafeToLong(values.primaryLastNHours, locale_);
    s.UseAlternateDataSource = flag(values.useAlternateSource);
    s.AlternateDataSource = values.alternateDataSource;
    s.AlternateSourceUsername = values.alternateUsername;
    s.AlternateSourcePassword = values.alternatePassword;
    s.AlternatePollEvery = atLeastOne(values.alternatePollEvery);
    s.AlternateLastNHours = SafeToLong(values.alternateLastNHours, locale_);
    const std::int32_t hours = SafeToLong(values.rangeHours, locale_);
    s.RangeHoursOfEventsInMap = hours < 1 ? defaultHours : hours;
}

void SetupForm::applyMap(ProcedureTrace& trace, const SetupValues& values) {
    AppSettings& s = settings_;
    s.LastEventMapZoomLevel = values.lastEventZoom;
    s.DefaultMapZoomLevel = values.defaultZoom;
    s.PathPins = replaceAll(values.pathPins, "\\", "/");
    s.AnimatedGif = values.animatedGif;
    s.PathDbStationKit = values.pathDbStationKit;
    trace.step([&] { steps_.setPinPath(s.PathPins); });
    trace.step([&] { holdZoom(s.LastEventMapZoomLevel); });
    trace.step([&] { holdZoom(s.DefaultMapZoomLevel); });
}

void SetupForm::holdZoom(std::string& level) const {
    const double zoom = textToDouble(level, locale_);
    if (zoom < lowestZoom || zoom > highestZoom)
        level = zoomInstead;
}

void SetupForm::applyAlerts(ProcedureTrace& trace, const SetupValues& values) {
    AppSettings& s = settings_;
    for (std::size_t level = 0; level < values.magLevel.size(); ++level) {
        *sounds(s)[level] = values.magLevelSound[level];
        trace.step([&] { *levels(s)[level] = textToSingle(values.magLevel[level], locale_); });
    }
    s.SeisCompOrLIVELOC = flag(!values.seisComp);
    s.enableEmail = flag(values.email);
    s.enablePagerlink = flag(values.pagerlink);
    s.enableTelegram = flag(values.telegram);
}

} // namespace tremor
