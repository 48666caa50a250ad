#pragma once

#include "database/catalogue_support.h"
#include "workspaces/workspaces.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

using Texts = std::vector<std::string>;

// The last 24 hours of FakeClock.
inline const std::string latestHours =
    "(UTC >= '2014-03-06 09:05:12') and (UTC <= '2014-03-07 09:05:12')";

// A map page without a browser. `calls` holds one text a call, in order: "Workspace.ZOOM=7",
// "removeAll.onclick", "eventi.click".
template <class Interface>
class RecordingPage : public Interface {
  public:
    explicit RecordingPage(Texts& record) : calls(record) {}

    bool complete() const override { return isComplete; }
    void setAttribute(std::string_view element, std::string_view name,
                      std::string_view value) override {
        calls.push_back(std::string(element) + "." + std::string(name) + "=" + std::string(value));
    }
    void onclick(std::string_view element) override {
        calls.push_back(std::string(element) + ".onclick");
        if (onFire)
            onFire(element);
    }
    void click(std::string_view element) override {
        calls.push_back(std::string(element) + ".click");
        if (onFire)
            onFire(element);
    }

    Texts& calls;
    bool isComplete = true;
    std::function<void(std::string_view element)> onFire;
};

// The main window, which writes into the same record as its map.
class RecordingWindow : public WorkspaceSurroundings {
  public:
    explicit RecordingWindow(Texts& record) : calls(record) {}

    void showWorkspaces(const std::vector<std::string>& names, std::size_t selected) override {
        list = names;
        combo = names.at(selected);
        ++fillings;
    }
    std::string selectedWorkspace() const override { return combo; }
    std::optional<MapView> selection() override { return view; }
    MapBounds boundsVisualizedMap() override {
        calls.emplace_back("boundsVisualizedMap");
        if (onBounds)
            onBounds();
        return {"41.5", "12", "43", "14"};
    }
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override {
        calls.push_back("FillGridEvents [" + std::string(filter) + "] [" +
                        std::string(fallbackFilter) + "] [" + std::string(order) + "]");
        if (onFill)
            onFill();
    }
    void eventsInMap(std::string_view sql) override {
        calls.push_back("eventsInMap " + std::string(sql));
    }
    void pin2gif(std::string_view sql) override { calls.push_back("pin2gif " + std::string(sql)); }
    void pictureMagnitudeEvents() override { calls.emplace_back("pictureMagnitudeEvents"); }
    void showSearchWindow(bool workspaceShown) override {
        calls.emplace_back(workspaceShown ? "search on the workspace" : "search");
    }

    Texts& calls;
    Texts list;
    std::string combo = "Global";
    int fillings = 0;
    std::optional<MapView> view = MapView{{"41,5", "12,25", "43", "14"}, "42.7", "13,23", "7"};
    std::function<void()> onBounds;
    std::function<void()> onFill;
};

// An open catalogue with the program's own schema.
class WorkspaceCatalogue : public CatalogueTest {
  protected:
    WorkspaceCatalogue() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
    }

    // Stores the values as they are, apostrophes and zero bytes included.
    void store(const std::vector<std::string_view>& row) {
        Statement insert =
            database.prepare("insert into Workspace values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
        ASSERT_EQ(database.execute(insert, row), 0) << database.slGetError();
    }
    void storeAlps() {
        store({"Alps", "46.5", "10.25", "7", "45", "6", "47.5", "14", "2.5", "10", "0", "30"});
    }
    std::vector<std::vector<std::string>> workspaces() {
        return rowsOf(database, "select * from Workspace order by Name");
    }

    FakeClock clock;
    Texts calls;
};

// What selects the events of the Alps, without the range of time.
inline const std::string alps =
    "(Magnitude >= '2.5') and (Magnitude <= '10.0') AND (Depth >= '0.0') and (Depth <= '30.0') AND "
    "(Latitude >= 45.0) and (Latitude <= 47.5) AND (Longitude >= 6.0) and (Longitude <= 14.0) AND ";

} // namespace tremor::testing
