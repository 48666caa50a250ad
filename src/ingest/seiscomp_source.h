#pragma once

#include "core/number_locale.h"
#include "core/ports.h"
#include "ingest/folder_list.h"
#include "ingest/import_rules.h"

#include <string>
#include <string_view>
#include <vector>

// The bulletins of SeisComP 2.5 and 2.6 (https://www.seiscomp.de): one folder for each event, its
// name beginning with "ev", in it a file `last` with one or more solutions. A solution stands two
// lines below its heading, its parts two blanks apart:
//
//     LocSAT solution (with start solution, 9 stations used, weight 9):
//
//      Central Italy  ML 3.2  2012/05/20  02:03:52  44.89 N  11.23 E   6.3 km
namespace tremor {

// An event as it goes into the catalogue, all text. Degrees with a point, depth in km.
struct SeisCompEvent {
    std::string UTC; // "2012-05-20 02:03:52.000"
    std::string Latitude;
    std::string Longitude;
    std::string Depth;
    std::string Magnitude;
};

// The lines of solutions in the text of a `last` file, blanks cut on the left. Error 9 when the
// text ends before the solution of a heading.
std::vector<std::string_view> solutionLines(std::string_view text);

// Reads a solution. Latitudes with "S" and longitudes with "O" (ovest, the Italian west) are
// negative; "W" gives no sign. Error 9 when a part is missing, 5 when one is too short for what is
// cut off it.
SeisCompEvent parseSolution(std::string_view line);

class SeisCompSource {
  public:
    // `applicationPath` is where the file dialog starts.
    SeisCompSource(FeedContext context, Prompts& prompts, std::string applicationPath,
                   const NumberLocale& locale);

    // Imports the last solution of each "ev…" folder of the list. What the catalogue holds already
    // under this source gets the newer values, every row of the same time included; the folder of
    // such an event is renamed to "imported_…" when its `last` is more than an hour old. A folder
    // without `last` counts as an event of empty texts, one without a solution as the event of the
    // folder before it. LastNewMagnitude and maxNewMagnitude of the session follow.
    //
    // A folder that cannot be read stores nothing and is tried again at the next run, as are all
    // when the catalogue fails. The log tells both, and which rows the catalogue refused.
    //
    // `manual`: asks for one file instead, whose solutions all go to the catalogue in a statement
    // that it refuses; the log says so. ImportInProgress is true meanwhile.
    void readSeisCompVers2_6(bool manual, std::vector<FolderEntry> folders);

  private:
    void importChosenFile(ProcedureTrace& trace);
    void replaceEvents(const std::vector<SeisCompEvent>& events);
    void importFolders(std::vector<FolderEntry>& folders, ProcedureTrace& trace);

    FeedContext context_;
    Prompts& prompts_;
    std::string applicationPath_;
    NumberLocale locale_;
};

} // namespace tremor
