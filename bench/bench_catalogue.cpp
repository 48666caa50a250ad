#include "bench_catalogue.h"

#include "core/controls.h"
#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/catalogue_file.h"
#include "database/database.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace tremor {
namespace {

struct Zone {
    double latitude;
    double longitude;
    double spread;      // degrees
    double medianDepth; // km
};

constexpr std::array<Zone, 6> zones{{{42.7, 13.2, 0.3, 9},
                                     {37.7, 15.1, 0.4, 12},
                                     {38.9, 15.3, 0.5, 150},
                                     {44.4, 10.2, 0.5, 20},
                                     {46.3, 13.0, 0.3, 10},
                                     {39.9, 16.1, 0.3, 8}}};

constexpr double meanGapMilliseconds = 365.25 * 86400e3 / 25000;

std::string timeText(std::int64_t milliseconds) {
    using namespace std::chrono;
    const sys_time<std::chrono::milliseconds> time =
        sys_days(year(1985) / 1 / 1) + std::chrono::milliseconds(milliseconds);
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", int(date.year()),
                       unsigned(date.month()), unsigned(date.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(),
                       clock.subseconds().count());
}

// Nobody is there to answer: what a window would say becomes an error.
class NoOperator : public Prompts, public PanelControls, public Log, public DatabaseUpgrade {
  public:
    BoxAnswer showMessageBox(const MessageBox& box) override { throw std::runtime_error(box.text); }
    std::optional<std::string> inputBox(std::string_view, std::string_view) override { return {}; }
    std::optional<std::string> showFileDialog(const FileDialogRequest&) override { return {}; }
    std::string browseForFolder(std::string_view) override { return {}; }
    ErrorAnswer showRuntimeError(std::string_view, std::string_view text, int) override {
        throw std::runtime_error(std::string(text));
    }
    void controlliForm(std::int32_t) override {}
    void setCaption(std::string_view) override {}
    void addLogToList(std::string_view) override {}
    bool upgradeDB() override { return false; }
};

void createTables(const std::string& path) {
    NoOperator nobody;
    bool ticksHeld = false;
    ErrorReport errors(
        nobody, [] { std::abort(); }, 0, ticksHeld);
    Database database;
    AppSettings settings;
    Session session;
    CatalogueFile file(database, settings, session, nobody, nobody, nobody, errors, nobody, "");
    file.fillDBTables();
    file.createDatabase("", "", path);
}

void require(bool done, const Database& database) {
    if (!done)
        throw std::runtime_error(database.slGetError());
}

} // namespace

double SyntheticEvents::uniform() {
    return static_cast<double>((random_() >> 11) + 1) / 9007199254740992.0;
}

SyntheticEvent SyntheticEvents::next() {
    milliseconds_ += 1 + std::llround(-std::log(uniform()) * meanGapMilliseconds);
    const Zone& zone = zones[static_cast<std::size_t>(random_() % zones.size())];
    const double distance = zone.spread * std::sqrt(-std::log(uniform()));
    const double direction = 6.283185307179586 * uniform();
    const double magnitude = std::min(0.3 - std::log10(uniform()), 7.5);
    const double depth = std::min(zone.medianDepth * std::exp(uniform() * 2 - 1), 600.0);
    const double agency = uniform();
    return {timeText(milliseconds_),
            fmt::format("{:.4f}", zone.latitude + distance * std::sin(direction)),
            fmt::format("{:.4f}", zone.longitude + distance * std::cos(direction)),
            fmt::format("{:.1f}", depth),
            fmt::format("{:.1f}", magnitude),
            agency < 0.9 ? "SURVEY-INGV" : (agency < 0.95 ? "USGS" : "EMSC")};
}

void makeCatalogue(const std::string& path, std::int64_t rows) {
    createTables(path);
    Database database;
    require(database.slsOpen(path, "") == 0, database);
    require(database.slsExe("BEGIN TRANSACTION;") == 0, database);
    Statement insert =
        database.prepare("insert INTO Events(UTC, Latitude, Longitude, Depth,Magnitude,Source) "
                         "Values (?, ?, ?, ?, ?, ?)");
    require(static_cast<bool>(insert), database);
    SyntheticEvents events;
    for (std::int64_t row = 0; row < rows; ++row) {
        const SyntheticEvent event = events.next();
        require(database.execute(insert, {event.utc, event.latitude, event.longitude, event.depth,
                                          event.magnitude, event.source}) == 0,
                database);
    }
    require(database.slsExe("COMMIT;") == 0, database);
}

std::string ingvAnswer(std::int64_t skipped, std::int64_t rows) {
    std::string text = "#EventID|Time|Latitude|Longitude|Depth/Km|Author|Catalog|Contributor|"
                       "ContributorID|MagType|Magnitude|MagAuthor|EventLocationName|EventType\n";
    SyntheticEvents events;
    for (std::int64_t row = 0; row < skipped; ++row)
        events.next();
    for (std::int64_t row = 0; row < rows; ++row) {
        SyntheticEvent event = events.next();
        event.utc[10] = 'T';
        text += fmt::format("{}|{}000|{}|{}|{}|SURVEY-INGV||||ML|{}|--|Tirreno Meridionale "
                            "[Mare]|earthquake\n",
                            40000000 + row, event.utc, event.latitude, event.longitude, event.depth,
                            event.magnitude);
    }
    return text;
}

} // namespace tremor
