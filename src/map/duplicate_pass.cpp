#include "map/duplicate_pass.h"

#include "core/conversions.h"
#include "core/dates.h"
#include "core/error_report.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace tremor {

namespace {

constexpr std::size_t fractionCharacters = 4; // ".123"
constexpr std::int32_t duplicateSeconds = 10;
constexpr double duplicateKm = 1.0;
constexpr double fullCircle = 360; // degrees

bool isForeign(const EventMarkerRow& row) {
    return row.Source == "EMSC" || row.Source == "USGS";
}

void show(EventMarkerRow& row) {
    if (!row.skip)
        row.visible = true;
}

void settleDuplicate(EventMarkerRow& row, EventMarkerRow& next, std::int32_t priority) {
    if (priority == showAllSources) {
        row.visible = true;
        return;
    }
    const bool preferForeign = priority == preferAlternateSource;
    if (isForeign(row) == preferForeign) {
        row.visible = true;
        next.skip = true;
    } else if (isForeign(next) == preferForeign) {
        next.visible = true;
    }
}

std::string commaText(std::string_view coordinate) {
    std::string text(coordinate);
    std::replace(text.begin(), text.end(), '.', ',');
    return text;
}

// The geometry would report each coordinate that it cannot work with to the operator.
bool isCoordinate(std::string_view text) {
    try {
        return std::abs(coordinateToDouble(text)) <= fullCircle;
    } catch (const RuntimeError&) {
        return false;
    }
}

bool isPlace(const EventMarkerRow& row) {
    return isCoordinate(row.Latitude) && isCoordinate(row.Longitude);
}

// Of a time with one decimal, "02:03:52.1", the cut leaves "02:03:", the minute.
std::optional<DateTime> timeOf(const EventMarkerRow& row, const NumberLocale& locale) {
    std::string_view utc = row.UTC;
    utc.remove_suffix(std::min(utc.size(), fractionCharacters));
    if (utc.ends_with(':'))
        utc.remove_suffix(1);
    try {
        return textToDate(utc, locale);
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}

// One run over the rows. Each time is read once, places only where the times are close.
class DuplicatePass {
  public:
    DuplicatePass(std::span<EventMarkerRow> rows, const DistanceRoutine& earth,
                  const NumberLocale& locale)
        : rows_(rows), earth_(earth) {
        times_.reserve(rows.size());
        for (const EventMarkerRow& row : rows)
            times_.push_back(timeOf(row, locale));
    }

    bool isDuplicateOfNext(std::size_t i) {
        const std::optional<DateTime>& time = times_[i];
        const std::optional<DateTime>& earlier = times_[i + 1];
        if (!time || !earlier) {
            notCompared(time ? i + 1 : i);
            return false;
        }
        if (CalcDiff2Dates(*earlier, *time) >= duplicateSeconds)
            return false;
        const bool placeKnown = isPlace(rows_[i]);
        if (!placeKnown || !isPlace(rows_[i + 1])) {
            notCompared(placeKnown ? i + 1 : i);
            return false;
        }
        return kilometres(rows_[i], rows_[i + 1]) < duplicateKm;
    }

    const DuplicatePassReport& report() const { return report_; }

  private:
    double kilometres(const EventMarkerRow& row, const EventMarkerRow& next) const {
        return earth_.distance(commaText(row.Latitude), commaText(row.Longitude),
                               commaText(next.Latitude), commaText(next.Longitude), "K");
    }

    void notCompared(std::size_t faultyRow) {
        if (report_.pairsNotCompared++ == 0)
            report_.firstFaultyRow = faultyRow;
    }

    std::span<EventMarkerRow> rows_;
    const DistanceRoutine& earth_;
    std::vector<std::optional<DateTime>> times_;
    DuplicatePassReport report_;
};

} // namespace

DuplicatePassReport runDuplicatePass(std::span<EventMarkerRow> rows, std::int32_t priority,
                                     const DistanceRoutine& earth, const NumberLocale& locale) {
    for (EventMarkerRow& row : rows)
        row.visible = row.skip = false;
    DuplicatePass pass(rows, earth, locale);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const bool isLast = i + 1 == rows.size();
        if (!isLast && pass.isDuplicateOfNext(i))
            settleDuplicate(rows[i], rows[i + 1], priority);
        else
            show(rows[i]);
    }
    return pass.report();
}

} // namespace tremor
