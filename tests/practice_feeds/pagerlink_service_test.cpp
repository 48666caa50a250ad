#include "practice_feeds/pagerlink_service.h"
#include "practice_feeds/practice_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <thread>

namespace tremor::practice {
namespace {

constexpr int answerMilliseconds = 20000; // for an answer that does come

// A connected UDP socket, so that the system tells it of a port that nobody listens on.
class Peer {
  public:
    explicit Peer(int port) {
        sockaddr_in server{};
        server.sin_family = AF_INET;
        server.sin_port = htons(static_cast<std::uint16_t>(port));
        server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(
            ::connect(socket_.number(), reinterpret_cast<const sockaddr*>(&server), sizeof server),
            0);
    }
    void send(std::string_view text) const {
        ::send(socket_.number(), text.data(), text.size(), 0);
    }
    // The next datagram; "refused" or "silence" without one.
    std::string receive(int milliseconds = answerMilliseconds) const {
        pollfd ready{socket_.number(), POLLIN, 0};
        if (::poll(&ready, 1, milliseconds) <= 0)
            return "silence";
        char bytes[1024];
        const ssize_t length = ::recv(socket_.number(), bytes, sizeof bytes, 0);
        if (length < 0)
            return errno == ECONNREFUSED ? "refused" : "error";
        return {bytes, static_cast<std::size_t>(length)};
    }
    std::string ask(int milliseconds = answerMilliseconds) const {
        send("list");
        return receive(milliseconds);
    }

  private:
    Descriptor socket_{::socket(AF_INET, SOCK_DGRAM, 0)};
};

Answer control(PagerlinkService& service, std::string path,
               std::map<std::string, std::string> query = {}) {
    return service.answer({std::move(path), std::move(query)});
}

TEST(PagerlinkService, AnswersTheRequestOfTheListAndKeepsEveryDatagram) {
    PagerlinkService service(0);
    const Peer peer(service.port());
    EXPECT_EQ(peer.ask(), "users anna bruno carla");
    peer.send("formDEPTH = 1010:15:02\x02"
              "anna");
    EXPECT_EQ(peer.receive(100), "silence");
    EXPECT_EQ(service.datagrams(), (std::vector<std::string>{"list", "formDEPTH = 1010:15:02\x02"
                                                                     "anna"}));
    EXPECT_EQ(control(service, "/practice/pagerlink").body,
              std::to_string(service.port()) + "\nlist\nformDEPTH = 1010:15:02\\x02anna\n");
    EXPECT_EQ(control(service, "/practice/pagerlink/clear").body, "ok\n");
    EXPECT_TRUE(service.datagrams().empty());
}

TEST(PagerlinkService, LetsItsUsersBeChanged) {
    PagerlinkService service(0);
    control(service, "/practice/pagerlink/users", {{"names", "dora"}});
    EXPECT_EQ(Peer(service.port()).ask(), "users dora");
}

TEST(PagerlinkService, MeetsItsFaultsUntilItIsHealed) {
    PagerlinkService service(0);
    const Peer peer(service.port());
    const auto with = [&](const std::string& kind, int milliseconds) {
        EXPECT_EQ(control(service, "/practice/pagerlink/fault", {{"kind", kind}}).body, "ok\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        return peer.ask(milliseconds);
    };
    EXPECT_EQ(with("silent", 100), "silence");
    EXPECT_EQ(with("foreign", 100), "silence") << "a connected socket hears its server only";
    EXPECT_EQ(with("garbage", answerMilliseconds), std::string("\0\xff\x02\r\n\x80", 6));
    EXPECT_EQ(with("refusing", answerMilliseconds), "refused");
    EXPECT_EQ(with("late", 500), "silence");
    EXPECT_EQ(peer.receive(), "users anna bruno carla");
    EXPECT_EQ(with("none", answerMilliseconds), "users anna bruno carla");
    EXPECT_EQ(control(service, "/practice/pagerlink/fault", {{"kind", "odd"}}).status, 400);
}

TEST(PagerlinkService, RefusesAPortThatIsTaken) {
    const PagerlinkService first(0);
    EXPECT_THROW(PagerlinkService second(first.port()), std::runtime_error);
}

TEST(PagerlinkService, IsReachedThroughTheControlsOfTheServer) {
    ServerOptions options;
    options.dataFolder = TREMOR_TEST_DATA;
    options.catalogue.fixed = true;
    options.pagerlinkPort = 0;
    const PracticeServer server(options);
    httplib::Client client("127.0.0.1", server.port());
    const auto port = client.Get("/practice/pagerlink");
    ASSERT_TRUE(port);
    EXPECT_EQ(client.Get("/practice/pagerlink/users?names=dora%20emil")->body, "ok\n");
    EXPECT_EQ(Peer(std::stoi(port->body)).ask(), "users dora emil");
    EXPECT_EQ(client.Get("/practice/pagerlink")->body, port->body + "list\n");
    EXPECT_EQ(client.Get("/practice/pagerlink/fault?kind=odd")->status, 400);
}

} // namespace
} // namespace tremor::practice
