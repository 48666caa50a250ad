#include "journeys/journey.h"
#include "journeys/source_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

struct Fault {
    const char* kind;
    const char* logLine;
    std::chrono::seconds limit; // until the line stands in the log
};

void PrintTo(const Fault& fault, std::ostream* stream) {
    *stream << fault.kind;
}

class SourceFaultJourney : public ::testing::TestWithParam<Fault> {};

std::vector<std::string> pollingIngv() {
    return {"UsePrimaryDataSource=1", "IsideOrIngv=1",    "PrimaryPollEvery=5",
            "AlternatePollEvery=5",   "LocalPollEvery=5", "StartupLogo=1"};
}

TEST_P(SourceFaultJourney, EndsInItsLogLineAndTheNextGoodPollHeals) {
    const Fault& fault = GetParam();
    Journey journey(pollingIngv());
    journey.startWithNewCatalogue("faults");

    journey.service(std::string("/practice/fault?kind=") + fault.kind);
    journey.key("F5");
    const bool logged = journey.waitForLog(fault.logLine, 1, fault.limit);
    ASSERT_TRUE(logged) << journey.activityLog();
    EXPECT_TRUE(journey.events("faults.sqlite").empty());
    EXPECT_TRUE(journey.programRuns());

    journey.service("/practice/fault?kind=none");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog(" Events imported from INGV", 1, 30s)) << journey.activityLog();
    EXPECT_EQ(journey.events("faults.sqlite").size(),
              rowsOfDocument(journey.service("/practice/last")).size());
    journey.key("alt+f x");
    EXPECT_EQ(journey.waitForExit(20s), 0);
}

// A failed transfer is noticed after the given wait of 60 seconds, a silent server after its
// stall limit of 60 seconds besides.
INSTANTIATE_TEST_SUITE_P(
    OfIngv, SourceFaultJourney,
    ::testing::Values(Fault{"404", "INGV Synchronization failed", 90s},
                      Fault{"204", "INGV Synchronization failed", 90s},
                      Fault{"500", "INGV Synchronization failed", 90s},
                      Fault{"cut", "INGV Synchronization failed", 90s},
                      Fault{"stall", "INGV Synchronization failed", 160s},
                      Fault{"slow", "INGV Synchronization failed", 160s},
                      Fault{"garbage", "Impossible connect to INGV source, try later.", 90s}),
    [](const auto& parameter) { return std::string(parameter.param.kind); });

// "stall" is left inside the transfer, "404" in the wait of 60 seconds behind it.
class ClosingJourney : public ::testing::TestWithParam<const char*> {};

TEST_P(ClosingJourney, TheProgramEndsAtOnceInTheWaitsOfAFailingPoll) {
    Journey journey(pollingIngv());
    journey.startWithNewCatalogue("faults");
    journey.service(std::string("/practice/fault?kind=") + GetParam());
    journey.key("F5");
    std::this_thread::sleep_for(8s);
    journey.key("alt+f x");
    EXPECT_EQ(journey.waitForExit(30s), 0); // 50 s are left of either wait
    EXPECT_EQ(journey.settings().at("PrimaryPollEvery"), "5");
}

INSTANTIATE_TEST_SUITE_P(OfIngv, ClosingJourney, ::testing::Values("stall", "404"),
                         [](const auto& parameter) { return std::string(parameter.param); });

} // namespace
} // namespace tremor::journeys
