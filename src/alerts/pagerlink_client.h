#pragma once

#include "core/civil_time.h"
#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The client of Pagerlink, a small messaging server on the local network that speaks plain text
// datagrams (UDP), one byte a character:
//
//     to the server    list                                   asks who is connected
//     from the server  users anna bruno                       one word in front, then the names
//     to the server    formMAGNITUDE = 4.510:15:02\x02anna    a notice: value, local time, 0x02,
//     name
namespace tremor {

// A UDP socket that talks to one server at a time. Nothing here waits and nothing fails: datagrams
// can get lost, and a server that is not there is silent.
class DatagramSocket {
  public:
    virtual ~DatagramSocket() = default;

    // Hands one datagram over. `host` is an address or a name; while a name is looked up, its
    // datagrams are kept in their order.
    virtual void send(std::string_view host, std::uint16_t port, std::string_view bytes) = 0;

    // The oldest datagram that waits, or nothing. Only what the host last sent to has sent counts.
    virtual std::optional<std::string> receive() = 0;

    // Called from the event loop when a datagram may wait; again for each further one. To be set
    // once.
    virtual void setDataArrival(std::function<void()> handler) = 0;
};

// The request of the user list.
inline constexpr std::string_view pagerlinkListRequest = "list";

// The text of a setting as a port; 0 leads to no server. Error 13 when it is no number, 6 beyond
// 32 bits, 5 outside 0 to 65535.
std::uint16_t pagerlinkPort(std::string_view text, const NumberLocale& locale);

// UTF-8 text to the bytes of a datagram (Latin-1; "?" for any other character), and back.
std::string pagerlinkBytes(std::string_view text);
std::string pagerlinkText(std::string_view bytes);

// The names in a reply to "list": all words but the first. A blank at the end or a doubled one
// gives an empty name.
std::vector<std::string_view> pagerlinkUsers(std::string_view reply);

// What the client works with; what is referred to outlives it.
struct PagerlinkContext {
    const AppSettings& settings;
    const Session& session;
    NumberLocale locale;
    Database& database;
    Clock& clock;
    Log& log;
    ErrorReport& errors;
    DatagramSocket& udpClient;
};

// Sends the newest event to the users of Pagerlink.
class PagerlinkClient {
  public:
    explicit PagerlinkClient(const PagerlinkContext& context) : context_(context) {}

    // Five notices about the newest event for each user; nothing while `enablePagerlink` is not 1.
    // With `PGLAllOrSelected` at 1 the users are those of `PGLselectedUsers` and nobody is asked.
    // Otherwise the server is asked ten times a second and messages are pumped meanwhile; after
    // 100 requests (about 10 s) "Connection failed to Pagerlink." is logged and nothing is sent,
    // even when the hundredth was answered. A lone user on the server gets nothing.
    //
    // A port that is no number is one run-time error for the whole dispatch. A program that is
    // closing ends the wait and sends nothing.
    void generateMsgPagerlink();

    // Sends one datagram to `PGLserver` and gives back what has come in by then: one datagram, or
    // the empty text. The answer to a request therefore shows up in a later call. Raises the errors
    // of pagerlinkPort.
    std::string sendPagerlinkRequest(std::string_view text);

  private:
    void sendNewestEvent();
    std::vector<std::string> recipients();
    // The server's reply to "list", or nothing after a failure, which has been logged.
    std::optional<std::string> askForUsers();

    PagerlinkContext context_;
};

} // namespace tremor
