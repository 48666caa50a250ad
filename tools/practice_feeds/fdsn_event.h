#pragma once

#include "practice_feeds/event_wish.h"

#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Events in the text format of an FDSN event service
// (https://www.fdsn.org/webservices/fdsnws-event-1.2.pdf), fields separated by "|".
namespace tremor::practice {

using UtcTime = std::chrono::sys_time<std::chrono::microseconds>;

// "2026-06-15T03:00:06.430000", "2026-06-15 03:00:06", "2026-06-15": the time of day and up to six
// decimals may be missing. Nothing for any other text.
std::optional<UtcTime> parseUtc(std::string_view text);

// "2026-06-15T03:00:06.430000"
std::string formatUtc(UtcTime time);

// Whole seconds as fmt writes dates, UTC.
std::tm calendarTime(UtcTime time);

// One line, for example
// "46224912|2026-06-15T03:00:06.430000|38.9802|15.3048|268.5|SURVEY-INGV||||ML|3.3|--|Tirreno
// Meridionale [Mare]|earthquake".
struct FdsnEvent {
    std::string id;
    UtcTime time;
    double latitude = 0;  // degrees
    double longitude = 0; // degrees
    double magnitude = 0;
    std::string rest; // everything behind the time, from its "|" on, byte for byte

    std::string line() const; // without a line feed

    void moveTo(const Epicentre& epicentre);

    // Fields by their place in the line.
    double depth() const;                   // km
    std::string_view magnitudeType() const; // "ML"
    std::string_view place() const;         // "Tirreno Meridionale [Mare]"
};

// Throws std::runtime_error for what is no such line.
FdsnEvent parseFdsnEvent(std::string_view line);

// A whole document: the "#" line and its events in the order of the file.
struct FdsnDocument {
    std::string header; // "#EventID|Time|…" without the line feed
    std::vector<FdsnEvent> events;

    std::string text() const; // every line with a line feed
};

// Throws std::runtime_error, naming the line, for anything that is no such document; an empty
// document too.
FdsnDocument parseFdsnDocument(std::string_view text);

} // namespace tremor::practice
