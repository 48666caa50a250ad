#include "manage/geonames_dump.h"
#include "manage/geonames_fixture.h"
#include "support/error_of.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace tremor {
namespace {

using testing::dumpLine;
using testing::geonamesDocument;
using Rows = std::vector<std::string>;

class ImportDump : public ::testing::Test, public testing::GeoNamesHarness {
  protected:
    DumpOutcome import(const std::string& zone, const std::string& dump) {
        std::ofstream(path, std::ios::binary) << dump;
        return importFile(zone);
    }
    DumpOutcome importFile(const std::string& zone) {
        announced = 0;
        done = 0;
        return importDump(path, zone, catalogue,
                          {.started = [this](std::size_t lines) { announced = lines; },
                           .lineDone = [this](std::size_t line) { EXPECT_EQ(line, ++done); }});
    }

    std::string path = folder.file("dump.txt");
    std::size_t announced = 0;
    std::size_t done = 0;
};

TEST(CutDumpLine, FindsTheFourFieldsThatCount) {
    const std::string text = dumpLine("Norcia", "PPLA3", "42.79", "-13.09");
    const auto line = cutDumpLine(text);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "Norcia");
    EXPECT_EQ(line->latitude, "42.79");
    EXPECT_EQ(line->longitude, "-13.09");
    EXPECT_EQ(line->featureCode, "PPLA3");
}

TEST(CutDumpLine, NeedsEightFields) {
    EXPECT_FALSE(cutDumpLine(""));
    EXPECT_FALSE(cutDumpLine("1\ta\ta\t\t1\t2\tP"));
    const auto line = cutDumpLine("1\ta\ta\t\t1\t2\tP\tPPL");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->featureCode, "PPL");
    EXPECT_TRUE(cutDumpLine("\t\t\t\t\t\t\t"));
}

TEST(IsPointOfInterest, TakesFiveDivisionsInItalyAndPopulatedPlacesElsewhere) {
    for (const std::string_view code : {"ADM3H", "ADM3", "ADM4", "ADM4H", "ADM5"}) {
        EXPECT_TRUE(isPointOfInterest("IT", code)) << code;
        EXPECT_FALSE(isPointOfInterest("FR", code)) << code;
    }
    for (const std::string_view code : {"PPL", "PPLA", "PPLC", "PPLX", "XPPL"}) {
        EXPECT_FALSE(isPointOfInterest("IT", code)) << code;
        EXPECT_TRUE(isPointOfInterest("FR", code)) << code;
    }
    for (const std::string_view code : {"ADM5H", "ADM1", "adm3", "", "ADM33"})
        EXPECT_FALSE(isPointOfInterest("IT", code)) << code;
    EXPECT_FALSE(isPointOfInterest("FR", "PP"));
}

TEST_F(ImportDump, StoresTheTextsOfTheDumpUnchanged) {
    const DumpOutcome outcome =
        import("FR", dumpLine("Besan\xC3\xA7on", "PPLA", "47.24878", "6.01815"));
    EXPECT_EQ(stored(), Rows{"Besan\xC3\xA7on|47.24878|6.01815|FR"});
    EXPECT_EQ(outcome.stored, 1U);
    EXPECT_EQ(outcome.failure, "");
}

TEST_F(ImportDump, StoresNoPopulatedPlaceOfItaly) {
    const DumpOutcome none = import("IT", geonamesDocument("cities15000_IT.txt"));
    EXPECT_EQ(none.stored, 0U);
    EXPECT_EQ(none.refused, 0U);
    EXPECT_EQ(announced, 632U);
    EXPECT_EQ(done, 632U);
    import("IT",
           dumpLine("Norcia", "ADM3") + dumpLine("Norcia", "PPLA3") + dumpLine("Perugia", "ADM2"));
    EXPECT_EQ(stored("Name"), Rows{"Norcia"});
}

TEST_F(ImportDump, StoresThePopulatedPlacesOfAnotherCountry) {
    EXPECT_EQ(import("SM", geonamesDocument("cities15000_SM.txt")).stored, 1U);
    EXPECT_EQ(stored(), Rows{"San Marino|43.93667|12.44639|SM"});
}

TEST_F(ImportDump, StoresTwiceWhatIsImportedTwice) {
    import("FR", dumpLine("Lyon", "PPLA"));
    import("FR", dumpLine("Lyon", "PPLA"));
    EXPECT_EQ(stored("Name"), (Rows{"Lyon", "Lyon"}));
}

TEST_F(ImportDump, LosesANameWithAnApostropheAlone) {
    const DumpOutcome outcome =
        import("IT", dumpLine("Assisi", "ADM3") + dumpLine("L'Aquila", "ADM3") +
                         dumpLine("x'); drop table Cities; --", "ADM3") +
                         dumpLine("Dell''Orso", "ADM3") + dumpLine("Norcia", "ADM3"));
    EXPECT_EQ(stored("Name"), (Rows{"Assisi", "Dell'Orso", "Norcia"}));
    EXPECT_EQ(outcome.stored, 3U);
    EXPECT_EQ(outcome.refused, 2U);
    EXPECT_EQ(outcome.refusedReason, "a value holds an apostrophe or a zero byte");
}

TEST_F(ImportDump, PassesOverShortAndEmptyLines) {
    const DumpOutcome outcome =
        import("FR", "\n1\tshort\n" + dumpLine("Lyon", "PPLA") + "1\ta\ta\t\t1\t2\tP\n");
    EXPECT_EQ(stored("Name"), Rows{"Lyon"});
    EXPECT_EQ(outcome.unreadable, 3U);
    EXPECT_EQ(announced, 4U);
}

TEST_F(ImportDump, TakesNoLineThatALineFeedDoesNotEnd) {
    std::string dump = dumpLine("Lyon", "PPLA") + dumpLine("Metz", "PPLA");
    dump.pop_back();
    import("FR", dump);
    EXPECT_EQ(stored("Name"), Rows{"Lyon"});
    EXPECT_EQ(announced, 1U);
    EXPECT_EQ(import("FR", "").stored, 0U);
    EXPECT_EQ(announced, 0U);
}

TEST_F(ImportDump, LeavesOutALineWithoutEndAndGoesOnBehindIt) {
    const DumpOutcome outcome = import(
        "FR", dumpLine(std::string(3 * longestDumpLine, 'x'), "PPL") + dumpLine("Lyon", "PPLA") +
                  dumpLine(std::string(longestDumpLine / 4, 'y'), "PPL") +
                  dumpLine("Metz", "PPLA"));
    EXPECT_EQ(outcome.unreadable, 1U);
    EXPECT_EQ(outcome.stored, 3U);
    EXPECT_EQ(stored("substr(Name, 1, 5)"), (Rows{"Lyon", "yyyyy", "Metz"}));
}

TEST_F(ImportDump, ReadsLinesThatLieAcrossBlocks) {
    std::string dump;
    std::size_t lines = 0;
    for (; dump.size() < 3 * longestDumpLine; ++lines)
        dump += dumpLine("Place " + std::to_string(lines), "PPL");
    EXPECT_EQ(import("FR", dump).stored, lines);
    EXPECT_EQ(announced, lines);
    EXPECT_EQ(done, lines);
    EXPECT_EQ(stored("count(distinct Name)"), Rows{std::to_string(lines)});
}

TEST_F(ImportDump, StoresNothingInACatalogueThatCannotBeWritten) {
    ASSERT_EQ(catalogue.slsExe("pragma query_only = 1"), 0);
    const DumpOutcome outcome = import("FR", dumpLine("Lyon", "PPLA"));
    EXPECT_EQ(outcome.stored, 0U);
    EXPECT_NE(outcome.failure, "");
    ASSERT_EQ(catalogue.slsExe("pragma query_only = 0"), 0);
    EXPECT_EQ(import("FR", dumpLine("Lyon", "PPLA")).failure, "");
    EXPECT_EQ(stored("Name"), Rows{"Lyon"});
}

TEST_F(ImportDump, SaysWhyWithoutATableOrACatalogue) {
    ASSERT_EQ(catalogue.slsExe("drop table Cities"), 0);
    EXPECT_NE(import("FR", dumpLine("Lyon", "PPLA")).failure.find("Cities"), std::string::npos);
    catalogue.slClose();
    EXPECT_NE(import("FR", dumpLine("Lyon", "PPLA")).failure, "");
}

TEST_F(ImportDump, RaisesAnErrorForAMissingFileAndForAFolder) {
    EXPECT_EQ(testing::errorOf([&] { importFile("FR"); }), ErrorNumber::FileNotFound);
    std::filesystem::create_directory(path);
    EXPECT_EQ(testing::errorOf([&] { importFile("FR"); }), ErrorNumber::PathFileAccessError);
}

TEST_F(ImportDump, FollowsNoLink) {
    std::ofstream(folder.file("real.txt")) << dumpLine("Lyon", "PPLA");
    std::filesystem::create_symlink(folder.file("real.txt"), path);
    EXPECT_EQ(testing::errorOf([&] { importFile("FR"); }), ErrorNumber::PathFileAccessError);
    EXPECT_TRUE(stored().empty());
}

} // namespace
} // namespace tremor
