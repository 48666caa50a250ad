#include "ingest/internet_probe.h"
#include "support/fakes.h"
#include "support/loopback_server.h"
#include "support/raw_server.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>

namespace tremor::testing {
namespace {

using namespace std::chrono_literals;

class InternetProbeTest : public ::testing::Test {
  protected:
    InternetProbeTest() { ::setenv("no_proxy", "127.0.0.1,localhost", 1); }

    static std::string at(int port, const std::string& scheme = "http") {
        return scheme + "://127.0.0.1:" + std::to_string(port);
    }
    bool probe(const std::string& address) {
        return InternetProbe(address, clock, session).IsInternetUp();
    }
    // Real time stands behind the clock, so that a limit is reached.
    void runInRealTime() {
        clock.onPump = [this, last = std::chrono::steady_clock::now()]() mutable {
            const auto now = std::chrono::steady_clock::now();
            const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(now - last);
            clock.advance(passed);
            last += passed;
        };
    }

    FakeClock clock;
    Session session;
};

TEST_F(InternetProbeTest, IsUpWhenAConnectionStandsAndSendsNothing) {
    std::atomic<bool> connected = false;
    std::string received;
    {
        const RawServer server([&](const RawConnection& client) {
            connected = true;
            received = client.readHead();
        });
        EXPECT_TRUE(probe(at(server.port())));
        EXPECT_TRUE(session.InternetUp);
        for (int i = 0; i < 500 && !connected; ++i)
            std::this_thread::sleep_for(10ms);
    }
    EXPECT_TRUE(connected);
    EXPECT_EQ(received, "");
}

TEST_F(InternetProbeTest, AsksOfHttpsTheConnectionOnly) {
    const RawServer server([](const RawConnection& client) { client.stall(); });
    EXPECT_TRUE(probe(at(server.port(), "https")));
}

TEST_F(InternetProbeTest, IsDownWhenTheConnectionIsRefused) {
    session.InternetUp = true;
    EXPECT_FALSE(probe(at(unusedPort())));
    EXPECT_FALSE(session.InternetUp);
}

TEST_F(InternetProbeTest, IsDownForAnAddressThatIsNone) {
    for (const std::string address : {"", "http://", "nonsense", "http://127.0.0.1:x", "://",
                                      "http://no-such-host.invalid", "gopher7://x"}) {
        session.InternetUp = true;
        runInRealTime();
        EXPECT_FALSE(probe(address)) << address;
        EXPECT_FALSE(session.InternetUp) << address;
    }
}

TEST_F(InternetProbeTest, GivesUpAfterItsLimitAndPumpsMeanwhile) {
    const SilentPort silent;
    clock.onPump = [this] { clock.advance(20ms); }; // as long as a turn waits
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(InternetProbe(at(silent.port()), clock, session, 500ms).IsInternetUp());
    EXPECT_GE(std::chrono::steady_clock::now() - start, 400ms); // it does wait
    EXPECT_EQ(clock.pumps, 25);
}

TEST_F(InternetProbeTest, TakesFiveSecondsAtMostUnlessToldOtherwise) {
    const SilentPort silent;
    clock.onPump = [this] { clock.advance(1s); };
    EXPECT_FALSE(probe(at(silent.port())));
    EXPECT_EQ(clock.pumps, 5);
}

TEST_F(InternetProbeTest, CountsAConnectionThatCameUpDuringALongMessageHandler) {
    const RawServer server([](const RawConnection& client) { client.stall(); });
    clock.onPump = [this] { clock.advance(60s); };
    EXPECT_TRUE(probe(at(server.port())));
}

TEST_F(InternetProbeTest, EndsAtOnceWhenTheProgramCloses) {
    const SilentPort silent;
    session.InternetUp = true;
    clock.onPump = [this] { session.Closing = true; };
    EXPECT_FALSE(probe(at(silent.port())));
    EXPECT_EQ(clock.pumps, 1);
    EXPECT_FALSE(session.InternetUp);
}

TEST_F(InternetProbeTest, NeverRunsTwiceAtOnceAndGivesANestedCallTheLastResult) {
    const SilentPort silent;
    InternetProbe outer(at(silent.port()), clock, session, 100ms);
    for (const bool known : {true, false}) {
        session.InternetUp = known;
        int nestedCalls = 0;
        clock.onPump = [&] {
            ++nestedCalls;
            const int pumps = clock.pumps;
            EXPECT_EQ(outer.IsInternetUp(), known);
            EXPECT_EQ(clock.pumps, pumps);
            clock.advance(60ms);
        };
        EXPECT_FALSE(outer.IsInternetUp());
        EXPECT_EQ(nestedCalls, 2);
    }
    const LoopbackServer server([](const LoopbackRequest&) { return LoopbackAnswer{}; });
    clock.onPump = nullptr;
    EXPECT_TRUE(probe(at(server.port())));
}

} // namespace
} // namespace tremor::testing
