#pragma once

#include "core/curl_transfer.h"
#include "ingest/http_cookie.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tremor {

// Limits of a transfer. They bound every wait on a server.
struct DownloadLimits {
    int connectSeconds = 30; // until the connection stands
    int stallSeconds = 60;   // below stallBytesPerSecond for this long: failed
    int stallBytesPerSecond = 10;
    int totalSeconds = 3600;                         // the whole transfer
    std::int64_t maximumBytes = 200LL * 1024 * 1024; // of the body
    int maximumRedirects = 10;
    std::string certificateAuthorityFile; // additional authority; empty: the system's only
};

// One HTTP GET that its owner drives turn by turn: no call blocks for longer than a turn, and none
// calls back into the program, so that the owner may let window messages run between turns.
class HttpTransfer {
  public:
    // `url` as for percentEncodeRefused. Nothing is sent before the first turn. Of `cookies` each
    // request, redirected ones included, carries those that are its host's and its path's; what
    // the servers set is forgotten with this object.
    HttpTransfer(std::string_view url, const DownloadLimits& limits,
                 const HttpCookies& cookies = {});
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    // False when libcurl gave no session; the transfer is of no use then.
    bool started() const { return started_; }

    // Sends and receives what the network allows now; returns at once.
    void advance() { transfer_.advance(); }

    // Waits until there is something to advance with, one turn at most.
    void waitForTraffic() { transfer_.waitForTraffic(); }

    // The head of the final answer is there (redirects have been followed).
    bool answered() const { return answered_; }
    // Nothing more will come.
    bool finished() const { return transfer_.finished(); }
    // It ended before the whole answer was there, or the body is over the limit. libcurl takes a
    // connection that closes inside the head for an empty answer.
    bool failed() const {
        return transfer_.finished() && (transfer_.result() != CURLE_OK || !answered_);
    }

    int status() const;                 // of the answer, for example 200
    std::int64_t contentLength() const; // announced bytes of the body; 0 when none are announced

    // The part of the body that was received and not yet taken.
    std::size_t available() const { return body_.size() - taken_; }
    // The next bytes of the body, `size` at most; valid until the next turn.
    std::string_view take(std::size_t size);

  private:
    static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self);
    void readHeaderLine(std::string_view line);
    void setOptions(std::string_view url, const DownloadLimits& limits);
    void setCookies(const HttpCookies& cookies);

    CurlHeaders requestHeaders_;
    std::int64_t maximumBytes_;
    std::int64_t received_ = 0;
    std::string body_;
    std::size_t taken_ = 0;
    bool redirect_ = false; // the head that is being read names another location
    bool started_ = false;
    bool answered_ = false;
    CurlTransfer transfer_; // ends before what its callbacks write to
};

// Percent-encodes the bytes that may not stand in an address: blanks and control bytes, bytes
// beyond ASCII and  " < > \ ^ ` { | } . Everything else, "%", "&", "#" and "+" included, is the
// caller's own and stays.
// "http://host/a b|c%0A" gives "http://host/a%20b%7Cc%0A".
std::string percentEncodeRefused(std::string_view url);

} // namespace tremor
