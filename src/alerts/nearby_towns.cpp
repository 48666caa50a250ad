#include "alerts/nearby_towns.h"

#include "core/code_pages.h"
#include "core/common_text.h"
#include "core/conversions.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tremor {

namespace {

constexpr double belowAnyDistance = -1;
constexpr double nearKm = 10;
constexpr double farKm = 20;
constexpr std::string_view separator = "-----------------------------";
constexpr std::string_view fieldMark = "%%";

struct Point {
    std::string latitude;
    std::string longitude;
};

struct Town {
    Point position;
    std::string name;
};

struct townDistance {
    std::string Name;
    double Distance = 0; // km
};

Point walk(const EarthRoutines& earth, double latitude, double longitude,
           std::string_view bearing) {
    const std::string end = earth.revealBounds(latitude, longitude, bearing, nearKm);
    const std::size_t bar = std::min(end.find('|'), end.size());
    return {end.substr(0, bar), end.substr(std::min(bar + 1, end.size()))};
}

// The corner reached by walking first along `side`, then along `bearing`.
Point corner(const EarthRoutines& earth, std::string_view latitude, std::string_view longitude,
             std::string_view side, std::string_view bearing) {
    const Point middle = walk(earth, coordinateOrZero(latitude), coordinateOrZero(longitude), side);
    return walk(earth, coordinateToDouble(middle.latitude), coordinateToDouble(middle.longitude),
                bearing);
}

// The two conditions are added: a town in either band of the box is selected, a cross around the
// globe. The columns hold text, so the bounds are compared as text.
std::string crossCondition(const Point& southWest, const Point& northEast) {
    return fmt::format("where (Latitude BETWEEN {} and {} ) + (Longitude BETWEEN {} and {} )",
                       CommaToDot(southWest.latitude), CommaToDot(northEast.latitude),
                       CommaToDot(southWest.longitude), CommaToDot(northEast.longitude));
}

// The fields of a record "name%%distance"; an empty record has none.
std::vector<std::string_view> fieldsOf(std::string_view record) {
    std::vector<std::string_view> fields;
    while (!record.empty()) {
        const std::size_t mark = record.find(fieldMark);
        fields.push_back(record.substr(0, mark));
        if (mark == std::string_view::npos)
            break;
        record.remove_prefix(mark + fieldMark.size());
        if (record.empty())
            fields.push_back(record);
    }
    return fields;
}

std::string_view fieldAt(const std::vector<std::string_view>& fields, std::size_t index) {
    if (index >= fields.size())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return fields[index];
}

// One run of the report.
class TownReport {
  public:
    TownReport(const NumberLocale& locale, const EarthRoutines& earth, TownsList& list,
               ProcedureTrace& trace, std::string_view latitude, std::string_view longitude)
        : locale_(locale),
          earth_(earth),
          list_(list),
          trace_(trace),
          event_{plainText(latitude), plainText(longitude)} {}

    // The towns to measure: a blank one at 0, 0 in front, the last row left out.
    void readTowns(Database& database, const std::string& condition) {
        database.slsSel("select count(Name) from Cities " + condition);
        database.slsGetRow();
        const std::int32_t count = SafeToLong(database.slsFX(1), locale_);
        database.slsSel("select Latitude, Longitude,Name from Cities " + condition);
        const ResultSet rows = database.takeResult();
        towns_.assign(static_cast<std::size_t>(count),
                      {{plainText(""), plainText("")}, std::string()});
        for (std::size_t row = 0; row < rows.rowCount() && row + 1 < towns_.size(); ++row)
            towns_[row + 1] = {{plainText(rows.cell(row, 0)), plainText(rows.cell(row, 1))},
                               std::string(rows.cell(row, 2))};
    }

    // The towns with above < distance <= limit, nearest first; a blank entry at either end of the
    // unsorted list.
    std::vector<townDistance> townsBetween(double above, double limit) const {
        StringBuilder records;
        records.Add("|");
        for (const Town& town : towns_) {
            const double distance =
                roundHalfEven(earth_.distance(event_.latitude, event_.longitude,
                                              town.position.latitude, town.position.longitude, "K"),
                              2);
            if (distance > above && distance <= limit)
                records.Add(
                    fmt::format("{}{}{}|", town.name, fieldMark, doubleToText(distance, locale_)));
        }
        return sortedEntries(records.GetStr());
    }

    void addLine(std::string_view line) {
        list_.add(line);
        report_.Add(line);
        report_.Add("\r\n");
    }

    void addTowns(const std::vector<townDistance>& entries) {
        for (const townDistance& entry : entries) {
            if (!entry.Name.empty())
                addLine(fmt::format("{} = Km {}", Utf8ToText(entry.Name),
                                    doubleToText(entry.Distance, locale_)));
        }
    }

    const std::string& text() const { return report_.GetStr(); }

  private:
    std::string plainText(std::string_view dotText) const {
        return doubleToText(ParseDotDouble(dotText, locale_), locale_);
    }

    std::vector<townDistance> sortedEntries(std::string_view records) const {
        const std::vector<std::string_view> parts = split(records, '|');
        std::vector<townDistance> entries(parts.size());
        for (std::size_t j = 1; j + 1 < parts.size(); ++j) {
            const std::vector<std::string_view> fields = fieldsOf(parts[j]);
            trace_.step([&] { entries[j].Name = fieldAt(fields, 0); });
            trace_.step([&] { entries[j].Distance = textToDouble(fieldAt(fields, 1), locale_); });
        }
        std::stable_sort(entries.begin(), entries.end(),
                         [](const townDistance& left, const townDistance& right) {
                             return left.Distance < right.Distance;
                         });
        return entries;
    }

    const NumberLocale& locale_;
    const EarthRoutines& earth_;
    TownsList& list_;
    ProcedureTrace& trace_;
    Point event_;
    std::vector<Town> towns_;
    StringBuilder report_;
};

} // namespace

NearbyTowns::NearbyTowns(Database& database, const NumberLocale& locale, const EarthRoutines& earth,
                         TownsList& list, ErrorReport& errors)
    : database_(database), locale_(locale), earth_(earth), list_(list), errors_(errors) {}

void NearbyTowns::eventOnPOI(std::string_view latitude, std::string_view longitude,
                             std::string& report) {
    ProcedureTrace trace(errors_, "Form - panel", "eventOnPOI");
    if (latitude.empty() || longitude.empty()) {
        report.clear();
        return;
    }
    Point northEast;
    trace.step([&] { northEast = corner(earth_, latitude, longitude, "90", "0"); });
    Point southWest;
    trace.step([&] { southWest = corner(earth_, latitude, longitude, "270", "180"); });
    list_.clear();

    TownReport towns(locale_, earth_, list_, trace, latitude, longitude);
    towns.readTowns(database_, crossCondition(southWest, northEast));

    towns.addLine("TOWNS WITH DISTANCE LESS OF 10 KM");
    towns.addLine(separator);
    const std::vector<townDistance> nearest = towns.townsBetween(belowAnyDistance, nearKm);
    nearestTownName_ = nearest.front().Name;
    towns.addTowns(nearest);

    towns.addLine(separator);
    towns.addLine("TOWNS WITH DISTANCE BETWEEN FROM 10 KM TO 20 KM");
    towns.addLine(separator);
    towns.addTowns(towns.townsBetween(nearKm, farKm));
    report = towns.text();
}

} // namespace tremor
