#include "views/event_history_chart.h"

#include "core/common_text.h"
#include "core/dates.h"

#include <optional>
#include <string_view>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::size_t wholeSeconds = 19; // "2014-03-07 09:05:12"

std::optional<DateTime> timeOf(std::string_view utc, const NumberLocale& locale) {
    try {
        return textToDate(utc.substr(0, wholeSeconds), locale);
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

} // namespace

EventHistoryChart::EventHistoryChart(Database& database, const Session& session,
                                     const AppSettings& settings, NumberLocale locale,
                                     ChartView& view, ErrorReport& errors)
    : database_(database),
      session_(session),
      settings_(settings),
      locale_(std::move(locale)),
      view_(view),
      errors_(errors) {}

void EventHistoryChart::pictureMagnitudeEvents() {
    ProcedureTrace trace(errors_, module, "pictureMagnitudeEvents");
    ChartContents contents;
    contents.startDate = settings_.startDate;
    contents.endDate = settings_.endDate;
    // A copy: windows repaint while the statements run.
    const std::string condition =
        settings_.searchParQuery.empty() ? session_.LastUtcFilter : settings_.searchParQuery;
    const std::int64_t count = eventCount(condition);
    DateTime start;
    if (count > 0 && readPeriod(trace, start, contents)) {
        contents.events.reserve(static_cast<std::size_t>(count));
        readEvents(condition, start, contents);
    }
    view_.setContents(std::move(contents));
}

// Row by row, as the events are: a resize may come while somebody goes through a result that the
// database keeps.
std::int64_t EventHistoryChart::eventCount(const std::string& condition) {
    std::int64_t count = 0;
    database_.slsEach("select count(UTC) from Events where " + condition,
                      [&](const CurrentRow& row) {
                          count = SafeToLong(row.text(1), locale_);
                          return false;
                      });
    return count;
}

bool EventHistoryChart::readPeriod(ProcedureTrace& trace, DateTime& start,
                                   ChartContents& contents) const {
    DateTime end;
    if (!trace.step([&] { start = textToDate(contents.startDate, locale_); }) ||
        !trace.step([&] { end = textToDate(contents.endDate, locale_); }))
        return false;
    contents.span = CalcDiff2Dates(start, end);
    return contents.span > 0;
}

void EventHistoryChart::readEvents(const std::string& condition, DateTime start,
                                   ChartContents& contents) {
    database_.slsEach(
        "select UTC , Magnitude from Events where " + condition, [&](const CurrentRow& row) {
            if (const std::optional<DateTime> time = timeOf(row.text(1), locale_))
                contents.events.push_back({.time = *time,
                                           .offset = CalcDiff2Dates(start, *time),
                                           .magnitude = ParseDotDouble(row.text(2), locale_)});
            return true;
        });
}

void EventHistoryChart::PicEvHist_Resize() {
    if (!session_.TicksHeld && !session_.Closing)
        pictureMagnitudeEvents();
}

} // namespace tremor
