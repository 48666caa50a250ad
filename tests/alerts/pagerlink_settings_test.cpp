#include "alerts/pagerlink_settings.h"
#include "alerts/scripted_socket.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace tremor {
namespace {

using namespace std::chrono_literals;
using Check = PagerlinkSettings::Check;
using Texts = std::vector<std::string>;
using testing::ScriptedSocket;

class PagerlinkSettingsTest : public ::testing::Test {
  protected:
    PagerlinkSettingsTest() { server.setServer("pager.lan", 7000); }

    Check check() {
        return server.checkIfWork([this](std::int32_t turn) { turns.push_back(turn); });
    }
    // Something comes in when the clock has advanced so far.
    void arriveAt(std::chrono::milliseconds time, const std::string& bytes) {
        clock.onPump = [this, time, bytes] {
            if (!arrived && clock.steady() >= time) {
                arrived = true;
                socket->arrive(bytes);
            }
        };
    }
    void expectNoList() {
        prompts.expectBox("Impossible retrieve a list of users, check Settings please.",
                          "TREMORLEDGER", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }
    Texts names() const {
        Texts all;
        for (const PagerlinkUser& user : server.users())
            all.push_back(user.name + (user.ticked ? "*" : ""));
        return all;
    }

    testing::ScriptedPrompts prompts;
    testing::FakeClock clock;
    Session session;
    ScriptedSocket* socket = new ScriptedSocket;
    PagerlinkSettings server{std::unique_ptr<DatagramSocket>(socket), prompts, clock, session};
    std::vector<std::int32_t> turns;
    bool arrived = false;
};

TEST_F(PagerlinkSettingsTest, ChecksWithOneRequestAndCountsItsTurns) {
    arriveAt(300ms, "users anna");
    EXPECT_EQ(check(), Check::Works);
    EXPECT_EQ(socket->sent, (std::vector<ScriptedSocket::Sent>{{"pager.lan", 7000, "list"}}));
    EXPECT_EQ(turns, (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(PagerlinkSettingsTest, GivesACheckUpAfterThreeSeconds) {
    EXPECT_EQ(check(), Check::Failed);
    EXPECT_EQ(turns.size(), 31u);
    EXPECT_EQ(clock.steady(), 3100ms);
    EXPECT_EQ(socket->sent.size(), 1u);
    turns.clear();
    EXPECT_EQ(check(), Check::Failed);
    EXPECT_EQ(turns.size(), 31u) << "the counter begins anew";
}

TEST_F(PagerlinkSettingsTest, CountsAnAnswerInTheThirtiethTurnAsNone) {
    arriveAt(3000ms, "users anna");
    EXPECT_EQ(check(), Check::Failed);
    EXPECT_EQ(turns.size(), 30u);
}

TEST_F(PagerlinkSettingsTest, TakesAnAnswerInTheTurnBefore) {
    arriveAt(2900ms, "users anna");
    EXPECT_EQ(check(), Check::Works);
}

TEST_F(PagerlinkSettingsTest, TakesAnEmptyAnswerForASignOfLife) {
    arriveAt(100ms, "");
    EXPECT_EQ(check(), Check::Works);
}

TEST_F(PagerlinkSettingsTest, AbandonsACheckWhenTheWindowOrTheProgramCloses) {
    clock.onPump = [this] { session.Closing = clock.steady() >= 200ms; };
    EXPECT_EQ(check(), Check::Abandoned);
    EXPECT_EQ(clock.steady(), 200ms);
    clock.onPump = [this] { session.Closing = false, server.abandon(); };
    EXPECT_EQ(check(), Check::Abandoned);
}

TEST_F(PagerlinkSettingsTest, ListsTheUsersAndTicksThoseOfTheSetting) {
    arriveAt(250ms, "users anna bruno Anna carl");
    EXPECT_TRUE(server.fillUsers("carla|anna"));
    EXPECT_EQ(names(), (Texts{"anna*", "bruno", "Anna", "carl"}));
    EXPECT_EQ(socket->sentBytes(), Texts(3, "list"));
    EXPECT_EQ(server.selection(), "") << "only a click fills it";
}

TEST_F(PagerlinkSettingsTest, ReadsABlankInANameAsTheEndOfIt) {
    arriveAt(0ms, "users anna bella bruno");
    EXPECT_TRUE(server.fillUsers("anna bella"));
    EXPECT_EQ(names(), (Texts{"anna", "bella", "bruno"}));
}

TEST_F(PagerlinkSettingsTest, TellsTheOperatorAfterFifteenSecondsWithoutAList) {
    expectNoList();
    EXPECT_FALSE(server.fillUsers(""));
    EXPECT_EQ(clock.steady(), 15100ms);
    EXPECT_EQ(socket->sentBytes(), Texts(151, "list"));
    arriveAt(clock.steady(), "users anna");
    EXPECT_TRUE(server.fillUsers("")) << "the counter begins anew";
}

TEST_F(PagerlinkSettingsTest, FailsWhenTheListComesAtTheLastTurn) {
    arriveAt(15000ms, "users anna");
    expectNoList();
    EXPECT_FALSE(server.fillUsers(""));
    EXPECT_EQ(socket->sent.size(), 150u);
    EXPECT_TRUE(server.users().empty());
}

TEST_F(PagerlinkSettingsTest, UsesTheAnswerOfACheckForTheList) {
    arriveAt(100ms, "users anna bruno");
    EXPECT_EQ(check(), Check::Works);
    EXPECT_TRUE(server.fillUsers(""));
    EXPECT_EQ(names(), (Texts{"anna", "bruno"}));
    EXPECT_EQ(socket->sent.size(), 1u);
    arrived = false;
    arriveAt(200ms, "users carla");
    EXPECT_TRUE(server.fillUsers("")) << "the list is used once";
    EXPECT_EQ(names(), Texts{"carla"});
}

TEST_F(PagerlinkSettingsTest, AbandonsTheListWithoutABox) {
    clock.onPump = [this] { session.WaitCounter = Session::waitCounterClosing; };
    EXPECT_FALSE(server.fillUsers(""));
    session.WaitCounter = 0;
    clock.onPump = [this] { server.abandon(); };
    EXPECT_FALSE(server.fillUsers(""));
}

TEST_F(PagerlinkSettingsTest, JoinsTheTickedNamesAtEveryClick) {
    arriveAt(0ms, "users anna bruno carla");
    ASSERT_TRUE(server.fillUsers("anna"));
    server.toggle(2);
    EXPECT_EQ(server.selection(), "anna|carla");
    server.toggle(0);
    EXPECT_EQ(server.selection(), "carla");
    server.toggle(2);
    EXPECT_EQ(server.selection(), "") << "nothing is left to cut";
    server.toggle(3);
    EXPECT_EQ(names(), (Texts{"anna", "bruno", "carla"}));
}

TEST_F(PagerlinkSettingsTest, ListsGarbageAsTextAndNoUsersForAReplyWithoutABlank) {
    arriveAt(0ms, std::string("\0\xFF\x02 <b>x</b> \xE9|", 15));
    EXPECT_TRUE(server.fillUsers(""));
    EXPECT_EQ(names(), (Texts{"<b>x</b>", "\xC3\xA9|"}));
    arrived = false;
    arriveAt(0ms, "nonsense");
    EXPECT_TRUE(server.fillUsers(""));
    EXPECT_TRUE(server.users().empty());
}

} // namespace
} // namespace tremor
