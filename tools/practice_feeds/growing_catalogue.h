#pragma once

#include "practice_feeds/event_wish.h"
#include "practice_feeds/fdsn_event.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace tremor::practice {

struct CatalogueOptions {
    // Time between two new events; zero: none but those of addEvent().
    std::chrono::milliseconds every = std::chrono::seconds(180);
    std::uint32_t seed = 1; // decides the sequence of new events
    // Keep the document as it stands, times included, and no new events but those of addEvent().
    bool fixed = false;
    // While it is set, no catalogue of these options changes by itself; what came due meanwhile
    // comes afterwards.
    std::shared_ptr<std::atomic<bool>> held = std::make_shared<std::atomic<bool>>(false);
};

// The clock of the catalogues.
using Now = std::function<UtcTime()>;

// Gives a new event; its identifier and time are the catalogue's business.
using DrawEvent = std::function<FdsnEvent(std::mt19937&)>;

// Any event of the document, again and again.
DrawEvent drawFrom(FdsnDocument document);

// A living catalogue: a document, its times moved so that the newest event is a few minutes old
// at the start, and new events drawn as time goes on. The same seed always gives the same sequence
// of places, depths and magnitudes.
class GrowingCatalogue {
  public:
    GrowingCatalogue(FdsnDocument document, DrawEvent draw, const CatalogueOptions& options,
                     Now now);

    // Adds what has come due since the last call; returns how many.
    std::size_t advance();

    // One new event now. With an age: one of that origin, published late.
    FdsnEvent addEvent(const EventWish& wish = {});

    // By time, oldest first; late ones of a fixed document stand at its end.
    const std::vector<FdsnEvent>& events() const { return document_.events; }
    // The whole catalogue as a document. Fixed: byte for byte the original, additions behind it.
    std::string text() const { return document_.text(); }
    const std::string& header() const { return document_.header; }
    UtcTime now() const { return now_(); }
    // Time between two new events; zero: they do not come by themselves.
    std::chrono::milliseconds interval() const;
    bool isHeld() const { return *options_.held; }

  private:
    FdsnEvent draw();
    UtcTime newestTime() const;
    void appendNewest(FdsnEvent event, UtcTime published);
    bool isFree(UtcTime time) const;

    FdsnDocument document_;
    DrawEvent draw_;
    CatalogueOptions options_;
    Now now_;
    UtcTime nextDue_;
    std::mt19937 random_;
    long nextId_;
};

} // namespace tremor::practice
