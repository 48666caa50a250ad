#include "ingest/polling_scheduler.h"

#include "core/flag_scope.h"

#include <fmt/format.h>

#include <limits>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";

constexpr std::int16_t collectNow = 9999; // seconds

// Counts how many calls of a procedure stand inside one another: one more for the life of a block.
class Nesting {
  public:
    explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

  private:
    int& depth_;
};

std::int32_t toLong(std::int64_t value) {
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::int32_t>(value);
}

std::int32_t intervalSeconds(std::int32_t minutes) {
    return toLong(std::int64_t{minutes} * 60);
}

std::int32_t secondsLeft(std::int16_t elapsed, std::int32_t minutes) {
    return toLong(std::int64_t{intervalSeconds(minutes)} - elapsed);
}

void addSecond(std::int16_t& counter) {
    if (counter == std::numeric_limits<std::int16_t>::max())
        throw RuntimeError(ErrorNumber::Overflow);
    ++counter;
}

std::string countdown(std::string_view source, std::int32_t seconds) {
    return fmt::format("Next update from {} source in {} sec.", source, seconds);
}

} // namespace

bool isDue(std::int32_t elapsedSeconds, std::int32_t minutes) {
    return elapsedSeconds > intervalSeconds(minutes);
}

bool isAnyIntervalOver(const PollCounters& counters, const AppSettings& settings) {
    // All three are looked at, so that an interval that is no number of seconds is always told.
    const bool primary = isDue(counters.PrimaryElapsed, settings.PrimaryPollEvery);
    const bool alternate = isDue(counters.AlternateElapsed, settings.AlternatePollEvery);
    const bool local = isDue(counters.LocalElapsed, settings.LocalPollEvery);
    return primary || alternate || local;
}

std::optional<std::string> countdownText(const PollCounters& counters,
                                         const AppSettings& settings) {
    const auto primaryLeft = [&] {
        return secondsLeft(counters.PrimaryElapsed, settings.PrimaryPollEvery);
    };
    const auto alternateLeft = [&] {
        return secondsLeft(counters.AlternateElapsed, settings.AlternatePollEvery);
    };
    const bool primaryInUse = settings.UsePrimaryDataSource == 1;
    const bool alternateInUse = settings.UseAlternateDataSource == 1;
    if (primaryInUse && alternateInUse) {
        const std::int32_t primary = primaryLeft();
        const std::int32_t alternate = alternateLeft();
        if (primary < alternate)
            return countdown("primary", primary);
        if (primary > alternate)
            return countdown("alternate", alternate);
        return countdown("both", primary);
    }
    if (primaryInUse)
        return countdown("Primary", primaryLeft());
    if (alternateInUse)
        return countdown("Alternate", alternateLeft());
    return std::nullopt;
}

PollingScheduler::PollingScheduler(Session& session, const AppSettings& settings, Clock& clock,
                                   Log& log, ErrorReport& errors, TickSteps& steps)
    : session_(session),
      settings_(settings),
      clock_(clock),
      log_(log),
      errors_(errors),
      steps_(steps) {}

void PollingScheduler::upRemote_Timer() {
    if (session_.TicksHeld || session_.Closing)
        return;
    ProcedureTrace trace(errors_, module, "upRemote_Timer");
    session_.maxNewMagnitude = 0;
    session_.LastNewMagnitude = 0;
    // A tick that finds the guard set does not run, but lifts it for the next one (at the end):
    // a guard that an early exit has left behind costs one tick and no more.
    if (session_.DatabaseOpen && !TimerBusy_ && nesting_ < maximumNesting) {
        if (!session_.ImportInProgress) {
            TimerBusy_ = true;
            if (session_.PollingSuspended == 0 && !pollSources(trace))
                return;
            TimerBusy_ = false;
        }
        countTelegram(trace);
    }
    TimerBusy_ = false;
    LastTimerTick_ = clock_.now();
}

void PollingScheduler::mnuCollect_Click() {
    counters_ = {collectNow, collectNow, collectNow};
}

void PollingScheduler::updateFromRemote() {
    const ProcedureTrace trace(errors_, module, "updateFromRemote");
}

bool PollingScheduler::pollSources(ProcedureTrace& trace) {
    const Nesting nesting(nesting_);
    trace.step([&] { addSecond(counters_.PrimaryElapsed); });
    trace.step([&] { addSecond(counters_.AlternateElapsed); });
    if (session_.PrimaryBusy || session_.AlternateBusy)
        return true;
    showCountdown(trace);
    if (!prepare(trace) || !pollPrimary(trace) || !pollAlternate(trace))
        return false;
    pollLocal(trace);
    return true;
}

void PollingScheduler::showCountdown(ProcedureTrace& trace) {
    std::optional<std::string> text;
    trace.step([&] { text = countdownText(counters_, settings_); });
    if (text)
        trace.step([&] { steps_.setCountdownText(*text); });
}

bool PollingScheduler::prepare(ProcedureTrace& trace) {
    if (session_.SearchModeOn == 1)
        return true;
    bool over = false;
    trace.step([&] { over = isAnyIntervalOver(counters_, settings_); });
    if (!over)
        return true;
    bool internetUp = false;
    trace.step([&] { internetUp = steps_.IsInternetUp(); });
    if (!internetUp) {
        log_.addLogToList("Internet Connection is down, please check your internet configuration.");
        return false;
    }
    bool pageLoaded = false;
    trace.step([&] { pageLoaded = steps_.mapPageLoaded(); });
    if (!pageLoaded) {
        trace.step([&] { steps_.startServices(); });
        return true;
    }
    trace.step([&] { steps_.refreshLogList(); });
    trace.step([&] { steps_.mapsInJPGLastEvent(); });
    trace.step([&] { steps_.mapsInJPGWorkspace(); });
    if (session_.AllWorkspacesOpen)
        trace.step([&] { steps_.saveAllWorkspace(); });
    return true;
}

bool PollingScheduler::pollPrimary(ProcedureTrace& trace) {
    if (settings_.UsePrimaryDataSource != 1) {
        counters_.PrimaryElapsed = 0;
        return true;
    }
    if (!dueNow(trace, counters_.PrimaryElapsed, settings_.PrimaryPollEvery))
        return true;
    if (!fetchPrimary(trace))
        return false;
    if (runChain(trace)) {
        trace.step([&] { steps_.generateMsgEmail(); });
        trace.step([&] { steps_.generateMsgPagerlink(); });
        trace.step([&] { steps_.generateMsgTelegram(); });
    }
    counters_.PrimaryElapsed = 0;
    return true;
}

bool PollingScheduler::fetchPrimary(ProcedureTrace& trace) {
    if (settings_.IsideOrIngv != 0) {
        trace.step([&] { steps_.downloadCsvFromIngv(); });
    } else if (settings_.PrimarySourceUsername.empty() || settings_.PrimarySourcePassword.empty()) {
        log_.addLogToList("Warning! Define Credentials on Setup panel for synchronize Events");
        log_.addLogToList("from a Remote Source.");
        return true;
    } else {
        trace.step([&] { steps_.downloadCsvFromIside(); });
    }
    return !closedDuringWait();
}

bool PollingScheduler::pollAlternate(ProcedureTrace& trace) {
    if (settings_.UseAlternateDataSource != 1) {
        counters_.AlternateElapsed = 0;
        return true;
    }
    if (!dueNow(trace, counters_.AlternateElapsed, settings_.AlternatePollEvery))
        return true;
    if (settings_.EmscOrUsgs != 0)
        trace.step([&] { steps_.downloadCsvFromUSGS(); });
    else
        trace.step([&] { steps_.downloadCsvFromEmsc(); });
    if (closedDuringWait())
        return false;
    runChain(trace);
    counters_.AlternateElapsed = 0;
    return true;
}

void PollingScheduler::pollLocal(ProcedureTrace& trace) {
    if (settings_.UseLocalSource != 1) {
        counters_.LocalElapsed = 0;
        return;
    }
    if (dueNow(trace, counters_.LocalElapsed, settings_.LocalPollEvery)) {
        trace.step([&] { steps_.ListFolder(settings_.LocalSourcePath); });
        runChain(trace);
        counters_.LocalElapsed = 0;
    }
    trace.step([&] { addSecond(counters_.LocalElapsed); });
}

bool PollingScheduler::runChain(ProcedureTrace& trace) {
    trace.step([&] { steps_.exportLast24HoursCSV(); });
    if (session_.SearchModeOn != 0)
        return false;
    bool isNew = false;
    trace.step([&] { isNew = steps_.thereIsNewEv(); });
    if (isNew)
        trace.step([&] { steps_.positioningWbrLast(); });
    return isNew;
}

void PollingScheduler::countTelegram(ProcedureTrace& trace) {
    ++TelegramElapsed_;
    if (!dueNow(trace, TelegramElapsed_, settings_.TelegramPollEvery))
        return;
    pollTelegramUsers();
    TelegramElapsed_ = 0;
}

void PollingScheduler::pollTelegramUsers() {
    if (settings_.enableTelegram != 1 || pollingTelegram_)
        return;
    const FlagScope polling(pollingTelegram_);
    ProcedureTrace trace(errors_, module, "pollTelegramUsers");
    bool valid = false;
    trace.step([&] { valid = steps_.telegramTokenValid(); });
    if (!valid) {
        log_.addLogToList("Telegram : There is an error on Token of BOT.");
        return;
    }
    std::int32_t added = 0;
    trace.step([&] { added = steps_.checkIdTelegram(); });
    if (added > 0)
        log_.addLogToList(fmt::format("Telegram : {} {} added on Telegram BOT", added,
                                      added == 1 ? "user" : "users"));
}

bool PollingScheduler::dueNow(ProcedureTrace& trace, std::int32_t elapsedSeconds,
                              std::int32_t minutes) {
    // An interval that cannot be computed and was ignored is not due.
    bool due = false;
    trace.step([&] { due = isDue(elapsedSeconds, minutes); });
    return due;
}

bool PollingScheduler::closedDuringWait() const {
    return session_.WaitCounter > Session::waitCounterLimit || session_.Closing;
}

} // namespace tremor
