#include "manage/geonames_import.h"

#include "core/conversions.h"
#include "core/files.h"
#include "core/flag_scope.h"
#include "manage/zip_extract.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace tremor {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view module = "Form - frmDownload";
constexpr std::string_view exportPath = "/export/dump/";
constexpr std::string_view indexFile = "geonamesListFilesAvailable.txt";
constexpr std::string_view countryFile = "countryInfo.txt";

int progressValue(std::size_t lines) {
    constexpr std::size_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(lines, most));
}

// "IT" of "IT.zip".
std::string zoneOf(const std::string& file) {
    return file.substr(0, file.size() - 4);
}

} // namespace

GeoNamesImport::GeoNamesImport(Session& session, Database& database, Prompts& prompts, Clock& clock,
                               ErrorReport& errors, GeoNamesNetwork& network,
                               std::function<std::string()> temporaryFolder, std::string host)
    : session_(session),
      database_(database),
      prompts_(prompts),
      clock_(clock),
      errors_(errors),
      network_(network),
      temporaryFolder_(std::move(temporaryFolder)),
      host_(std::move(host)),
      repaint_(clock) {}

void GeoNamesImport::opened(GeoNamesWindow& window) {
    window_ = &window;
    window.showRows();
    window.showRunning(running_);
}

void GeoNamesImport::closed() {
    window_ = nullptr;
    if (running_) {
        stop_ = true;
        network_.AbortDownload();
    }
    if (escaped_ && !session_.Closing)
        session_.WaitCounter = 0;
    escaped_ = false;
}

void GeoNamesImport::escape() {
    network_.AbortDownload();
    session_.WaitCounter = Session::waitCounterClosing;
    escaped_ = true;
    stop_ = running_;
    if (running_)
        log("Download POI aborted!");
}

void GeoNamesImport::toggleImported(std::size_t row) {
    rows_.at(row).imported = !rows_.at(row).imported;
}

void GeoNamesImport::toggleSelected(std::size_t row) {
    rows_.at(row).selected = !rows_.at(row).selected;
}

void GeoNamesImport::Form_Load() {
    run("Form_Load", [this](ProcedureTrace& trace) { loadList(trace); });
}

void GeoNamesImport::cmdCheck() {
    run("cmdCheck_Click", [this](ProcedureTrace& trace) {
        log("Syncing GeoNames...");
        log(loadList(trace) ? "Syncing complete!" : "Impossible connect to GeoNames");
    });
}

void GeoNamesImport::cmdDownload() {
    run("cmdDownload_Click", [this](ProcedureTrace& trace) {
        const std::vector<std::string> files = filesToDownload();
        if (files.empty()) {
            log("Nothing selected.");
            return;
        }
        if (!downloadAll(trace, files))
            return;
        for (const std::string& file : files)
            unpack(trace, file);
        Totals totals;
        for (const std::string& file : files) {
            clock_.pump(); // between two countries the operator can give up
            if (mustStop())
                return;
            store(trace, file, totals);
        }
        log("All data imported in DB!");
        tell(totals);
        fillGrid(trace);
    });
}

void GeoNamesImport::cmdRemove() {
    run("cmdRemove_Click", [this](ProcedureTrace& trace) {
        std::vector<GeoNamesFile> files;
        for (const GeoNamesRow& row : rows_) {
            if (row.selected)
                files.push_back(row.file);
        }
        if (files.empty()) {
            log("Nothing to delete.");
            return;
        }
        for (const GeoNamesFile& file : files)
            remove("DELETE FROM Cities WHERE Zone= '" + file.Id + "'", file.Name + " deleted.");
        fillGrid(trace);
    });
}

void GeoNamesImport::cmdEmptyPOI() {
    run("cmdEmptyPOI_Click", [this](ProcedureTrace& trace) {
        if (prompts_.showMessageBox({.text = "Do you want remove all Point Of Interest from this "
                                             "DB?",
                                     .title = "Deleting POI...",
                                     .icon = BoxIcon::Question,
                                     .buttons = BoxButtons::YesNo}) != BoxAnswer::Yes)
            return;
        remove(R"(DELETE FROM "main"."Cities")", "All Point Of Interest deleted.");
        fillGrid(trace);
    });
}

// Runs one command; nothing while another one runs.
void GeoNamesImport::run(std::string_view procedure,
                         const std::function<void(ProcedureTrace&)>& command) {
    if (running_)
        return;
    stop_ = false;
    const auto show = [this](bool running) {
        if (window_ != nullptr)
            window_->showRunning(running);
    };
    {
        ProcedureTrace trace(errors_, module, procedure);
        const FlagScope scope(running_);
        show(true);
        command(trace);
    }
    show(false);
}

// True when the list has arrived and is shown.
bool GeoNamesImport::loadList(ProcedureTrace& trace) {
    bool internetUp = false;
    trace.step([&] { internetUp = network_.IsInternetUp(); });
    if (!internetUp) {
        log("There isn't a Internet Connection.");
        return false;
    }
    if (!fetchList(trace))
        return false;
    fillGrid(trace);
    return true;
}

// True when the index page has arrived.
bool GeoNamesImport::fetchList(ProcedureTrace& trace) {
    const bool listed = fetch(trace, {}, indexFile, listWaitLimit);
    if (mustStop())
        return false;
    log(listed ? "List of POI available, ready." : "Impossible retrieve list of Poi.");
    fetch(trace, countryFile, countryFile, listWaitLimit);
    if (mustStop())
        return false;
    log("List of POI, ready.");
    return listed;
}

// A list that never came has been reported by its fetch; the grid is empty then.
void GeoNamesImport::fillGrid(ProcedureTrace& trace) {
    std::string index;
    std::string countries;
    trace.step([&] {
        const std::string folder = temporaryFolder_();
        if (!PathExists(folder + std::string(indexFile)))
            return;
        index = readWholeFile(folder + std::string(indexFile));
        countries = readWholeFile(folder + std::string(countryFile));
    });
    std::vector<GeoNamesFile> files = nameCountries(listedFileNames(index), countries);
    std::set<std::string> zones;
    database_.slsSel("select zone from Cities group by zone");
    while (database_.slsGetRow())
        zones.insert(database_.slsFX(1));
    rows_.clear();
    for (GeoNamesFile& file : files) {
        file.imported = zones.count(file.Id) > 0;
        rows_.push_back({.file = std::move(file)});
        rows_.back().imported = rows_.back().file.imported;
    }
    if (window_ != nullptr)
        window_->showRows();
}

std::vector<std::string> GeoNamesImport::filesToDownload() {
    std::vector<std::string> files;
    for (const GeoNamesRow& row : rows_) {
        if (row.selected && row.imported)
            log(row.file.Name + " it's already in DB.");
        else if (row.selected)
            files.push_back(row.file.Id + ".zip");
    }
    return files;
}

// True when the file has arrived. A transfer that has failed is waited for to the limit.
bool GeoNamesImport::fetch(ProcedureTrace& trace, std::string_view fileName,
                           std::string_view target, std::int32_t waitLimit) {
    if (mustStop())
        return false;
    session_.WaitCounter = 0;
    downloadState_ = 2;
    downloadSizeKb_ = 0;
    trace.step([&] {
        network_.DownloadFile(*this, fmt::format("{}{}{}", host_, exportPath, fileName),
                              temporaryFolder_().append(target), chunkSize);
    });
    while (downloadState_ == 2 && session_.WaitCounter < waitLimit && !mustStop()) {
        clock_.sleep(100ms);
        ++session_.WaitCounter;
        clock_.pump();
    }
    if (!session_.waitsMustEnd())
        session_.WaitCounter = 0;
    return downloadState_ == 0 && !mustStop();
}

bool GeoNamesImport::downloadAll(ProcedureTrace& trace, const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        const bool arrived = fetch(trace, file, file, dumpWaitLimit);
        if (mustStop())
            return false;
        if (!arrived) {
            log("Timeout connection...");
            return false;
        }
        log(file + " Downloaded.");
    }
    return true;
}

void GeoNamesImport::unpack(ProcedureTrace& trace, const std::string& file) {
    trace.step([&] {
        const std::string folder = temporaryFolder_();
        const std::string reason =
            unzip(folder + file, folder, zoneOf(file) + ".txt", [this] { repaint_(); });
        if (!reason.empty())
            log(fmt::format("{} was not unpacked: {}", file, reason));
    });
}

void GeoNamesImport::store(ProcedureTrace& trace, const std::string& file, Totals& totals) {
    constexpr std::size_t linesBetweenLooks = 100;
    const FlagScope importing(session_.ImportInProgress);
    const std::string zone = zoneOf(file);
    std::size_t lines = 0;
    const auto show = [&](std::size_t line) {
        if (window_ == nullptr)
            return;
        window_->setLineText(fmt::format("{} / {}", line, lines));
        window_->setProgress(progressValue(line));
        clock_.repaint();
    };
    DumpOutcome outcome;
    trace.step([&] {
        outcome = importDump(temporaryFolder_() + zone + ".txt", zone, database_,
                             {.started =
                                  [&](std::size_t count) {
                                      lines = count;
                                      progressMaximum_ = std::max(1, progressValue(lines));
                                      if (window_ != nullptr)
                                          window_->setProgressMaximum(progressMaximum_);
                                  },
                              .lineDone =
                                  [&](std::size_t line) {
                                      const bool look = line % linesBetweenLooks == 0;
                                      if (line == lines || (look && repaint_.isDue()))
                                          show(line);
                                  }});
    });
    totals.unreadable += outcome.unreadable;
    if (totals.refused == 0)
        totals.refusedReason = outcome.refusedReason;
    totals.refused += outcome.refused;
    if (!outcome.failure.empty())
        totals.failures.push_back(fmt::format("{} was not stored: {}", zone, outcome.failure));
}

// Nothing when everything was stored.
void GeoNamesImport::tell(const Totals& totals) {
    for (const std::string& failure : totals.failures)
        log(failure);
    if (totals.refused > 0)
        log(fmt::format("Rows refused by the catalogue: {} ({})", totals.refused,
                        totals.refusedReason));
    if (totals.unreadable > 0)
        log(fmt::format("Lines left out as too short or too long: {}", totals.unreadable));
}

void GeoNamesImport::remove(const std::string& statement, const std::string& message) {
    const int error = database_.slsExe(statement);
    const std::string reason = error == 0 ? std::string() : database_.slGetError();
    log(message);
    if (error != 0)
        log("The catalogue refused: " + reason);
}

void GeoNamesImport::ChunkDownloaded(std::int32_t totalKilobytes) {
    if (window_ == nullptr || totalKilobytes < 1 || downloadSizeKb_ < 1)
        return;
    const double value =
        roundHalfEven(static_cast<double>(progressMaximum_) * totalKilobytes / downloadSizeKb_);
    window_->setProgress(static_cast<int>(std::min<double>(value, progressMaximum_)));
}

bool GeoNamesImport::mustStop() const {
    return stop_ || session_.Closing;
}

void GeoNamesImport::log(std::string_view message) {
    if (window_ != nullptr)
        window_->addToLog(message);
}

} // namespace tremor
