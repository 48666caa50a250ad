#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tremor {

// A cookie of a web session with what decides about the requests that carry it (RFC 6265).
struct HttpCookie {
    std::string name;
    std::string value;
    std::string domain;        // "example.org", without a "." in front
    bool ofSubdomains = false; // also for hosts below the domain
    std::string path = "/";
    bool secure = false;      // for https alone
    std::int64_t expires = 0; // seconds since 1970; 0: at the end of the session
};

using HttpCookies = std::vector<HttpCookie>;

} // namespace tremor
