#pragma once

#include "core/error_report.h"
#include "ingest/csv_import.h"
#include "ingest/import_rules.h"
#include "ingest/panel_download.h"
#include "ingest/site_browser.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// The ISIDE web site of INGV, which gives its catalogue to a logged-in user alone and has no
// service interface: the program logs in, fills the search form and presses its buttons in a
// browser out of sight, then fetches the export within that browser's session.
namespace tremor {

class IsideSource {
  public:
    // From which count of ticks (100 ms) the waits have failed. Login page and home page share one
    // count.
    static constexpr std::int32_t loginLimit = 200;
    static constexpr std::int32_t searchLimit = 300;
    // The search page has this long to complete.
    static constexpr std::chrono::seconds searchPageLimit{60};

    // `download` fetches with the cookies of `updateFromRemoteWbr`.
    IsideSource(FeedContext context, SiteBrowser& updateFromRemoteWbr, PanelDownload& download,
                CsvImport& csvImport);

    // Fetches the events since the local day on which the last PrimaryLastNHours hours begin into
    // "events.csv" of the temporary folder and imports them. PrimaryBusy is true meanwhile. A page
    // that does not come, a refused login, a failed export and a closing program all end in
    // "ISIDE Synchronization failed" in the log.
    void downloadCsvFromIside();

  private:
    bool logIn(ProcedureTrace& trace);
    bool search(ProcedureTrace& trace);
    bool fetchExport(const std::string& target, ProcedureTrace& trace);

    bool waitUntil(const std::function<bool()>& done, std::int32_t limit);
    bool waitForSearchPage();
    bool pageComplete() const { return browser_.ReadyState() == SiteBrowser::complete; }
    bool shows(std::string_view path) const { return browser_.LocationURL() == address(path); }
    std::string address(std::string_view path) const;
    std::string firstDay() const;

    FeedContext context_;
    SiteBrowser& browser_;
    PanelDownload& download_;
    CsvImport& csvImport_;
};

} // namespace tremor
