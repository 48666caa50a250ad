#include "core/files.h"
#include "core/settings_utilities.h"
#include "support/fakes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace tremor {
namespace {

using testing::ErrorHarness;
using testing::ProcessEnded;
using testing::TemporaryFolder;

// The file of a first start in the folder "/app", the same under every locale: no default has
// decimals.
const std::string defaultFile =
    "[GENERAL]\r\n"
    "[SOURCE]\r\n"
    "LocalSourcePath=\r\n"
    "UseLocalSource=0\r\n"
    "LocalPollEvery=0\r\n"
    "SeisCompOrLIVELOC=0\r\n"
    "UsePrimaryDataSource=0\r\n"
    "PrimaryDataSource=http://iside.rm.ingv.it/iside/standard/index.jsp\r\n"
    "IsideOrIngv=0\r\n"
    "PrimarySourceUsername=\r\n"
    "PrimarySourcePassword=\r\n"
    "PrimaryPollEvery=1\r\n"
    "PrimaryLastNHours=24\r\n"
    "UseAlternateDataSource=0\r\n"
    "AlternateDataSource=\r\n"
    "EmscOrUsgs=0\r\n"
    "AlternateSourceUsername=\r\n"
    "AlternateSourcePassword=\r\n"
    "AlternatePollEvery=0\r\n"
    "AlternateLastNHours=24\r\n"
    "RangeHoursOfEventsInMap=24\r\n"
    "PanelXSize=0\r\n"
    "PanelYSize=0\r\n"
    "[MAP]\r\n"
    "CenterLatitude=41\r\n"
    "CenterLongitude=12\r\n"
    "Zoom=5\r\n"
    "LastWorkSpace=Global\r\n"
    "wrkSpaceUpdating=1\r\n"
    "startDate=\r\n"
    "endDate=\r\n"
    "Legend=0\r\n"
    "[DATABASE]\r\n"
    "Path=\r\n"
    "StartupLogo=0\r\n"
    "LastEvent=\r\n"
    "searchParQuery=\r\n"
    "[MISCELLANEOUS]\r\n"
    "LastEventMapZoomLevel=8\r\n"
    "DefaultMapZoomLevel=4\r\n"
    "PathDbStationKit=\r\n"
    "SaveInKml=0\r\n"
    "SaveInCsv=0\r\n"
    "[EVENT REPORTED]\r\n"
    "PriorityEvents=1\r\n"
    "[PIN]\r\n"
    "PinMode=1\r\n"
    "PathPins=/app/Img/\r\n"
    "PinScale=3\r\n"
    "[ALERTS]\r\n"
    "MagLevel1=0\r\n"
    "MagLevelSound1=\r\n"
    "MagLevel2=0\r\n"
    "MagLevelSound2=\r\n"
    "MagLevel3=0\r\n"
    "MagLevelSound3=\r\n"
    "MagLevel4=0\r\n"
    "MagLevelSound4=\r\n"
    "[E-MAIL]\r\n"
    "SMTPserver=\r\n"
    "SMTPusername=\r\n"
    "SMTPpassword=\r\n"
    "SMTPport=0\r\n"
    "SMTPreqSSL=0\r\n"
    "SMTPfromName=\r\n"
    "SMTPfromEmail=\r\n"
    "SMTPrecipient=\r\n"
    "enableEmail=0\r\n"
    "MagToSend=0\r\n"
    "[PAGERLINK]\r\n"
    "PGLserver=\r\n"
    "PGLport=\r\n"
    "PGLmagToSend=0\r\n"
    "PGLAllOrSelected=0\r\n"
    "PGLselectedUsers=\r\n"
    "enablePagerlink=0\r\n"
    "[TELEGRAM]\r\n"
    "TelegramToken=\r\n"
    "enableTelegram=0\r\n"
    "TelegramPollEvery=1\r\n";

// A value of its own in every field. All of them pass their read rules but TelegramPollEvery.
AppSettings distinctSettings(const std::string& pinFolder) {
    AppSettings s;
    s.UseLocalSource = 1, s.LocalSourcePath = "/local", s.LocalPollEvery = 11;
    s.SeisCompOrLIVELOC = 1, s.UsePrimaryDataSource = 1, s.PrimaryDataSource = "http://primary";
    s.PrimarySourceUsername = "primary user", s.PrimarySourcePassword = "primary=secret";
    s.PrimaryPollEvery = 12, s.PrimaryLastNHours = 13, s.IsideOrIngv = 1;
    s.UseAlternateDataSource = 1, s.AlternateDataSource = "http://alternate";
    s.AlternateSourceUsername = "alternate user", s.AlternateSourcePassword = "alternate secret";
    s.AlternatePollEvery = 1, s.AlternateLastNHours = 15, s.EmscOrUsgs = 1;
    s.RangeHoursOfEventsInMap = 16, s.LastEventMapZoomLevel = "9", s.DefaultMapZoomLevel = "6";
    s.PathPins = pinFolder, s.PinMode = 0, s.PinScale = 17, s.PriorityEvents = 2;
    s.LastWorkSpace = "Etna", s.PanelXSize = 18000, s.PanelYSize = 12000;
    s.LastEvent = "2024/03/07", s.searchParQuery = "Magnitude >= 2", s.wrkSpaceUpdating = 0;
    s.Legend = 1, s.CenterLatitude = -37.75, s.CenterLongitude = 15.0625, s.Zoom = 10;
    s.StartupLogo = 1, s.Path = "/data/a.sqlite", s.PathDbStationKit = "/data/b.sqlite";
    s.SaveInKml = 1, s.SaveInCsv = 2;
    s.MagLevel1 = 1.1F, s.MagLevel2 = 2.2F, s.MagLevel3 = 3.3F, s.MagLevel4 = 4.4F;
    s.MagLevelSound1 = "1.wav", s.MagLevelSound2 = "2.wav", s.MagLevelSound3 = "3.wav";
    s.MagLevelSound4 = "4.wav", s.startDate = "2024-03-06 00:00:00";
    s.endDate = "2024-03-07 00:00:00", s.AnimatedGif = "other.gif", s.SMTPserver = "smtp.host";
    s.SMTPusername = "mail user", s.SMTPpassword = "mail secret", s.SMTPport = 587;
    s.SMTPreqSSL = 1, s.SMTPfromName = "Room", s.SMTPfromEmail = "room@host";
    s.SMTPrecipient = "a@host;b@host", s.enableEmail = 2, s.MagToSend = 3, s.PGLserver = "pgl";
    s.PGLport = "5050", s.PGLmagToSend = 4, s.PGLAllOrSelected = 5, s.PGLselectedUsers = "u1,u2";
    s.enablePagerlink = 1, s.TelegramToken = "123:abc", s.enableTelegram = 1;
    s.TelegramPollEvery = 19, s.abilitaPagerlink = 1;
    return s;
}

std::string distinctFile(const std::string& pinFolder, char mark) {
    const std::string m(1, mark);
    return "[GENERAL]\r\n[SOURCE]\r\nLocalSourcePath=/local\r\nUseLocalSource=1\r\n"
           "LocalPollEvery=11\r\nSeisCompOrLIVELOC=1\r\nUsePrimaryDataSource=1\r\n"
           "PrimaryDataSource=http://primary\r\nIsideOrIngv=1\r\n"
           "PrimarySourceUsername=primary user\r\nPrimarySourcePassword=primary=secret\r\n"
           "PrimaryPollEvery=12\r\nPrimaryLastNHours=13\r\nUseAlternateDataSource=1\r\n"
           "AlternateDataSource=http://alternate\r\nEmscOrUsgs=1\r\n"
           "AlternateSourceUsername=alternate user\r\n"
           "AlternateSourcePassword=alternate secret\r\nAlternatePollEvery=1\r\n"
           "AlternateLastNHours=15\r\nRangeHoursOfEventsInMap=16\r\nPanelXSize=18000\r\n"
           "PanelYSize=12000\r\n[MAP]\r\nCenterLatitude=-37" +
           m + "75\r\nCenterLongitude=15" + m +
           "0625\r\nZoom=10\r\nLastWorkSpace=Etna\r\nwrkSpaceUpdating=0\r\n"
           "startDate=2024-03-06 00:00:00\r\nendDate=2024-03-07 00:00:00\r\nLegend=1\r\n"
           "[DATABASE]\r\nPath=/data/a.sqlite\r\nStartupLogo=1\r\nLastEvent=2024/03/07\r\n"
           "searchParQuery=Magnitude >= 2\r\n[MISCELLANEOUS]\r\nLastEventMapZoomLevel=9\r\n"
           "DefaultMapZoomLevel=6\r\nPathDbStationKit=/data/b.sqlite\r\nSaveInKml=1\r\n"
           "SaveInCsv=2\r\n[EVENT REPORTED]\r\nPriorityEvents=2\r\n[PIN]\r\nPinMode=0\r\n"
           "PathPins=" +
           pinFolder + "\r\nPinScale=17\r\n[ALERTS]\r\nMagLevel1=1" + m +
           "1\r\nMagLevelSound1=1.wav\r\nMagLevel2=2" + m +
           "2\r\nMagLevelSound2=2.wav\r\nMagLevel3=3" + m +
           "3\r\nMagLevelSound3=3.wav\r\nMagLevel4=4" + m +
           "4\r\nMagLevelSound4=4.wav\r\n[E-MAIL]\r\nSMTPserver=smtp.host\r\n"
           "SMTPusername=mail user\r\nSMTPpassword=mail secret\r\nSMTPport=587\r\n"
           "SMTPreqSSL=1\r\nSMTPfromName=Room\r\nSMTPfromEmail=room@host\r\n"
           "SMTPrecipient=a@host;b@host\r\nenableEmail=2\r\nMagToSend=3\r\n[PAGERLINK]\r\n"
           "PGLserver=pgl\r\nPGLport=5050\r\nPGLmagToSend=4\r\nPGLAllOrSelected=5\r\n"
           "PGLselectedUsers=u1,u2\r\nenablePagerlink=1\r\n[TELEGRAM]\r\n"
           "TelegramToken=123:abc\r\nenableTelegram=1\r\nTelegramPollEvery=19\r\n";
}

struct SettingsUtilitiesTest : ::testing::Test {
    static constexpr std::int32_t screen = 100000;

    SettingsUtilities make(const NumberLocale& locale = NumberLocale::point()) {
        return {settings, harness.errors, {folder.path(), screen, screen, locale}};
    }
    void putFile(const std::string& text) const {
        std::ofstream stream(folder.file("settings.ini"), std::ios::binary);
        EXPECT_TRUE(stream << text << std::flush) << "settings.ini cannot be written";
    }
    std::string file() const { return readWholeFile(folder.file("settings.ini")); }
    AppSettings& read(const std::string& text) {
        putFile(text);
        make().ReadSettings();
        return settings;
    }

    TemporaryFolder folder;
    ErrorHarness harness;
    AppSettings settings;
};

TEST(SettingsText, OfTheDefaultsIsTheSameFileUnderEveryLocale) {
    ErrorHarness harness;
    AppSettings settings;
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        SettingsUtilities(settings, harness.errors, {"/app", 1, 1, locale}).InitializeSettings();
        EXPECT_EQ(settingsText(settings, locale), defaultFile);
    }
}

TEST(SettingsText, WritesEveryFieldUnderItsOwnKeyWithTheLocalesMark) {
    const AppSettings settings = distinctSettings("/pins/");
    EXPECT_EQ(settingsText(settings, NumberLocale::point()), distinctFile("/pins/", '.'));
    EXPECT_EQ(settingsText(settings, NumberLocale::comma()), distinctFile("/pins/", ','));
}

TEST(SettingsText, KeepsAKeyOnOneLine) {
    AppSettings settings;
    settings.SMTPfromName = "Room\r\nenableTelegram=1\nx\ry";
    const std::string text = settingsText(settings, NumberLocale::point());
    EXPECT_NE(text.find("SMTPfromName=Room  enableTelegram=1 x y\r\n"), std::string::npos);
}

TEST_F(SettingsUtilitiesTest, InitializeSetsTheDefaultsOverWhateverStood) {
    settings = distinctSettings("/pins/");
    make().InitializeSettings();
    EXPECT_EQ(settings.PrimaryDataSource, "http://iside.rm.ingv.it/iside/standard/index.jsp");
    EXPECT_EQ(settings.PathPins, folder.path() + "/Img/");
    EXPECT_EQ(settings.AnimatedGif, "lastepic.gif");
    EXPECT_EQ(settings.abilitaPagerlink, 0);
    EXPECT_EQ(settings.TelegramPollEvery, 1);
}

TEST_F(SettingsUtilitiesTest, TheDefaultPinFolderHasSlashesOnly) {
    SettingsUtilities(settings, harness.errors, {"C:\\app", 1, 1, NumberLocale::point()})
        .InitializeSettings();
    EXPECT_EQ(settings.PathPins, "C:/app/Img/");
}

TEST_F(SettingsUtilitiesTest, TheFileStandsBesideTheProgram) {
    EXPECT_EQ(make().filePath(), folder.path() + "/settings.ini");
}

TEST_F(SettingsUtilitiesTest, AMissingFileGivesTheDefaultsWithoutAWord) {
    settings.Zoom = 17;
    make().ReadSettings();
    EXPECT_EQ(settings.Zoom, 5);
    EXPECT_FALSE(FileExists(folder.file("settings.ini")));
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(SettingsUtilitiesTest, AFolderOfTheFilesNameCountsAsMissing) {
    std::filesystem::create_directory(folder.file("settings.ini"));
    make().ReadSettings();
    EXPECT_EQ(settings.Zoom, 5);
}

TEST_F(SettingsUtilitiesTest, WhatWasWrittenReadsBackUnderBothLocales) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        settings = distinctSettings(folder.path());
        make(locale).WriteSettings();
        EXPECT_EQ(file(), distinctFile(folder.path(), locale.decimalMark));
        make(locale).ReadSettings();
        EXPECT_EQ(settings.TelegramPollEvery, 1); // always starts at 1
        settings.TelegramPollEvery = 19;
        EXPECT_EQ(settingsText(settings, locale), distinctFile(folder.path(), locale.decimalMark));
        EXPECT_DOUBLE_EQ(settings.CenterLatitude, -37.75);
        EXPECT_FLOAT_EQ(settings.MagLevel4, 4.4F);
        EXPECT_EQ(settings.abilitaPagerlink, 0);
    }
}

TEST_F(SettingsUtilitiesTest, TheOldPagerlinkFlagDisappearsAtTheFirstSave) {
    EXPECT_EQ(read("abilitaPagerlink=1\r\n").abilitaPagerlink, 1);
    make().WriteSettings();
    EXPECT_EQ(file().find("abilitaPagerlink"), std::string::npos);
}

TEST_F(SettingsUtilitiesTest, SectionsDoNotMatterAndNeitherDoesTheOrderOfKeys) {
    read("[TELEGRAM]\r\nZoom=9\r\n[NONSENSE]\r\nPriorityEvents=3\r\nPath=/a\r\n");
    EXPECT_EQ(settings.Zoom, 9);
    EXPECT_EQ(settings.PriorityEvents, 3);
    EXPECT_EQ(settings.Path, "/a");
}

TEST_F(SettingsUtilitiesTest, TheLaterLineWinsUnderItsOwnRule) {
    read("Zoom=9\r\nZoom=7\r\nCenterLatitude=50\r\nCenterLatitude=95\r\n");
    EXPECT_EQ(settings.Zoom, 7);
    EXPECT_DOUBLE_EQ(settings.CenterLatitude, 50);
}

TEST_F(SettingsUtilitiesTest, AKeyWithABlankIsUnknown) {
    EXPECT_EQ(
        read("UseLocalSource = 1\r\n UseLocalSource=1\r\nuselocalsource=1\r\n").UseLocalSource, 0);
}

TEST_F(SettingsUtilitiesTest, APasswordLosesItsOuterBlanks) {
    EXPECT_EQ(read("SMTPpassword=  se cret  \r\n").SMTPpassword, "se cret");
    EXPECT_EQ(read("SMTPpassword=\tse cret\t\r\n").SMTPpassword, "\tse cret\t");
}

TEST_F(SettingsUtilitiesTest, AFurtherEqualsSignStaysInTheValue) {
    EXPECT_EQ(read("TelegramToken=a=b==\r\n").TelegramToken, "a=b==");
}

TEST_F(SettingsUtilitiesTest, LinesEndWithAnyLineBreakAndTheLastNeedsNone) {
    for (const std::string lineEnd : {"\r\n", "\n", "\r"}) {
        read("Path=/a" + lineEnd + lineEnd + "Zoom=9");
        EXPECT_EQ(settings.Path, "/a");
        EXPECT_EQ(settings.Zoom, 9);
    }
}

TEST_F(SettingsUtilitiesTest, AnEmptyFileAndALineWithoutAKeyChangeNothing) {
    for (const std::string text : {"", "=", "\r\n", "=5\r\n", "Zoom", "[=]\r\n"}) {
        read(text);
        AppSettings defaults = settings;
        make().InitializeSettings();
        EXPECT_EQ(settingsText(defaults, NumberLocale::point()),
                  settingsText(settings, NumberLocale::point()));
    }
}

TEST_F(SettingsUtilitiesTest, ZeroBytesAndGarbageSurvive) {
    const std::string path("/a\0b\xFF", 5);
    read(std::string("\0\x01\xFF=\0\r\n\xEF\xBB\xBF[GENERAL]\r\n", 20) + "Path=" + path +
         "\r\nZoom=\x01\xFF\r\nPinScale=4\r\n");
    EXPECT_EQ(settings.Path, path);
    EXPECT_EQ(settings.Zoom, 0);
    EXPECT_EQ(settings.PinScale, 4);
    make().WriteSettings();
    make().ReadSettings();
    EXPECT_EQ(settings.Path, path);
}

// Work that grows with the square of the length would take hours.
TEST_F(SettingsUtilitiesTest, LinesOfMegabytesAreRead) {
    const std::string value(4'000'000, 'x');
    read(value + "\r\nLastEvent=" + value + "\r\nLastEventMapZoomLevel=" + value +
         "\r\nZoom=" + value + "\r\nZoom=6\r\n" + std::string(4'000'000, '\n') + "PinScale=4");
    EXPECT_EQ(settings.LastEvent, value);
    EXPECT_EQ(settings.LastEventMapZoomLevel, "8");
    EXPECT_EQ(settings.Zoom, 6);
    EXPECT_EQ(settings.PinScale, 4);
}

TEST_F(SettingsUtilitiesTest, IgnoreKeepsTheDefaultAndGoesOnWithTheNextLine) {
    harness.prompts.expectRuntimeError(
        "Number: 13\r\nDescription: Type mismatch\r\n"
        "Module: Module - SettingsUtilities\r\nRoutine: ReadSettings\r\nLine: 0\r\n"
        "Call stack: \r\n 1) ReadSettings (Module - SettingsUtilities)\r\n",
        ErrorAnswer::Ignore);
    read("MagLevel1=big\r\nMagLevel2=4\r\n");
    EXPECT_FLOAT_EQ(settings.MagLevel1, 0);
    EXPECT_FLOAT_EQ(settings.MagLevel2, 4);
}

TEST_F(SettingsUtilitiesTest, RetryAsksAgain) {
    harness.prompts.expectRuntimeError("Number: 13\r\n", ErrorAnswer::Retry);
    harness.prompts.expectRuntimeError("Number: 13\r\n", ErrorAnswer::Ignore);
    EXPECT_EQ(read("SMTPport=none\r\nZoom=9\r\n").Zoom, 9);
}

TEST_F(SettingsUtilitiesTest, AbortEndsAtOnce) {
    putFile("SMTPport=none\r\nZoom=9\r\n");
    harness.prompts.expectRuntimeError("Number: 13\r\n", ErrorAnswer::Abort);
    EXPECT_THROW(make().ReadSettings(), ProcessEnded);
    EXPECT_EQ(settings.Zoom, 5);
}

TEST_F(SettingsUtilitiesTest, TheFileIsTheOwnersAlone) {
    putFile("old");
    std::filesystem::permissions(folder.file("settings.ini"), std::filesystem::perms(0644));
    make().InitializeSettings();
    make().WriteSettings();
    struct stat status {};
    ASSERT_EQ(::stat(folder.file("settings.ini").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

// Removes the obstacle when it is asked, and answers Retry.
struct MendingPrompts : testing::ScriptedPrompts {
    std::function<void()> mend;
    std::string report;
    ErrorAnswer showRuntimeError(std::string_view, std::string_view text, int) override {
        report = text;
        mend();
        return ErrorAnswer::Retry;
    }
};

TEST_F(SettingsUtilitiesTest, AnUnwritableFolderAsksAndRetrySucceedsOnceItIsMended) {
    MendingPrompts prompts;
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { throw ProcessEnded{}; }, 60, ticksHeld);
    const std::string target = folder.file("gone");
    SettingsUtilities utilities(settings, errors, {target, 1, 1, NumberLocale::point()});
    utilities.InitializeSettings();
    prompts.mend = [&] { std::filesystem::create_directory(target); };

    utilities.WriteSettings();

    EXPECT_NE(prompts.report.find("Number: 76\r\nDescription: Path not found\r\n"
                                  "Module: Module - SettingsUtilities\r\n"
                                  "Routine: WriteSettings\r\n"),
              std::string::npos)
        << prompts.report;
    EXPECT_EQ(readWholeFile(utilities.filePath()), settingsText(settings, NumberLocale::point()));
}

TEST_F(SettingsUtilitiesTest, AFailedWriteThatIsIgnoredLeavesTheSettings) {
    const std::string target = folder.file("gone");
    SettingsUtilities utilities(settings, harness.errors, {target, 1, 1, NumberLocale::point()});
    utilities.InitializeSettings();
    settings.Zoom = 9;
    harness.prompts.expectRuntimeError("Routine: WriteSettings\r\n", ErrorAnswer::Ignore);
    utilities.WriteSettings();
    EXPECT_EQ(settings.Zoom, 9);
    EXPECT_FALSE(PathExists(target));
}

TEST_F(SettingsUtilitiesTest, WritingTakesTheViewOfTheMapUnderEveryLocale) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        SettingsUtilities utilities = make(locale);
        utilities.InitializeSettings();
        utilities.setMapView([] { return MapViewTexts{"42.5", "-13.25", "7"}; });
        utilities.WriteSettings();
        EXPECT_DOUBLE_EQ(settings.CenterLatitude, 42.5);
        EXPECT_DOUBLE_EQ(settings.CenterLongitude, -13.25);
        EXPECT_EQ(settings.Zoom, 7);
        make(locale).ReadSettings();
        EXPECT_DOUBLE_EQ(settings.CenterLatitude, 42.5);
    }
}

TEST_F(SettingsUtilitiesTest, WithoutAViewTheOldOneStays) {
    SettingsUtilities utilities = make();
    utilities.InitializeSettings();
    settings.Zoom = 9;
    utilities.setMapView([] { return std::nullopt; });
    utilities.WriteSettings();
    EXPECT_EQ(settings.Zoom, 9);
    EXPECT_DOUBLE_EQ(settings.CenterLatitude, 41);
}

TEST_F(SettingsUtilitiesTest, AnEmptyOrBadPartOfTheViewKeepsItsOldValue) {
    SettingsUtilities utilities = make();
    utilities.InitializeSettings();
    utilities.setMapView([] { return MapViewTexts{"", "east", "9999999999"}; });
    utilities.WriteSettings();
    EXPECT_DOUBLE_EQ(settings.CenterLatitude, 41);
    EXPECT_DOUBLE_EQ(settings.CenterLongitude, 12);
    EXPECT_EQ(settings.Zoom, 5);
    utilities.setMapView([] { return MapViewTexts{"43", "", ""}; });
    utilities.WriteSettings();
    EXPECT_DOUBLE_EQ(settings.CenterLatitude, 43);
    EXPECT_DOUBLE_EQ(settings.CenterLongitude, 12);
}

TEST_F(SettingsUtilitiesTest, AMapThatFailsDoesNotStopTheWriting) {
    SettingsUtilities utilities = make();
    utilities.InitializeSettings();
    utilities.setMapView(
        []() -> std::optional<MapViewTexts> { throw std::runtime_error("the page is gone"); });
    utilities.WriteSettings();
    EXPECT_EQ(file(), settingsText(settings, NumberLocale::point()));
}

} // namespace
} // namespace tremor
