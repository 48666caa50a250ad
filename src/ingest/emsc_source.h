#pragma once

#include "ingest/event_values.h"
#include "ingest/import_rules.h"
#include "ingest/panel_download.h"

#include <string_view>

// The RSS feed of the EMSC (https://www.emsc-csem.org/service/rss/rss.php?typ=emsc), the latest 50
// events with one item on a line:
//
//     <item><title>ML 2.2  PYRENEES</title><link>https://...</link><geo:lat>42.90</geo:lat>
//     <geo:long>0.20</geo:long><emsc:depth>2  </emsc:depth><emsc:magnitude>ML 2.2</emsc:magnitude>
//     <emsc:time>2020-12-30 21:14:43 UTC</emsc:time>...</item>
//
// (wrapped here). Degrees; depth in km, with an "f" behind it when it was fixed.
namespace tremor {

inline constexpr std::string_view emscQuery = "/service/rss/rss.php?typ=emsc";

// The events of a document: lines that begin with "<item>", but for the first line of all, which
// is never looked at. An item that a line of "<item>" alone opens goes on up to "</item>". What
// stands behind "</link>" is latitude, longitude, depth, magnitude and time in this order, unless
// the elements are named (see EventValues). An item that lacks one of the five is incomplete; one
// that the document does not close is none. Depth and magnitude keep their digits, "." and ","
// only, so "M1 4.5" gives "14.5"; the time, to the second, gets ".000". The records point into
// `text`, too.
ParsedFeed parseEmscEvents(std::string_view text);

class EmscSource {
  public:
    EmscSource(FeedContext context, PanelDownload& download);

    // Fetches the feed into "FeedEmscEvents.csv" of the temporary folder and imports it.
    // AlternateBusy is true meanwhile, and stays so when the program closes during the transfer.
    void downloadCsvFromEmsc();

    // Imports that file.
    void readCsvEmsc();

  private:
    FeedContext context_;
    PanelDownload& download_;
};

} // namespace tremor
