#pragma once

#include "alerts/nearby_towns.h"
#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What is new in the catalogue after a poll, and the newest event. New is an event whose UTC text
// sorts behind the text of the settings' LastEvent; there is no list of events still to be
// reported.
namespace tremor {

// The outward steps of a check for new events, in the order in which it takes them. The log and the
// sound have ports of their own; e-mail, Pagerlink and Telegram follow behind the check.
class NewEventSteps {
  public:
    virtual ~NewEventSteps() = default;

    virtual std::string shownWorkspace() = 0; // text of cmb_wrkSp
    virtual void startWRKspace() = 0;         // draws the open all-workspaces window
    virtual void query2Controls() = 0;        // table and workspace map
    virtual void setLastEventText(std::string_view text) = 0; // Label1
    virtual void eventsInMap2(std::string_view sql) = 0;      // map of the last event
};

// The newest event of the catalogue, each text as the catalogue gave it.
struct LastEventValues {
    std::string LastMagnitude;
    std::string LastUtc;
    std::string LastLatitude;
    std::string LastLongitude;
    std::string LastDepth; // km
};

// Plays the sound of the last of the four levels that the magnitude reaches, whatever their order.
// A level without a file is silent, also above a level that has one.
void PlayAlertSound(float magnitude, const AppSettings& settings, Sound& sound);

// A database error has no words: its statement has no rows, so that nothing is new by it. The same
// goes for a mark or a workspace's name that would break out of its statement.
class NewEvents {
  public:
    NewEvents(AppSettings& settings, Session& session, Database& database,
              const NumberLocale& locale, NearbyTowns& towns, Sound& sound, Log& log,
              NewEventSteps& steps, ErrorReport& errors);

    // Counts the new events of each workspace into the log ("3 New Events in Workspace Alps"),
    // sounds for those of the workspace on display, brings the views up to date whether there are
    // new events or not, and moves LastEvent on. True when the catalogue holds new events, inside
    // a workspace or not.
    bool thereIsNewEv();

    // Shows the event of LastEvent on its map and in the log.
    void positioningWbrLast();

    // Reads the newest event, which becomes LastEvent, and fills the town report and Label1. Gives
    // its UTC; the empty text when there is no event, and then LastEvent stays.
    std::string lastEventInDb();

    const LastEventValues& lastEvent() const { return last_; }

    // The town report of the newest event, as NearbyTowns writes it.
    const std::string& lastTownsReport() const { return lastTownsReport_; }

  private:
    // The workspace on display, when it has new events.
    std::optional<std::string> logNewEventsOfWorkspaces(ProcedureTrace& trace,
                                                        const std::string& mark);
    void readNewMagnitudes(ProcedureTrace& trace, const std::string& workspace,
                           const std::string& mark);
    void alertMagnitude();
    std::int32_t count(const std::string& sql);

    AppSettings& settings_;
    Session& session_;
    Database& database_;
    NumberLocale locale_;
    NearbyTowns& towns_;
    Sound& sound_;
    Log& log_;
    NewEventSteps& steps_;
    ErrorReport& errors_;
    LastEventValues last_;
    std::string lastTownsReport_;
};

} // namespace tremor
