#pragma once

#include "core/error_report.h"
#include "core/paced_repaint.h"
#include "core/ports.h"
#include "core/session.h"
#include "database/database.h"
#include "manage/geonames_dump.h"
#include "manage/geonames_index.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// The points of interest that come from GeoNames: the list of countries, the download and import of
// their dumps into the table Cities, and their removal.
namespace tremor {

// What a transfer reports; a failed or cancelled one reports nothing at its end.
class GeoNamesTransferEvents {
  public:
    virtual ~GeoNamesTransferEvents() = default;
    virtual void SizeCalculated(std::int32_t kilobytes) = 0; // 0 when the server announces none
    virtual void ChunkDownloaded(std::int32_t totalKilobytes) = 0;
    virtual void DownloadCompleted() = 0;
};

// The network as this import needs it.
class GeoNamesNetwork {
  public:
    virtual ~GeoNamesNetwork() = default;

    virtual bool IsInternetUp() = 0;

    // Fetches `url` into the file `target`, which is deleted first, with the status check on;
    // windows live meanwhile. Returns when the transfer is over.
    virtual void DownloadFile(GeoNamesTransferEvents& events, std::string_view url,
                              std::string_view target, std::int32_t chunkSize) = 0;

    // Makes the running DownloadFile return soon; nothing when none runs.
    virtual void AbortDownload() = 0;
};

// The window as this import sees it.
class GeoNamesWindow {
  public:
    virtual ~GeoNamesWindow() = default;
    virtual void addToLog(std::string_view message) = 0; // lstLog
    virtual void setProgressMaximum(int maximum) = 0;    // ProgressBar1, from 0; at least 1
    virtual void setProgress(int value) = 0;             // held to the range
    virtual void setLineText(std::string_view text) = 0; // Label1
    virtual void showRows() = 0;                         // fxgrid is filled anew
    virtual void showRunning(bool running) = 0;          // a command begins or has ended
};

// One row of the grid. Both marks are the operator's to change.
struct GeoNamesRow {
    GeoNamesFile file;
    bool imported = false; // column "Imported"
    bool selected = false; // column "Select"
};

// Outlives its window and keeps the list for the next one. Commands pump events while they wait, so
// everything can happen inside them: a second command is not taken meanwhile, and a window that
// closes ends the one that runs.
//
// Files stand in the temporary folder: geonamesListFilesAvailable.txt, countryInfo.txt, IT.zip and
// IT.txt.
class GeoNamesImport : private GeoNamesTransferEvents {
  public:
    static constexpr std::int32_t chunkSize = 4096;    // bytes
    static constexpr std::int32_t listWaitLimit = 600; // turns of 100 ms
    static constexpr std::int32_t dumpWaitLimit = 330;

    // `temporaryFolder` gives a path that ends in "/"; `host` as in Hosts::GeoNames. The references
    // outlive the import.
    GeoNamesImport(Session& session, Database& database, Prompts& prompts, Clock& clock,
                   ErrorReport& errors, GeoNamesNetwork& network,
                   std::function<std::string()> temporaryFolder, std::string host);

    // The window is there (and shows rows()), or has gone; the latter ends a running command and
    // takes escape()'s mark back, so that the waits of others go on.
    void opened(GeoNamesWindow& window);
    void closed();

    // Fetches the list and fills the grid, with what came of it in the window's log.
    void Form_Load();
    void cmdCheck();

    // Downloads the selected countries that are not imported, unpacks them and stores their points
    // of interest. A transfer that does not succeed within 33 s ends the batch before anything is
    // unpacked.
    void cmdDownload();

    void cmdRemove();   // the points of interest of the selected countries
    void cmdEmptyPOI(); // all of them, when the operator agrees

    // The operator's Escape: the running transfer is aborted and every wait ends. The window closes
    // itself behind this.
    void escape();

    const std::vector<GeoNamesRow>& rows() const { return rows_; }
    void toggleImported(std::size_t row);
    void toggleSelected(std::size_t row);
    bool running() const { return running_; }

  private:
    // What the batch tells when it is over.
    struct Totals {
        std::size_t refused = 0;
        std::string refusedReason;
        std::size_t unreadable = 0;
        std::vector<std::string> failures;
    };

    void SizeCalculated(std::int32_t kilobytes) override { downloadSizeKb_ = kilobytes; }
    void ChunkDownloaded(std::int32_t totalKilobytes) override;
    void DownloadCompleted() override { downloadState_ = 0; }

    void run(std::string_view procedure, const std::function<void(ProcedureTrace&)>& command);
    bool loadList(ProcedureTrace& trace);
    bool fetchList(ProcedureTrace& trace);
    void fillGrid(ProcedureTrace& trace);
    std::vector<std::string> filesToDownload();
    bool fetch(ProcedureTrace& trace, std::string_view fileName, std::string_view target,
               std::int32_t waitLimit);
    bool downloadAll(ProcedureTrace& trace, const std::vector<std::string>& files);
    void unpack(ProcedureTrace& trace, const std::string& file);
    void store(ProcedureTrace& trace, const std::string& file, Totals& totals);
    void tell(const Totals& totals);
    void remove(const std::string& statement, const std::string& message);
    bool mustStop() const;
    void log(std::string_view message);

    Session& session_;
    Database& database_;
    Prompts& prompts_;
    Clock& clock_;
    ErrorReport& errors_;
    GeoNamesNetwork& network_;
    std::function<std::string()> temporaryFolder_;
    std::string host_;

    GeoNamesWindow* window_ = nullptr;
    std::vector<GeoNamesRow> rows_;
    bool running_ = false;
    bool stop_ = false;               // the running command is to end
    bool escaped_ = false;            // WaitCounter carries escape()'s mark
    std::int32_t downloadState_ = 0;  // 2 while a transfer has not completed
    std::int32_t downloadSizeKb_ = 0; // announced size
    int progressMaximum_ = 100;
    PacedRepaint repaint_;
};

} // namespace tremor
