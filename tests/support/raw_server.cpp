#include "support/raw_server.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace tremor::testing {

namespace {

constexpr int pollMilliseconds = 10;

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int boundSocket(int& port) {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t length = sizeof(address);
    if (descriptor < 0 || ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("no loopback socket");
    port = ntohs(address.sin_port);
    return descriptor;
}

bool readable(int descriptor, int milliseconds) {
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, milliseconds) > 0;
}

} // namespace

std::string RawConnection::readHead() const {
    std::string head;
    while (!ending_ && head.find("\r\n\r\n") == std::string::npos) {
        if (!readable(descriptor_, pollMilliseconds))
            continue;
        char buffer[4096];
        const ssize_t count = ::recv(descriptor_, buffer, sizeof(buffer), 0);
        if (count <= 0)
            break;
        head.append(buffer, static_cast<std::size_t>(count));
    }
    return head;
}

bool RawConnection::send(std::string_view bytes) const {
    while (!bytes.empty() && !ending_) {
        pollfd entry{descriptor_, POLLOUT, 0};
        if (::poll(&entry, 1, pollMilliseconds) == 0)
            continue;
        const ssize_t count =
            ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return !ending_;
}

void RawConnection::stall() const {
    char byte = 0;
    while (!ending_)
        if (readable(descriptor_, pollMilliseconds) && ::recv(descriptor_, &byte, 1, 0) <= 0)
            return;
}

bool RawConnection::pause(std::chrono::milliseconds duration) const {
    const auto end = std::chrono::steady_clock::now() + duration;
    while (!ending_ && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return !ending_;
}

RawServer::RawServer(Talk talk) : talk_(std::move(talk)), listener_(boundSocket(port_)) {
    ::listen(listener_, 16);
    thread_ = std::thread([this] { serve(); });
}

RawServer::~RawServer() {
    ending_ = true;
    thread_.join();
    ::close(listener_);
}

std::string RawServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

void RawServer::serve() {
    while (!ending_) {
        if (!readable(listener_, pollMilliseconds))
            continue;
        const int descriptor = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            continue;
        talk_(RawConnection(descriptor, ending_));
        ::close(descriptor);
    }
}

int unusedPort() {
    int port = 0;
    ::close(boundSocket(port));
    return port;
}

SilentPort::SilentPort() : listener_(boundSocket(port_)) {
    ::listen(listener_, 0);
    const sockaddr_in address = loopback(port_);
    for (int& client : clients_) {
        client = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        // Succeeds for the first one or two and hangs for the others, which is what is wanted.
        static_cast<void>(
            ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    }
}

SilentPort::~SilentPort() {
    for (const int client : clients_)
        ::close(client);
    ::close(listener_);
}

} // namespace tremor::testing
