#pragma once

#include "database/database.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// The dump of one country (https://download.geonames.org/export/dump/readme.txt): one place a line,
// fields separated by tabs, in UTF-8. Up to millions of lines, of which few are towns.
//
//     3038816	Xixerella	Xixerella		42.55327	1.48736	P	PPL	AD
//     04 …
namespace tremor {

// The fields of a line that count; they point into it.
struct DumpLine {
    std::string_view name;        // field 1, from 0
    std::string_view latitude;    // field 4, degrees, point as decimal mark
    std::string_view longitude;   // field 5
    std::string_view featureCode; // field 7, "PPLA"
};

// Nothing for a line with fewer fields.
std::optional<DumpLine> cutDumpLine(std::string_view line);

// Is a place with this code stored for this country? "PPL" anywhere in the code makes a populated
// place. Italy ("IT") is the exception: its municipalities are the administrative divisions ADM3,
// ADM3H, ADM4, ADM4H and ADM5, to the letter.
bool isPointOfInterest(std::string_view zone, std::string_view featureCode);

// What became of a dump.
struct DumpOutcome {
    std::size_t stored = 0;
    std::size_t refused = 0;    // rows that the catalogue did not take
    std::string refusedReason;  // of the first of them
    std::size_t unreadable = 0; // lines with too few fields or longer than longestDumpLine
    std::string failure;        // why nothing at all was stored; empty when the dump was taken
};

// Longer lines are no places: the alternative names have 10,000 characters at most.
inline constexpr std::size_t longestDumpLine = std::size_t{1} << 20; // bytes

// Called with the number of lines, once, before the first one, and after each line.
struct DumpProgress {
    std::function<void(std::size_t lines)> started;
    std::function<void(std::size_t line)> lineDone;
};

// Adds the points of interest of the dump `path` to the table Cities under this zone, in one
// transaction, reading the file twice in blocks. What follows the last line feed is no line. A name
// with an apostrophe is not stored, nor is any other row that the catalogue refuses. Error 53 when
// the file is missing, 75 when it cannot be read or is no regular file; then nothing is stored.
DumpOutcome importDump(const std::string& path, std::string_view zone, Database& database,
                       const DumpProgress& progress);

} // namespace tremor
