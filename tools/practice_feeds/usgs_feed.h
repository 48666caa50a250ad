#pragma once

#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <mutex>
#include <string>
#include <vector>

namespace tremor::practice {

// The USGS's FDSN event service: GET /usgs/fdsnws/event/1/query in QuakeML 1.2, one event on a
// line as the service writes them; the prefix tells it from INGV's service. Keys: see
// readSelection(). No event: status 204. A value that is none of its kind: 400.
class UsgsFeed : public PracticeService {
  public:
    explicit UsgsFeed(GrowingCatalogue catalogue);

    // What stands before the service's own paths.
    static constexpr std::string_view prefix = "/usgs";

    std::string_view name() const override { return "usgs"; }
    std::vector<std::string> paths() const override;
    Answer answer(const Request& request) override;
    std::string addEvent(const EventWish& wish) override;
    std::string served() override;

  private:
    std::string document(const std::vector<FdsnEvent>& events, const Request& request) const;

    std::mutex mutex_;
    GrowingCatalogue catalogue_;
};

} // namespace tremor::practice
