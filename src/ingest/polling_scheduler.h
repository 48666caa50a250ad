#pragma once

#include "core/civil_time.h"
#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "ingest/tick_steps.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tremor {

// Seconds since the last poll of each source. They overflow (error 6) at 32767.
struct PollCounters {
    std::int16_t PrimaryElapsed = 0;
    std::int16_t AlternateElapsed = 0;
    std::int16_t LocalElapsed = 0;
};

// True when more than `minutes` have elapsed, to the second: an interval of 1 is due after 61
// seconds. Error 6 when the interval has no 32-bit number of seconds.
bool isDue(std::int32_t elapsedSeconds, std::int32_t minutes);

// True when any of the three intervals has passed, whether its source is in use or not.
bool isAnyIntervalOver(const PollCounters& counters, const AppSettings& settings);

// "Next update from primary source in 17 sec."; nothing when neither remote source is in use.
// Error 6 as above.
std::optional<std::string> countdownText(const PollCounters& counters, const AppSettings& settings);

// The tick of the one-second timer `upRemote`: counts, shows the countdown, and runs the sources
// that are due, each followed by its chain. Everything happens on the user-interface thread; steps
// that wait let further ticks in, and the flags of the session say what such a nested tick does.
class PollingScheduler {
  public:
    // So many ticks may stand inside one another in the polling body. A page that never answers
    // would otherwise nest them until the stack is full.
    static constexpr int maximumNesting = 8;

    PollingScheduler(Session& session, const AppSettings& settings, Clock& clock, Log& log,
                     ErrorReport& errors, TickSteps& steps);

    // One tick. Does nothing while a runtime-error box holds the ticks or the program closes.
    void upRemote_Timer();

    // "Collect Data": makes every source with an interval of up to 166 minutes due at the next
    // tick.
    void mnuCollect_Click();

    // Traces entry and exit; nothing else belongs here.
    void updateFromRemote();

    // Looks for new chats of the Telegram bot. Returns at once while another poll runs: its
    // transfers let ticks in.
    void pollTelegramUsers();

    const PollCounters& counters() const { return counters_; }

    // Local time at the end of the last tick that ended normally; nothing before the first one.
    std::optional<DateTime> LastTimerTick() const { return LastTimerTick_; }

  private:
    // False when the tick is to be left at once, with its guard still set.
    bool pollSources(ProcedureTrace& trace);
    bool prepare(ProcedureTrace& trace);
    bool pollPrimary(ProcedureTrace& trace);
    bool pollAlternate(ProcedureTrace& trace);
    void pollLocal(ProcedureTrace& trace);
    bool fetchPrimary(ProcedureTrace& trace);

    void showCountdown(ProcedureTrace& trace);
    bool runChain(ProcedureTrace& trace);
    void countTelegram(ProcedureTrace& trace);
    bool dueNow(ProcedureTrace& trace, std::int32_t elapsedSeconds, std::int32_t minutes);
    bool closedDuringWait() const;

    Session& session_;
    const AppSettings& settings_;
    Clock& clock_;
    Log& log_;
    ErrorReport& errors_;
    TickSteps& steps_;

    PollCounters counters_;
    bool TimerBusy_ = false;
    std::int32_t TelegramElapsed_ = 0; // seconds
    bool pollingTelegram_ = false;
    int nesting_ = 0;
    std::optional<DateTime> LastTimerTick_;
};

} // namespace tremor
