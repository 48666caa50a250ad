#include "practice_feeds/pagerlink_service.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view path = "/practice/pagerlink";
constexpr int turnMs = 20; // how soon a change of the fault and the end are seen
constexpr auto lateness = 2s;

constexpr auto faultWords = std::to_array<std::pair<std::string_view, PagerlinkFault>>({
    {"silent", PagerlinkFault::Silent},
    {"refusing", PagerlinkFault::Refusing},
    {"garbage", PagerlinkFault::Garbage},
    {"foreign", PagerlinkFault::Foreign},
    {"late", PagerlinkFault::Late},
    {"none", PagerlinkFault::None},
});

sockaddr_in loopback(const char* address, int port) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    result.sin_port = htons(static_cast<std::uint16_t>(port));
    ::inet_pton(AF_INET, address, &result.sin_addr);
    return result;
}

// A bound socket; null when the port cannot be had.
std::unique_ptr<Descriptor> boundSocket(const char* address, int port) {
    auto socket = std::make_unique<Descriptor>(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_in place = loopback(address, port);
    if (!socket->isOpen() ||
        ::bind(socket->number(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0)
        return nullptr;
    return socket;
}

int portOf(const Descriptor& socket) {
    sockaddr_in place{};
    socklen_t size = sizeof place;
    ::getsockname(socket.number(), reinterpret_cast<sockaddr*>(&place), &size);
    return ntohs(place.sin_port);
}

void sendTo(const Descriptor& socket, const sockaddr_in& receiver, std::string_view bytes) {
    ::sendto(socket.number(), bytes.data(), bytes.size(), 0,
             reinterpret_cast<const sockaddr*>(&receiver), sizeof receiver);
}

std::string printable(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        if (c >= ' ' && c <= '~' && c != '\\')
            text += c;
        else
            text += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
    }
    return text;
}

} // namespace

std::optional<PagerlinkFault> pagerlinkFaultFromText(std::string_view kind) {
    for (const auto& [word, fault] : faultWords) {
        if (word == kind)
            return fault;
    }
    return std::nullopt;
}

PagerlinkService::PagerlinkService(int port) {
    auto socket = boundSocket("127.0.0.1", port);
    if (!socket)
        throw std::runtime_error(fmt::format("cannot bind UDP port 127.0.0.1:{}", port));
    port_ = portOf(*socket);
    thread_ =
        std::thread([this, bound = std::move(socket)]() mutable { listen(std::move(bound)); });
}

PagerlinkService::~PagerlinkService() {
    ending_ = true;
    thread_.join();
}

void PagerlinkService::listen(std::unique_ptr<Descriptor> socket) {
    while (!ending_) {
        if (fault_ == PagerlinkFault::Refusing)
            socket.reset();
        else if (!socket)
            socket = boundSocket("127.0.0.1", port_);
        pollfd ready{socket ? socket->number() : -1, POLLIN, 0}; // -1 lets poll just wait
        if (::poll(&ready, 1, turnMs) > 0)
            hear(*socket);
    }
}

void PagerlinkService::hear(const Descriptor& socket) {
    std::string bytes(65536, '\0');
    sockaddr_in sender{};
    socklen_t size = sizeof sender;
    const ssize_t length = ::recvfrom(socket.number(), bytes.data(), bytes.size(), 0,
                                      reinterpret_cast<sockaddr*>(&sender), &size);
    if (length < 0)
        return;
    bytes.resize(static_cast<std::size_t>(length));
    std::string reply;
    {
        const std::lock_guard lock(mutex_);
        datagrams_.push_back(bytes);
        reply = "users " + users_;
    }
    const PagerlinkFault fault = fault_;
    if (bytes != "list" || fault == PagerlinkFault::Silent)
        return;
    if (fault == PagerlinkFault::Garbage)
        reply = std::string("\0\xff\x02\r\n\x80", 6);
    if (fault == PagerlinkFault::Late)
        std::this_thread::sleep_for(lateness);
    if (fault != PagerlinkFault::Foreign)
        sendTo(socket, sender, reply);
    else if (const auto stranger = boundSocket("127.0.0.2", 0))
        sendTo(*stranger, sender, reply);
}

std::vector<std::string> PagerlinkService::paths() const {
    const std::string root(path);
    return {root, root + "/fault", root + "/users", root + "/clear"};
}

Answer PagerlinkService::answer(const Request& request) {
    const std::string_view action = std::string_view(request.path).substr(path.size());
    if (action == "/fault") {
        const auto fault = pagerlinkFaultFromText(request.value("kind"));
        if (!fault)
            return {400, "kind is silent, refusing, garbage, foreign, late or none\n"};
        setFault(*fault);
    } else if (action == "/users") {
        setUsers(request.value("names"));
    } else if (action == "/clear") {
        const std::lock_guard lock(mutex_);
        datagrams_.clear();
    } else {
        std::string body = fmt::format("{}\n", port_);
        for (const std::string& datagram : datagrams())
            body += printable(datagram) + "\n";
        return {200, body};
    }
    return {200, "ok\n"};
}

void PagerlinkService::setFault(PagerlinkFault fault) {
    fault_ = fault;
}

void PagerlinkService::setUsers(std::string names) {
    const std::lock_guard lock(mutex_);
    users_ = std::move(names);
}

std::vector<std::string> PagerlinkService::datagrams() {
    const std::lock_guard lock(mutex_);
    return datagrams_;
}

} // namespace tremor::practice
