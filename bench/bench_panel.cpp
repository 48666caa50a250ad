// How long does the program take to stand on the screen with a large catalogue, and how long does
// the window stand still while a full answer of INGV is imported?
//
//     bench_panel [ROWS]         a catalogue of 1,000,000 rows unless told otherwise
//
// Both work on the whole main window (without a screen), with a time filter of 24 hours. There is
// no other program to compare with; read the line "_median" of
//
//     StartToPaintedTable      from making the window to the first picture with the table's rows;
//                              the goal is below 1.5 s
//     LongestStall             while 4000 events are fetched from memory, imported and shown: the
//                              longest time in which no timer of the event loop could run; the
//                              goal is below 200 ms

#include "bench_catalogue.h"
#include "bench_main.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/panel.h"
#include "core/panel_browsers.h"
#include "core/qt_clock.h"
#include "nobody.h"
#include "shell_reference.h"
#include "support/reachable_host.h"
#include "views/events_grid_view.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

using namespace tremor;

constexpr std::int64_t answerRows = 4000; // the limit of the service's query
constexpr int recentRows = 50;            // of the last hours, in the table at the start

// Gives the answer from memory.
class AnswerFromMemory : public FileTransfer {
  public:
    void DownloadFile(DownloadEvents& events, std::string_view, std::string_view target,
                      std::int32_t, bool) override {
        writeFileAtomically(target, answer, true);
        events.DownloadCompleted();
    }
    std::string answer;
};

// The main window over the catalogue.
struct Window {
    Window(const std::string& folder, const std::string& host, FileTransfer& transfer) {
        hosts.InternetProbe = host;
        browsers = std::make_unique<QtBrowserMaker>(hosts, folder, clock);
        form = std::make_unique<panel>(PanelEnvironment{session, prompts, clock, errors, hosts,
                                                        folder, NumberLocale::point(), *browsers,
                                                        silence, &transfer});
    }
    ~Window() {
        form->close();
        QCoreApplication::sendPostedEvents();
    }

    NobodyAnswers prompts;
    Silence silence;
    Session session;
    QtClock clock{session};
    ErrorReport errors{prompts, [] { std::abort(); }, 0, session.TicksHeld};
    Hosts hosts;
    std::unique_ptr<QtBrowserMaker> browsers;
    std::unique_ptr<panel> form;
};

// The longest time between two turns of the event loop.
class StallWatch {
  public:
    StallWatch() {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { look(); });
        timer_.start(1);
        since_.start();
    }
    double longestMilliseconds() {
        look();
        return static_cast<double>(longest_) / 1e6;
    }

  private:
    void look() {
        longest_ = std::max(longest_, since_.nsecsElapsed());
        since_.restart();
    }

    QTimer timer_;
    QElapsedTimer since_;
    qint64 longest_ = 0;
};

struct Bench {
    Bench(const BenchFolder& benchFolder, std::int64_t rowCount)
        : rows(rowCount), folder(benchFolder.file("program")) {
        createFolder(folder);
        makeCatalogue(folder + "/catalogue.sqlite", rows);
        addRecentRows();
        transfer.answer = ingvAnswer(rows, answerRows);
        writeFile(folder + "/settings.ini",
                  fmt::format("Path={}/catalogue.sqlite\r\nStartupLogo=1\r\n"
                              "UsePrimaryDataSource=1\r\nIsideOrIngv=1\r\nPrimaryPollEvery=5\r\n"
                              "AlternatePollEvery=5\r\nLocalPollEvery=5\r\n",
                              folder));
        ::setenv("TMPDIR", folder.c_str(), 1);
    }

    void addRecentRows() {
        open();
        Session session;
        const QtClock clock(session);
        for (int i = 0; i < recentRows; ++i)
            execute(fmt::format("insert INTO Events(UTC, Latitude, Longitude, Depth,Magnitude,"
                                "Source) Values ('{}.000', '42.7', '13.2', '10', '2.1', 'INGV')",
                                dateToText(clock.now() - std::chrono::minutes(i + 10))));
        rows += recentRows;
    }

    void open() {
        if (database.slsOpen(folder + "/catalogue.sqlite", "") != 0)
            throw std::runtime_error(database.slGetError());
    }

    void execute(const std::string& sql) {
        if (database.slsExe(sql) != 0)
            throw std::runtime_error(database.slGetError());
    }

    void start(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            const Stopwatch watch;
            Window window(folder, host.address(), transfer);
            window.form->Form_Load();
            const QPixmap picture = window.form->grab();
            state.SetIterationTime(watch.elapsed().wall);
            if (picture.isNull() ||
                window.form->findChild<GridEvents*>()->rowCount() != recentRows + 1)
                throw std::runtime_error("the table does not show the last hours");
        }
    }

    void stall(benchmark::State& state) {
        for ([[maybe_unused]] auto turn : state) {
            Window window(folder, host.address(), transfer);
            window.form->Form_Load();
            StallWatch watch;
            window.clock.sleep(std::chrono::milliseconds(50));
            window.form->components().scheduler.mnuCollect_Click();
            window.clock.sleep(std::chrono::milliseconds(2500)); // the next tick polls
            state.SetIterationTime(watch.longestMilliseconds() / 1e3);
            execute("delete from Events where rowid > " + std::to_string(rows));
            if (database.changes() != answerRows)
                throw std::runtime_error("not all rows were imported");
        }
    }

    std::int64_t rows;
    std::string folder;
    Database database;
    testing::ReachableHost host;
    AnswerFromMemory transfer;
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    tremor::registerMapScheme();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return benchmarkMain(argc, argv, [](std::int64_t rows) {
        const BenchFolder folder;
        Bench bench(folder, rows);
        addBenchmark("StartToPaintedTable", [&](benchmark::State& state) { bench.start(state); });
        addBenchmark("LongestStall", [&](benchmark::State& state) { bench.stall(state); });
        benchmark::RunSpecifiedBenchmarks();
    });
}
