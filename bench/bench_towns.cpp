// How long does the report of the towns near an event take on a table of the whole world?
//
//     bench_towns [TOWNS]        1,000,000 towns unless told otherwise
//
// Ours is the whole report: corners, both statements, distances, sorting, texts. The reference is
// the sqlite3 shell with the same two statements, their rows written to /dev/null. Both run in turn
// on the same file; read the line "_median":
//
//     ratio            our time divided by the shell's; the goal is at most 1.5
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise
//     selected         towns that the statements select
//     listed           towns in the report
//
// The positions: a region full of towns, a city with very many around it, an ocean, Greenwich and
// the Gulf of Guinea. The statements compare texts, so a box across the zero meridian selects every
// town of the western half as well, and one across the equator every town of the southern half.

#include "alerts/nearby_towns.h"
#include "bench_catalogue.h"
#include "bench_main.h"
#include "core/common_text.h"
#include "nobody.h"
#include "shell_reference.h"
#include "workspaces/haversine_formula.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace tremor;

// Degrees.
struct Region {
    double south;
    double north;
    double west;
    double east;
    double share; // of all towns
};

constexpr std::array<Region, 6> regions{{{36.6, 47.1, 6.6, 18.5, 0.20},      // Italy
                                         {40.78, 40.92, 14.17, 14.33, 0.01}, // Naples
                                         {36, 60, -10, 40, 0.19},            // Europe
                                         {5, 45, 70, 140, 0.30},             // Asia
                                         {-40, 50, -120, -40, 0.20},         // the Americas
                                         {-35, 35, -17, 50, 0.10}}};         // Africa

struct Position {
    const char* name;
    std::string_view latitude;
    std::string_view longitude;
};

constexpr std::array<Position, 5> positions{{{"eventOnPOI/Italy", "42.7023", "13.2341"},
                                             {"eventOnPOI/Naples", "40.8518", "14.2681"},
                                             {"eventOnPOI/ocean", "61.4000", "176.2000"},
                                             {"eventOnPOI/Greenwich", "51.4779", "0.0015"},
                                             {"eventOnPOI/Guinea", "0.0312", "0.0427"}}};

void require(bool done, const Database& database) {
    if (!done)
        throw std::runtime_error(database.slGetError());
}

void addTowns(Database& database, std::int64_t count) {
    std::mt19937_64 random(20090406); // NOLINT(cert-msc32-c,cert-msc51-cpp): repeatable on purpose
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    require(database.slsExe("BEGIN TRANSACTION;") == 0, database);
    Statement insert = database.prepare("insert into Cities values (?, ?, ?, ?)");
    require(static_cast<bool>(insert), database);
    std::discrete_distribution<std::size_t> region(
        regions.size(), 0, static_cast<double>(regions.size()),
        [](double index) { return regions[static_cast<std::size_t>(index)].share; });
    for (std::int64_t town = 0; town < count; ++town) {
        const Region& place = regions[region(random)];
        const std::string name = fmt::format("San Borgo {}", town);
        const std::string latitude = fmt::format("{:.5f}", between(place.south, place.north));
        const std::string longitude = fmt::format("{:.5f}", between(place.west, place.east));
        require(database.execute(insert, {name, latitude, longitude, "IT"}) == 0, database);
    }
    require(database.slsExe("COMMIT;") == 0, database);
}

// The program's own geometry; keeps the corners of the last report.
class Earth : public EarthRoutines {
  public:
    explicit Earth(ErrorReport& errors) : formula_(NumberLocale::point(), errors) {}

    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return formula_.distance(lat1, lon1, lat2, lon2, unit);
    }
    std::string revealBounds(double lat, double lon, std::string_view bearing,
                             double distanceKm) const override {
        std::string end = formula_.revealBounds(lat, lon, bearing, distanceKm);
        if (bearing == "0")
            northEast_ = end;
        if (bearing == "180")
            southWest_ = end;
        return end;
    }

    // The two statements of the last report.
    std::vector<std::string> statements() const {
        const auto northEast = split(northEast_, '|');
        const auto southWest = split(southWest_, '|');
        const std::string condition = fmt::format(
            "from Cities where (Latitude BETWEEN {} and {} ) + (Longitude BETWEEN {} and {} )",
            southWest.at(0), northEast.at(0), southWest.at(1), northEast.at(1));
        return {"select count(Name) " + condition, "select Latitude, Longitude,Name " + condition};
    }

  private:
    HaversineFormula formula_;
    mutable std::string northEast_;
    mutable std::string southWest_;
};

class CountingList : public TownsList {
  public:
    void clear() override { items = 0; }
    void add(std::string_view) override { ++items; }
    std::int64_t items = 0;
};

struct Bench {
    Bench(const BenchFolder& folder, std::int64_t towns) : script(folder.file("towns.sql")) {
        const std::string catalogue = folder.file("catalogue.sqlite");
        makeCatalogue(catalogue, 0);
        require(database.slsOpen(catalogue, "") == 0, database);
        addTowns(database, towns);
    }

    Elapsed report(const Position& position) {
        constexpr std::int64_t headingLines = 5;
        std::string text;
        const Stopwatch watch;
        nearbyTowns.eventOnPOI(position.latitude, position.longitude, text);
        const Elapsed elapsed = watch.elapsed();
        if (list.items < headingLines || text.empty())
            throw std::runtime_error("no report");
        listed = list.items - headingLines;
        return elapsed;
    }

    Elapsed selectByShell() {
        std::string lines;
        for (const std::string& statement : earth.statements())
            lines += statement + ";\n";
        writeFile(script, lines);
        return runShell(database.path(), script);
    }

    double selected() {
        require(database.slsSel(earth.statements().front()) == 0 && database.slsGetRow(), database);
        return std::stod(database.slsFX(1));
    }

    void run(benchmark::State& state, const Position& position) {
        report(position); // the file is in the system's cache from here on
        state.counters["selected"] = selected();
        state.counters["listed"] = static_cast<double>(listed);
        for ([[maybe_unused]] auto turn : state) {
            const Elapsed ours = report(position);
            const Elapsed shell = selectByShell();
            state.SetIterationTime(ours.wall);
            state.counters["shell_s"] = shell.wall;
            state.counters["ratio"] = ours.wall / shell.wall;
            state.counters["cpu_ratio"] = ours.processor / shell.processor;
        }
    }

    std::string script;
    NobodyAnswers nobody;
    bool ticksHeld = false;
    ErrorReport errors{nobody, [] { std::abort(); }, 0, ticksHeld};
    Database database;
    CountingList list;
    Earth earth{errors};
    NearbyTowns nearbyTowns{database, NumberLocale::point(), earth, list, errors};
    std::int64_t listed = 0;
};

} // namespace

int main(int argc, char** argv) {
    return benchmarkMain(argc, argv, [](std::int64_t towns) {
        const BenchFolder folder;
        Bench bench(folder, towns);
        for (const Position& position : positions)
            addBenchmark(position.name,
                         [&](benchmark::State& state) { bench.run(state, position); });
        benchmark::RunSpecifiedBenchmarks();
    });
}
