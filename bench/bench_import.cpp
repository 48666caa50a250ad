// How long does a full answer of INGV take into a large catalogue?
//
//     bench_import [ROWS]        a catalogue of 1,000,000 rows unless told otherwise
//
// Ours is the whole import of a file of 4000 new events: read, parse, duplicate query, insert,
// commit. The reference is the sqlite3 shell with the same duplicate query, its result written to
// /dev/null, and its `.import` of the same 4000 rows, cut into columns beforehand. Both run in turn
// on the same file, and the rows are taken out again in between; read the line "_median":
//
//     ratio            our time divided by the shell's; the goal is at most 1.0
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise

#include "bench_catalogue.h"
#include "bench_main.h"
#include "database/database.h"
#include "ingest/ingv_source.h"
#include "nobody.h"
#include "shell_reference.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace tremor;

constexpr std::int64_t answerRows = 4000; // the limit of the service's query

// The import's neighbours: nobody is there to look or to answer.
class NoNeighbours : public UnseenStatus,
                     public NobodyAnswers,
                     public StandingClock,
                     public LastMessage,
                     public FileTransfer {
  public:
    void DownloadFile(DownloadEvents&, std::string_view, std::string_view, std::int32_t,
                      bool) override {}
};

// The duplicate query and the import for the shell; writes the rows to `rowsFile`.
std::string shellScript(const std::string& answer, const std::string& rowsFile) {
    std::string text = answer;
    const std::vector<ImportRecord> records = parseIngvEvents(text);
    std::string rows;
    for (const ImportRecord& record : records) // the seventh column is empty
        rows += fmt::format("{}|{}|{}|{}|{}|{}|\n", record.UTC, record.Latitude, record.Longitude,
                            record.Depth, record.Magnitude, record.Source);
    writeFile(rowsFile, rows);
    return "select UTC from Events where (UTC IN (" + utcList(records, countLines(answer)) +
           std::string(feedRules(FeedReader::Ingv).duplicateTail) +
           ";\n.mode list\n.separator |\n.import '" + rowsFile + "' Events\n";
}

struct Bench {
    Bench(const BenchFolder& folder, std::int64_t rowCount)
        : rows(rowCount),
          catalogue(folder.file("catalogue.sqlite")),
          script(folder.file("import.sql")),
          temporaryFolder(folder.file("")) {
        makeCatalogue(catalogue, rows);
        const std::string answer = ingvAnswer(rows, answerRows);
        writeFile(folder.file("eventsINGV.csv"), answer);
        writeFile(script, shellScript(answer, folder.file("rows.txt")));
        if (database.slsOpen(catalogue, "") != 0)
            throw std::runtime_error(database.slGetError());
        importByShell(); // the file is in the system's cache from here on
    }

    void checkAndRemoveRows() {
        if (database.slsExe("delete from Events where rowid > " + std::to_string(rows)) != 0 ||
            database.changes() != answerRows)
            throw std::runtime_error("not all rows were imported: " + database.slGetError());
    }

    Elapsed import() {
        const Stopwatch watch;
        source.readCsvIngv();
        const Elapsed elapsed = watch.elapsed();
        checkAndRemoveRows();
        return elapsed;
    }

    Elapsed importByShell() {
        const Elapsed elapsed = runShell(catalogue, script);
        checkAndRemoveRows();
        return elapsed;
    }

    void run(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            const Elapsed ours = import();
            const Elapsed shell = importByShell();
            state.SetIterationTime(ours.wall);
            state.counters["shell_s"] = shell.wall;
            state.counters["ratio"] = ours.wall / shell.wall;
            state.counters["cpu_ratio"] = ours.processor / shell.processor;
        }
    }

    std::int64_t rows;
    std::string catalogue;
    std::string script;
    std::string temporaryFolder;
    NoNeighbours nobody;
    bool ticksHeld = false;
    ErrorReport errors{nobody, [] { std::abort(); }, 0, ticksHeld};
    Database database;
    Session session;
    AppSettings settings;
    Hosts hosts;
    PanelDownload download{session, nobody, nobody, nobody, [] {}};
    IngvSource source{FeedContext{session, settings, hosts, database, nobody, nobody, nobody,
                                  errors, [this] { return temporaryFolder; }},
                      download};
};

} // namespace

int main(int argc, char** argv) {
    return benchmarkMain(argc, argv, [](std::int64_t rows) {
        const BenchFolder folder;
        Bench bench(folder, rows);
        addBenchmark("readCsvIngv", [&](benchmark::State& state) { bench.run(state); });
        benchmark::RunSpecifiedBenchmarks();
    });
}
