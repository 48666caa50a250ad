#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace tremor::testing {

// A host that an Internet probe can reach: a socket that listens on loopback.
class ReachableHost {
  public:
    ReachableHost() : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* generic = reinterpret_cast<sockaddr*>(&address);
        if (::bind(socket_, generic, size) != 0 || ::listen(socket_, 64) != 0 ||
            ::getsockname(socket_, generic, &size) != 0)
            throw std::runtime_error("no socket on loopback");
        port_ = ntohs(address.sin_port);
    }
    ~ReachableHost() { ::close(socket_); }
    ReachableHost(const ReachableHost&) = delete;
    ReachableHost& operator=(const ReachableHost&) = delete;

    std::string address() const { return "http://127.0.0.1:" + std::to_string(port_); }

  private:
    int socket_;
    int port_ = 0;
};

} // namespace tremor::testing
