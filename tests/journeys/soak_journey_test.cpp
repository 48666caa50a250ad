#include "journeys/soak_journey.h"
#include "journeys/soak_report.h"
#include "journeys/soak_watch.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr double defaultMinutes = 3; // TREMOR_SOAK_MINUTES
constexpr double longestPhase = 2.5; // minutes with the same sources
constexpr auto betweenFaults = 40s;

// The longest that the window may owe an answer, in seconds.
constexpr double longestAnswer = 1.0;

// The most that the memory may grow, in MiB a minute, once every source has been asked and a third
// of the time is over. Over a short time the web engine's coming and going counts for more, so
// there it is what may come to in all, in MiB. A run that is over by then has had the engine's
// processes for new pages, too.
constexpr double steepestGrowth = 1;
constexpr double comingAndGoing = 40;
constexpr double newPages = 150;

class Soak : public SoakJourney {
  protected:
    // INGV, the EMSC and SeisComP; ISIDE, the USGS and SEISAN; and so on.
    static SourceChoice choiceOf(int phase) {
        const bool odd = phase % 2 == 1;
        return {odd, odd, odd};
    }

    // What the time of one choice of sources holds: work, faults, and nothing that should not be.
    void live(std::chrono::duration<double> time) {
        const auto end = Clock::now() + time;
        auto nextFault = Clock::now() + 5s;
        while (Clock::now() < end) {
            if (Clock::now() >= nextFault) {
                breakAFeed();
                nextFault = Clock::now() + betweenFaults;
            }
            ASSERT_NO_FATAL_FAILURE(workAsOperators()) << journey_.activityLog();
            ASSERT_TRUE(journey_.programRuns());
            ASSERT_EQ(unexpectedWindows(), "") << journey_.activityLog();
        }
    }

    void report(const ProgramWatch& watch, double warmUp) {
        std::string faults;
        for (const std::string& fault : faultsSoFar())
            faults += " " + fault;
        const std::string summary =
            fmt::format("{}Catalogue: {} rows\nSent: {}\nFaults of the feeds:{}\n",
                        summaryOf(watch, warmUp), expected_.size(), channelCounts(), faults);
        std::cout << summary;
        const std::string folder = reportFolder();
        if (folder.empty())
            return;
        std::ofstream(folder + "/summary.txt") << summary;
        writeCurves(watch, folder);
        keepProgramFolder(journey_.folder());
    }
};

TEST_F(Soak, TheProgramKeepsUpLosesNothingAndDoesNotGrow) {
    const std::chrono::duration<double> time(
        60 * numberOfVariable("TREMOR_SOAK_MINUTES", defaultMinutes));
    const auto phase = std::min(time / 2, std::chrono::duration<double>(60 * longestPhase));

    startProgram();
    openAllWorkspaces();
    const auto start = Clock::now();
    const auto seconds = [&] {
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    double everySourceAsked = 0;
    ProgramWatch watch(journey_.display(), journey_.programId());
    try {
        for (int i = 0; (i < 2 || seconds() < time.count()) && !HasFailure(); ++i) {
            live(phase);
            if (HasFatalFailure())
                break;
            hold();
            EXPECT_TRUE(catalogueIsWhatTheSourcesSaid(choiceOf(i)));
            EXPECT_TRUE(aNewEventIsReportedOnce(choiceOf(i)));
            choose(choiceOf(i + 1));
            go();
            if (i == 1)
                everySourceAsked = seconds();
        }
    } catch (const std::exception& error) {
        ADD_FAILURE() << error.what(); // what was seen until then is reported
    }
    watch.end();
    ASSERT_FALSE(watch.memory().empty());
    const double end = watch.memory().back().at;
    const bool isOver = everySourceAsked > 0.8 * end;
    const double warmUp = isOver ? end / 3 : std::max(end / 3, everySourceAsked);
    report(watch, warmUp);

    EXPECT_GT(static_cast<double>(watch.answers()), end);
    for (const LateAnswer& answer : watch.lateAnswers())
        EXPECT_LT(answer.ofItsOwn(), longestAnswer) << "at " << answer.at << " s";
    const double minutes = (end - warmUp) / 60;
    EXPECT_LT(growthPerMinute(watch.memory(), warmUp) / 1024,
              isOver ? newPages / minutes : std::max(steepestGrowth, comingAndGoing / minutes));
    ASSERT_TRUE(journey_.programRuns());
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+f x");
    EXPECT_EQ(journey_.waitForExit(longEnough), 0);
}

} // namespace
} // namespace tremor::journeys
