#include "core/settings_table.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/files.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tremor {

namespace {

std::int32_t safeLong(const SettingReading& r) {
    return SafeToLong(r.value, r.environment.locale);
}

void setWhole(const SettingReading& r, std::int32_t number) {
    if (std::holds_alternative<std::int16_t AppSettings::*>(r.field))
        r.set(doubleToInteger(number));
    else
        r.set(number);
}

// Read rules. Whole numbers mostly take 0 for a text that is none; the rules from `integer` on
// convert under the operator's locale and raise an error for such a text.

void text(const SettingReading& r) {
    r.set(std::string(r.value));
}

void textUnlessEmpty(const SettingReading& r) {
    if (!r.value.empty())
        text(r);
}

void numericText(const SettingReading& r) {
    if (isNumericText(r.value, r.environment.locale))
        text(r);
}

void existingPath(const SettingReading& r) {
    if (PathExists(r.value))
        text(r);
}

void wholeAsText(const SettingReading& r) {
    r.set(std::to_string(safeLong(r)));
}

void whole(const SettingReading& r) {
    setWhole(r, safeLong(r));
}

void wholeUnlessEmpty(const SettingReading& r) {
    if (!r.value.empty())
        whole(r);
}

template <std::int32_t low, std::int32_t high>
void wholeWithin(const SettingReading& r) {
    setWhole(r, std::clamp(safeLong(r), low, high));
}

constexpr auto flag = wholeWithin<0, 1>;

void anyNumberIsOne(const SettingReading& r) {
    setWhole(r, safeLong(r) == 0 ? 0 : 1);
}

template <std::int32_t low, std::int32_t instead>
void wholeFrom(const SettingReading& r) {
    const std::int32_t number = safeLong(r);
    setWhole(r, number < low ? instead : number);
}

constexpr auto minutes = wholeFrom<0, 1>;
constexpr auto hours = wholeFrom<1, 24>;

// The period of the Telegram polls begins at 1 with each start; only its window raises it.
void telegramMinutes(const SettingReading& r) {
    if (safeLong(r) < 1)
        setWhole(r, 1);
}

void integer(const SettingReading& r) {
    r.set(textToInteger(r.value, r.environment.locale));
}

void single(const SettingReading& r) {
    r.set(textToSingle(r.value, r.environment.locale));
}

void wholePartOfSingle(const SettingReading& r) {
    const NumberLocale& locale = r.environment.locale;
    const float wholePart = std::floor(textToSingle(r.value, locale));
    setWhole(r, SafeToLong(singleToText(wholePart, locale), locale));
}

// The two readings of the text part where it holds a group mark: the converted value is held to
// the screen as well.
void panelSize(const SettingReading& r, std::int32_t screen) {
    if (ParseDotDouble(r.value, r.environment.locale) > screen)
        setWhole(r, screen);
    else
        setWhole(r, std::min(textToLong(r.value, r.environment.locale), screen));
}

void panelWidth(const SettingReading& r) {
    panelSize(r, r.environment.screenWidthTwips);
}

void panelHeight(const SettingReading& r) {
    panelSize(r, r.environment.screenHeightTwips);
}

// As with the panel's size, "41.5" under a comma locale passes as 41.5 and converts to 415.
void degrees(const SettingReading& r, double bound) {
    const NumberLocale& locale = r.environment.locale;
    if (!isNumericText(r.value, locale) || std::abs(ParseDotDouble(r.value, locale)) >= bound)
        return;
    const double converted = textToDouble(r.value, locale);
    if (std::abs(converted) < bound)
        r.set(converted);
}

void latitude(const SettingReading& r) {
    degrees(r, 90);
}

void longitude(const SettingReading& r) {
    degrees(r, 180);
}

using S = AppSettings;

constexpr auto source = std::to_array<Setting>({
    {"LocalSourcePath", &S::LocalSourcePath, text},
    {"UseLocalSource", &S::UseLocalSource, flag},
    {"LocalPollEvery", &S::LocalPollEvery, minutes},
    {"SeisCompOrLIVELOC", &S::SeisCompOrLIVELOC, flag},
    {"UsePrimaryDataSource", &S::UsePrimaryDataSource, flag},
    {"PrimaryDataSource", &S::PrimaryDataSource, textUnlessEmpty},
    {"IsideOrIngv", &S::IsideOrIngv, flag},
    {"PrimarySourceUsername", &S::PrimarySourceUsername, text},
    {"PrimarySourcePassword", &S::PrimarySourcePassword, text},
    {"PrimaryPollEvery", &S::PrimaryPollEvery, minutes},
    {"PrimaryLastNHours", &S::PrimaryLastNHours, hours},
    {"UseAlternateDataSource", &S::UseAlternateDataSource, flag},
    {"AlternateDataSource", &S::AlternateDataSource, textUnlessEmpty},
    {"EmscOrUsgs", &S::EmscOrUsgs, flag},
    {"AlternateSourceUsername", &S::AlternateSourceUsername, text},
    {"AlternateSourcePassword", &S::AlternateSourcePassword, text},
    {"AlternatePollEvery", &S::AlternatePollEvery, flag}, // minutes, yet held to 0 or 1
    {"AlternateLastNHours", &S::AlternateLastNHours, hours},
    {"RangeHoursOfEventsInMap", &S::RangeHoursOfEventsInMap, hours},
    {"PanelXSize", &S::PanelXSize, panelWidth},
    {"PanelYSize", &S::PanelYSize, panelHeight},
});

constexpr auto map = std::to_array<Setting>({
    {"CenterLatitude", &S::CenterLatitude, latitude},
    {"CenterLongitude", &S::CenterLongitude, longitude},
    {"Zoom", &S::Zoom, wholeUnlessEmpty},
    {"LastWorkSpace", &S::LastWorkSpace, text},
    {"wrkSpaceUpdating", &S::wrkSpaceUpdating, flag},
    {"startDate", &S::startDate, text},
    {"endDate", &S::endDate, text},
    {"Legend", &S::Legend, flag},
});

constexpr auto database = std::to_array<Setting>({
    {"Path", &S::Path, text},
    {"StartupLogo", &S::StartupLogo, anyNumberIsOne},
    {"LastEvent", &S::LastEvent, text},
    {"searchParQuery", &S::searchParQuery, text},
});

constexpr auto miscellaneous = std::to_array<Setting>({
    {"LastEventMapZoomLevel", &S::LastEventMapZoomLevel, numericText},
    {"DefaultMapZoomLevel", &S::DefaultMapZoomLevel, numericText},
    {"PathDbStationKit", &S::PathDbStationKit, text},
    {"SaveInKml", &S::SaveInKml, wholePartOfSingle},
    {"SaveInCsv", &S::SaveInCsv, wholePartOfSingle},
});

constexpr auto eventReported = std::to_array<Setting>({
    {"PriorityEvents", &S::PriorityEvents, wholeWithin<1, 3>},
});

constexpr auto pin = std::to_array<Setting>({
    {"PinMode", &S::PinMode, flag},
    {"PathPins", &S::PathPins, existingPath},
    {"PinScale", &S::PinScale, wholeFrom<1, 1>},
});

constexpr auto alerts = std::to_array<Setting>({
    {"MagLevel1", &S::MagLevel1, single},
    {"MagLevelSound1", &S::MagLevelSound1, text},
    {"MagLevel2", &S::MagLevel2, single},
    {"MagLevelSound2", &S::MagLevelSound2, text},
    {"MagLevel3", &S::MagLevel3, single},
    {"MagLevelSound3", &S::MagLevelSound3, text},
    {"MagLevel4", &S::MagLevel4, single},
    {"MagLevelSound4", &S::MagLevelSound4, text},
});

constexpr auto email = std::to_array<Setting>({
    {"SMTPserver", &S::SMTPserver, text},
    {"SMTPusername", &S::SMTPusername, text},
    {"SMTPpassword", &S::SMTPpassword, text},
    {"SMTPport", &S::SMTPport, integer},
    {"SMTPreqSSL", &S::SMTPreqSSL, integer},
    {"SMTPfromName", &S::SMTPfromName, text},
    {"SMTPfromEmail", &S::SMTPfromEmail, text},
    {"SMTPrecipient", &S::SMTPrecipient, text},
    {"enableEmail", &S::enableEmail, integer},
    {"MagToSend", &S::MagToSend, whole},
});

constexpr auto pagerlink = std::to_array<Setting>({
    {"PGLserver", &S::PGLserver, text},
    {"PGLport", &S::PGLport, wholeAsText},
    {"PGLmagToSend", &S::PGLmagToSend, whole},
    {"PGLAllOrSelected", &S::PGLAllOrSelected, whole},
    {"PGLselectedUsers", &S::PGLselectedUsers, text},
    {"enablePagerlink", &S::enablePagerlink, flag},
});

constexpr auto telegram = std::to_array<Setting>({
    {"TelegramToken", &S::TelegramToken, text},
    {"enableTelegram", &S::enableTelegram, flag},
    {"TelegramPollEvery", &S::TelegramPollEvery, telegramMinutes},
});

constexpr auto readOnly = std::to_array<Setting>({
    {"abilitaPagerlink", &S::abilitaPagerlink, flag},
});

constexpr auto sections = std::to_array<SettingsSection>({
    {"[GENERAL]", {}},
    {"[SOURCE]", source},
    {"[MAP]", map},
    {"[DATABASE]", database},
    {"[MISCELLANEOUS]", miscellaneous},
    {"[EVENT REPORTED]", eventReported},
    {"[PIN]", pin},
    {"[ALERTS]", alerts},
    {"[E-MAIL]", email},
    {"[PAGERLINK]", pagerlink},
    {"[TELEGRAM]", telegram},
    {"", readOnly},
});

} // namespace

std::span<const SettingsSection> settingsSections() {
    return sections;
}

const Setting* findSetting(std::string_view key) {
    for (const SettingsSection& section : sections) {
        for (const Setting& setting : section.settings) {
            if (setting.key == key)
                return &setting;
        }
    }
    return nullptr;
}

} // namespace tremor
