#include "alerts/new_events.h"

#include "alerts/newest_event.h"
#include "core/common_text.h"
#include "core/conversions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";

// "Magnitude" or "count(*)" of the events behind the mark within a workspace, edges included.
std::string newEventsOfWorkspace(std::string_view column, std::string_view workspace,
                                 std::string_view mark) {
    return fmt::format("select {} from Events CROSS JOIN Workspace where "
                       "(Events.Latitude >= Workspace.BLat) and "
                       "(Events.Latitude <= Workspace.TLat) and "
                       "(Events.Longitude >= Workspace.BLng) and "
                       "(Events.Longitude <= Workspace.TLng) and "
                       "(Workspace.Name = '{}') and (UTC > '{}')",
                       column, workspace, mark);
}

} // namespace

void PlayAlertSound(float magnitude, const AppSettings& settings, Sound& sound) {
    std::string path;
    if (magnitude >= settings.MagLevel1)
        path = settings.MagLevelSound1;
    if (magnitude >= settings.MagLevel2)
        path = settings.MagLevelSound2;
    if (magnitude >= settings.MagLevel3)
        path = settings.MagLevelSound3;
    if (magnitude >= settings.MagLevel4)
        path = settings.MagLevelSound4;
    if (!path.empty())
        sound.play(path);
}

NewEvents::NewEvents(AppSettings& settings, Session& session, Database& database,
                     const NumberLocale& locale, NearbyTowns& towns, Sound& sound, Log& log,
                     NewEventSteps& steps, ErrorReport& errors)
    : settings_(settings),
      session_(session),
      database_(database),
      locale_(locale),
      towns_(towns),
      sound_(sound),
      log_(log),
      steps_(steps),
      errors_(errors) {}

bool NewEvents::thereIsNewEv() {
    ProcedureTrace trace(errors_, module, "thereIsNewEv");
    // A copy: the steps below can let the operator open another catalogue, which moves LastEvent.
    const std::string mark = settings_.LastEvent;
    bool isNew = false;
    if (pastedTextValue(mark)) {
        if (const auto workspace = logNewEventsOfWorkspaces(trace, mark)) {
            readNewMagnitudes(trace, *workspace, mark);
            alertMagnitude();
        }
        isNew = count(fmt::format("select count(*) from Events where UTC > '{}'", mark)) > 0;
    }
    trace.step([&] { steps_.query2Controls(); });
    lastEventInDb();
    return isNew;
}

std::optional<std::string> NewEvents::logNewEventsOfWorkspaces(ProcedureTrace& trace,
                                                               const std::string& mark) {
    // All names are read before the first step: the steps have queries of their own.
    std::vector<std::string> names;
    database_.slsEach("select Name from Workspace", [&](const CurrentRow& row) {
        names.emplace_back(row.text(1));
        return true;
    });
    std::optional<std::string> displayed;
    for (const std::string& name : names) {
        const std::int32_t events =
            pastedTextValue(name) ? count(newEventsOfWorkspace("count(*)", name, mark)) : 0;
        if (events <= 0)
            continue;
        trace.step(
            [&] { log_.addLogToList(fmt::format("{} New Events in Workspace {}", events, name)); });
        trace.step([&] {
            if (steps_.shownWorkspace() == name)
                displayed = name;
        });
        if (session_.AllWorkspacesOpen)
            trace.step([&] { steps_.startWRKspace(); });
    }
    return displayed;
}

void NewEvents::readNewMagnitudes(ProcedureTrace& trace, const std::string& workspace,
                                  const std::string& mark) {
    // One report tells of all magnitudes that are out of range, and the others still count.
    std::optional<RuntimeError> failure;
    database_.slsEach(
        newEventsOfWorkspace("Magnitude", workspace, mark), [&](const CurrentRow& row) {
            try {
                session_.maxNewMagnitude = std::max(
                    session_.maxNewMagnitude, doubleToSingle(ParseDotDouble(row.text(1), locale_)));
            } catch (const RuntimeError& error) {
                failure = error;
            }
            return true;
        });
    if (failure)
        trace.step([&] { throw RuntimeError(*failure); });
}

void NewEvents::alertMagnitude() {
    ProcedureTrace trace(errors_, module, "alertMagnitude");
    trace.step([&] { PlayAlertSound(session_.maxNewMagnitude, settings_, sound_); });
    session_.maxNewMagnitude = 0;
}

void NewEvents::positioningWbrLast() {
    ProcedureTrace trace(errors_, module, "positioningWbrLast");
    std::array<std::string, 5> event; // UTC, latitude, longitude, depth, magnitude
    if (pastedTextValue(settings_.LastEvent)) {
        const std::string sql =
            fmt::format("select * from Events where UTC = '{}'", settings_.LastEvent);
        trace.step([&] { steps_.eventsInMap2(sql); });
        database_.slsEach(sql, [&](const CurrentRow& row) {
            for (std::size_t i = 0; i < event.size(); ++i)
                event[i] = row.text(static_cast<int>(i) + 1);
            return true;
        });
    }
    const auto& [utc, latitude, longitude, depth, magnitude] = event;
    log_.addLogToList("New Earthquake reported from last update...");
    log_.addLogToList(fmt::format("UTC: {} Magnitude: {} Depth: {}", utc, magnitude, depth));
    log_.addLogToList(
        fmt::format("Earthquake located in Latitude: {} Longitude: {}", latitude, longitude));
    lastEventInDb();
}

std::string NewEvents::lastEventInDb() {
    ProcedureTrace trace(errors_, module, "lastEventInDb");
    std::string utc;
    if (const std::optional<NewestEvent> event = newestEvent(database_)) {
        utc = event->utc;
        last_ = {event->magnitude, utc, event->latitude, event->longitude, event->depth};
        settings_.LastEvent = utc;
    }
    trace.step(
        [&] { towns_.eventOnPOI(last_.LastLatitude, last_.LastLongitude, lastTownsReport_); });
    steps_.setLastEventText(
        fmt::format("M {} - {} {}", last_.LastMagnitude, last_.LastUtc, towns_.nearestTownName()));
    return utc;
}

std::int32_t NewEvents::count(const std::string& sql) {
    database_.slsSel(sql);
    return database_.slsGetRow() ? SafeToLong(database_.slsFX(1), locale_) : 0;
}

} // namespace tremor
