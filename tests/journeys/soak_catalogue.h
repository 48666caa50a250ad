#pragma once

#include "journeys/journey.h"

#include <map>
#include <string>
#include <vector>

namespace tremor::journeys {

// What a catalogue must hold after its sources have said so much, worked out from their documents
// alone. The rule of duplicates: an event of INGV or ISIDE is left out when any row but the EMSC's
// has its time; every other source knows its own rows only, and says no time twice.
class ExpectedCatalogue {
  public:
    // All that a source has said until now, "ingv", "iside", "usgs", "emsc", "seiscomp", "liveloc"
    // or any other name; replaces what it said before.
    void set(const std::string& source, std::vector<EventRow> rows);

    // Empty when just the expected rows are there; else the first of those that are missing or too
    // many. Where INGV or ISIDE share a time with another source it depends on who was first, so
    // there one row is enough.
    std::string differences(std::vector<EventRow> found) const;

    std::size_t size() const;

  private:
    std::map<std::string, std::vector<EventRow>> rows_;
};

// The events that stand in the folder of a local locator, whatever has become of their names.
std::vector<EventRow> rowsOfSeisCompFolder(const std::string& folder);
std::vector<EventRow> rowsOfSeisanFolder(const std::string& folder); // those with a location

} // namespace tremor::journeys
