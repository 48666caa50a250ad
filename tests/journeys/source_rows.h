#pragma once

#include "journeys/journey.h"

#include <string>
#include <vector>

// The rows that the readers make of what a source says, worked out here on their own.
namespace tremor::journeys {

// What a number column of the catalogue gives back for this text.
std::string numberInCatalogue(const std::string& text);

// Of an INGV document in FDSN text format: one for each line with at least 13 fields that is no
// remark.
std::vector<EventRow> rowsOfDocument(const std::string& document);

// Of a QuakeML document of the USGS: one for each `event` element.
std::vector<EventRow> rowsOfQuakeMl(const std::string& document);

// Of the EMSC's RSS: one for each item.
std::vector<EventRow> rowsOfRss(const std::string& document);

// Of an export of the ISIDE site: one for each line of six values that is no remark.
std::vector<EventRow> rowsOfIsideExport(const std::string& document);

// Of SeisComP's file "last" with one solution.
EventRow rowOfBulletin(const std::string& bulletin);

// Of a located S-file.
EventRow rowOfSFile(const std::string& text);

} // namespace tremor::journeys
