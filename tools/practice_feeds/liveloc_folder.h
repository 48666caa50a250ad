#pragma once

#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <mutex>
#include <string>

namespace tremor::practice {

// The first line of an S-file (Nordic format, line type 1), 80 columns, for example
//
//  2021 0223 0514 11.3 L  63.741   4.570 40.1  BER  4 1.7 3.8LBER                1
//
// Without a location the columns from latitude to depth are blank.
std::string nordicHeader(const FdsnEvent& event, bool located);

// A SEISAN database as a real-time locator fills it: FOLDER/2026/06/15-0300-06L.S202606, beside
// it the folders CAT and LOG. Every fourth event could not be located.
class LivelocFolder : public LocalLocator {
  public:
    // Writes the catalogue as it is now; makes the folders that are missing. Throws
    // std::runtime_error when it cannot write there.
    LivelocFolder(std::string folder, GrowingCatalogue catalogue);

    std::string_view name() const override { return "liveloc"; }
    void advance() override;
    std::string addEvent(const EventWish& wish) override;

  private:
    std::string write(const FdsnEvent& event);

    std::mutex mutex_;
    std::string folder_;
    GrowingCatalogue catalogue_;
    int written_ = 0;
};

} // namespace tremor::practice
