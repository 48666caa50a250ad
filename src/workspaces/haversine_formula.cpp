#include "workspaces/haversine_formula.h"

#include "core/conversions.h"

#include <fmt/format.h>

#include <cmath>

namespace tremor {

namespace {

constexpr std::string_view module = "Module - HaversineFormula";

constexpr double pi = 3.14159265358979;
constexpr double halfPi = 1.5707963267949;
constexpr double earthRadiusKm = 6371.0;
constexpr double minutesPerDegree = 60;
constexpr double milesPerMinute = 1.1515;
constexpr double kilometresPerMile = 1.609344;
constexpr double nauticalMilesPerMile = 0.8684;

double inRange(double value) {
    if (!std::isfinite(value))
        throw RuntimeError(ErrorNumber::Overflow);
    return value;
}

double quotient(double dividend, double divisor) {
    if (divisor == 0)
        throw RuntimeError(ErrorNumber::DivisionByZero);
    return inRange(dividend / divisor);
}

double squareRoot(double value) {
    if (!(value >= 0))
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return std::sqrt(value);
}

double numberOf(const HaversineFormula::Number& value) {
    if (const auto* text = std::get_if<std::string_view>(&value))
        return coordinateToDouble(*text);
    return std::get<double>(value);
}

// The angle by octants, so that each quotient stays between -1 and 1.
double angleOf(double y, double x) {
    if (y > 0) {
        if (x >= y)
            return std::atan(quotient(y, x));
        if (-y >= x)
            return std::atan(quotient(y, x)) + pi;
        return pi / 2 - std::atan(quotient(x, y));
    }
    if (-y <= x)
        return std::atan(quotient(y, x));
    if (x <= y)
        return std::atan(quotient(y, x)) - pi;
    return -std::atan(quotient(x, y)) - pi / 2;
}

// Cosine of the angle between two points (radians) that are `theta` apart in longitude. In double
// arithmetic the sum lies above 1 for one in forty pairs of identical points; in extended
// precision, rounded once, it is exactly 1.
double cosineBetween(double lat1, double lat2, double theta) {
    const long double phi1 = lat1;
    const long double phi2 = lat2;
    return static_cast<double>(std::sin(phi1) * std::sin(phi2) +
                               std::cos(phi1) * std::cos(phi2) *
                                   std::cos(static_cast<long double>(theta)));
}

} // namespace

HaversineFormula::HaversineFormula(const NumberLocale& locale, ErrorReport& errors)
    : locale_(locale), errors_(errors) {}

double HaversineFormula::distance(std::string_view lat1, std::string_view lon1,
                                  std::string_view lat2, std::string_view lon2,
                                  std::string_view unit) const {
    ProcedureTrace trace(errors_, module, "distance");
    double theta = 0;
    trace.step([&] { theta = inRange(coordinateToDouble(lon1) - coordinateToDouble(lon2)); });
    const double cosine = cosineBetween(deg2rad(lat1), deg2rad(lat2), deg2rad(theta));
    const double degrees = rad2deg(acos(cosine));
    const double miles = degrees * minutesPerDegree * milesPerMinute;
    if (unit == "K" || unit == "k")
        return miles * kilometresPerMile;
    if (unit == "N" || unit == "n")
        return miles * nauticalMilesPerMile;
    return miles;
}

std::string HaversineFormula::revealBounds(double lat, double lon, std::string_view bearing,
                                           double distanceKm) const {
    ProcedureTrace trace(errors_, module, "revealBounds");
    const double latitude = deg2rad(lat);
    const double longitude = deg2rad(lon);
    const double course = textToDouble(doubleToText(deg2rad(bearing), locale_), locale_);
    const double a = distanceKm / earthRadiusKm;
    const double latitude2 = ASin(std::sin(latitude) * std::cos(a) +
                                  std::cos(latitude) * std::sin(a) * std::cos(course));
    const double longitude2 =
        longitude + Atan2(std::sin(course) * std::sin(a) * std::cos(latitude),
                          std::cos(a) - std::sin(latitude) * std::sin(latitude2));
    return fmt::format("{}|{}", doubleToText(rad2deg(latitude2), locale_),
                       doubleToText(rad2deg(longitude2), locale_));
}

double HaversineFormula::deg2rad(const Number& value) const {
    ProcedureTrace trace(errors_, module, "deg2rad");
    double radians = 0;
    trace.step([&] { radians = inRange(numberOf(value) * pi) / 180; });
    return radians;
}

double HaversineFormula::rad2deg(const Number& value) const {
    ProcedureTrace trace(errors_, module, "rad2deg");
    double degrees = 0;
    trace.step([&] { degrees = inRange(numberOf(value) * 180) / pi; });
    return degrees;
}

double HaversineFormula::acos(const Number& value) const {
    ProcedureTrace trace(errors_, module, "acos");
    double angle = 0;
    trace.step([&] {
        const double x = numberOf(value);
        if (std::abs(x) != 1)
            angle = pi / 2 - std::atan(quotient(x, squareRoot(1 - x * x)));
        else if (x == -1)
            angle = pi;
    });
    return angle;
}

double HaversineFormula::ASin(double value) const {
    ProcedureTrace trace(errors_, module, "ASin");
    double angle = 0;
    trace.step([&] {
        if (std::abs(value) == 1)
            angle = std::copysign(halfPi, value);
        else
            angle = std::atan(quotient(value, squareRoot(1 - value * value)));
    });
    return angle;
}

double HaversineFormula::Atan2(double y, double x) const {
    ProcedureTrace trace(errors_, module, "Atan2");
    double angle = 0;
    trace.step([&] { angle = angleOf(y, x); });
    return angle;
}

} // namespace tremor
