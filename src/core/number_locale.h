#pragma once

#include <string>

namespace tremor {

enum class DateOrder { YearMonthDay, DayMonthYear, MonthDayYear };

// How the operator's regional settings write numbers and dates. A value, handed in wherever text
// that a person typed or reads is converted, so that every routine can be tried under any locale.
struct NumberLocale {
    char decimalMark = '.';
    std::string groupMark = ","; // UTF-8; may be a no-break space; never equal to decimalMark
    DateOrder dateOrder = DateOrder::MonthDayYear;
    char dateSeparator = '/';

    static NumberLocale point() { return {}; }
    static NumberLocale comma() { return {',', ".", DateOrder::DayMonthYear, '/'}; }
};

} // namespace tremor
