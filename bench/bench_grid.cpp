// How long does the table of events take to show a whole catalogue, and how much memory?
//
//     bench_grid [ROWS]          1,000,000 rows unless told otherwise
//
// Ours is FillGridEvents into the real table (without a screen), up to the first painted picture.
// The reference is the sqlite3 shell writing the same select to /dev/null. Both run in turn on the
// same file; read the line "_median":
//
//     ratio            our time divided by the shell's; the goal is at most 1.5
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise
//     held_B_per_row   memory of the process that the rows cost, all in all; at most 200
//     peak_B_per_row   the same at its highest point while filling
//     left_B_per_row   the same after the table has been emptied again

#include "bench_catalogue.h"
#include "bench_main.h"
#include "database/database.h"
#include "nobody.h"
#include "shell_reference.h"
#include "views/events_grid.h"
#include "views/events_grid_view.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

using namespace tremor;

const std::string everything = "UTC > ''";

// The grid's neighbours; a fill of a correct filter needs none of them.
class NoNeighbours : public GridMap,
                     public TownsReport,
                     public NobodyAnswers,
                     public StandingClock {
  public:
    void removeAll() override { throw std::runtime_error("the filter was refused"); }
    MapBounds boundsVisualizedMap() override { return {}; }
    void selectMarker(std::string_view) override {}
    void eventOnPOI(const SelectedEvent&) override {}
};

// Bytes of the process in memory.
double residentBytes() {
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

void resetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

// Highest residentBytes() since resetPeak().
double peakBytes() {
    std::ifstream file("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (file >> word)
        if (word == "VmHWM:")
            file >> kilobytes;
    return kilobytes * 1024;
}

struct Bench {
    Bench(const std::string& catalogue, std::string scriptFile, std::int64_t rowCount)
        : script(std::move(scriptFile)), rows(rowCount) {
        if (database.slsOpen(catalogue, "") != 0)
            throw std::runtime_error(database.slGetError());
        view.resize(500, 800);
        view.show();
        grid.FillGridEvents("UTC < ''", "", ""); // the empty table counts for nothing
        view.grab();
        ::malloc_trim(0);
        empty = residentBytes();
    }

    void run(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            grid.FillGridEvents("UTC < ''", "", "");
            ::malloc_trim(0);
            state.counters["left_B_per_row"] =
                (residentBytes() - empty) / static_cast<double>(rows);
            resetPeak();
            const Stopwatch watch;
            grid.FillGridEvents(everything, "", "");
            const QPixmap picture = view.grab();
            const Elapsed ours = watch.elapsed();
            const double held = residentBytes() - empty;
            const double peak = peakBytes() - empty;
            if (view.rowCount() != rows + 1 || picture.isNull())
                throw std::runtime_error("rows are missing");
            const Elapsed shell = runShell(database.path(), script);
            state.SetIterationTime(ours.wall);
            state.counters["shell_s"] = shell.wall;
            state.counters["ratio"] = ours.wall / shell.wall;
            state.counters["cpu_ratio"] = ours.processor / shell.processor;
            state.counters["held_B_per_row"] = held / static_cast<double>(rows);
            state.counters["peak_B_per_row"] = peak / static_cast<double>(rows);
        }
    }

    std::string script;
    std::int64_t rows;
    double empty = 0; // memory with the empty table
    NoNeighbours nobody;
    bool ticksHeld = false;
    ErrorReport errors{nobody, [] { std::abort(); }, 0, ticksHeld};
    Database database;
    Session session;
    AppSettings settings;
    GridEvents view;
    EventsGrid grid{database, session, settings, nobody, NumberLocale::point(), view,
                    nobody,   nobody,  nobody,   errors, [] { return true; }};
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return benchmarkMain(argc, argv, [](std::int64_t rows) {
        const BenchFolder folder;
        const std::string catalogue = folder.file("catalogue.sqlite");
        const std::string script = folder.file("select.sql");
        makeCatalogue(catalogue, rows);
        writeFile(script, "select UTC, Latitude, Longitude, Magnitude, Depth, Source from Events "
                          "where " +
                              everything + " ORDER BY UTC DESC;\n");
        runShell(catalogue, script); // the file is in the system's cache from here on
        Bench bench(catalogue, script, rows);
        addBenchmark("FillGridEvents", [&](benchmark::State& state) { bench.run(state); });
        benchmark::RunSpecifiedBenchmarks();
    });
}
