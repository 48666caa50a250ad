#include "journeys/view_journey.h"

#include <string>
#include <vector>

namespace tremor::journeys {
namespace {

constexpr char catalogue[] = "catalogue.sqlite";
constexpr char manageWindow[] = "Manage DataBase";
constexpr char newEventWindow[] = "Add New Event";
constexpr char editEventWindow[] = "Editing an Event in DB";
constexpr char removingWindow[] = "TREMORLEDGER";

// Events added, changed and removed by hand.
class ManageJourney : public ViewJourney {
  protected:
    void SetUp() override { showEverything(); }

    void openManager() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+f m");
        journey_.waitForWindow(manageWindow, 60);
    }
    // From the window's first control to the box that sorts. The space bar ticks a box at once; its
    // mnemonic takes a moment, in which Tab would find the controls behind it disabled.
    void chooseMagnitudes(const std::string& from, const std::string& to) {
        journey_.key("shift+Tab shift+Tab shift+Tab shift+Tab shift+Tab space");
        fill("Tab", from);
        fill("Tab", to);
        journey_.key("Tab Tab Tab");
    }
    // From there into the statement that it builds.
    std::string buildNewestFirst() {
        journey_.key("space Tab Down Tab Down Down Tab Tab space Tab");
        return journey_.copyText();
    }
    // From the statement into the table of the result.
    void sendQuery() { journey_.key("Tab space Tab"); }
    // Magnitudes from 3 to 4.5, newest first.
    void query() {
        chooseMagnitudes("3", "4.5");
        EXPECT_EQ(buildNewestFirst(), "select * from Events where ( Magnitude >= '3' ) AND "
                                      "( Magnitude <= '4.5' ) ORDER BY UTC DESC");
        sendQuery();
    }
    // The first column of the result. Ends when the cell below is the same one.
    std::vector<std::string> result() {
        constexpr std::size_t tooMany = 20;
        journey_.waitForWindow(manageWindow, 60);
        journey_.key("ctrl+Home");
        std::vector<std::string> times{journey_.copyText()};
        while (times.size() < tooMany) {
            journey_.key("Down");
            const std::string time = journey_.copyText();
            if (time == times.back())
                break;
            times.push_back(time);
        }
        return times;
    }
    void closeManager() {
        journey_.waitForWindow(manageWindow, 60);
        journey_.key("Escape");
        journey_.waitForNoWindow(manageWindow, 60);
        journey_.waitForWindow(mainWindow, 60);
    }
    // Types a value into the current cell and goes on to the next one.
    void typeValue(const std::string& value) {
        journey_.key("Return ctrl+a");
        journey_.type(value);
        journey_.key("Return");
    }
    // Types the values of a new event, from the first one, and saves it.
    void addByHand(const EventRow& event) {
        journey_.key("alt+a");
        journey_.waitForWindow(newEventWindow, 60);
        for (const std::string& value : {event.utc, event.latitude, event.longitude, event.depth,
                                         event.magnitude, event.source})
            typeValue(value);
        journey_.key("alt+s");
        journey_.waitForNoWindow(newEventWindow, 60);
    }
    // Of the first event of the result; the magnitude is the fifth value.
    void editMagnitude(const std::string& magnitude) {
        journey_.key("ctrl+Home alt+i");
        journey_.waitForWindow(editEventWindow, 60);
        journey_.key("Down Down Down Down");
        typeValue(magnitude);
        journey_.key("alt+s");
        journey_.waitForNoWindow(editEventWindow, 60);
    }
    // Asks to remove the first event of the result.
    void remove(const std::string& answer) {
        journey_.key("ctrl+Home alt+l");
        ASSERT_TRUE(waitForBox(removingWindow));
        journey_.key(answer);
        ASSERT_TRUE(waitForNoBox(removingWindow));
    }
    EventRow stored(const std::string& utc) const {
        for (const EventRow& event : journey_.events(catalogue))
            if (event.utc == utc)
                return event;
        return {};
    }
    // The main table reads the events of the workspace again.
    void refreshTable() {
        closeManager();
        journey_.key("alt+j");
    }
    // What stands in the main table as an event's magnitude; nothing while it has no such row.
    std::vector<std::string> magnitude(std::size_t index) const {
        const std::vector<Row> shown = rows();
        if (index >= shown.size())
            return {};
        return look().ink({grid_.x + 226, shown[index].y - 6, 28, 13});
    }
    bool firstMagnitudesAreEqual() const {
        const std::vector<std::string> first = magnitude(0);
        return !first.empty() && first == magnitude(1);
    }
};

TEST_F(ManageJourney, AnEventIsAddedEditedAndRemovedInTheCatalogueAndInTheTable) {
    const std::vector<std::string> old = selected("Magnitude >= 3 and Magnitude <= 4.5");
    const std::vector<std::vector<std::string>> shown = times(rows());
    const EventRow added{timeAgo(10), "43.25", "11.5", "9.0", "3.6", "by hand"};
    std::vector<std::string> withNew{added.utc};
    withNew.insert(withNew.end(), old.begin(), old.end());

    openManager();
    query();
    EXPECT_EQ(result(), old);
    addByHand(added);
    EXPECT_EQ(stored(added.utc), added);
    EXPECT_EQ(result(), withNew);
    refreshTable();
    ASSERT_TRUE(soon([&] { return rows().size() == shown.size() + 1; })) << rows().size();
    const std::vector<std::vector<std::string>> longer = times(rows());
    EXPECT_EQ(std::vector(longer.begin() + 1, longer.end()), shown);
    EXPECT_FALSE(firstMagnitudesAreEqual());

    openManager();
    query();
    EXPECT_EQ(result(), withNew);
    EventRow edited = added;
    edited.magnitude = "4.0"; // like that of the event before it
    editMagnitude(edited.magnitude);
    EXPECT_EQ(stored(added.utc), edited);
    refreshTable();
    EXPECT_TRUE(soon([&] { return firstMagnitudesAreEqual(); }));
    EXPECT_TRUE(soon([&] { return times(rows()) == longer; }));

    openManager();
    query();
    EXPECT_EQ(result(), withNew);
    remove("alt+y");
    EXPECT_TRUE(soon([&] { return stored(added.utc) == EventRow{}; }));
    EXPECT_EQ(result(), old);
    refreshTable();
    EXPECT_TRUE(soon([&] { return times(rows()) == shown; }));
    EXPECT_EQ(journey_.events(catalogue).size(), shown.size());
}

TEST_F(ManageJourney, AnEventStaysWhenItsRemovalIsDeniedAndNoOtherStatementThanSelectIsSent) {
    const std::vector<std::string> old = selected(everything);
    openManager();
    journey_.key("shift+Tab shift+Tab");
    EXPECT_EQ(buildNewestFirst(), "select * from Events ORDER BY UTC DESC");
    sendQuery();
    EXPECT_EQ(result(), old);
    remove("alt+n");
    EXPECT_EQ(result(), old);

    fill("shift+Tab shift+Tab", "delete from Events");
    journey_.key("alt+q");
    journey_.waitForWindow("Building query...", 60);
    journey_.key("Return");
    journey_.waitForNoWindow("Building query...", 60);
    EXPECT_EQ(selected(everything), old);
    closeManager();
    EXPECT_TRUE(menuOpens());
}

} // namespace
} // namespace tremor::journeys
