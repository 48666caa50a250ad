#pragma once

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
};

struct Answer {
    int status = 200;
    std::string body = {};
    std::string contentType = "text/plain;charset=UTF-8";
};

// One remote service that the practice server stands in for. Calls come from several threads.
class PracticeService {
  public:
    virtual ~PracticeService() = default;

    // The paths that the service answers, each exactly.
    virtual std::vector<std::string> paths() const = 0;
    virtual Answer answer(const Request& request) = 0;
};

} // namespace tremor::practice
