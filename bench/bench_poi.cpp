// How long do the points of interest of the whole world take to open and to search?
//
//     bench_poi [TOWNS]          5,000,000 towns unless told otherwise
//
// Ours is what the window does, up to the first painted picture (without a screen): its opening,
// a search from Return on, and a name that is edited in place. The reference is the sqlite3 shell
// with the same statements, their rows written to /dev/null. Both run in turn on the same file;
// read the lines "_median":
//
//     ratio            our time divided by the shell's; the goal is at most 1.5
//     cpu_ratio        the same in processor time, for a machine that is busy otherwise
//     rows             rows in the window
//     held_B_per_row   memory of the process that these rows cost, all in all
//
// The searches: one town, a thousandth of them, all of them, and a name that is nowhere.

#include "bench_catalogue.h"
#include "bench_main.h"
#include "database/database.h"
#include "manage/frm_manage_poi.h"
#include "nobody.h"
#include "shell_reference.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTableView>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

using namespace tremor;

struct Search {
    const char* name;
    const char* text;
};

constexpr std::array<Search, 4> searches{{{"searchPOI/one", "Borgo 4711 "},
                                          {"searchPOI/thousandth", " 777"},
                                          {"searchPOI/nothing", "nowhere"},
                                          {"searchPOI/all", "o"}}};

// "San Borgo 4711 alto", with coordinates of five decimals.
void addTowns(Database& database, std::int64_t towns) {
    const std::string sql = fmt::format(
        "with recursive n(i) as (select 0 union all select i + 1 from n where i < {}) insert into "
        "Cities select 'San Borgo ' || i || ' alto', (35 + i % 12) || '.' || (10000 + i % 89989), "
        "(6 + i % 13) || '.' || (10000 + i % 89983), 'IT' from n",
        towns - 1);
    if (database.slsExe(sql) != 0)
        throw std::runtime_error(database.slGetError());
}

// Bytes of the process in memory.
double residentBytes() {
    ::malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    double total = 0;
    double resident = 0;
    file >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE));
}

struct Bench {
    Bench(const BenchFolder& folder, std::int64_t towns) : script(folder.file("select.sql")) {
        const std::string catalogue = folder.file("catalogue.sqlite");
        makeCatalogue(catalogue, 0);
        if (database.slsOpen(catalogue, "") != 0)
            throw std::runtime_error(database.slGetError());
        addTowns(database, towns);
        database.slClose(); // as it is when the program starts
        if (database.slsOpen(catalogue, "") != 0)
            throw std::runtime_error(database.slGetError());
        empty = residentBytes();
        const FrmManagePoI window(manager, nullptr); // the file is in the cache from here on
    }

    Elapsed selectByShell(const std::string& condition, const std::string& limit) {
        writeFile(script,
                  fmt::format("select count(*) from Cities{};\nselect rowid, Name, Latitude, "
                              "Longitude, Zone from Cities{}{};\n",
                              condition, condition, limit));
        return runShell(database.path(), script);
    }

    Elapsed updateByShell(std::string_view rowid) {
        writeFile(script,
                  fmt::format("update Cities SET Name = 'Vico', Latitude = '42.1', Longitude = "
                              "'13.1', Zone = 'IT' where rowid = '{}';\n",
                              rowid));
        return runShell(database.path(), script);
    }

    void report(benchmark::State& state, const Elapsed& ours, const Elapsed& shell,
                double held) const {
        const auto rows = static_cast<double>(manager.rowCount());
        state.SetIterationTime(ours.wall);
        state.counters["shell_s"] = shell.wall;
        state.counters["ratio"] = ours.wall / shell.wall;
        state.counters["cpu_ratio"] = ours.processor / shell.processor;
        state.counters["rows"] = rows;
        if (rows > 1000)
            state.counters["held_B_per_row"] = held / rows;
    }

    void open(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            const Stopwatch watch;
            FrmManagePoI window(manager, nullptr);
            window.show();
            const QPixmap picture = window.grab();
            const Elapsed ours = watch.elapsed();
            if (picture.isNull() || !manager.failure().empty() || manager.rowCount() == 0)
                throw std::runtime_error("no rows: " + manager.failure());
            const double held = residentBytes() - empty;
            report(state, ours, selectByShell("", " limit 55000"), held);
        }
    }

    void search(benchmark::State& state, const Search& search) {
        FrmManagePoI window(manager, nullptr);
        window.show();
        auto* box = window.findChild<QLineEdit*>(QStringLiteral("txt_search"));
        box->setText(QString::fromLatin1(search.text));
        for ([[maybe_unused]] auto turn : state) {
            const Stopwatch watch;
            Q_EMIT box->returnPressed();
            const QPixmap picture = window.grab();
            const Elapsed ours = watch.elapsed();
            if (picture.isNull() || !manager.failure().empty())
                throw std::runtime_error("no search: " + manager.failure());
            const double held = residentBytes() - empty;
            report(state, ours,
                   selectByShell(fmt::format(" where Name like '%{}%'", search.text), ""), held);
        }
    }

    // The last row on show, which the grid has scrolled to.
    void edit(benchmark::State& state) {
        FrmManagePoI window(manager, nullptr);
        window.show();
        auto* grid = window.findChild<QTableView*>(QStringLiteral("fxGrid"));
        const auto row = static_cast<int>(manager.rowCount()) - 1;
        const QModelIndex name = grid->model()->index(row, poiName);
        grid->scrollTo(name);
        const double held = residentBytes() - empty;
        for ([[maybe_unused]] auto turn : state) {
            const Stopwatch watch;
            const bool written = grid->model()->setData(name, QStringLiteral("Vico"));
            const QPixmap picture = window.grab();
            const Elapsed ours = watch.elapsed();
            if (picture.isNull() || !written)
                throw std::runtime_error("not written: " + manager.failure());
            report(state, ours, updateByShell(manager.cell(0, poiRowid)), held);
        }
    }

    std::string script;
    double empty = 0; // memory without a window
    NobodyAnswers nobody;
    bool ticksHeld = false;
    ErrorReport errors{nobody, [] { std::abort(); }, 0, ticksHeld};
    Database database;
    PoiManager manager{database, nobody, errors};
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    constexpr std::int64_t worldOfTowns = 5'000'000;
    return benchmarkMain(
        argc, argv,
        [](std::int64_t towns) {
            const BenchFolder folder;
            Bench bench(folder, towns);
            addBenchmark("open", [&](benchmark::State& state) { bench.open(state); });
            for (const Search& search : searches)
                addBenchmark(search.name,
                             [&](benchmark::State& state) { bench.search(state, search); });
            addBenchmark("edit", [&](benchmark::State& state) { bench.edit(state); });
            benchmark::RunSpecifiedBenchmarks();
        },
        worldOfTowns);
}
