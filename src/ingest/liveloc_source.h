#pragma once

#include "ingest/folder_list.h"
#include "ingest/import_rules.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The files of a real-time locator that writes a SEISAN database (https://www.seisan.info): below
// the root a folder for each year, in it one for each month, in these the S-files, in the Nordic
// format with one event each. Only the first line of a file counts:
//
//      2013  9 1 0411 15.7 L -43.340 170.376  8.5  VUW  8 0.2 0.6LVUW                1
namespace tremor {

// What the first line of an S-file tells, as text. Degrees with a point, depth in km.
struct SfileHeader {
    std::string UTC;      // "2012-05-20 02:03:52.1", with one decimal
    std::string Latitude; // empty when the event has no location
    std::string Longitude;
    std::string Depth;
    std::string Magnitude;

    bool hasLocation() const { return !Latitude.empty(); }
};

// The columns that are used, from the first one on.
inline constexpr std::size_t sfileHeaderColumns = 59;

// Reads the fields by their columns. Month, day, hour, minute and second get a leading zero when
// they are a number of one digit; whatever else stands there is taken as it is. Error 5 when the
// line is shorter than the columns used.
SfileHeader parseSfileHeader(std::string_view line);

class LivelocSource {
  public:
    explicit LivelocSource(FeedContext context);

    // Imports the S-files two levels below the listed folders that no name with "_" marks as read.
    // A file with a location is renamed to "imported_…" and its event stored, one without to
    // "noise_…"; an older file of that name is replaced. "/CAT" and "/LOG" are passed over.
    //
    // A file that cannot be read or renamed keeps its name, stores nothing and is tried again at
    // the next run. When the catalogue does not take a folder's events, its files get their names
    // back and the run ends. The log tells both, and which rows the catalogue refused.
    void readLivelocSfile(const std::vector<FolderEntry>& folders);

  private:
    FeedContext context_;
};

} // namespace tremor
