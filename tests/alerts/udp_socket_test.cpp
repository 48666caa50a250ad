#include "alerts/udp_socket.h"
#include "core/qt_clock.h"
#include "database/catalogue_support.h"
#include "practice_feeds/pagerlink_service.h"

#include <chrono>
#include <string>
#include <vector>

// Real datagrams on loopback, from the practice server.
namespace tremor {
namespace {

using namespace std::chrono_literals;
using practice::PagerlinkFault;
using practice::PagerlinkService;
using Texts = std::vector<std::string>;

class UdpSocketTest : public ::testing::Test {
  protected:
    std::uint16_t port() const { return static_cast<std::uint16_t>(server.port()); }

    // What comes in, at the latest at the limit.
    std::optional<std::string> awaitDatagram(std::chrono::milliseconds limit = 20s) {
        const auto end = clock.steady() + limit;
        while (clock.steady() < end) {
            clock.sleep(10ms);
            if (std::optional<std::string> bytes = socket.receive())
                return bytes;
        }
        return std::nullopt;
    }
    Texts awaitHeard(std::size_t count) {
        const auto end = clock.steady() + 20s;
        while (server.datagrams().size() < count && clock.steady() < end)
            clock.sleep(10ms);
        return server.datagrams();
    }

    Session session;
    QtClock clock{session};
    PagerlinkService server{0};
    UdpSocket socket;
};

TEST_F(UdpSocketTest, ReceivesNothingBeforeItHasSent) {
    EXPECT_EQ(socket.receive(), std::nullopt);
}

TEST_F(UdpSocketTest, SendsBytesAndReceivesTheAnswer) {
    socket.send("127.0.0.1", port(), "list");
    EXPECT_EQ(awaitDatagram(), "users anna bruno carla");
    const std::string odd("a\0\x02\xFF", 4);
    socket.send("127.0.0.1", port(), odd);
    EXPECT_EQ(awaitHeard(2), (Texts{"list", odd}));
}

TEST_F(UdpSocketTest, GivesOneDatagramACallTheOldestFirst) {
    socket.send("127.0.0.1", port(), "list");
    awaitHeard(1);
    server.setUsers("dora");
    socket.send("127.0.0.1", port(), "list");
    awaitHeard(2);
    clock.sleep(50ms);
    EXPECT_EQ(socket.receive(), "users anna bruno carla");
    EXPECT_EQ(socket.receive(), "users dora");
    EXPECT_EQ(socket.receive(), std::nullopt);
}

TEST_F(UdpSocketTest, KeepsDatagramsInOrderWhileANameIsLookedUp) {
    for (const char* text : {"1", "2", "3"})
        socket.send("localhost", port(), text);
    EXPECT_EQ(awaitHeard(3), (Texts{"1", "2", "3"}));
    socket.send("localhost", port(), "list");
    EXPECT_EQ(awaitDatagram(), "users anna bruno carla");
}

TEST_F(UdpSocketTest, DropsWhatWasMeantForAnotherServer) {
    socket.send("localhost", port(), "lost");
    socket.send("127.0.0.1", port(), "kept");
    EXPECT_EQ(awaitHeard(1), Texts{"kept"});
    clock.sleep(100ms);
    EXPECT_EQ(server.datagrams(), Texts{"kept"});
}

TEST_F(UdpSocketTest, HearsItsServerOnly) {
    server.setFault(PagerlinkFault::Foreign);
    socket.send("127.0.0.1", port(), "list");
    EXPECT_EQ(awaitDatagram(300ms), std::nullopt);
    server.setFault(PagerlinkFault::None);
    socket.send("127.0.0.1", port(), "list");
    EXPECT_EQ(awaitDatagram(), "users anna bruno carla");
}

TEST_F(UdpSocketTest, CallsBackForEveryDatagramStrangersAside) {
    Texts heard;
    socket.setDataArrival([&] {
        if (const auto bytes = socket.receive())
            heard.push_back(*bytes);
    });
    for (int i = 0; i < 5; ++i)
        socket.send("127.0.0.1", port(), "list");
    awaitHeard(5);
    clock.sleep(100ms);
    EXPECT_EQ(heard, Texts(5, "users anna bruno carla"));
    server.setFault(PagerlinkFault::Foreign);
    socket.send("127.0.0.1", port(), "list");
    awaitHeard(6);
    server.setFault(PagerlinkFault::Garbage);
    clock.sleep(50ms);
    socket.send("127.0.0.1", port(), "list");
    awaitHeard(7);
    clock.sleep(100ms);
    ASSERT_EQ(heard.size(), 6u);
    EXPECT_EQ(heard.back(), std::string("\0\xff\x02\r\n\x80", 6));
}

TEST_F(UdpSocketTest, LivesOnWhenNobodyListens) {
    server.setFault(PagerlinkFault::Refusing);
    clock.sleep(100ms);
    for (int i = 0; i < 3; ++i) {
        socket.send("127.0.0.1", port(), "list");
        EXPECT_EQ(awaitDatagram(50ms), std::nullopt);
    }
    server.setFault(PagerlinkFault::None);
    clock.sleep(100ms);
    socket.send("127.0.0.1", port(), "list");
    EXPECT_EQ(awaitDatagram(), "users anna bruno carla");
}

TEST_F(UdpSocketTest, SendsNowhereWithoutAHostAPortOrAnAddress) {
    for (const char* host : {"", "  ", "no-such-host.invalid", "..", "a\nb"})
        socket.send(host, port(), "list");
    socket.send("127.0.0.1", 0, "list");
    socket.send("127.0.0.1", port(), std::string(70000, 'x')); // more than a datagram holds
    clock.sleep(300ms);
    EXPECT_TRUE(server.datagrams().empty());
}

TEST_F(UdpSocketTest, CanGoWhileANameIsLookedUp) {
    {
        UdpSocket brief;
        brief.send("no-such-host.invalid", port(), "list");
    }
    clock.sleep(100ms);
    EXPECT_TRUE(server.datagrams().empty());
}

// The whole way of a dispatch.
class PagerlinkOverUdp : public testing::CatalogueTest {
  protected:
    PagerlinkOverUdp() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        EXPECT_EQ(database.slsExe("insert into Events (UTC, Latitude, Longitude, Depth, Magnitude) "
                                  "values ('2021-01-14 05:45:26','42.7','13.23','10','4.5')"),
                  0);
        settings.enablePagerlink = 1;
        settings.PGLserver = "127.0.0.1";
        settings.PGLport = std::to_string(server.port());
    }

    Texts notices() {
        Texts all;
        for (const std::string& bytes : server.datagrams()) {
            if (bytes != "list")
                all.push_back(bytes);
        }
        return all;
    }
    Texts awaitNotices(std::size_t count) {
        for (int i = 0; i < 2000 && notices().size() < count; ++i)
            clock.sleep(10ms);
        return notices();
    }

    PagerlinkService server{0};
    QtClock clock{session};
    UdpSocket socket;
    PagerlinkClient client{
        {settings, session, NumberLocale::comma(), database, clock, log, harness.errors, socket}};
};

TEST_F(PagerlinkOverUdp, SendsFiveNoticesToEachUserOfTheServer) {
    client.generateMsgPagerlink();
    const Texts heard = awaitNotices(15);
    ASSERT_EQ(heard.size(), 15u);
    EXPECT_TRUE(heard[0].starts_with("formNEW EARTQUAKE = 2021-01-14 05:45:26"));
    EXPECT_TRUE(heard[1].starts_with("formMAGNITUDE = 4.5"));
    EXPECT_TRUE(heard[1].ends_with("\x02"
                                   "anna"));
    EXPECT_EQ(heard[1].size(), std::string("formMAGNITUDE = 4.510:15:02\x02"
                                           "anna")
                                   .size());
    EXPECT_TRUE(heard[14].ends_with("\x02"
                                    "carla"));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PagerlinkOverUdp, SendsTheNoticesOfAnImmediateDispatchToANamedServer) {
    settings.PGLserver = "localhost";
    settings.PGLAllOrSelected = 1;
    settings.PGLselectedUsers = "anna|bruno";
    client.generateMsgPagerlink();
    EXPECT_EQ(awaitNotices(10).size(), 10u);
}

TEST_F(PagerlinkOverUdp, GivesUpOnASilentServerWhileTheWindowLives) {
    server.setFault(PagerlinkFault::Silent);
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++ticks; });
    timer.start(100);
    const auto start = clock.steady();
    client.generateMsgPagerlink();
    EXPECT_GE(clock.steady() - start, 10s);
    EXPECT_LT(clock.steady() - start, 60s);
    EXPECT_GT(ticks, 20);
    EXPECT_EQ(log.messages, Texts{"Connection failed to Pagerlink."});
    EXPECT_TRUE(notices().empty());
}

TEST_F(PagerlinkOverUdp, TakesTheListOfALateServer) {
    server.setFault(PagerlinkFault::Late);
    client.generateMsgPagerlink();
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PagerlinkOverUdp, SendsNothingAfterGarbage) {
    server.setFault(PagerlinkFault::Garbage);
    client.generateMsgPagerlink();
    clock.sleep(100ms);
    EXPECT_TRUE(notices().empty());
    EXPECT_TRUE(log.messages.empty());
}

} // namespace
} // namespace tremor
