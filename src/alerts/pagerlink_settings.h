#pragma once

#include "alerts/pagerlink_client.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// A user of the server as the window lists him.
struct PagerlinkUser {
    std::string name;
    bool ticked = false;
};

// What the window asks of the server: whether it is there, and who is connected. The waits pump
// messages, so the window may be closed inside them; its owner then calls abandon() and keeps the
// object until the wait has returned.
class PagerlinkSettings {
  public:
    enum class Check { Works, Failed, Abandoned };

    // The references outlive the object.
    PagerlinkSettings(std::unique_ptr<DatagramSocket> winsock, Prompts& prompts, Clock& clock,
                      const Session& session);

    // Where the requests go from now on.
    void setServer(std::string_view host, std::uint16_t port);

    // One request, then a wait of at most 31 turns of 100 ms; `showTurn` gets the number of each.
    // An answer that came in before counts; one in the thirtieth turn or later does not.
    Check checkIfWork(const std::function<void(std::int32_t)>& showTurn);

    // Requests the list ten times a second, for at most some 15 seconds, unless an answer is there
    // already. Users whose names stand in `selectedUsers` ("anna|bruno") are ticked. False without
    // an answer, which the operator has been told, and when the wait was abandoned: then the
    // list of before stays.
    bool fillUsers(std::string_view selectedUsers);

    const std::vector<PagerlinkUser>& users() const { return users_; }

    // Turns the tick of a user over and makes the selection anew. Nothing for a row beyond the end.
    void toggle(std::size_t row);

    // The names ticked, joined by "|". Empty until the first toggle, whatever fillUsers has ticked.
    const std::string& selection() const { return selection_; }

    void abandon() { abandoned_ = true; }

  private:
    // False when the waits have to end.
    bool waitOneTurn();
    void DataArrival();
    bool waitForReply();

    std::unique_ptr<DatagramSocket> winsock_;
    Prompts& prompts_;
    Clock& clock_;
    const Session& session_;
    std::string host_;
    std::uint16_t port_ = 0;

    std::int32_t waitCounter_ = 0;
    bool replyArrived_ = false;
    std::string reply_;
    std::string selection_;
    std::vector<PagerlinkUser> users_;
    bool abandoned_ = false;
};

} // namespace tremor
