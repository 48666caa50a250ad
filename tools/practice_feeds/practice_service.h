#pragma once

#include "practice_feeds/event_wish.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::practice {

// A request as a service sees it: path and decoded query, for example "/fdsnws/event/1/query" and
// {"format": "text"}.
struct Request {
    std::string path;
    std::map<std::string, std::string> query;

    // The value of a key, or nothing (null) when the request has none.
    const std::string* find(const std::string& key) const {
        const auto entry = query.find(key);
        return entry == query.end() ? nullptr : &entry->second;
    }

    // The value of a key; empty when the request has none.
    std::string value(const std::string& key) const {
        const std::string* found = find(key);
        return found == nullptr ? std::string() : *found;
    }
};

struct Answer {
    int status = 200;
    std::string body = {};
    std::string contentType = "text/plain;charset=UTF-8";
};

// Whatever has events. Calls come from several threads.
class EventSource {
  public:
    virtual ~EventSource() = default;

    virtual std::string_view name() const = 0; // "usgs", as control requests call it
    // Adds one event now; returns its line, or the file that was written.
    virtual std::string addEvent(const EventWish& wish) = 0;
};

// One remote service that the practice server stands in for.
class PracticeService : public EventSource {
  public:
    // The paths that the service answers, each exactly.
    virtual std::vector<std::string> paths() const = 0;
    virtual Answer answer(const Request& request) = 0;
    // The whole catalogue at this moment.
    virtual std::string served() = 0;
};

// A program on this machine that locates events and leaves its findings in a folder.
class LocalLocator : public EventSource {
  public:
    // Writes what has come due.
    virtual void advance() = 0;
};

} // namespace tremor::practice
