#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"
#include "views/chart_picture.h"

#include <cstdint>
#include <string>

namespace tremor {

// The picture `PicEvHist` as the logic drives it.
class ChartView {
  public:
    virtual ~ChartView() = default;

    // Draws the chart anew into the back buffer, which is shown when the window next repaints.
    virtual void setContents(ChartContents contents) = 0;
};

// Reads what the history chart shows: one bar for each event for which the condition in force
// holds, on the period that the settings name.
class EventHistoryChart {
  public:
    // All references must outlive this object.
    EventHistoryChart(Database& database, const Session& session, const AppSettings& settings,
                      NumberLocale locale, ChartView& view, ErrorReport& errors);

    // Reads the events of settings.searchParQuery (when it is empty: of session.LastUtcFilter) and
    // shows them between settings.startDate and settings.endDate. No event, or a condition that the
    // engine refuses: the axes and the legend alone. The same for a period of no length; ends of
    // the period that are no dates raise error 13. An event whose UTC, cut to whole seconds, is no
    // date has no place in time and is left out; a magnitude that is no number counts as 0.
    void pictureMagnitudeEvents();

    // The picture has a new size: reads anew, unless a statement is running or the program ends.
    void PicEvHist_Resize();

  private:
    std::int64_t eventCount(const std::string& condition);
    bool readPeriod(ProcedureTrace& trace, DateTime& start, ChartContents& contents) const;
    void readEvents(const std::string& condition, DateTime start, ChartContents& contents);

    Database& database_;
    const Session& session_;
    const AppSettings& settings_;
    NumberLocale locale_;
    ChartView& view_;
    ErrorReport& errors_;
};

} // namespace tremor
