#pragma once

#include "practice_feeds/growing_catalogue.h"
#include "practice_feeds/practice_service.h"

#include <mutex>
#include <random>
#include <string>

namespace tremor::practice {

// The bulletin of SeisComP's automatic locator, without the table of arrivals:
//
//      LocSAT solution (with start solution, 6 stations used, weight 6):
//
//       Central Italy  ML=2.1  2026/06/15  03:00:06  42.52 N  13.36 E  10 km
//
// Whole seconds, depth in km; the fields of the third line are two blanks apart.
std::string seisCompBulletin(const FdsnEvent& event);

// What SeisComP 2.5 and 2.6 leave behind: a folder "ev20260615030006" for each event with its
// latest bulletin in the file "last". The last written event is located again three times within
// its first hour.
class SeisCompFolder : public LocalLocator {
  public:
    // Writes the catalogue as it is now; makes the folder when there is none. Throws
    // std::runtime_error when it cannot write there.
    SeisCompFolder(std::string folder, GrowingCatalogue catalogue);

    std::string_view name() const override { return "seiscomp"; }
    void advance() override;
    std::string addEvent(const EventWish& wish) override;
    // The last written event gets another solution; returns its file, or nothing when somebody has
    // taken that away.
    std::string relocateLatest();

  private:
    std::string write(const FdsnEvent& event);
    std::string relocate();
    std::string fileOf(const FdsnEvent& event) const;

    std::mutex mutex_;
    std::string folder_;
    GrowingCatalogue catalogue_;
    std::mt19937 random_;
    std::chrono::milliseconds relocationGap_;
    UtcTime nextRelocation_;
    int relocationsLeft_ = 0;
    FdsnEvent latest_;
};

} // namespace tremor::practice
