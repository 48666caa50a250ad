#include "setup/setup_fixture.h"
#include "setup/setup_form.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::SetupHarness;

// Under a point and under a comma as decimal mark.
class SetupFormTest : public ::testing::TestWithParam<bool>, public SetupHarness {
  public:
    SetupFormTest() : SetupHarness(GetParam() ? NumberLocale::comma() : NumberLocale::point()) {}

    std::string number(const std::string& whole, const std::string& fraction) const {
        return whole + (GetParam() ? "," : ".") + fraction;
    }
    AppSettings applied(const SetupValues& values) {
        form.CmdOk_Click(values);
        return settings;
    }
    // What OK would apply with the window untouched.
    SetupValues untouched() { return form.Form_Load(); }
};

INSTANTIATE_TEST_SUITE_P(Locales, SetupFormTest, ::testing::Bool());

TEST_P(SetupFormTest, ShowsTheSettings) {
    settings.UsePrimaryDataSource = 1;
    settings.IsideOrIngv = 1;
    settings.PrimaryDataSource = "https://elsewhere.test/";
    settings.PrimarySourcePassword = "secret";
    settings.AlternatePollEvery = 5;
    settings.EmscOrUsgs = 1;
    settings.PriorityEvents = 3;
    settings.PinMode = 0;
    settings.MagLevel2 = 3.5F;
    settings.MagLevelSound4 = "/sounds/large.wav";
    settings.enableTelegram = 1;
    const SetupValues values = form.Form_Load();
    EXPECT_TRUE(values.usePrimarySource);
    EXPECT_TRUE(values.ingv);
    EXPECT_EQ(values.primaryDataSource, "https://elsewhere.test/");
    EXPECT_EQ(values.primaryPassword, "secret");
    EXPECT_EQ(values.alternatePollEvery, "5");
    EXPECT_TRUE(values.usgs);
    EXPECT_TRUE(values.seisComp);
    EXPECT_EQ(values.priorityEvents, 3);
    EXPECT_FALSE(values.automaticPins);
    EXPECT_EQ(values.magLevel[1], number("3", "5"));
    EXPECT_EQ(values.magLevelSound[3], "/sounds/large.wav");
    EXPECT_TRUE(values.telegram);
    EXPECT_FALSE(values.email);
    EXPECT_EQ(values.lastEventZoom, "8");
}

TEST_P(SetupFormTest, RaisesALocalIntervalBelowOneWhenItOpens) {
    settings.LocalPollEvery = 0;
    EXPECT_EQ(form.Form_Load().localPollEvery, "1");
    EXPECT_EQ(settings.LocalPollEvery, 1);
}

TEST_P(SetupFormTest, ChangesTheSourceAtOnceWhenItsOptionIsClicked) {
    EXPECT_EQ(form.opt_Ingv_Click(), "https://ingv.test/fdsnws/event/");
    EXPECT_EQ(settings.IsideOrIngv, 1);
    EXPECT_EQ(form.opt_Iside_Click(), "http://iside.test/iside/standard/index.jsp");
    EXPECT_EQ(settings.IsideOrIngv, 0);
    EXPECT_EQ(form.opt_USGS_Click(), "https://usgs.test/earthquakes/search/");
    EXPECT_EQ(settings.EmscOrUsgs, 1);
    EXPECT_EQ(form.opt_EMSC_Click(), "https://emsc.test");
    EXPECT_EQ(settings.EmscOrUsgs, 0);
    EXPECT_EQ(settings.AlternateDataSource, "") << "the address follows with OK";
}

TEST_P(SetupFormTest, KeepsAClickedPriorityAfterCancel) {
    form.setPriorityEvents(2);
    EXPECT_EQ(settings.PriorityEvents, 2);
    EXPECT_TRUE(steps.steps.empty());
}

TEST_P(SetupFormTest, TakesANumericPinSizeAtOnce) {
    form.txt_sizeSizePins_Change("5");
    EXPECT_EQ(settings.PinScale, 5);
    form.txt_sizeSizePins_Change(number("2", "5"));
    EXPECT_EQ(settings.PinScale, 2);
    form.txt_sizeSizePins_Change("large");
    form.txt_sizeSizePins_Change("");
    EXPECT_EQ(settings.PinScale, 2);
}

TEST_P(SetupFormTest, AsksAboutAPinSizeThatIsOutOfRange) {
    prompts.expectRuntimeError("6", ErrorAnswer::Ignore);
    form.txt_sizeSizePins_Change("99999999999");
    EXPECT_EQ(settings.PinScale, 3);
}

TEST_P(SetupFormTest, CorrectsHoursBelowOne) {
    EXPECT_EQ(form.correctedHours("0"), "24");
    EXPECT_EQ(form.correctedHours("-3"), "24");
    EXPECT_EQ(form.correctedHours("1"), std::nullopt);
    EXPECT_EQ(form.correctedHours(""), std::nullopt);
    EXPECT_EQ(form.correctedHours("many"), std::nullopt);
}

TEST_P(SetupFormTest, AppliesInItsOrder) {
    session.DatabaseOpen = true;
    SetupValues values = untouched();
    values.pathPins = "C:\\pins\\";
    form.CmdOk_Click(values);
    EXPECT_EQ(steps.steps, (std::vector<std::string>{
                               "10 Applying settings...", "50 Applying settings...",
                               "pins C:/pins/", "70 Applying settings...",
                               "100 Applying settings...", "hide", "unload", "write", "gotoWRK"}));
    EXPECT_EQ(settings.PathPins, "C:/pins/");
}

TEST_P(SetupFormTest, LeavesTheMapAloneWithoutACatalogueAndInSearchMode) {
    form.CmdOk_Click(untouched());
    EXPECT_EQ(steps.steps.back(), "write");
    session.DatabaseOpen = true;
    session.SearchModeOn = 1;
    form.CmdOk_Click(untouched());
    EXPECT_EQ(steps.steps.back(), "write");
}

TEST_P(SetupFormTest, HoldsIntervalsAndTheHoursOfTheViews) {
    SetupValues values = untouched();
    values.localPollEvery = "0";
    values.primaryPollEvery = "soon";
    values.alternatePollEvery = "-7";
    values.rangeHours = "0";
    values.primaryLastNHours = "0";
    values.alternateLastNHours = "-2";
    const AppSettings after = applied(values);
    EXPECT_EQ(after.LocalPollEvery, 1);
    EXPECT_EQ(after.PrimaryPollEvery, 1);
    EXPECT_EQ(after.AlternatePollEvery, 1);
    EXPECT_EQ(after.RangeHoursOfEventsInMap, 24);
    EXPECT_EQ(after.PrimaryLastNHours, 0);
    EXPECT_EQ(after.AlternateLastNHours, -2);
}

TEST_P(SetupFormTest, TakesAnAlternateIntervalOfFive) {
    SetupValues values = untouched();
    values.alternatePollEvery = "5";
    EXPECT_EQ(applied(values).AlternatePollEvery, 5);
}

TEST_P(SetupFormTest, ReplacesZoomLevelsOutOfRange) {
    for (const std::string level : {"0", "101", "-4"}) {
        SetupValues values = untouched();
        values.lastEventZoom = level;
        values.defaultZoom = level;
        const AppSettings after = applied(values);
        EXPECT_EQ(after.LastEventMapZoomLevel, "15") << level;
        EXPECT_EQ(after.DefaultMapZoomLevel, "15") << level;
    }
    SetupValues values = untouched();
    values.lastEventZoom = "1";
    values.defaultZoom = "100";
    const AppSettings after = applied(values);
    EXPECT_EQ(after.LastEventMapZoomLevel, "1");
    EXPECT_EQ(after.DefaultMapZoomLevel, "100");
}

TEST_P(SetupFormTest, ReadsMagnitudesInTheLocalesForm) {
    SetupValues values = untouched();
    values.magLevel = {"1", number("2", "5"), "3", "4"};
    values.magLevelSound = {"a.wav", "b.wav", "", "d.wav"};
    const AppSettings after = applied(values);
    EXPECT_EQ(after.MagLevel1, 1.0F);
    EXPECT_EQ(after.MagLevel2, 2.5F);
    EXPECT_EQ(after.MagLevelSound2, "b.wav");
    EXPECT_EQ(after.MagLevelSound3, "");
}

TEST_P(SetupFormTest, AsksAboutAMagnitudeThatIsNoNumberAndAppliesTheRest) {
    SetupValues values = untouched();
    values.magLevel[0] = "strong";
    values.magLevel[1] = "2";
    values.email = true;
    prompts.expectRuntimeError("13", ErrorAnswer::Ignore);
    const AppSettings after = applied(values);
    EXPECT_EQ(after.MagLevel1, 0.0F);
    EXPECT_EQ(after.MagLevel2, 2.0F);
    EXPECT_EQ(after.enableEmail, 1);
    EXPECT_EQ(steps.steps.back(), "write");
}

TEST_P(SetupFormTest, TakesTheLocalProgramAndTheChannels) {
    SetupValues values = untouched();
    values.seisComp = false;
    values.telegram = true;
    values.pagerlink = true;
    const AppSettings after = applied(values);
    EXPECT_EQ(after.SeisCompOrLIVELOC, 1);
    EXPECT_EQ(after.enableTelegram, 1);
    EXPECT_EQ(after.enablePagerlink, 1);
    EXPECT_EQ(after.enableEmail, 0);
}

TEST_P(SetupFormTest, AsksForFilesWithItsOwnTitles) {
    prompts.expectFileDialog("Select Wav file...", "/s/a.wav");
    EXPECT_EQ(form.browseSound(), "/s/a.wav");
    EXPECT_EQ(prompts.lastFileDialog.filter, "Wav File (*.Wav)|*.Wav");
    prompts.expectFileDialog("Select Gif file...", std::nullopt);
    EXPECT_EQ(form.browseGif(), std::nullopt);
    EXPECT_EQ(prompts.lastFileDialog.filter, "Gif File (*.gif)|*.gif");
    prompts.expectFileDialog("Select DB of StationKit...", "/s/stations.sqlite");
    EXPECT_EQ(form.browseStationKit(), "/s/stations.sqlite");
    EXPECT_EQ(prompts.lastFileDialog.filter, "Sqlite File (*.sqlite)|*.sqlite");
}

TEST_P(SetupFormTest, AsksForFoldersWithItsOwnTitles) {
    prompts.expectFolder("Select Pins folder.", "/pins");
    EXPECT_EQ(form.browsePins(), "/pins/");
    prompts.expectFolder("Select Pins folder.", "");
    EXPECT_EQ(form.browsePins(), std::nullopt);
    prompts.expectFolder("Select subfolder 'Autoloc/events' in Seiscomp folder.", "/sc");
    EXPECT_EQ(form.browseLocalSource(true), "/sc");
    prompts.expectFolder("Select a database inside REA in SEISAN folder.", "");
    EXPECT_EQ(form.browseLocalSource(false), std::nullopt);
}

} // namespace
} // namespace tremor
