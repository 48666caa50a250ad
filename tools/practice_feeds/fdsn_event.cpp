#include "practice_feeds/fdsn_event.h"

#include "core/common_text.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <charconv>
#include <stdexcept>

namespace tremor::practice {

namespace {

constexpr std::size_t fieldCount = 14;

// Reads exactly `digits` digits from the front of `text`.
bool takeNumber(std::string_view& text, std::size_t digits, int& value) {
    if (text.size() < digits)
        return false;
    value = 0;
    for (const char c : text.substr(0, digits)) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + (c - '0');
    }
    text.remove_prefix(digits);
    return true;
}

bool takeOne(std::string_view& text, std::string_view choice) {
    if (text.empty() || choice.find(text.front()) == std::string_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}

// ".43" is 430000.
std::optional<std::chrono::microseconds> takeFraction(std::string_view text) {
    if (text.empty())
        return std::chrono::microseconds(0);
    std::string digits(text.substr(1));
    if (text.front() != '.' || digits.empty() || digits.size() > 6)
        return std::nullopt;
    digits.resize(6, '0');
    std::string_view rest = digits;
    int value = 0;
    if (!takeNumber(rest, 6, value))
        return std::nullopt;
    return std::chrono::microseconds(value);
}

double number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        throw std::runtime_error(fmt::format("\"{}\" is no number", text));
    return value;
}

// A field of the line by its index in the header.
std::string_view fieldOf(const FdsnEvent& event, std::size_t index) {
    constexpr std::size_t fieldsBeforeRest = 1; // its leading "|" makes an empty one more
    return split(event.rest, '|')[index - fieldsBeforeRest];
}

} // namespace

std::optional<UtcTime> parseUtc(std::string_view text) {
    using namespace std::chrono;
    int yearNumber = 0;
    int monthNumber = 0;
    int dayNumber = 0;
    if (!takeNumber(text, 4, yearNumber) || !takeOne(text, "-") ||
        !takeNumber(text, 2, monthNumber) || !takeOne(text, "-") || !takeNumber(text, 2, dayNumber))
        return std::nullopt;
    const year_month_day date = year(yearNumber) / monthNumber / dayNumber;
    if (!date.ok())
        return std::nullopt;
    UtcTime time = sys_days(date);
    if (text.empty())
        return time;
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!takeOne(text, "T ") || !takeNumber(text, 2, hour) || !takeOne(text, ":") ||
        !takeNumber(text, 2, minute) || !takeOne(text, ":") || !takeNumber(text, 2, second) ||
        hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const auto fraction = takeFraction(text);
    if (!fraction)
        return std::nullopt;
    return time + hours(hour) + minutes(minute) + seconds(second) + *fraction;
}

std::string formatUtc(UtcTime time) {
    using namespace std::chrono;
    const auto second = floor<seconds>(time);
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:06}", calendarTime(time), (time - second).count());
}

std::tm calendarTime(UtcTime time) {
    const auto second = std::chrono::floor<std::chrono::seconds>(time);
    return fmt::gmtime(second.time_since_epoch().count());
}

std::string FdsnEvent::line() const {
    return id + "|" + formatUtc(time) + rest;
}

void FdsnEvent::moveTo(const Epicentre& epicentre) {
    const std::vector<std::string_view> fields = split(rest, '|');
    const std::size_t ofDepth = 3 + fields[1].size() + fields[2].size();
    rest = fmt::format("|{}|{}|{}", epicentre.latitude, epicentre.longitude, rest.substr(ofDepth));
    latitude = epicentre.latitude;
    longitude = epicentre.longitude;
}

std::string FdsnDocument::text() const {
    std::string text = header + "\n";
    for (const FdsnEvent& event : events)
        text += event.line() + "\n";
    return text;
}

FdsnEvent parseFdsnEvent(std::string_view line) {
    const std::vector<std::string_view> fields = split(line, '|');
    if (fields.size() != fieldCount)
        throw std::runtime_error(fmt::format("{} fields, not {}", fields.size(), fieldCount));
    const std::optional<UtcTime> time = parseUtc(fields[1]);
    if (!time)
        throw std::runtime_error(fmt::format("\"{}\" is no time", fields[1]));
    FdsnEvent event;
    event.id = fields[0];
    event.time = *time;
    event.latitude = number(fields[2]);
    event.longitude = number(fields[3]);
    event.magnitude = number(fields[10]);
    event.rest = line.substr(fields[0].size() + 1 + fields[1].size());
    return event;
}

double FdsnEvent::depth() const {
    return number(fieldOf(*this, 4));
}

std::string_view FdsnEvent::magnitudeType() const {
    return fieldOf(*this, 9);
}

std::string_view FdsnEvent::place() const {
    return fieldOf(*this, 12);
}

FdsnDocument parseFdsnDocument(std::string_view text) {
    FdsnDocument document;
    int lineNumber = 0;
    for (const std::string_view line : split(text, '\n')) {
        ++lineNumber;
        if (line.empty())
            continue;
        if (line.front() == '#') {
            document.header = line;
            continue;
        }
        try {
            document.events.push_back(parseFdsnEvent(line));
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(fmt::format("line {}: {}", lineNumber, error.what()));
        }
    }
    if (document.header.empty() || document.events.empty())
        throw std::runtime_error("no header line or no events");
    return document;
}

} // namespace tremor::practice
