#include "ingest/start_services.h"
#include "support/fakes.h"

namespace tremor {
namespace {

using Calls = std::vector<std::string>;

class RecordingServiceSteps : public ServiceSteps {
  public:
    bool openDB() override { return step("openDB"), opened; }
    bool IsInternetUp() override { return step("IsInternetUp"), internetUp; }
    void EnableDisableWebBrowser(bool on) override {
        step(on ? "EnableDisableWebBrowser on" : "EnableDisableWebBrowser off");
    }
    void controlliForm(int state) override { step("controlliForm " + std::to_string(state)); }
    void generaDefaultCSS() override { step("generaDefaultCSS"); }
    void Maps() override { step("Maps"); }
    void MapsLastEvent() override { step("MapsLastEvent"); }
    void savingWorkspacePage() override { step("savingWorkspacePage"); }
    void popolaComboWorkspace() override { step("popolaComboWorkspace"); }
    void lastEventInDb() override { step("lastEventInDb"); }
    void moveSaveMapsOutOfSight() override { step("moveSaveMapsOutOfSight"); }
    void boundsVisualizedMap() override { step("boundsVisualizedMap"); }
    void FillGridEvents(std::string_view filter, std::string_view fallback,
                        std::string_view order) override {
        step("FillGridEvents [" + std::string(filter) + "] [" + std::string(fallback) + "] [" +
             std::string(order) + "]");
    }
    void eventsInMap(std::string_view sql) override { step("eventsInMap " + std::string(sql)); }
    void pictureMagnitudeEvents() override { step("pictureMagnitudeEvents"); }
    void repaintChart() override { step("repaintChart"); }
    void webPageForKml() override { step("webPageForKml"); }
    void webPageForCsv() override { step("webPageForCsv"); }

    Calls calls;
    std::function<void(const std::string&)> onStep;
    bool opened = true;
    bool internetUp = true;

  private:
    void step(const std::string& name) {
        calls.push_back(name);
        if (onStep)
            onStep(name);
    }
};

class RecordingLogList : public LogList {
  public:
    void append(std::string_view line) override { lines.emplace_back(line); }
    void clear() override { lines.clear(); }
    void selectLast() override { selected = lines.size(); }
    void refresh() override {}
    Calls lines;
    std::size_t selected = 0; // lines in the list when the last one was selected
};

class StartServicesTest : public ::testing::Test {
  protected:
    StartServicesTest() { session.DatabaseOpen = true; }

    Calls run() {
        steps.calls.clear();
        services.startServices();
        return steps.calls;
    }

    // The steps before the grid is filled, then `rest`.
    static Calls afterPages(const Calls& rest) {
        Calls all = {
            "openDB",        "IsInternetUp",          "controlliForm 3",     "generaDefaultCSS",
            "Maps",          "MapsLastEvent",         "savingWorkspacePage", "popolaComboWorkspace",
            "lastEventInDb", "moveSaveMapsOutOfSight"};
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }

    const std::string range = "(UTC >= '2014-03-06 09:05:12') and (UTC <= '2014-03-07 09:05:12')";
    const std::string oldRange =
        "(UTC >= '2013-01-01 00:00:00') and (UTC <= '2013-01-02 00:00:00')";

    testing::TemporaryFolder folder;
    Session session;
    AppSettings settings;
    testing::FakeClock clock;
    testing::ErrorHarness harness;
    RecordingLogList list;
    ActivityLog log{list, clock, harness.errors, folder.path()};
    RecordingServiceSteps steps;
    StartServices services{session, settings, clock, log, harness.errors, steps};
};

TEST_F(StartServicesTest, WritesFourBareLinesWithoutAUsableDatabase) {
    steps.opened = false;
    EXPECT_EQ(run(), Calls{"openDB"});
    EXPECT_EQ(list.lines,
              (Calls{"You must update your Database...", "Select File -> Start all Services",
                     "or press CTRL+F5", "to update your Database."}));
    EXPECT_EQ(list.selected, 4U);
}

TEST_F(StartServicesTest, LogsThreeMessagesWithoutInternet) {
    steps.internetUp = false;
    EXPECT_EQ(run(),
              (Calls{"openDB", "IsInternetUp", "EnableDisableWebBrowser off", "controlliForm 1"}));
    ASSERT_EQ(list.lines.size(), 9U); // separator, time and text each
    EXPECT_EQ(list.lines[2], "Internet Connection is down.");
    EXPECT_EQ(list.lines[5], "After you solve your Internet problem, you can visualize Maps");
    EXPECT_EQ(list.lines[8], "by clicking File->Start all services .");
}

TEST_F(StartServicesTest, WritesTheWebPagesWhateverHappenedBefore) {
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    steps.opened = false;
    EXPECT_EQ(run(), (Calls{"openDB", "webPageForKml", "webPageForCsv"}));
    steps.opened = true;
    steps.internetUp = false;
    EXPECT_EQ(run().back(), "webPageForCsv");
    settings.SaveInCsv = 0;
    steps.internetUp = true;
    EXPECT_EQ(run().back(), "webPageForKml");
}

TEST_F(StartServicesTest, WritesOnlyThePagesWhenNoCatalogueIsOpen) {
    session.DatabaseOpen = false;
    EXPECT_EQ(run(), (Calls{"openDB", "IsInternetUp", "generaDefaultCSS", "Maps", "MapsLastEvent",
                            "savingWorkspacePage"}));
}

TEST_F(StartServicesTest, FillsTheGridOfTheGlobalWorkspaceWithTheStoredQuery) {
    settings.LastWorkSpace = "Global";
    settings.searchParQuery = "stale";
    EXPECT_EQ(run(),
              afterPages({"boundsVisualizedMap", "FillGridEvents [stale] [" + range + "] []"}));
    EXPECT_EQ(settings.startDate, "2014-03-06 09:05:12");
    EXPECT_EQ(settings.endDate, "2014-03-07 09:05:12");
    EXPECT_EQ(session.LastUtcFilter, range);
}

TEST_F(StartServicesTest, ReadsTheQueryOfTheGlobalWorkspaceAfterTheMapHasBeenAsked) {
    steps.onStep = [&](const std::string& name) {
        if (name == "boundsVisualizedMap")
            settings.searchParQuery = "view";
    };
    EXPECT_EQ(run().back(), "FillGridEvents [view] [" + range + "] []");
}

TEST_F(StartServicesTest, KeepsTheQueryOfAWorkspaceThatIsNotUpdated) {
    settings.LastWorkSpace = "Alps";
    settings.wrkSpaceUpdating = 0;
    settings.searchParQuery = "Magnitude >= '2' and " + oldRange;
    const std::string query = settings.searchParQuery;
    EXPECT_EQ(run(), afterPages({"FillGridEvents [" + query + "] [" + range + "] []",
                                 "eventsInMap select * from Events where " + query,
                                 "pictureMagnitudeEvents", "boundsVisualizedMap", "repaintChart"}));
    EXPECT_EQ(settings.searchParQuery, query);
}

TEST_F(StartServicesTest, PutsTheNewRangeInPlaceOfTheLast65Characters) {
    settings.LastWorkSpace = "Alps";
    settings.searchParQuery = "Magnitude >= '2' and " + oldRange;
    const std::string query = "Magnitude >= '2' and " + range;
    EXPECT_EQ(run(), afterPages({"FillGridEvents [" + query + "] [] []",
                                 "eventsInMap select * from Events where " + query,
                                 "pictureMagnitudeEvents", "boundsVisualizedMap", "repaintChart"}));
    EXPECT_EQ(settings.searchParQuery, query);
}

TEST_F(StartServicesTest, CutsTheLast65CharactersWithoutLookingAtThem) {
    settings.LastWorkSpace = "Alps";
    settings.searchParQuery = "x" + std::string(65, '?');
    run();
    EXPECT_EQ(settings.searchParQuery, "x" + range);
}

TEST_F(StartServicesTest, LeavesAQueryOf65CharactersAndTheGridAlone) {
    settings.LastWorkSpace = "Alps";
    settings.searchParQuery = oldRange;
    ASSERT_EQ(oldRange.size(), 65U);
    EXPECT_EQ(run(), afterPages({"eventsInMap select * from Events where " + oldRange,
                                 "pictureMagnitudeEvents", "boundsVisualizedMap", "repaintChart"}));
    EXPECT_EQ(settings.searchParQuery, oldRange);
}

TEST_F(StartServicesTest, FillsTheGridWithTheRangeAloneForAnEmptyQuery) {
    settings.LastWorkSpace = "Alps";
    EXPECT_EQ(run(), afterPages({"FillGridEvents [] [" + range + "] []",
                                 "eventsInMap select * from Events where ",
                                 "pictureMagnitudeEvents", "boundsVisualizedMap", "repaintChart"}));
    EXPECT_EQ(settings.searchParQuery, "");
}

TEST_F(StartServicesTest, GoesOnBehindAStepWhoseErrorIsIgnored) {
    steps.onStep = [](const std::string& name) {
        if (name == "Maps")
            throw RuntimeError(ErrorNumber::PermissionDenied);
    };
    harness.prompts.expectRuntimeError("Permission denied", ErrorAnswer::Ignore);
    EXPECT_EQ(run().back(), "FillGridEvents [] [" + range + "] []");
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(StartServicesTest, TakesADatabaseThatCannotEvenBeAskedAsNotOpen) {
    steps.onStep = [](const std::string&) { throw RuntimeError(ErrorNumber::SubscriptOutOfRange); };
    harness.prompts.expectRuntimeError("Subscript out of range", ErrorAnswer::Ignore);
    EXPECT_EQ(run(), Calls{"openDB"});
    EXPECT_EQ(list.lines.size(), 4U);
}

TEST_F(StartServicesTest, IsNotEnteredASecondTimeWhileItWaitsForAPage) {
    steps.onStep = [&](const std::string& name) {
        if (name == "boundsVisualizedMap")
            services.startServices();
    };
    const Calls calls = run();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "openDB"), 1);
    EXPECT_EQ(run(), calls); // and is free again afterwards
}

} // namespace
} // namespace tremor
