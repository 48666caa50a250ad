#pragma once

#include "ingest/polling_scheduler.h"
#include "ingest/recording_tick_steps.h"
#include "support/fakes.h"

#include <string>
#include <vector>

namespace tremor::testing {

using Calls = std::vector<std::string>;

// A scheduler on an open catalogue with no source in use and intervals of one minute.
class SchedulerFixture : public ::testing::Test {
  protected:
    SchedulerFixture() {
        session.DatabaseOpen = true;
        settings.PrimaryPollEvery = 1;
        settings.AlternatePollEvery = 1;
        settings.LocalPollEvery = 1;
    }

    void usePrimary() {
        settings.UsePrimaryDataSource = 1;
        settings.IsideOrIngv = 1;
    }
    void useAlternate() {
        settings.UseAlternateDataSource = 1;
        settings.EmscOrUsgs = 1;
    }
    void useLocal() {
        settings.UseLocalSource = 1;
        settings.LocalSourcePath = "/events/";
    }

    void tick(int times = 1) {
        for (; times > 0; --times) {
            clock.advance(std::chrono::seconds(1));
            scheduler.upRemote_Timer();
        }
    }

    Session session;
    AppSettings settings;
    FakeClock clock;
    RecordingLog log;
    ErrorHarness harness;
    RecordingTickSteps steps;
    PollingScheduler scheduler{session, settings, clock, log, harness.errors, steps};
};

inline const Calls snapshots = {"IsInternetUp", "refreshLogList", "mapsInJPGLastEvent",
                                "mapsInJPGWorkspace"};

inline Calls afterSnapshots(const Calls& rest) {
    Calls all = snapshots;
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
}

} // namespace tremor::testing
