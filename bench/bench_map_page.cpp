// How long does a map take to show its markers, how long does a drag take, and does the page keep
// its memory?
//
//     bench_map_page [REFRESHES]      1000 refreshes unless told otherwise
//
// The main map in the browser engine, without a screen. Three figures are printed for 2,000 and for
// 10,000 events:
//
//     markers      from eventsInMap to the page's second frame after its circles were made
//     drag step    from a movement of the mouse with the button down to the page's next frame
//     events       eventsInMap and the new circles at each step, as in the global workspace
//
// Then the page is refreshed with 2,000 events again and again (as by polls) and the resident
// memory of its process is printed. It is measured from the tenth part of the refreshes on, when
// the engine's caches are full.

#include "bench_catalogue.h"
#include "core/qt_clock.h"
#include "core/qt_text.h"
#include "map/event_markers.h"
#include "map/js_maps.h"
#include "map/qt_web_browser.h"
#include "nobody.h"
#include "shell_reference.h"
#include "workspaces/haversine_formula.h"

#include <QtGui/QMouseEvent>
#include <QtWebEngineCore/QWebEnginePage>
#include <QtWidgets/QApplication>

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace tremor;
using namespace std::chrono_literals;

class Surroundings : public MarkerSurroundings, public NobodyAnswers, public Log {
  public:
    std::int64_t gridRowCount() const override { return 0; }
    std::string gridCell(std::int64_t, int) const override { return {}; }
    void setGridRowsGrey(const std::vector<std::int64_t>&) override {}
    void FillGridEvents(std::string_view, std::string_view, std::string_view) override {}
    void pictureMagnitudeEvents() override {}
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return formula.distance(lat1, lon1, lat2, lon2, unit);
    }
    void addLogToList(std::string_view message) override { fmt::print("{}\n", message); }

    bool ticksHeld = false;
    ErrorReport errors{*this, [] { std::abort(); }, 0, ticksHeld};
    HaversineFormula formula{NumberLocale::point(), errors};
};

double milliseconds(const std::function<void()>& work) {
    const Stopwatch watch;
    work();
    return watch.elapsed().wall * 1000;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

class Page {
  public:
    explicit Page(const BenchFolder& folder, std::int64_t events)
        : folder_(folder.file("program")), catalogue_(folder.file("catalogue.sqlite")) {
        std::filesystem::create_directory(folder_);
        makeCatalogue(catalogue_, events);
        if (database_.slsOpen(catalogue_, "") != 0)
            throw std::runtime_error(database_.slGetError());
        site_ = std::make_unique<MapSite>(
            MapSite::Environment{hosts_, folder_, [] { return std::string(); }, report_});
        frame_.resize(900, 600);
        browser_ = std::make_unique<QtWebBrowser>(frame_, *site_, clock_, report_);
        markers_ = std::make_unique<EventMarkers>(database_, settings_, NumberLocale::point(),
                                                  *browser_, *browser_, surroundings_, kml_,
                                                  surroundings_, surroundings_.errors);
        frame_.show();
        JSMaps pages(settings_, {folder_, hosts_, NumberLocale::point()},
                     {*browser_, *browser_, *browser_}, surroundings_, surroundings_.errors);
        pages.generaDefaultCSS();
        pages.Maps();
        wait([this] { return browser_->ReadyState() == WebBrowser::complete; });
        clock_.sleep(2s); // the base map draws itself
    }

    void show() {
        markers_->eventsInMap("select * from Events where UTC > ''");
        browser_->fire("removeAll", Fire::Onclick);
        if (browser_->fire("eventi", Fire::Onclick) != PageStatus::Done)
            throw std::runtime_error("the page takes no markers");
    }
    void showPainted() {
        show();
        waitForFrames(2);
    }

    // Middle values of a step of the pointer, alone and with new markers.
    double dragStep(bool withMarkers) {
        std::vector<double> steps;
        mouse(QEvent::MouseButtonPress, 450);
        for (int x = 452; x < 532; x += 2)
            steps.push_back(milliseconds([&] {
                mouse(QEvent::MouseMove, x);
                if (withMarkers)
                    show();
                waitForFrames(1);
            }));
        mouse(QEvent::MouseButtonRelease, 532);
        return median(steps);
    }

    double residentMegabytes() {
        std::ifstream statm(
            fmt::format("/proc/{}/statm", browser_->view().page()->renderProcessPid()));
        double all = 0;
        double resident = 0;
        statm >> all >> resident;
        return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
    }

  private:
    void wait(const std::function<bool()>& done) {
        const auto end = clock_.steady() + 60s;
        while (!done()) {
            if (clock_.steady() > end)
                throw std::runtime_error("the page does not answer");
            clock_.sleep(1ms);
        }
    }
    void waitForFrames(int frames) {
        evaluate(QStringLiteral("(() => { window.framesLeft = %1; const next = () => {"
                                "if (--framesLeft > 0) requestAnimationFrame(next); };"
                                "requestAnimationFrame(next); return 1; })()")
                     .arg(frames));
        wait([this] { return evaluate(QStringLiteral("framesLeft")) == 0; });
    }
    int evaluate(const QString& expression) {
        auto answer = std::make_shared<QVariant>();
        browser_->view().page()->runJavaScript(
            expression, [answer](const QVariant& value) { *answer = value; });
        wait([&] { return answer->isValid(); });
        return answer->toInt();
    }
    void mouse(QEvent::Type type, int x) {
        QWidget* target = browser_->view().focusProxy();
        const QPointF at(x, 300);
        QMouseEvent event(type, at, target->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
    }

    std::string folder_;
    std::string catalogue_;
    Hosts hosts_;
    AppSettings settings_;
    Session session_;
    QtClock clock_{session_};
    Database database_;
    Surroundings surroundings_;
    KmlWriter kml_{folder_, "", NumberLocale::point(), surroundings_.errors};
    std::function<void(std::string_view)> report_ = [](std::string_view line) {
        fmt::print("{}\n", line);
    };
    std::unique_ptr<MapSite> site_;
    QWidget frame_;
    std::unique_ptr<QtWebBrowser> browser_;
    std::unique_ptr<EventMarkers> markers_;
};

void measureTimes(std::int64_t events) {
    const BenchFolder folder;
    Page page(folder, events);
    constexpr int turns = 5;
    std::vector<double> shown;
    shown.reserve(turns);
    for (int turn = 0; turn < turns; ++turn)
        shown.push_back(milliseconds([&] { page.showPainted(); }));
    fmt::print("{:6} events: markers {:.0f} ms (first {:.0f}), drag step {:.1f} ms, with its "
               "events {:.0f} ms\n",
               events, median(shown), shown.front(), page.dragStep(false), page.dragStep(true));
    std::fflush(stdout);
}

void measureMemory(int refreshes) {
    constexpr std::int64_t events = 2000;
    constexpr int samples = 10;
    const BenchFolder folder;
    Page page(folder, events);
    const int part = std::max(1, refreshes / samples);
    for (int turn = 1; turn <= refreshes; ++turn) {
        page.showPainted();
        if (turn % part == 0) {
            fmt::print("{:6} refreshes: page's process {:.0f} MB\n", turn,
                       page.residentMegabytes());
            std::fflush(stdout);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (geteuid() == 0)
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // it refuses to start in its sandbox as root
    registerMapScheme();
    const QApplication application(argc, argv);
    try {
        const int refreshes = argc > 1 ? std::stoi(argv[1]) : 1000;
        measureTimes(2'000);
        measureTimes(10'000);
        measureMemory(refreshes);
    } catch (const std::exception& error) {
        fmt::print(stderr, "bench_map_page: {}\n", error.what());
        return 1;
    }
    return 0;
}
