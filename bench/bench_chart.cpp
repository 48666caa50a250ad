// How long does the history chart take to be read and drawn, to follow a new size, and to be
// repainted?
//
//     bench_chart [EVENTS]          100,000 events unless told otherwise
//
// Ours is pictureMagnitudeEvents into the real picture (without a screen). The reference is the
// sqlite3 shell writing the same two selects to /dev/null. Both run in turn on the same file; read
// the line "_median":
//
//     ratio        our time divided by the shell's; the goal is at most 3
//     cpu_ratio    the same in processor time, for a machine that is busy otherwise
//     redraw_ms    our time, reading and drawing; the goal for 100,000 events is below 200
//     draw_ms      drawing alone, the events being read, as at each step of a resize
//     paint_ms     copying the buffer to the window
//     tip_ms       finding the event under the pointer

#include "bench_catalogue.h"
#include "bench_main.h"
#include "database/database.h"
#include "nobody.h"
#include "shell_reference.h"
#include "views/event_history_chart.h"
#include "views/event_history_chart_view.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace tremor;

const std::string everything = "(UTC >= '1985-01-01 00:00:00') and (UTC <= '2085-01-01 00:00:00')";

// A picture that remembers what it was given.
class WatchedChart : public EventHistoryChartView {
  public:
    void setContents(ChartContents contents) override {
        last = contents;
        EventHistoryChartView::setContents(std::move(contents));
    }
    ChartContents last;
};

template <class Action>
double milliseconds(const Action& action) {
    const Stopwatch watch;
    action();
    return watch.elapsed().wall * 1000;
}

struct Bench {
    Bench(const std::string& catalogue, std::string scriptFile, std::int64_t eventCount)
        : script(std::move(scriptFile)), events(eventCount) {
        if (database.slsOpen(catalogue, "") != 0)
            throw std::runtime_error(database.slGetError());
        settings.searchParQuery = everything;
        settings.startDate = "1985-01-01 00:00:00";
        database.slsSel("select max(UTC) from Events");
        database.slsGetRow();
        settings.endDate = database.slsFX(1).substr(0, settings.startDate.size());
        view.resize(width, height);
        view.show();
    }

    void run(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            const Stopwatch watch;
            chart.pictureMagnitudeEvents();
            const Elapsed ours = watch.elapsed();
            if (view.last.events.size() != static_cast<std::size_t>(events))
                throw std::runtime_error("events are missing");
            const Elapsed shell = runShell(database.path(), script);
            state.SetIterationTime(ours.wall);
            state.counters["ratio"] = ours.wall / shell.wall;
            state.counters["cpu_ratio"] = ours.processor / shell.processor;
            state.counters["redraw_ms"] = ours.wall * 1000;
            state.counters["draw_ms"] = milliseconds([&] { drawAlone(); });
            state.counters["paint_ms"] = milliseconds([&] { view.repaintChart(); });
            state.counters["tip_ms"] = milliseconds([&] { findEvent(); });
        }
    }

    void drawAlone() {
        if (paintChart(drawChart(view.last, {width, height}), {width, height}, 1).isNull())
            throw std::runtime_error("no picture");
    }

    void findEvent() {
        if (!nearestEvent(view.last, {width, height}, width / 2.0, height / 2.0))
            throw std::runtime_error("no event in the middle of the picture");
    }

    static constexpr int width = 1300;
    static constexpr int height = 165;
    std::string script;
    std::int64_t events;
    NobodyAnswers nobody;
    bool ticksHeld = false;
    ErrorReport errors{nobody, [] { std::abort(); }, 0, ticksHeld};
    Database database;
    Session session;
    AppSettings settings;
    WatchedChart view;
    EventHistoryChart chart{database, session, settings, NumberLocale::point(), view, errors};
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    constexpr std::int64_t defaultEvents = 100'000;
    return benchmarkMain(
        argc, argv,
        [](std::int64_t events) {
            const BenchFolder folder;
            const std::string catalogue = folder.file("catalogue.sqlite");
            const std::string script = folder.file("select.sql");
            makeCatalogue(catalogue, events);
            writeFile(script, "select count(UTC) from Events where " + everything +
                                  ";\nselect UTC , Magnitude from Events where " + everything +
                                  ";\n");
            runShell(catalogue, script); // the file is in the system's cache from here on
            Bench bench(catalogue, script, events);
            addBenchmark("pictureMagnitudeEvents",
                         [&](benchmark::State& state) { bench.run(state); });
            benchmark::RunSpecifiedBenchmarks();
        },
        defaultEvents);
}
