#pragma once

#include "core/common_text.h"
#include "database/database.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

// The data of a catalogue as one text, on its way from an old file to a new one. Every line ends
// with a line feed. A table is its name, its columns, a line for each row, and a line of hyphens:
//
//     Events
//     UTC,Latitude,Longitude,Depth,Magnitude,Source,'null'
//     '2014-01-01 10:00:00.000','42.1','13.2','9.8','2.5','INGV',''
//     -----
//
// Nothing is escaped. A value with an apostrophe or a line feed makes its row unreadable, and one
// that looks like a line of its own ("null" among the values, or a line feed around a word) is
// taken for it: the rows behind it, up to the end of the table, then find no place.
namespace tremor {

struct StagingText {
    StringBuilder text;
    std::size_t rows = 0; // that were read
};

// What becomes of the rows of a staging text.
struct LoadOutcome {
    std::size_t stored = 0;
    std::string firstRefusal; // why the first row that was not stored was refused; empty when none
};

// Called about every thousand rows, so that windows can repaint.
using RepaintWindows = std::function<void()>;

// The tables Cities, Comuni, Events, Workspace, Search and TelegramChats, as far as they have rows,
// in the order in which the file lists them; NULL becomes ''. A query that fails raises its error
// as raiseUnlessDone does, so that damaged data are never taken for missing ones.
StagingText stagingText(Database& database, const RepaintWindows& repaint);

// Inserts the rows into the open catalogue, inside the caller's transaction, as if each line were
// pasted into "INSERT INTO table(columns) VALUES (row)". A row that is refused is lost alone. An
// error of the file itself (disk full, locked, damaged) is raised as raiseUnlessDone does.
LoadOutcome loadStagingText(Database& database, std::string_view text,
                            const RepaintWindows& repaint);

} // namespace tremor
