#pragma once

#include "core/number_locale.h"
#include "ingest/event_values.h"
#include "ingest/import_rules.h"
#include "ingest/panel_download.h"

#include <string>
#include <string_view>

// The event service of the USGS (https://earthquake.usgs.gov/fdsnws/event/1/), in QuakeML with one
// event on a line:
//
//     <event catalog:datasource="hv" ...><origin ...><time><value>2018-06-04T01:50:48.520Z</value>
//     </time><longitude><value>-155.2843333</value></longitude><latitude><value>19.4053333</value>
//     </latitude><depth><value>-1140</value>...</depth>...<mag><value>5.5</value></mag>...</event>
//
// (wrapped and shortened here). Degrees; depth in metres, negative above sea level.
namespace tremor {

// Path and query for the days from `startDate` to `endDate` ("YYYY-MM-DD"). Without a time of day
// the service's window ends where the last day begins.
std::string usgsQuery(std::string_view startDate, std::string_view endDate);

// The events of a document: lines that begin with "<event catalog:datasource=". Their `value`
// elements are time, latitude, longitude, depth and magnitude in this order, unless the elements
// around them are named (see EventValues). A line that lacks one of the five is incomplete. The
// time is stored as "2018-06-04 01:50:48.520", the depth in km ("-1.14"; "0" when it is no
// number). The records point into `text`, too.
ParsedFeed parseUsgsEvents(std::string_view text, const NumberLocale& locale);

class UsgsSource {
  public:
    UsgsSource(FeedContext context, PanelDownload& download, const NumberLocale& locale);

    // Fetches the last AlternateLastNHours hours, as whole local days, into "queryUSGS.csv" of the
    // temporary folder and imports them. AlternateBusy is true meanwhile, and stays so when the
    // program closes during the transfer.
    void downloadCsvFromUSGS();

    // Imports that file. It stands on the call stack as "readCsvEmsc".
    void readCsvUSGS();

  private:
    FeedContext context_;
    PanelDownload& download_;
    NumberLocale locale_;
};

} // namespace tremor
