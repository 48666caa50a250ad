// How long does the main map take to get its markers?
//
//     bench_markers [ROWS]       100,000 rows unless told otherwise
//
// Ours is eventsInMap up to the attributes handed to the page: query, duplicate pass, the lists and
// colours, grey rows of a grid that shows the same events. The reference is the sqlite3 shell
// writing the same select to /dev/null. Both run in turn on the same file; read the line "_median":
//
//     ratio            our time divided by the shell's
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise
//     tenth_ms         our time for a catalogue of a tenth of the events
//     growth           our processor time divided by that of the tenth; about 10 when linear
//     hidden           events that the duplicate pass keeps off the map

#include "bench_catalogue.h"
#include "bench_main.h"
#include "map/event_markers.h"
#include "nobody.h"
#include "shell_reference.h"
#include "workspaces/haversine_formula.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace tremor;

constexpr double secondReports = 0.1; // share of the events that a second catalogue reports, too

// A page that takes every attribute and keeps its size.
class TakingPage : public WebBrowser {
  public:
    void setEvents(PageEvents*) override {}
    void Navigate(std::string_view) override {}
    std::int32_t ReadyState() const override { return complete; }
    std::string LocationURL() const override { return {}; }
    void setAttribute(std::string_view, std::string_view, std::string_view value) override {
        const std::string taken(value);
        bytes += taken.size();
    }
    void replaceAttribute(std::string_view, std::string_view, std::string_view,
                          std::string_view) override {}
    PageStatus fire(std::string_view, Fire) override { return PageStatus::Done; }
    std::optional<PageSnapshot> snapshot() override { return std::nullopt; }
    std::optional<Picture> picture() override { return std::nullopt; }

    std::size_t bytes = 0;
};

// The markers' neighbours, with the grid as the table holds it.
class Surroundings : public MarkerSurroundings, public NobodyAnswers, public Log {
  public:
    std::int64_t gridRowCount() const override {
        return static_cast<std::int64_t>(grid.rowCount()) + 1;
    }
    std::string gridCell(std::int64_t row, int column) const override {
        return std::string(
            grid.cell(static_cast<std::size_t>(row - 1), static_cast<std::size_t>(column - 1)));
    }
    void setGridRowsGrey(const std::vector<std::int64_t>& rows) override { grey = rows.size(); }
    void FillGridEvents(std::string_view, std::string_view, std::string_view) override {}
    void pictureMagnitudeEvents() override {}
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return formula.distance(lat1, lon1, lat2, lon2, unit);
    }
    void addLogToList(std::string_view message) override {
        throw std::runtime_error(std::string(message));
    }

    ResultSet grid;
    std::size_t grey = 0;
    bool ticksHeld = false;
    ErrorReport errors{*this, [] { std::abort(); }, 0, ticksHeld};
    HaversineFormula formula{NumberLocale::point(), errors};
};

struct Bench {
    Bench(const BenchFolder& folder, std::int64_t rowCount)
        : catalogue(folder.file("catalogue.sqlite")),
          script(folder.file("select.sql")),
          kml(folder.file(""), "", NumberLocale::point(), surroundings.errors) {
        const auto reported =
            static_cast<std::int64_t>(static_cast<double>(rowCount) / (1 + secondReports));
        makeCatalogue(catalogue, reported);
        if (database.slsOpen(catalogue, "") != 0)
            throw std::runtime_error(database.slGetError());
        // The same places 3 s later, from the other catalogue.
        run(fmt::format("insert into Events select strftime('%Y-%m-%d %H:%M:%f', UTC, '3 seconds'),"
                        " Latitude, Longitude, Depth, Magnitude, 'EMSC', '' from Events order by "
                        "rowid desc limit {}",
                        rowCount - reported));
        writeFile(script, all + " Order by UTC desc;\n");
        runShell(catalogue, script); // the file is in the system's cache from here on
        database.slsSel(all + " ORDER BY UTC DESC");
        surroundings.grid = database.takeResult();
        show();
    }

    void run(const std::string& sql) {
        if (database.slsExe(sql) != 0)
            throw std::runtime_error(database.slGetError());
    }

    Elapsed show() {
        page.bytes = 0;
        const Stopwatch watch;
        markers.eventsInMap(all);
        const Elapsed elapsed = watch.elapsed();
        if (markers.EventsOnMap().size() != surroundings.grid.rowCount() + 1 || page.bytes == 0)
            throw std::runtime_error("events are missing");
        return elapsed;
    }

    void measure(benchmark::State& state, Bench& tenth) {
        for ([[maybe_unused]] auto turn : state) {
            const Elapsed few = tenth.show();
            const Elapsed ours = show();
            const Elapsed shell = runShell(catalogue, script);
            state.SetIterationTime(ours.wall);
            state.counters["shell_s"] = shell.wall;
            state.counters["ratio"] = ours.wall / shell.wall;
            state.counters["cpu_ratio"] = ours.processor / shell.processor;
            state.counters["tenth_ms"] = few.wall * 1000;
            state.counters["growth"] = ours.processor / few.processor;
            state.counters["hidden"] = static_cast<double>(surroundings.grey);
        }
    }

    const std::string all = "select * from Events where UTC > ''";
    std::string catalogue;
    std::string script;
    AppSettings settings;
    Database database;
    TakingPage page;
    Surroundings surroundings;
    KmlWriter kml;
    EventMarkers markers{database, settings,     NumberLocale::point(), page, page, surroundings,
                         kml,      surroundings, surroundings.errors};
};

} // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t defaultRows = 100'000;
    return benchmarkMain(
        argc, argv,
        [](std::int64_t rows) {
            const BenchFolder folder;
            Bench bench(folder, rows);
            const BenchFolder folderOfTenth;
            Bench tenth(folderOfTenth, rows / 10);
            addBenchmark("eventsInMap",
                         [&](benchmark::State& state) { bench.measure(state, tenth); });
            benchmark::RunSpecifiedBenchmarks();
        },
        defaultRows);
}
