#pragma once

#include "practice_feeds/growing_catalogue.h"

#include <chrono>
#include <cstddef>
#include <random>
#include <span>
#include <string_view>

// Made-up earthquakes at places where there are some.
namespace tremor::practice {

struct SeismicPlace {
    std::string_view name;
    double latitude;  // degrees
    double longitude; // degrees
    double depth;     // km; of the deepest events
};

// What an agency reports.
struct Reporting {
    std::span<const SeismicPlace> places;
    double radius;            // km around a place
    double smallestMagnitude; // there are ten times as many events a magnitude lower
    double largestMagnitude;
    std::string_view agency;
    std::string_view smallType; // of a magnitude below 5.5: "ML"
    std::string_view largeType; // "Mw"
    bool namesDistance;         // "82 km ENE of Pangai, Tonga" in place of "Pangai, Tonga"
};

Reporting worldReporting();             // as the USGS
Reporting euroMediterraneanReporting(); // as the EMSC
Reporting localReporting();             // as a network in central Italy

// An event there; identifier and time are for the caller to set.
FdsnEvent drawEpicentre(const Reporting& reporting, std::mt19937& random);

// `count` events over `span`, the newest at its end.
FdsnDocument madeUpDocument(const Reporting& reporting, std::size_t count, std::chrono::hours span,
                            std::uint32_t seed);

// A catalogue of `count` events over the last `span` that grows by others of the kind.
GrowingCatalogue madeUpCatalogue(const Reporting& reporting, std::size_t count,
                                 std::chrono::hours span, const CatalogueOptions& options, Now now);

// The same earthquake as a locator sees it with more data: somewhat elsewhere, at the same time.
FdsnEvent relocated(const FdsnEvent& event, std::mt19937& random);

} // namespace tremor::practice
