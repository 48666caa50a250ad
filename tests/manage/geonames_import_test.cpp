#include "manage/geonames_fixture.h"
#include "manage/geonames_import.h"
#include "support/texts.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tremor {
namespace {

using testing::dumpLine;
using testing::indexLine;
using Texts = std::vector<std::string>;

class GeoNamesImportTest : public ::testing::Test, public testing::GeoNamesHarness {
  protected:
    GeoNamesImportTest() { import.opened(window); }

    void select(const std::string& id) { import.toggleSelected(rowOf(import, id)); }
    void load() {
        import.Form_Load();
        window.messages.clear();
    }
    void download(const std::string& id) {
        select(id);
        window.messages.clear();
        import.cmdDownload();
    }

    // Moves whenever somebody looks.
    struct RunningClock : testing::FakeClock {
        std::chrono::milliseconds steady() const override { return shown += stepPerLook; }
        std::chrono::milliseconds stepPerLook{0};
        mutable std::chrono::milliseconds shown{0};
    };

    RunningClock clock;
    testing::RecordingGeoNamesWindow window;
    GeoNamesImport import{session,
                          catalogue,
                          prompts,
                          clock,
                          harness.errors,
                          network,
                          [this] { return folder.path() + "/"; },
                          "https://geonames.test"};
};

TEST_F(GeoNamesImportTest, ListsTheCountriesOnOfferAndMarksTheImportedOnes) {
    catalogue.slsExe("insert into Cities values ('Roma', '41.9', '12.5', 'IT')");
    import.Form_Load();
    EXPECT_EQ(window.messages, (Texts{"List of POI available, ready.", "List of POI, ready."}));
    EXPECT_EQ(network.urls, (Texts{"https://geonames.test/export/dump/",
                                   "https://geonames.test/export/dump/countryInfo.txt"}));
    ASSERT_EQ(import.rows().size(), 3U);
    EXPECT_EQ(import.rows()[0].file.Id, "AD");
    EXPECT_EQ(import.rows()[2].file.Name, "Italy");
    EXPECT_FALSE(import.rows()[0].imported);
    EXPECT_TRUE(import.rows()[2].imported);
    EXPECT_FALSE(import.rows()[2].selected);
    EXPECT_EQ(window.fills, 2) << "at the opening and with the list";
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(GeoNamesImportTest, SaysSoWithoutTheInternet) {
    network.internetUp = false;
    import.Form_Load();
    EXPECT_EQ(window.messages, Texts{"There isn't a Internet Connection."});
    window.messages.clear();
    import.cmdCheck();
    EXPECT_EQ(window.messages, (Texts{"Syncing GeoNames...", "There isn't a Internet Connection.",
                                      "Impossible connect to GeoNames"}));
    EXPECT_TRUE(network.urls.empty());
}

TEST_F(GeoNamesImportTest, TellsBeginAndEndOfACheck) {
    import.cmdCheck();
    EXPECT_EQ(window.messages, (Texts{"Syncing GeoNames...", "List of POI available, ready.",
                                      "List of POI, ready.", "Syncing complete!"}));
}

TEST_F(GeoNamesImportTest, WaitsAMinuteForAFailedIndexAndFetchesTheCountriesAllTheSame) {
    network.documents.erase("https://geonames.test/export/dump/");
    import.cmdCheck();
    EXPECT_EQ(clock.sleeps, 600);
    EXPECT_EQ(network.urls.size(), 2U);
    EXPECT_EQ(window.messages, (Texts{"Syncing GeoNames...", "Impossible retrieve list of Poi.",
                                      "List of POI, ready.", "Impossible connect to GeoNames"}));
    EXPECT_TRUE(import.rows().empty());
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(GeoNamesImportTest, LogsTheCountriesAsReadyAlsoWhenTheyFailed) {
    network.documents.erase("https://geonames.test/export/dump/countryInfo.txt");
    prompts.expectRuntimeError("File not found", ErrorAnswer::Ignore);
    import.cmdCheck();
    EXPECT_EQ(window.messages, (Texts{"Syncing GeoNames...", "List of POI available, ready.",
                                      "List of POI, ready.", "Syncing complete!"}));
    EXPECT_TRUE(import.rows().empty());
}

TEST_F(GeoNamesImportTest, LeavesTheGridEmptyForAnIndexOfAnotherLayout) {
    offer("", "<html><table><tr><td><a href=\"AD.zip\">AD.zip</a></td></tr></table></html>\n");
    import.Form_Load();
    EXPECT_EQ(window.messages, (Texts{"List of POI available, ready.", "List of POI, ready."}));
    EXPECT_TRUE(import.rows().empty());
}

TEST_F(GeoNamesImportTest, ImportsTheServicesOwnDump) {
    load();
    download("AD");
    EXPECT_EQ(window.messages, (Texts{"AD.zip Downloaded.", "All data imported in DB!",
                                      "Rows refused by the catalogue: 3 (a value holds an "
                                      "apostrophe or a zero byte)"}));
    EXPECT_EQ(stored("count(*)"), Texts{"53"});
    EXPECT_EQ(stored().front(), "Xixerella|42.5532699704902|1.48736000061035|AD");
    EXPECT_EQ(stored("distinct Zone"), Texts{"AD"});
    EXPECT_EQ(window.lineTexts.back(), "2907 / 2907");
    EXPECT_EQ(window.maximum, 2907);
    EXPECT_EQ(window.progress.back(), 2907);
    EXPECT_TRUE(import.rows()[rowOf(import, "AD")].imported);
    EXPECT_FALSE(import.rows()[rowOf(import, "AD")].selected);
    EXPECT_FALSE(session.ImportInProgress);
    EXPECT_EQ(window.states, (std::vector<bool>{false, true, false, true, false}));
}

// A fast machine reads millions of lines a second; nobody could see each of them.
TEST_F(GeoNamesImportTest, ShowsTheLineAboutEveryThirtyMilliseconds) {
    std::string dump;
    for (int line = 0; line < 1050; ++line)
        dump += dumpLine("Place", "STM");
    offerDump("FR", dump);
    load();
    download("FR");
    EXPECT_EQ(window.lineTexts, Texts{"1050 / 1050"}) << "no time has passed";
    window.lineTexts.clear();
    clock.stepPerLook = std::chrono::milliseconds(15);
    download("FR");
    EXPECT_EQ(window.lineTexts, (Texts{"200 / 1050", "400 / 1050", "600 / 1050", "800 / 1050",
                                       "1000 / 1050", "1050 / 1050"}));
}

TEST_F(GeoNamesImportTest, TakesTheDivisionsOfItalyAndThePlacesOfFrance) {
    const std::string dump = dumpLine("Town", "PPLA") + dumpLine("Comune", "ADM3");
    offerDump("IT", dump);
    offerDump("FR", dump);
    load();
    select("FR");
    download("IT");
    EXPECT_EQ(stored("Name || Zone"), (Texts{"TownFR", "ComuneIT"}));
    EXPECT_EQ(window.messages,
              (Texts{"FR.zip Downloaded.", "IT.zip Downloaded.", "All data imported in DB!"}));
}

TEST_F(GeoNamesImportTest, ImportsWhileTheFlagIsUpAndOneCountryAtATime) {
    offerDump("IT", dumpLine("Norcia", "ADM3"));
    offerDump("FR", dumpLine("Lyon", "PPL"));
    load();
    std::vector<bool> seen;
    catalogue.setBusyCallback([&] { seen.push_back(session.ImportInProgress); });
    select("FR");
    clock.onPump = [&] { EXPECT_FALSE(session.ImportInProgress); };
    download("IT");
    EXPECT_EQ(stored("Name"), (Texts{"Lyon", "Norcia"}));
    for (const bool importing : seen)
        EXPECT_TRUE(importing);
}

TEST_F(GeoNamesImportTest, DownloadsNothingThatIsImportedOrNotSelected) {
    catalogue.slsExe("insert into Cities values ('Roma', '41.9', '12.5', 'IT')");
    load();
    import.cmdDownload();
    EXPECT_EQ(window.messages, Texts{"Nothing selected."});
    network.urls.clear();
    download("IT");
    EXPECT_EQ(window.messages, (Texts{"Italy it's already in DB.", "Nothing selected."}));
    EXPECT_TRUE(network.urls.empty());
    import.cmdRemove();
    EXPECT_TRUE(stored().empty()) << "an imported country can be removed";
}

TEST_F(GeoNamesImportTest, GoesByTheMarksAsTheOperatorHasSetThem) {
    catalogue.slsExe("insert into Cities values ('Roma', '41.9', '12.5', 'IT')");
    offerDump("IT", dumpLine("Norcia", "ADM3"));
    load();
    import.toggleImported(rowOf(import, "IT"));
    download("IT");
    EXPECT_EQ(stored("Name"), (Texts{"Roma", "Norcia"}));
}

TEST_F(GeoNamesImportTest, EndsTheBatchWhenATransferFails) {
    load();
    select("AD");
    clock.sleeps = 0;
    download("FR");
    EXPECT_EQ(clock.sleeps, 330);
    EXPECT_EQ(window.messages, (Texts{"AD.zip Downloaded.", "Timeout connection..."}));
    EXPECT_TRUE(stored().empty()) << "nothing is unpacked";
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(GeoNamesImportTest, SaysWhatIsWrongWithAnArchiveAndGoesOnWithTheNextCountry) {
    offer("FR.zip", "this is no archive");
    offerDump("IT", dumpLine("Norcia", "ADM3"));
    std::ofstream(folder.file("FR.txt")) << dumpLine("Older import", "PPL");
    load();
    select("FR");
    prompts.expectRuntimeError("File not found", ErrorAnswer::Ignore);
    download("IT");
    ASSERT_EQ(window.messages.size(), 4U);
    EXPECT_EQ(window.messages[2], "FR.zip was not unpacked: the archive cannot be read: Not a zip "
                                  "archive");
    EXPECT_EQ(window.messages[3], "All data imported in DB!");
    EXPECT_EQ(stored("Name"), Texts{"Norcia"}) << "the file of an earlier import is not read";
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(GeoNamesImportTest, UnpacksNoPathThatLeavesTheFolder) {
    const std::string path = folder.file("packed.zip");
    testing::makeZip(path, {{.name = "../FR.txt", .bytes = dumpLine("Lyon", "PPL")}});
    offer("FR.zip", testing::contentOf(path));
    load();
    prompts.expectRuntimeError("File not found", ErrorAnswer::Ignore);
    download("FR");
    EXPECT_EQ(window.messages[1], "FR.zip was not unpacked: the archive holds no file FR.txt");
    EXPECT_FALSE(
        std::filesystem::exists(std::filesystem::path(folder.path()).parent_path() / "FR.txt"));
}

TEST_F(GeoNamesImportTest, CountsShortLinesAndSaysWhyACountryWasNotStored) {
    offerDump("FR", "1\tshort\n" + dumpLine("Lyon", "PPL"));
    load();
    download("FR");
    EXPECT_EQ(window.messages.back(), "Lines left out as too short or too long: 1");
    catalogue.slsExe("delete from Cities");
    catalogue.slsExe("pragma query_only = 1");
    import.cmdCheck();
    download("FR");
    ASSERT_GE(window.messages.size(), 2U);
    EXPECT_TRUE(window.messages.back().starts_with("FR was not stored: "))
        << window.messages.back();
}

TEST_F(GeoNamesImportTest, RemovesTheSelectedCountries) {
    load();
    import.cmdRemove();
    EXPECT_EQ(window.messages, Texts{"Nothing to delete."});
    catalogue.slsExe("insert into Cities values ('Roma', '1', '2', 'IT'), ('Lyon', '1', '2', 'FR')"
                     ", ('Mine', '1', '2', 'ITA')");
    window.messages.clear();
    select("IT");
    select("AD");
    import.cmdRemove();
    EXPECT_EQ(window.messages, (Texts{"Andorra deleted.", "Italy deleted."}));
    EXPECT_EQ(stored("Name"), (Texts{"Lyon", "Mine"}));
    EXPECT_TRUE(import.rows()[rowOf(import, "FR")].imported);
    EXPECT_FALSE(import.rows()[rowOf(import, "IT")].selected);
}

TEST_F(GeoNamesImportTest, EmptiesTheTableOnlyWhenTheOperatorAgrees) {
    catalogue.slsExe("insert into Cities values ('Roma', '1', '2', 'IT')");
    const auto expect = [this](BoxAnswer answer) {
        prompts.expectBox("Do you want remove all Point Of Interest from this DB?",
                          "Deleting POI...", BoxIcon::Question, BoxButtons::YesNo, answer);
    };
    expect(BoxAnswer::No);
    import.cmdEmptyPOI();
    EXPECT_EQ(stored("Name"), Texts{"Roma"});
    EXPECT_TRUE(window.messages.empty());
    expect(BoxAnswer::Yes);
    import.cmdEmptyPOI();
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(window.messages, Texts{"All Point Of Interest deleted."});
}

TEST_F(GeoNamesImportTest, SaysWhenTheCatalogueRefusesARemoval) {
    catalogue.slsExe("pragma query_only = 1");
    load();
    select("IT");
    import.cmdRemove();
    ASSERT_EQ(window.messages.size(), 2U);
    EXPECT_EQ(window.messages[0], "Italy deleted.");
    EXPECT_TRUE(window.messages[1].starts_with("The catalogue refused: "));
}

TEST_F(GeoNamesImportTest, MovesTheBarWithATransferOfKnownSize) {
    network.whileDownloading = [](GeoNamesTransferEvents& events) {
        events.SizeCalculated(8);
        events.ChunkDownloaded(0);
        events.ChunkDownloaded(4);
        events.ChunkDownloaded(12); // rounding can pass the announced size
    };
    import.Form_Load();
    EXPECT_EQ(window.progress, (std::vector<int>{50, 100, 50, 100}));
    network.whileDownloading = [](GeoNamesTransferEvents& events) {
        events.SizeCalculated(0);
        events.ChunkDownloaded(4);
    };
    window.progress.clear();
    import.Form_Load();
    EXPECT_TRUE(window.progress.empty());
}

TEST_F(GeoNamesImportTest, EndsEveryWaitAtEscape) {
    load();
    clock.sleeps = 0;
    clock.onPump = [this] {
        if (clock.sleeps == 3) {
            import.escape();
            EXPECT_EQ(session.WaitCounter, 99999);
            EXPECT_TRUE(session.waitsMustEnd());
            import.closed();
            EXPECT_EQ(session.WaitCounter, 0) << "the waits of others go on";
        }
    };
    select("FR"); // offered without a file
    download("AD");
    EXPECT_EQ(clock.sleeps, 3);
    EXPECT_TRUE(network.aborted);
    EXPECT_EQ(window.messages, (Texts{"AD.zip Downloaded.", "Download POI aborted!"}));
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(session.WaitCounter, 0);
    EXPECT_FALSE(import.running());
}

TEST_F(GeoNamesImportTest, WorksAgainAfterEscape) {
    import.escape();
    EXPECT_EQ(session.WaitCounter, 99999);
    import.closed();
    EXPECT_EQ(session.WaitCounter, 0);
    EXPECT_TRUE(window.messages.empty());
    network.aborted = false;
    import.opened(window);
    import.Form_Load();
    EXPECT_EQ(import.rows().size(), 3U);
    download("AD");
    EXPECT_EQ(stored("count(*)"), Texts{"53"});
}

TEST_F(GeoNamesImportTest, DoesNotReviveAClosingProgram) {
    session.Closing = true;
    import.escape();
    import.closed();
    EXPECT_EQ(session.WaitCounter, 99999);
    import.opened(window);
    import.Form_Load();
    EXPECT_TRUE(network.urls.empty());
    EXPECT_EQ(clock.sleeps, 0);
    EXPECT_EQ(session.WaitCounter, 99999);
}

TEST_F(GeoNamesImportTest, GivesUpWhenItsWindowHasGone) {
    load();
    network.whileDownloading = [this](GeoNamesTransferEvents&) { import.closed(); };
    download("AD");
    EXPECT_TRUE(network.aborted);
    EXPECT_TRUE(window.messages.empty());
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(clock.sleeps, 0);
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(GeoNamesImportTest, GivesUpBetweenTwoCountries) {
    offerDump("IT", dumpLine("Norcia", "ADM3"));
    offerDump("FR", dumpLine("Lyon", "PPL"));
    load();
    select("FR");
    clock.onPump = [this] {
        if (clock.pumps == 2)
            import.closed();
    };
    clock.pumps = 0;
    download("IT");
    EXPECT_EQ(stored("Name"), Texts{"Lyon"});
    EXPECT_EQ(window.messages, (Texts{"FR.zip Downloaded.", "IT.zip Downloaded."}));
}

TEST_F(GeoNamesImportTest, TakesNoSecondCommandMeanwhile) {
    load();
    network.whileDownloading = [this](GeoNamesTransferEvents&) {
        EXPECT_TRUE(import.running());
        import.cmdDownload();
        import.cmdRemove();
        import.cmdCheck();
        import.cmdEmptyPOI();
    };
    network.urls.clear();
    download("AD");
    EXPECT_EQ(network.urls.size(), 1U);
    EXPECT_EQ(stored("count(*)"), Texts{"53"});
}

} // namespace
} // namespace tremor
