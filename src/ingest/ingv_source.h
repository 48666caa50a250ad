#pragma once

#include "ingest/import_rules.h"
#include "ingest/panel_download.h"

#include <string>
#include <string_view>
#include <vector>

// The event service of INGV (https://webservices.ingv.it/fdsnws/event/1/), in its text format:
//
//     #EventID|Time|Latitude|Longitude|Depth/Km|Author|Catalog|Contributor|ContributorID|MagType|
//     Magnitude|MagAuthor|EventLocationName|EventType
//     46224912|2026-06-15T03:00:06.430000|38.9802|15.3048|268.5|SURVEY-INGV||||ML|3.3|--|Tirreno
//     Meridionale [Mare]|earthquake
//
// with one event on a line (wrapped here).
namespace tremor {

// Path and query for the days `startDate` to `endDate` ("YYYY-MM-DD", both whole).
std::string ingvQuery(std::string_view startDate, std::string_view endDate);

// The events of a document: lines of more than 11 "|" that do not begin with "#". Writes the
// stored form of the times ("2026-06-15 03:00:06.430") into `text`; the records point into it. A
// time of fewer than four characters gives no event.
std::vector<ImportRecord> parseIngvEvents(std::string& text);

class IngvSource {
  public:
    IngvSource(FeedContext context, PanelDownload& download);

    // Fetches the last PrimaryLastNHours hours, as whole local days, into "eventsINGV.csv" of the
    // temporary folder and imports them. PrimaryBusy is true meanwhile, and stays so when the
    // program closes during the transfer.
    void downloadCsvFromIngv();

    // Imports that file.
    void readCsvIngv();

  private:
    FeedContext context_;
    PanelDownload& download_;
};

} // namespace tremor
