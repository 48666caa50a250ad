#pragma once

#include "practice_feeds/ingv_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <mutex>
#include <string>

namespace tremor::practice {

// INGV's FDSN event service: GET /fdsnws/event/1/query in text format. Understood are starttime,
// endtime, minlat, maxlat, minlon, maxlon, minmag, maxmag, orderby=time|time-asc (time, newest
// first, when it is missing), limit and format=text; other keys are passed over. No event: status
// 204. A value that is none of its kind: 400, as the real service answers.
class IngvFeed : public PracticeService {
  public:
    // `answersWhole`: every good request gets the whole catalogue in its own order.
    IngvFeed(IngvCatalogue catalogue, bool answersWhole);

    std::vector<std::string> paths() const override { return {"/fdsnws/event/1/query"}; }
    Answer answer(const Request& request) override;

    // Adds one event now and returns its line.
    std::string addEvent();
    // The whole catalogue at this moment.
    std::string served();

  private:
    std::mutex mutex_;
    IngvCatalogue catalogue_;
    bool answersWhole_;
};

} // namespace tremor::practice
