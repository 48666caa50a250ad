// How long does it take to bring a large catalogue in from a CSV file, and to write it to one?
//
//     bench_csv [ROWS]           1,000,000 rows unless told otherwise
//
// readCSV: the whole import of a file of new events into an empty catalogue: read, parse, look for
// duplicates, insert, commit. The reference is the `.import` of the sqlite3 shell for the same file
// (its lines end in an empty seventh column, which the shell wants and we ignore) into the same
// tables. Goal: at most 1.5.
//
// exportDatabaseCSV: the whole catalogue to DB.csv, newest event first, flushed to disk. The
// reference is the shell's `.mode csv` output of the same query to a file, which it does not flush.
// Goal: at most 1.0.
//
// Ours and the shell run in turn, with all files in the system's cache; read the line "_median":
//
//     ratio            our time divided by the shell's
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise

#include "bench_catalogue.h"
#include "bench_main.h"
#include "ingest/csv_export.h"
#include "ingest/csv_import.h"
#include "nobody.h"
#include "shell_reference.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

using namespace tremor;

class Nobody : public UnseenStatus,
               public NobodyAnswers,
               public StandingClock,
               public LastMessage {};

struct Bench {
    Bench(const BenchFolder& folder, std::int64_t rowCount)
        : rows(rowCount),
          full(folder.file("full.sqlite")),
          fresh(folder.file("fresh.sqlite")),
          eventsFile(folder.file("rows.csv")),
          exportScript(folder.file("export.sql")),
          importScript(folder.file("import.sql")),
          csvExport(context, settings, folder.file("")),
          csvImport(context, nobody, NumberLocale::point()) {
        makeCatalogue(full, rows);
        writeEvents();
        writeFile(exportScript, ".mode csv\n.separator ; \"\\n\"\n.output '" +
                                    folder.file("shell.csv") +
                                    "'\nselect UTC, Latitude, Longitude, Depth, Magnitude, Source "
                                    "from Events  order by UTC desc;\n");
        writeFile(importScript, ".mode list\n.separator ;\n.import '" + eventsFile + "' Events\n");
        csvImport.CsvFileName = eventsFile;
    }

    void writeEvents() {
        std::string text;
        SyntheticEvents events;
        for (std::int64_t row = 0; row < rows; ++row) {
            const SyntheticEvent event = events.next();
            for (const std::string& value : {event.utc, event.latitude, event.longitude,
                                             event.depth, event.magnitude, event.source})
                text.append(value).append(1, ';');
            text += '\n';
        }
        writeFile(eventsFile, text);
    }

    void makeFresh() {
        database.slClose();
        std::filesystem::remove(fresh);
        makeCatalogue(fresh, 0);
    }

    void checkRows() {
        if (database.slsOpen(fresh, "") != 0 ||
            database.slsSel("select count(*) from Events") != 0 || !database.slsGetRow() ||
            database.slsFX(1) != std::to_string(rows))
            throw std::runtime_error("not all rows were imported");
    }

    void import(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            makeFresh();
            const Elapsed shell = runShell(fresh, importScript);
            checkRows();
            makeFresh();
            if (database.slsOpen(fresh, "") != 0)
                throw std::runtime_error(database.slGetError());
            const Stopwatch watch;
            csvImport.readCSV(0);
            report(state, watch.elapsed(), shell);
            checkRows();
        }
    }

    void exportAll(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            const Elapsed shell = runShell(full, exportScript);
            if (database.slsOpen(full, "") != 0)
                throw std::runtime_error(database.slGetError());
            const Stopwatch watch;
            csvExport.mnu_exportDatabaseCSV_Click();
            report(state, watch.elapsed(), shell);
            if (nobody.lastMessage != std::to_string(rows) + " Events exported in DB.csv file")
                throw std::runtime_error(nobody.lastMessage);
        }
    }

    static void report(benchmark::State& state, const Elapsed& ours, const Elapsed& shell) {
        state.SetIterationTime(ours.wall);
        state.counters["shell_s"] = shell.wall;
        state.counters["ratio"] = ours.wall / shell.wall;
        state.counters["cpu_ratio"] = ours.processor / shell.processor;
    }

    std::int64_t rows;
    std::string full;
    std::string fresh;
    std::string eventsFile;
    std::string exportScript;
    std::string importScript;
    Nobody nobody;
    bool ticksHeld = false;
    ErrorReport errors{nobody, [] { std::abort(); }, 0, ticksHeld};
    Database database;
    Session session;
    AppSettings settings;
    Hosts hosts;
    FeedContext context{session,  settings, hosts,
                        database, nobody,   nobody,
                        nobody,   errors,   [] { return std::string(); }};
    CsvExport csvExport;
    CsvImport csvImport;
};

} // namespace

int main(int argc, char** argv) {
    return benchmarkMain(argc, argv, [](std::int64_t rows) {
        const BenchFolder folder;
        Bench bench(folder, rows);
        addBenchmark("readCSV", [&](benchmark::State& state) { bench.import(state); });
        addBenchmark("exportDatabaseCSV", [&](benchmark::State& state) { bench.exportAll(state); });
        benchmark::RunSpecifiedBenchmarks();
    });
}
