#include "manage/poi_fixture.h"
#include "manage/poi_manager.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

class PoiManagerTest : public ::testing::Test, public testing::PoiHarness {
  protected:
    Texts row(std::size_t number) const {
        Texts texts;
        for (std::size_t column = 0; column < poiColumnCount; ++column)
            texts.emplace_back(manager.cell(number, static_cast<PoiColumn>(column)));
        return texts;
    }
};

TEST_F(PoiManagerTest, ShowsTheRowsOfTheTable) {
    manager.fillGrid();
    ASSERT_EQ(manager.rowCount(), 3U);
    EXPECT_EQ(manager.total(), 3U);
    EXPECT_EQ(row(0), (Texts{"1", "Roma", "41.9", "12.5", "IT"}));
    EXPECT_EQ(row(2), (Texts{"7", "Roccaraso", "41.8", "14.1", "IT"}));
    EXPECT_EQ(manager.failure(), "");
}

TEST_F(PoiManagerTest, HasNoCellOutsideTheRows) {
    manager.fillGrid();
    EXPECT_EQ(manager.cell(3, poiName), "");
    EXPECT_EQ(manager.cell(0, poiColumnCount), "");
    EXPECT_TRUE(manager.StopEditing(0, poiName, "Roma"));
    EXPECT_EQ(manager.cell(0, poiColumnCount), "");
}

TEST_F(PoiManagerTest, ShowsAnEmptyTable) {
    run("delete from Cities");
    manager.fillGrid();
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_EQ(manager.failure(), "");
}

TEST_F(PoiManagerTest, Shows55000RowsOfALargerTableAndFindsTheOthersBySearching) {
    addTowns(55000);
    manager.fillGrid();
    EXPECT_EQ(manager.rowCount(), 55000U);
    EXPECT_EQ(manager.total(), 55003U);
    EXPECT_EQ(manager.cell(54999, poiName), "Town 54997");
    manager.searchPOI("town 55000");
    ASSERT_EQ(manager.rowCount(), 1U);
    EXPECT_EQ(row(0), (Texts{"55007", "Town 55000", "42.5", "13.5", "FR"}));
}

TEST_F(PoiManagerTest, ShowsAllRowsOfA55000RowTable) {
    addTowns(54997);
    manager.fillGrid();
    EXPECT_EQ(manager.rowCount(), 55000U);
    EXPECT_EQ(manager.total(), 55000U);
}

TEST_F(PoiManagerTest, FindsMoreRowsThanItShowsWithoutASearch) {
    addTowns(55001);
    manager.searchPOI("Town");
    EXPECT_EQ(manager.rowCount(), 55001U);
    EXPECT_EQ(manager.total(), 55001U);
}

TEST_F(PoiManagerTest, FindsATextAnywhereInTheNameInAnyCase) {
    manager.searchPOI("RO");
    ASSERT_EQ(manager.rowCount(), 2U);
    EXPECT_EQ(manager.cell(0, poiName), "Roma");
    EXPECT_EQ(manager.cell(1, poiName), "Roccaraso");
    manager.searchPOI("l\xC3\xAC");
    ASSERT_EQ(manager.rowCount(), 1U);
    EXPECT_EQ(manager.cell(0, poiRowid), "2");
}

TEST_F(PoiManagerTest, TakesThePlaceholdersOfASearchAsTheyAre) {
    manager.searchPOI("R%o");
    EXPECT_EQ(manager.rowCount(), 2U);
    manager.searchPOI("R_m");
    ASSERT_EQ(manager.rowCount(), 1U);
    EXPECT_EQ(manager.cell(0, poiName), "Roma");
}

TEST_F(PoiManagerTest, ShowsTheTableAgainForAnEmptySearch) {
    manager.searchPOI("nowhere");
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_EQ(manager.failure(), "");
    manager.searchPOI("");
    EXPECT_EQ(manager.rowCount(), 3U);
}

TEST_F(PoiManagerTest, TellsThatAnApostropheBreaksTheSearch) {
    run("insert into Cities(Name) values ('L''Aquila')");
    manager.fillGrid();
    manager.searchPOI("L'Aq");
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_EQ(manager.total(), 0U);
    EXPECT_EQ(manager.failure(), "The points cannot be read:\r\n1 near \"Aq\": syntax error\r\n"
                                 "An apostrophe must be typed twice.");
    manager.searchPOI("L''Aq");
    EXPECT_EQ(manager.rowCount(), 1U);
    EXPECT_EQ(manager.failure(), "");
}

TEST_F(PoiManagerTest, ChangesNothingThroughASearch) {
    manager.searchPOI("'; delete from Cities; --");
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_NE(manager.failure(), "");
    EXPECT_EQ(value("select count(*) from Cities"), "3");
}

TEST_F(PoiManagerTest, SearchesForAVeryLongText) {
    manager.searchPOI(std::string(10000, 'x'));
    EXPECT_EQ(manager.rowCount(), 0U);
    // Above SQLite's longest pattern of LIKE.
    manager.searchPOI(std::string(60000, 'x'));
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_NE(manager.failure().find("LIKE or GLOB pattern too complex"), std::string::npos);
}

TEST_F(PoiManagerTest, ShowsAndFindsAnEmptyTextForNull) {
    run("update Cities set Latitude = null, Zone = null where rowid = 1");
    manager.fillGrid();
    EXPECT_EQ(row(0), (Texts{"1", "Roma", "", "12.5", ""}));
}

TEST_F(PoiManagerTest, WritesTheWholeRowOfAnEditedCell) {
    run("update Cities set Zone = null where rowid = 7");
    manager.fillGrid();
    EXPECT_TRUE(manager.StopEditing(2, poiLatitude, "41.85"));
    EXPECT_EQ(row(2), (Texts{"7", "Roccaraso", "41.85", "14.1", ""}));
    EXPECT_EQ(town("7"), (Texts{"Roccaraso", "41.85", "14.1", ""}));
    EXPECT_EQ(value("select typeof(Zone) from Cities where rowid = 7"), "text");
    EXPECT_EQ(town("1"), (Texts{"Roma", "41.9", "12.5", "IT"}));
}

TEST_F(PoiManagerTest, WritesOverTheRowWhatTheGridShows) {
    manager.fillGrid();
    run("update Cities set Zone = 'VA' where rowid = 1");
    EXPECT_TRUE(manager.StopEditing(0, poiName, "Roma"));
    EXPECT_EQ(town("1"), (Texts{"Roma", "41.9", "12.5", "IT"}));
}

TEST_F(PoiManagerTest, StoresCoordinatesAsTheyWereTypedWithEitherMark) {
    manager.fillGrid();
    for (const char* typed : {"41.95", "41,95", "", "abc", "1e400"}) {
        EXPECT_TRUE(manager.StopEditing(0, poiLatitude, typed));
        EXPECT_TRUE(manager.StopEditing(0, poiLongitude, typed));
        EXPECT_EQ(town("1"), (Texts{"Roma", typed, typed, "IT"}));
    }
}

TEST_F(PoiManagerTest, StoresANameAsUtf8) {
    manager.fillGrid();
    EXPECT_TRUE(manager.StopEditing(0, poiName, "Forl\xC3\xAC"));
    EXPECT_EQ(value("select hex(Name) from Cities where rowid = 1"), "466F726CC3AC");
}

TEST_F(PoiManagerTest, TurnsANameInWindows1252IntoUtf8WithTheNextChangeOfItsRow) {
    run("update Cities set Name = 'Forl\xEC' where rowid = 1");
    manager.fillGrid();
    EXPECT_EQ(manager.cell(0, poiName), "Forl\xEC");
    EXPECT_TRUE(manager.StopEditing(0, poiZone, "FC"));
    EXPECT_EQ(value("select hex(Name) from Cities where rowid = 1"), "466F726CC3AC");
}

TEST_F(PoiManagerTest, CannotSaveAnApostropheThatIsNotDoubled) {
    manager.fillGrid();
    EXPECT_FALSE(manager.StopEditing(0, poiName, "L'Aquila"));
    EXPECT_EQ(manager.failure(), "The point was not saved:\r\nAn apostrophe must be typed twice.");
    EXPECT_EQ(manager.cell(0, poiName), "L'Aquila"); // not lost
    EXPECT_EQ(town("1"), (Texts{"Roma", "41.9", "12.5", "IT"}));
    EXPECT_TRUE(manager.StopEditing(0, poiName, "L''Aquila"));
    EXPECT_EQ(manager.failure(), "");
    EXPECT_EQ(town("1").at(0), "L'Aquila");
}

TEST_F(PoiManagerTest, CannotSaveTheZoneOfAPointWithAnApostropheInItsName) {
    run("insert into Cities(Name) values ('L''Aquila')");
    manager.fillGrid();
    EXPECT_FALSE(manager.StopEditing(3, poiZone, "AQ"));
    EXPECT_EQ(value("select count(*) from Cities where Zone = 'AQ'"), "0");
}

TEST_F(PoiManagerTest, NeverTurnsTheUpdateOfARowIntoOneOfAllRows) {
    manager.fillGrid();
    for (const char* name : {"x' --", "x', Zone = 'y", "' where 1; delete from Cities; --", "'"}) {
        EXPECT_FALSE(manager.StopEditing(0, poiName, name)) << name;
        EXPECT_EQ(value("select count(*) || max(Name) || max(Zone) from Cities"), "3RomaIT")
            << name;
    }
    // A name that came through an import.
    run("insert into Cities(Name) values ('x'' --')");
    manager.fillGrid();
    EXPECT_FALSE(manager.StopEditing(3, poiZone, "AQ"));
    EXPECT_EQ(value("select count(*) from Cities where Name = 'Roma'"), "1");
}

TEST_F(PoiManagerTest, EditsANameOf10000Characters) {
    const std::string name(10000, 'n');
    manager.fillGrid();
    EXPECT_TRUE(manager.StopEditing(0, poiName, name));
    EXPECT_EQ(town("1").at(0), name);
    manager.searchPOI("nnn");
    ASSERT_EQ(manager.rowCount(), 1U);
    EXPECT_EQ(manager.cell(0, poiName), name);
}

TEST_F(PoiManagerTest, CannotSaveAZeroByte) {
    manager.fillGrid();
    EXPECT_FALSE(manager.StopEditing(0, poiName, std::string_view("a\0b", 3)));
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(PoiManagerTest, EditsNoRowidAndNoRowThatIsNotThere) {
    manager.fillGrid();
    EXPECT_FALSE(manager.StopEditing(0, poiRowid, "5"));
    EXPECT_FALSE(manager.StopEditing(0, poiColumnCount, "5"));
    EXPECT_FALSE(manager.StopEditing(3, poiName, "5"));
    EXPECT_EQ(value("select group_concat(rowid) from Cities"), "1,2,7");
}

TEST_F(PoiManagerTest, TellsWhenThePointHasGone) {
    manager.fillGrid();
    run("delete from Cities where rowid = 1");
    EXPECT_FALSE(manager.StopEditing(0, poiName, "Rome"));
    EXPECT_EQ(manager.failure(), "The point was not saved:\r\nIt is not in the database any more.");
}

TEST_F(PoiManagerTest, AddsAPointWithoutAPositionBehindTheLastRow) {
    manager.fillGrid();
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    ASSERT_EQ(manager.rowCount(), 4U);
    EXPECT_EQ(manager.total(), 4U);
    EXPECT_EQ(row(3), (Texts{"8", "insertName", "", "", ""}));
    EXPECT_EQ(value("select typeof(Latitude) || typeof(Zone) from Cities where rowid = 8"),
              "nullnull");
    EXPECT_TRUE(manager.StopEditing(3, poiName, "Chieti"));
    EXPECT_EQ(town("8"), (Texts{"Chieti", "", "", ""}));
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    EXPECT_EQ(row(3), (Texts{"8", "Chieti", "", "", ""}));
    EXPECT_EQ(row(4), (Texts{"9", "insertName", "", "", ""}));
    manager.fillGrid();
    EXPECT_EQ(manager.rowCount(), 5U);
}

TEST_F(PoiManagerTest, NumbersTheFirstPointOfAnEmptyTable1) {
    run("delete from Cities");
    manager.fillGrid();
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    EXPECT_EQ(row(0), (Texts{"1", "insertName", "", "", ""}));
}

TEST_F(PoiManagerTest, AddsAPointBehindNegativeRowids) {
    run("delete from Cities");
    run("insert into Cities(rowid, Name) values (-5, 'x')");
    manager.fillGrid();
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    EXPECT_EQ(manager.cell(1, poiRowid), "-4");
}

TEST_F(PoiManagerTest, AddsNoPointBehindTheLargestRowid) {
    run("insert into Cities(rowid, Name) values (9223372036854775807, 'x')");
    manager.fillGrid();
    EXPECT_FALSE(manager.cmd_addPOI_Click());
    EXPECT_EQ(manager.failure(), "The point was not added:\r\n20 datatype mismatch");
    EXPECT_EQ(manager.rowCount(), 4U);
}

TEST_F(PoiManagerTest, AddsAPointToTheRowsOfASearch) {
    manager.searchPOI("Roma");
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    ASSERT_EQ(manager.rowCount(), 2U);
    EXPECT_EQ(manager.total(), 2U);
    EXPECT_EQ(manager.cell(1, poiName), "insertName");
}

TEST_F(PoiManagerTest, DeletesAPointWithoutAQuestionAndReadsTheRowsAgain) {
    manager.fillGrid();
    run("update Cities set Name = 'Rome' where rowid = 1");
    EXPECT_TRUE(manager.cmd_delPOI_Click(1));
    EXPECT_EQ(value("select group_concat(rowid) from Cities"), "1,7");
    ASSERT_EQ(manager.rowCount(), 2U);
    EXPECT_EQ(manager.cell(0, poiName), "Rome");
}

TEST_F(PoiManagerTest, DeletesAPointThatWasAdded) {
    manager.fillGrid();
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    EXPECT_TRUE(manager.cmd_delPOI_Click(3));
    EXPECT_EQ(manager.rowCount(), 3U);
    EXPECT_EQ(value("select count(*) from Cities"), "3");
}

TEST_F(PoiManagerTest, KeepsTheSearchWhenItDeletes) {
    manager.searchPOI("ro");
    EXPECT_TRUE(manager.cmd_delPOI_Click(0));
    ASSERT_EQ(manager.rowCount(), 1U);
    EXPECT_EQ(manager.cell(0, poiName), "Roccaraso");
}

TEST_F(PoiManagerTest, DeletesNoRowThatIsNotThere) {
    manager.fillGrid();
    EXPECT_FALSE(manager.cmd_delPOI_Click(3));
    EXPECT_EQ(value("select count(*) from Cities"), "3");
}

TEST_F(PoiManagerTest, ChangesNothingInATableThatCannotBeWritten) {
    protect();
    manager.fillGrid();
    const std::string error = "\r\n8 attempt to write a readonly database";
    EXPECT_FALSE(manager.StopEditing(0, poiName, "Rome"));
    EXPECT_EQ(manager.failure(), "The point was not saved:" + error);
    EXPECT_FALSE(manager.cmd_addPOI_Click());
    EXPECT_EQ(manager.failure(), "The point was not added:" + error);
    EXPECT_EQ(manager.rowCount(), 3U);
    EXPECT_FALSE(manager.cmd_delPOI_Click(0));
    EXPECT_EQ(manager.failure(), "The point was not deleted:" + error);
    EXPECT_EQ(manager.rowCount(), 3U);
    EXPECT_EQ(manager.cell(0, poiName), "Rome"); // still there to be copied
    EXPECT_EQ(town("1").at(0), "Roma");
}

TEST_F(PoiManagerTest, TellsWhenThereIsNoTable) {
    manager.fillGrid();
    run("drop table Cities");
    manager.fillGrid();
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_EQ(manager.failure(), "The points cannot be read:\r\n1 no such table: Cities");
    EXPECT_FALSE(manager.cmd_addPOI_Click());
    EXPECT_EQ(manager.failure(), "The point was not added:\r\n1 no such table: Cities");
}

TEST_F(PoiManagerTest, TellsWhenNoCatalogueIsOpen) {
    catalogue.slClose();
    manager.fillGrid();
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_EQ(manager.failure().rfind("The points cannot be read:\r\n", 0), 0U);
}

TEST_F(PoiManagerTest, TellsAFailureInABox) {
    expectError("The point was not added:\r\n8 why");
    manager.tell("The point was not added:\r\n8 why");
}

TEST_F(PoiManagerTest, FreesItsRows) {
    manager.fillGrid();
    EXPECT_TRUE(manager.cmd_addPOI_Click());
    manager.clear();
    EXPECT_EQ(manager.rowCount(), 0U);
    EXPECT_EQ(manager.total(), 0U);
    EXPECT_EQ(manager.cell(3, poiName), "");
}

} // namespace
} // namespace tremor
