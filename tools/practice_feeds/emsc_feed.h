#pragma once

#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <mutex>
#include <string>

namespace tremor::practice {

// The EMSC's RSS: GET /service/rss/rss.php, the latest 50 events, newest first, one item on a
// line. Keys are passed over.
class EmscFeed : public PracticeService {
  public:
    explicit EmscFeed(GrowingCatalogue catalogue);

    std::string_view name() const override { return "emsc"; }
    std::vector<std::string> paths() const override { return {"/service/rss/rss.php"}; }
    Answer answer(const Request& request) override;
    std::string addEvent(const EventWish& wish) override;
    std::string served() override;

  private:
    std::mutex mutex_;
    GrowingCatalogue catalogue_;
};

} // namespace tremor::practice
