#pragma once

#include "core/descriptor.h"
#include "practice_feeds/practice_service.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace tremor::practice {

// What the server does in place of its good answer.
enum class PagerlinkFault {
    None,
    Silent,   // hears everything and says nothing
    Refusing, // nobody listens on the port: the system answers "port unreachable"
    Garbage,  // bytes that are no list of users
    Foreign,  // the right answer from another address, 127.0.0.2
    Late,     // the right answer after two seconds
};

// "silent", "refusing", "garbage", "foreign", "late", "none"; nothing for another word.
std::optional<PagerlinkFault> pagerlinkFaultFromText(std::string_view kind);

// Stands in for a Pagerlink server on a UDP port of 127.0.0.1: answers "list" with
// "users anna bruno carla" and keeps every datagram. Calls come from several threads. Control
// requests:
//   /practice/pagerlink                   "PORT" and the datagrams so far, one a line; what is no
//                                         printable ASCII and "\" as "\x02"
//   /practice/pagerlink/fault?kind=KIND   see above; until the next one
//   /practice/pagerlink/users?names=A%20B who is connected from now on
//   /practice/pagerlink/clear             forgets the datagrams
class PagerlinkService {
  public:
    // Port 0 takes any free one. Throws std::runtime_error when the port cannot be had.
    explicit PagerlinkService(int port);
    ~PagerlinkService();
    PagerlinkService(const PagerlinkService&) = delete;
    PagerlinkService& operator=(const PagerlinkService&) = delete;

    int port() const { return port_; }

    std::vector<std::string> paths() const;
    Answer answer(const Request& request);

    void setFault(PagerlinkFault fault);
    void setUsers(std::string names); // separated by blanks
    std::vector<std::string> datagrams();

  private:
    void listen(std::unique_ptr<Descriptor> socket); // null while refusing
    void hear(const Descriptor& socket);

    std::atomic<bool> ending_ = false;
    std::atomic<PagerlinkFault> fault_ = PagerlinkFault::None;
    std::mutex mutex_; // of the two below
    std::string users_ = "anna bruno carla";
    std::vector<std::string> datagrams_;
    int port_ = 0;
    std::thread thread_;
};

} // namespace tremor::practice
