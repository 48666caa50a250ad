#pragma once

#include "journeys/notification_journey.h"
#include "journeys/soak_catalogue.h"

#include <random>
#include <set>
#include <string>
#include <vector>

namespace tremor::journeys {

// Which of the sources are polled.
struct SourceChoice {
    bool iside = false;  // instead of INGV
    bool usgs = false;   // instead of the EMSC
    bool seisan = false; // the folder of a SEISAN database instead of SeisComP's
};

// A control room in fast motion: events come from every source twenty times as often as from a
// service, everything that the program can do by itself is on, and an operator works with it.
class SoakJourney : public NotificationJourney {
  protected:
    static constexpr int defaultSeed = 1; // TREMOR_SOAK_SEED is another one

    SoakJourney();

    void openAllWorkspaces();
    // By the Setup window.
    void choose(const SourceChoice& choice);

    // One of the things that operators do, as the dice fall.
    void workAsOperators();
    // The next request of a feed meets the next fault of the list, and the site of ISIDE one of its
    // own.
    void breakAFeed();
    const std::vector<std::string>& faultsSoFar() const { return faultsSoFar_; }

    // Nothing comes any more, and no fault waits. Polls until the catalogue holds just what the
    // sources have said, and lets the events come again. What the chosen local locator has said
    // counts from its first poll on.
    ::testing::AssertionResult catalogueIsWhatTheSourcesSaid(const SourceChoice& choice);
    // One more event of the primary source, and just one mail, fifteen notices and two messages of
    // it.
    ::testing::AssertionResult aNewEventIsReportedOnce(const SourceChoice& choice);
    // From now on an event that the EMSC has said and lists no more may be missing: its feed has
    // the latest 50 only, so what a killed poll has lost of it may not come again.
    void letKilledPollsLoseEvents() { pollsAreKilled_ = true; }
    void hold() { journey_.service("/practice/hold"); }
    void go() { journey_.service("/practice/go"); }

    // The titles of windows that should not be there; empty when all is well.
    std::string unexpectedWindows();
    std::string channelCounts(); // "12 mails, 180 notices, 24 messages"

    std::mt19937 random_;
    ExpectedCatalogue expected_;

  private:
    void expectWhatTheSourcesSaid(const SourceChoice& choice);
    std::vector<EventRow> rowsOfEmsc();
    void clickARow();
    void dragTheMap();
    void searchAndLeave();
    bool channelsAgree();
    int below(int bound); // 0 to bound - 1

    std::set<EventRow> isideRows_; // an export has those of its days only
    bool pollsAreKilled_ = false;
    std::size_t nextFault_ = 0;
    std::vector<std::string> faultsSoFar_;
};

} // namespace tremor::journeys
