// How long does it take to import the dump of a large country?
//
//     bench_geonames [LINES]     1,000,000 lines unless told otherwise
//
// Ours is the whole import of a text file: count its lines, cut and filter them, insert, commit.
// The reference is awk with the same filter in a pipe to the `.import` of the sqlite3 shell, into
// the same table. Four lines of ten are populated places. Both run in turn on an empty catalogue,
// with all files in the system's cache; read the line "_median":
//
//     ratio            our time divided by the pipe's; the goal is at most 1.5
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise
//     memory_ratio     the largest memory of this program so far, divided by the file's size; the
//                      goal is at most 2

#include "bench_catalogue.h"
#include "bench_main.h"
#include "database/database.h"
#include "manage/geonames_dump.h"
#include "shell_reference.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <sys/resource.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace {

using namespace tremor;

constexpr std::string_view zone = "FR";

// Made-up places with the fields and the lengths of the service's dumps. Written in pieces, so that
// the text does not count as this program's memory.
void writeDump(const std::string& path, std::int64_t lines) {
    constexpr std::array<const char*, 10> codes = {"PPL", "PPL", "PPLA4", "PPLX", "STM",
                                                   "MT",  "HTL", "FRM",   "ADM4", "CH"};
    std::mt19937_64 random(1);
    std::ofstream file(path, std::ios::binary);
    for (std::int64_t line = 0; line < lines; ++line) {
        const std::uint64_t number = random();
        file << fmt::format("{}\tSaint-Place-{}\tSaint-Place-{}\tPlace {},Ville {},Plaatsj {}\t"
                            "{}.{:05}\t{}.{:05}\tP\t{}\tFR\t\t84\t69\t691\t69123\t{}\t\t{}\t"
                            "Europe/Paris\t2023-08-07\n",
                            3000000 + line, line, line, number % 9973, number % 7919, number % 6007,
                            42 + number % 8, number % 99991, number % 7, number % 99989,
                            codes[number % codes.size()], number % 5000, number % 1900);
    }
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path);
}

std::int64_t largestMemory() { // bytes
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{1024} * usage.ru_maxrss;
}

struct Bench {
    Bench(const BenchFolder& folder, std::int64_t lineCount)
        : fresh(folder.file("fresh.sqlite")),
          places(folder.file("FR.txt")),
          script(folder.file("import.sql")) {
        writeDump(places, lineCount);
        const std::string program = folder.file("filter.awk");
        writeFile(program, "$8 ~ /PPL/ { print $2 \"\\t\" $5 \"\\t\" $6 \"\\tFR\" }\n");
        writeFile(script, ".mode list\n.separator \"\\t\"\n.import \"|awk -F'\\t' -f " + program +
                              " " + places + "\" Cities\n");
    }

    void makeFresh() {
        database.slClose();
        std::filesystem::remove(fresh);
        makeCatalogue(fresh, 0);
    }

    std::string rows() {
        if (database.slsOpen(fresh, "") != 0 ||
            database.slsSel("select count(*) || ' ' || sum(length(Name) + length(Latitude) + "
                            "length(Longitude)) from Cities") != 0 ||
            !database.slsGetRow())
            throw std::runtime_error(database.slGetError());
        return database.slsFX(1);
    }

    void import(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            makeFresh();
            if (database.slsOpen(fresh, "") != 0)
                throw std::runtime_error(database.slGetError());
            const Stopwatch watch;
            const DumpOutcome outcome =
                importDump(places, zone, database,
                           {.started = [](std::size_t) {},
                            .lineDone = [](std::size_t line) { benchmark::DoNotOptimize(line); }});
            const Elapsed ours = watch.elapsed();
            const std::int64_t memory = largestMemory();
            if (!outcome.failure.empty() || outcome.stored == 0)
                throw std::runtime_error("nothing was stored: " + outcome.failure);
            const std::string ourRows = rows();
            makeFresh();
            const Elapsed pipe = runShell(fresh, script);
            if (rows() != ourRows)
                throw std::runtime_error("the pipe has stored other rows: " + rows() + " for " +
                                         ourRows);
            state.SetIterationTime(ours.wall);
            state.counters["pipe_s"] = pipe.wall;
            state.counters["ratio"] = ours.wall / pipe.wall;
            state.counters["cpu_ratio"] = ours.processor / pipe.processor;
            state.counters["memory_ratio"] =
                static_cast<double>(memory) /
                static_cast<double>(std::filesystem::file_size(places));
        }
    }

    std::string fresh;
    std::string places;
    std::string script;
    Database database;
};

} // namespace

int main(int argc, char** argv) {
    return benchmarkMain(argc, argv, [](std::int64_t lines) {
        const BenchFolder folder;
        Bench bench(folder, lines);
        addBenchmark("importDump", [&](benchmark::State& state) { bench.import(state); });
        benchmark::RunSpecifiedBenchmarks();
    });
}
