#include "manage/event_editor.h"
#include "manage/event_editor_fixture.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using Row = std::vector<std::string>;

// Rows of the grid.
enum Field : std::size_t { UTC, Latitude, Longitude, Depth, Magnitude, Source, Null };

class EventEditorTest : public ::testing::Test, public testing::EventEditorHarness {
  protected:
    EventEditor loaded(std::optional<std::string> utc = std::nullopt) {
        EventEditor editor(catalogue, prompts, harness.errors, std::move(utc));
        editor.Form_Load();
        return editor;
    }
};

TEST_F(EventEditorTest, ListsTheColumnsOfTheTableWithEmptyValuesForANewEvent) {
    const EventEditor editor = loaded();
    EXPECT_EQ(editor.caption(), "Add New Event");
    Row names;
    for (const EventField& field : editor.fields()) {
        names.push_back(field.name);
        EXPECT_EQ(field.value, "");
    }
    EXPECT_EQ(names, (Row{"UTC", "Latitude", "Longitude", "Depth", "Magnitude", "Source", "null"}));
}

TEST_F(EventEditorTest, PutsTheValuesOfTheEventBesideTheirNames) {
    const EventEditor editor = loaded("2024-01-02 00:00:00");
    EXPECT_EQ(editor.caption(), "Editing an Event in DB");
    Row values;
    for (const EventField& field : editor.fields())
        values.push_back(field.value);
    EXPECT_EQ(values, (Row{"2024-01-02 00:00:00", "43.5", "14.25", "8.5", "4.5", "USGS", ""}));
}

TEST_F(EventEditorTest, WorksWithAnyColumns) {
    run("alter table Events add column Station TEXT");
    EventEditor editor = loaded("2024-01-02 00:00:00");
    ASSERT_EQ(editor.fields().size(), 8U);
    editor.StopEditing(7, "AQU");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(value("select Station from Events where UTC = '2024-01-02 00:00:00'"), "AQU");
}

TEST_F(EventEditorTest, AddsAnEventOfAllValues) {
    EventEditor editor = loaded();
    editor.StopEditing(UTC, "2024-01-03 00:00:00");
    editor.StopEditing(Latitude, "41.5");
    editor.StopEditing(Longitude, "12.5");
    editor.StopEditing(Depth, "5");
    editor.StopEditing(Magnitude, "2.5");
    editor.StopEditing(Source, "HAND");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-03 00:00:00"),
              (Row{"2024-01-03 00:00:00", "41.5", "12.5", "5.0", "2.5", "HAND", ""}));
    EXPECT_EQ(value("select count(*) from Events"), "3");
}

TEST_F(EventEditorTest, StoresAnEmptyTextForAnEmptyFieldOfANewEvent) {
    EventEditor editor = loaded();
    editor.StopEditing(UTC, "2024-01-03 00:00:00");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(value("select typeof(Magnitude) || length(Magnitude) from Events where UTC = "
                    "'2024-01-03 00:00:00'"),
              "text0");
    EXPECT_EQ(value("select typeof(\"null\") || length(\"null\") from Events where UTC = "
                    "'2024-01-03 00:00:00'"),
              "text0");
}

TEST_F(EventEditorTest, AddsAnEmptyEventWhenNothingWasTyped) {
    EXPECT_TRUE(loaded().cmdSalva_Click());
    EXPECT_EQ(value("select count(*) from Events where UTC = ''"), "1");
}

TEST_F(EventEditorTest, KeepsTheWindowOpenWhenAnApostropheBreaksTheInsert) {
    EventEditor editor = loaded();
    editor.StopEditing(UTC, "2024-01-03 00:00:00");
    editor.StopEditing(Source, "L'Aquila");
    expectError("The event was not saved:\r\n1 near \"Aquila\": syntax error");
    EXPECT_FALSE(editor.cmdSalva_Click());
    EXPECT_EQ(value("select count(*) from Events"), "2");

    editor.StopEditing(Source, "L''Aquila");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-03 00:00:00").at(Source), "L'Aquila");
}

TEST_F(EventEditorTest, RunsNoSecondStatementOfAValue) {
    EventEditor editor = loaded();
    editor.StopEditing(Null, "'); delete from Events; --");
    expectError("The event was not saved:\r\n" + [&] {
        catalogue.slsExe("insert into Events Values('','','','','','',''); delete from Events; "
                         "--');");
        return catalogue.slGetError();
    }());
    EXPECT_FALSE(editor.cmdSalva_Click());
    EXPECT_EQ(value("select count(*) from Events"), "2");
}

TEST_F(EventEditorTest, UpdatesTheFieldsOfTheEvent) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(Magnitude, "4.75");
    editor.StopEditing(Source, "");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-02 00:00:00"),
              (Row{"2024-01-02 00:00:00", "43.5", "14.25", "8.5", "4.75", "", ""}));
    EXPECT_EQ(event("2024-01-01 00:00:00").at(Magnitude), "1.5");
}

TEST_F(EventEditorTest, UpdatesAllEventsOfThatTime) {
    run("insert into Events values ('2024-01-02 00:00:00', '1', '2', '3', '4', 'EMSC', '')");
    EventEditor editor = loaded("2024-01-02 00:00:00");
    EXPECT_EQ(editor.fields().at(Source).value, "USGS");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(value("select count(*) from Events where Source = 'USGS' and Latitude = 43.5"), "2");
}

TEST_F(EventEditorTest, RunsTheUpdatesAllTheSameWhenNothingWasChanged) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    run("update Events set Magnitude = '9' where UTC = '2024-01-02 00:00:00'");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-02 00:00:00").at(Magnitude), "4.5");
}

TEST_F(EventEditorTest, StopsTheLaterUpdatesAtAChangedTimeAndNamesWhatWasLost) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(UTC, "2024-01-02 00:00:01");
    editor.StopEditing(Depth, "9");
    editor.StopEditing(Magnitude, "5");
    expectError(
        "There is no event at 2024-01-02 00:00:00 any more.\r\nNot saved: Depth, Magnitude");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-02 00:00:01"),
              (Row{"2024-01-02 00:00:01", "43.5", "14.25", "8.5", "4.5", "USGS", ""}));
    EXPECT_TRUE(event("2024-01-02 00:00:00").empty());
}

TEST_F(EventEditorTest, ChangesTheTimeAloneWithoutAWord) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(UTC, "2024-01-02 00:00:01");
    EXPECT_TRUE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-02 00:00:01").size(), 7U);
}

TEST_F(EventEditorTest, CannotUpdateTheColumnNamedNull) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    EXPECT_NE(catalogue.slsExe("update Events set null ='' where UTC = '2024-01-02 00:00:00';"), 0);
    const std::string error = catalogue.slGetError();
    EXPECT_NE(error.find("syntax error"), std::string::npos);
    editor.StopEditing(Null, "note");
    expectError("Not saved: null\r\n" + error);
    EXPECT_FALSE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-02 00:00:00").at(Null), "");
}

TEST_F(EventEditorTest, KeepsTheWindowOpenWhenAnApostropheBreaksAnUpdate) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(Source, "L'Aquila");
    editor.StopEditing(Magnitude, "5");
    expectError("Not saved: Source\r\n1 near \"Aquila\": syntax error");
    EXPECT_FALSE(editor.cmdSalva_Click());
    EXPECT_EQ(event("2024-01-02 00:00:00").at(Source), "USGS");
    EXPECT_EQ(event("2024-01-02 00:00:00").at(Magnitude), "5.0");
    expectQuestion(BoxAnswer::No);
    EXPECT_TRUE(editor.uscita());
}

TEST_F(EventEditorTest, TellsWhenTheEventHasGone) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(Magnitude, "5");
    run("delete from Events where UTC = '2024-01-02 00:00:00'");
    expectError("There is no event at 2024-01-02 00:00:00 any more.\r\nNot saved: Magnitude");
    EXPECT_TRUE(editor.cmdSalva_Click());
}

TEST_F(EventEditorTest, HasEmptyValuesForAnEventThatIsNotThere) {
    for (const char* utc : {"1900-01-01 00:00:00", "it's", "' or 1=1 or '"}) {
        const EventEditor editor = loaded(utc);
        ASSERT_EQ(editor.fields().size(), 7U) << utc;
        EXPECT_EQ(editor.fields().at(Source).value, std::string(utc[0] == '\'' ? "INGV" : ""))
            << utc;
    }
}

TEST_F(EventEditorTest, LeavesWithoutAQuestionWhenNothingWasChanged) {
    EXPECT_TRUE(loaded("2024-01-02 00:00:00").uscita());
}

TEST_F(EventEditorTest, SavesBeforeItLeavesWhenTheOperatorSaysYes) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(Magnitude, "5");
    expectQuestion(BoxAnswer::Yes);
    EXPECT_TRUE(editor.uscita());
    EXPECT_EQ(event("2024-01-02 00:00:00").at(Magnitude), "5.0");
}

TEST_F(EventEditorTest, LeavesWithoutSavingWhenTheOperatorSaysNo) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(Magnitude, "5");
    expectQuestion(BoxAnswer::No);
    EXPECT_TRUE(editor.uscita());
    EXPECT_EQ(event("2024-01-02 00:00:00").at(Magnitude), "4.5");
}

TEST_F(EventEditorTest, StaysWhenSavingFromTheQuestionIsRefused) {
    EventEditor editor = loaded();
    editor.StopEditing(Source, "'");
    expectQuestion(BoxAnswer::Yes);
    expectError("The event was not saved:\r\n1 unrecognized token: \"''','');\"");
    EXPECT_FALSE(editor.uscita());
}

TEST_F(EventEditorTest, NotesAKeptTextEvenWhenItIsTheSame) {
    EventEditor editor = loaded("2024-01-02 00:00:00");
    editor.StopEditing(Magnitude, "4.5");
    expectQuestion(BoxAnswer::No);
    EXPECT_TRUE(editor.uscita());
}

TEST_F(EventEditorTest, IgnoresATextForNoField) {
    EventEditor editor = loaded();
    editor.StopEditing(7, "x");
    EXPECT_TRUE(editor.uscita());
}

TEST_F(EventEditorTest, IsEmptyWithoutACatalogue) {
    catalogue.slClose();
    EventEditor editor = loaded("2024-01-02 00:00:00");
    EXPECT_TRUE(editor.fields().empty());
    EXPECT_TRUE(editor.uscita());
}

} // namespace
} // namespace tremor
