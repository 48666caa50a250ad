#include "core/settings_table.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::ErrorHarness;

constexpr std::int32_t screenWidth = 19200;
constexpr std::int32_t screenHeight = 15360;

// Reads lines over the defaults and tells what stands behind a key afterwards.
class Reader {
  public:
    explicit Reader(NumberLocale locale = NumberLocale::point())
        : locale_(locale),
          utilities_(settings, harness.errors, {"/app", screenWidth, screenHeight, locale}) {
        utilities_.InitializeSettings();
    }
    void read(const std::string& lines) { utilities_.readText(lines); }
    std::string valueOf(const std::string& key) const {
        const std::string text = "\n" + settingsText(settings, locale_);
        const std::size_t at = text.find("\n" + key + "=");
        if (at == std::string::npos)
            return "(no such key)";
        const std::size_t begin = at + key.size() + 2;
        return text.substr(begin, text.find("\r\n", begin) - begin);
    }
    // The value of a key after one line of it.
    std::string after(const std::string& key, const std::string& value) {
        read(key + "=" + value + "\r\n");
        return valueOf(key);
    }

    ErrorHarness harness;
    AppSettings settings;

  private:
    NumberLocale locale_;
    SettingsUtilities utilities_;
};

std::vector<std::string> allKeys() {
    std::vector<std::string> keys;
    for (const SettingsSection& section : settingsSections()) {
        for (const Setting& setting : section.settings)
            keys.emplace_back(setting.key);
    }
    return keys;
}

struct Case {
    std::string value;
    std::string expected;
};

void expectCases(const std::vector<std::string>& keys, const std::vector<Case>& cases) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        for (const std::string& key : keys) {
            for (const Case& c : cases)
                EXPECT_EQ(Reader(locale).after(key, c.value), c.expected) << key << "=" << c.value;
        }
    }
}

TEST(SettingsTable, HoldsEveryKeyOnce) {
    const std::vector<std::string> keys = allKeys();
    EXPECT_EQ(keys.size(), 70U);
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()).size(), keys.size());
}

TEST(SettingsTable, FindsOnlyExactKeys) {
    ASSERT_NE(findSetting("Zoom"), nullptr);
    EXPECT_EQ(findSetting("Zoom")->key, "Zoom");
    EXPECT_EQ(findSetting("zoom"), nullptr);
    EXPECT_EQ(findSetting("Zoom "), nullptr);
    EXPECT_EQ(findSetting(""), nullptr);
    EXPECT_EQ(findSetting("AnimatedGif"), nullptr);
}

TEST(SettingsTable, FlagsAreHeldToZeroAndOne) {
    expectCases({"UseLocalSource", "SeisCompOrLIVELOC", "UsePrimaryDataSource", "IsideOrIngv",
                 "UseAlternateDataSource", "EmscOrUsgs", "PinMode", "wrkSpaceUpdating", "Legend",
                 "enablePagerlink", "enableTelegram"},
                {{"0", "0"},
                 {"1", "1"},
                 {"2", "1"},
                 {"100000", "1"},
                 {"-1", "0"},
                 {"", "0"},
                 {"yes", "0"},
                 {"99999999999", "0"}});
}

TEST(SettingsTable, TheAlternatePeriodIsHeldToZeroAndOne) {
    expectCases({"AlternatePollEvery"}, {{"5", "1"}, {"1", "1"}, {"0", "0"}, {"-3", "0"}});
}

TEST(SettingsTable, PeriodsBelowZeroBecomeOneAndZeroStays) {
    expectCases({"PrimaryPollEvery", "LocalPollEvery"},
                {{"0", "0"}, {"-3", "1"}, {"15", "15"}, {"", "0"}, {"x", "0"}});
}

TEST(SettingsTable, HoursBelowOneBecomeADay) {
    expectCases({"PrimaryLastNHours", "AlternateLastNHours", "RangeHoursOfEventsInMap"},
                {{"0", "24"}, {"-5", "24"}, {"1", "1"}, {"168", "168"}, {"", "24"}, {"x", "24"}});
}

TEST(SettingsTable, PriorityIsHeldToOneToThree) {
    expectCases({"PriorityEvents"},
                {{"2", "2"}, {"3", "3"}, {"7", "3"}, {"1", "1"}, {"0", "1"}, {"-1", "1"}});
}

TEST(SettingsTable, ThePinScaleIsAtLeastOne) {
    expectCases({"PinScale"}, {{"0", "1"}, {"-2", "1"}, {"1", "1"}, {"12", "12"}, {"x", "1"}});
}

TEST(SettingsTable, AnyNumberButZeroLeavesTheLogoOut) {
    expectCases({"StartupLogo"}, {{"0", "0"}, {"1", "1"}, {"7", "1"}, {"-1", "1"}, {"x", "0"}});
}

TEST(SettingsTable, TheTelegramPeriodAlwaysStartsAtOne) {
    expectCases({"TelegramPollEvery"}, {{"10", "1"}, {"1", "1"}, {"0", "1"}, {"-4", "1"}});
}

TEST(SettingsTable, PlainNumbersTakeZeroForBadText) {
    expectCases({"MagToSend", "PGLmagToSend", "PGLAllOrSelected", "PGLport"},
                {{"5", "5"}, {"-5", "-5"}, {"", "0"}, {"x", "0"}, {"12345", "12345"}});
}

TEST(SettingsTable, TheZoomIgnoresAnEmptyValue) {
    expectCases({"Zoom"}, {{"7", "7"}, {"", "5"}, {"x", "0"}, {"-1", "-1"}});
}

TEST(SettingsTable, TextsAreTakenAsTheyAre) {
    expectCases({"LocalSourcePath",
                 "PrimarySourceUsername",
                 "PrimarySourcePassword",
                 "AlternateSourceUsername",
                 "AlternateSourcePassword",
                 "LastWorkSpace",
                 "startDate",
                 "endDate",
                 "Path",
                 "LastEvent",
                 "searchParQuery",
                 "PathDbStationKit",
                 "MagLevelSound1",
                 "MagLevelSound2",
                 "MagLevelSound3",
                 "MagLevelSound4",
                 "SMTPserver",
                 "SMTPusername",
                 "SMTPpassword",
                 "SMTPfromName",
                 "SMTPfromEmail",
                 "SMTPrecipient",
                 "PGLserver",
                 "PGLselectedUsers",
                 "TelegramToken"},
                {{"a b", "a b"},
                 {"", ""},
                 {"x=y==", "x=y=="},
                 {"=", "="},
                 {"caff\xC3\xA8", "caff\xC3\xA8"},
                 {"\xFF\xFE", "\xFF\xFE"},
                 {"'\"\\", "'\"\\"}});
}

TEST(SettingsTable, SourceAddressesIgnoreAnEmptyValue) {
    expectCases({"PrimaryDataSource", "AlternateDataSource"}, {{"http://a/b", "http://a/b"}});
    expectCases({"PrimaryDataSource"}, {{"", "http://iside.rm.ingv.it/iside/standard/index.jsp"}});
    Reader reader;
    reader.read("AlternateDataSource=http://a\r\nAlternateDataSource=  \r\n");
    EXPECT_EQ(reader.settings.AlternateDataSource, "http://a");
}

TEST(SettingsTable, MapZoomLevelsAreKeptOnlyWhenNumeric) {
    expectCases({"LastEventMapZoomLevel"}, {{"10", "10"}, {"x", "8"}, {"", "8"}, {"-2", "-2"}});
    expectCases({"DefaultMapZoomLevel"}, {{"10", "10"}, {"x", "4"}, {"", "4"}});
}

TEST(SettingsTable, ThePinFolderIsKeptOnlyWhenItExists) {
    const testing::TemporaryFolder folder;
    expectCases({"PathPins"}, {{folder.path() + "/", folder.path() + "/"},
                               {folder.file("missing") + "/", "/app/Img/"},
                               {"", "/app/Img/"}});
}

TEST(SettingsTable, ThePanelIsHeldToTheScreen) {
    expectCases({"PanelXSize"}, {{"19200", "19200"}, {"19201", "19200"}, {"99999999999", "19200"}});
    expectCases({"PanelYSize"}, {{"15360", "15360"}, {"15361", "15360"}, {"12000", "12000"}});
    expectCases({"PanelXSize", "PanelYSize"}, {{"0", "0"}, {"-15", "-15"}});
}

TEST(SettingsTable, AGroupMarkDoesNotCarryThePanelBeyondTheScreen) {
    EXPECT_EQ(Reader(NumberLocale::comma()).after("PanelXSize", "30.000"), "19200");
    EXPECT_EQ(Reader(NumberLocale::comma()).after("PanelXSize", "12.000"), "12000");
}

TEST(SettingsTable, TheCentreMustLieStrictlyInsideItsBounds) {
    expectCases({"CenterLatitude"}, {{"42", "42"},
                                     {"89", "89"},
                                     {"90", "41"},
                                     {"-90", "41"},
                                     {"91", "41"},
                                     {"-89", "-89"},
                                     {"", "41"},
                                     {"north", "41"}});
    expectCases({"CenterLongitude"}, {{"179", "179"},
                                      {"180", "12"},
                                      {"-180", "12"},
                                      {"-179", "-179"},
                                      {"", "12"},
                                      {"east", "12"}});
}

TEST(SettingsTable, TheCentreFollowsTheLocale) {
    EXPECT_EQ(Reader(NumberLocale::point()).after("CenterLatitude", "42.25"), "42.25");
    EXPECT_EQ(Reader(NumberLocale::comma()).after("CenterLatitude", "42,25"), "42,25");
    EXPECT_EQ(Reader(NumberLocale::comma()).after("CenterLongitude", "-1,5"), "-1,5");
}

TEST(SettingsTable, ACentreWrittenUnderAnotherLocaleNeverLeavesItsBounds) {
    EXPECT_EQ(Reader(NumberLocale::comma()).after("CenterLatitude", "42.25"), "41");
    EXPECT_EQ(Reader(NumberLocale::point()).after("CenterLatitude", "42,25"), "41");
}

TEST(SettingsTable, MagnitudeLevelsFollowTheLocaleWithoutBounds) {
    for (const std::string key : {"MagLevel1", "MagLevel2", "MagLevel3", "MagLevel4"}) {
        EXPECT_EQ(Reader(NumberLocale::point()).after(key, "3.5"), "3.5");
        EXPECT_EQ(Reader(NumberLocale::comma()).after(key, "3,5"), "3,5");
        EXPECT_EQ(Reader(NumberLocale::point()).after(key, "-100"), "-100");
    }
}

TEST(SettingsTable, PublishingFlagsTakeTheWholePartOfAFloat) {
    for (const std::string key : {"SaveInKml", "SaveInCsv"}) {
        EXPECT_EQ(Reader(NumberLocale::point()).after(key, "1"), "1");
        EXPECT_EQ(Reader(NumberLocale::point()).after(key, "1.9"), "1");
        EXPECT_EQ(Reader(NumberLocale::comma()).after(key, "1,9"), "1");
        EXPECT_EQ(Reader(NumberLocale::point()).after(key, "1E+20"), "0");
    }
}

TEST(SettingsTable, MailNumbersFollowTheLocaleWithoutBounds) {
    expectCases({"SMTPport", "SMTPreqSSL", "enableEmail"},
                {{"587", "587"}, {"-1", "-1"}, {"32767", "32767"}});
    EXPECT_EQ(Reader(NumberLocale::comma()).after("SMTPport", "2,5"), "2"); // halves to even
}

TEST(SettingsTable, LocaleKeysRaiseAMismatchForBadTextAndIgnoreKeepsTheDefault) {
    for (const std::string key :
         {"MagLevel1", "MagLevel2", "MagLevel3", "MagLevel4", "SMTPport", "SMTPreqSSL",
          "enableEmail", "SaveInKml", "SaveInCsv", "PanelXSize", "PanelYSize"}) {
        for (const std::string value : {"", "   ", "many", "1-1"}) {
            Reader reader;
            reader.harness.prompts.expectRuntimeError(
                "Number: 13\r\nDescription: Type mismatch\r\n"
                "Module: Module - SettingsUtilities\r\nRoutine: ReadSettings\r\n",
                ErrorAnswer::Ignore);
            EXPECT_EQ(reader.after(key, value), "0") << key << "=" << value;
        }
    }
}

TEST(SettingsTable, ASmallFieldRaisesAnOverflowForALargeNumber) {
    for (const std::string key : {"SMTPport", "SMTPreqSSL", "enableEmail", "PGLAllOrSelected"}) {
        Reader reader;
        reader.harness.prompts.expectRuntimeError("Number: 6\r\nDescription: Overflow\r\n",
                                                  ErrorAnswer::Ignore);
        EXPECT_EQ(reader.after(key, "32768"), "0") << key;
    }
}

TEST(SettingsTable, TheOldPagerlinkFlagIsReadAndNeverWritten) {
    Reader reader;
    EXPECT_EQ(reader.after("abilitaPagerlink", "5"), "(no such key)");
    EXPECT_EQ(reader.settings.abilitaPagerlink, 1);
    reader.read("abilitaPagerlink=0\r\n");
    EXPECT_EQ(reader.settings.abilitaPagerlink, 0);
}

TEST(SettingsTable, TheAnimatedPictureIsNeitherReadNorWritten) {
    Reader reader;
    EXPECT_EQ(reader.after("AnimatedGif", "other.gif"), "(no such key)");
    EXPECT_EQ(reader.settings.AnimatedGif, "lastepic.gif");
}

} // namespace
} // namespace tremor
