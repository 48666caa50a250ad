#pragma once

#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <mutex>
#include <string>

namespace tremor::practice {

// INGV's FDSN event service: GET /fdsnws/event/1/query in text format, which must be asked for.
// Keys: see readSelection(). No event: status 204. A value that is none of its kind: 400.
class IngvFeed : public PracticeService {
  public:
    // `answersWhole`: every good request gets the whole catalogue in its own order.
    IngvFeed(GrowingCatalogue catalogue, bool answersWhole);

    std::string_view name() const override { return "ingv"; }
    std::vector<std::string> paths() const override { return {"/fdsnws/event/1/query"}; }
    Answer answer(const Request& request) override;
    std::string addEvent(const EventWish& wish) override;
    std::string served() override;

  private:
    std::mutex mutex_;
    GrowingCatalogue catalogue_;
    bool answersWhole_;
};

} // namespace tremor::practice
