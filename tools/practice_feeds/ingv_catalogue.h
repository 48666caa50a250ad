#pragma once

#include "practice_feeds/fdsn_event.h"

#include <chrono>
#include <functional>
#include <random>
#include <vector>

namespace tremor::practice {

struct CatalogueOptions {
    // Time between two new events; zero: none but those of addEvent().
    std::chrono::milliseconds every = std::chrono::seconds(180);
    std::uint32_t seed = 1; // decides the sequence of new events
    // Serve the document as it stands, times included, and no new events but those of addEvent().
    bool fixed = false;
};

// A living catalogue: a real document, its times moved so that the newest event is a few minutes
// old at the start, and new events drawn from a second real document as time goes on. The same
// seed always gives the same sequence of places, depths and magnitudes.
class IngvCatalogue {
  public:
    using Now = std::function<UtcTime()>;

    IngvCatalogue(FdsnDocument document, FdsnDocument laterEvents, const CatalogueOptions& options,
                  Now now);

    // Adds what has come due since the last call.
    void advance();

    // One new event now.
    const FdsnEvent& addEvent();

    // By time, oldest first.
    const std::vector<FdsnEvent>& events() const { return document_.events; }
    // The whole catalogue as a document. Fixed: byte for byte the original, additions behind it.
    std::string text() const { return document_.text(); }
    const std::string& header() const { return document_.header; }

  private:
    void append(UtcTime published);

    FdsnDocument document_;
    FdsnDocument laterEvents_;
    CatalogueOptions options_;
    Now now_;
    UtcTime nextDue_;
    std::mt19937 random_;
    long nextId_;
};

} // namespace tremor::practice
