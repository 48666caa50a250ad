#include "alerts/pagerlink_client.h"
#include "alerts/scripted_socket.h"
#include "database/catalogue_support.h"

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace tremor {
namespace {

using namespace std::chrono_literals;
using testing::ScriptedSocket;
using Flags = std::initializer_list<std::int16_t>;
using Texts = std::vector<std::string>;

const std::string failure = "Connection failed to Pagerlink.";

// An open catalogue with one event; the clock stands at 10:15:02.
class PagerlinkClientTest : public testing::CatalogueTest {
  protected:
    PagerlinkClientTest() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        addEvent("2021-01-14 05:45:26.120", "42.7", "13.23", "10", "4.5");
        clock.setNow(DateTime(std::chrono::local_days(std::chrono::year(2021) / 1 / 14)) + 10h +
                     15min + 2s);
        settings.enablePagerlink = 1;
        settings.PGLserver = "pager.lan";
        settings.PGLport = "7000";
    }

    void addEvent(const std::string& utc, const std::string& lat, const std::string& lon,
                  const std::string& depth, const std::string& magnitude) {
        ASSERT_EQ(database.slsExe("insert into Events (UTC, Latitude, Longitude, Depth, Magnitude) "
                                  "values ('" +
                                  utc + "','" + lat + "','" + lon + "','" + depth + "','" +
                                  magnitude + "')"),
                  0)
            << database.slGetError();
    }
    // The given request is the first that finds an answer waiting.
    void answerAtRequest(int number, const std::string& reply) {
        socket.onSend = [this, number, reply] {
            if (socket.sent.size() == static_cast<std::size_t>(number))
                socket.waiting.push_back(reply);
        };
    }
    void select(const std::string& users) {
        settings.PGLAllOrSelected = 1;
        settings.PGLselectedUsers = users;
    }
    Texts notices() const {
        Texts all;
        for (const std::string& bytes : socket.sentBytes()) {
            if (bytes != "list")
                all.push_back(bytes);
        }
        return all;
    }
    static Texts noticesFor(const std::string& user) {
        return {"formNEW EARTQUAKE = 2021-01-14 05:45:26.12010:15:02\x02" + user,
                "formMAGNITUDE = 4.510:15:02\x02" + user, "formLATITUDE = 42.710:15:02\x02" + user,
                "formLONGITUDE = 13.2310:15:02\x02" + user, "formDEPTH = 10.010:15:02\x02" + user};
    }

    testing::FakeClock clock;
    ScriptedSocket socket;
    PagerlinkClient client{
        {settings, session, NumberLocale::comma(), database, clock, log, harness.errors, socket}};
};

TEST_F(PagerlinkClientTest, DoesNothingUnlessItIsSwitchedOn) {
    for (const std::int16_t off : Flags{0, 2, -1}) {
        settings.enablePagerlink = off;
        client.generateMsgPagerlink();
    }
    EXPECT_TRUE(socket.sent.empty());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PagerlinkClientTest, SendsTheFiveNoticesToASelectedUserToTheByte) {
    select("anna");
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sentBytes(), noticesFor("anna"));
    EXPECT_EQ(socket.sent[1], (ScriptedSocket::Sent{"pager.lan", 7000,
                                                    "formMAGNITUDE = 4.510:15:02\x02"
                                                    "anna"}));
}

TEST_F(PagerlinkClientTest, WritesItsNumbersAlikeUnderEveryLocale) {
    PagerlinkClient point(
        {settings, session, NumberLocale::point(), database, clock, log, harness.errors, socket});
    select("anna");
    point.generateMsgPagerlink();
    EXPECT_EQ(socket.sentBytes(), noticesFor("anna"));
}

TEST_F(PagerlinkClientTest, AsksForNoListInTheModeOfSelectedUsersAndWaitsForNothing) {
    select("gone|anna b"); // whoever is on the server now, blanks and all
    client.generateMsgPagerlink();
    Texts expected = noticesFor("gone");
    for (const std::string& notice : noticesFor("anna b"))
        expected.push_back(notice);
    EXPECT_EQ(socket.sentBytes(), expected);
    EXPECT_EQ(clock.sleeps, 0);
}

TEST_F(PagerlinkClientTest, SendsNothingWithoutASelection) {
    select("");
    client.generateMsgPagerlink();
    EXPECT_TRUE(socket.sent.empty());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PagerlinkClientTest, TakesEveryOtherModeForAllUsers) {
    settings.PGLselectedUsers = "carla";
    for (const std::int16_t mode : Flags{0, 2}) {
        settings.PGLAllOrSelected = mode;
        socket.sent.clear();
        answerAtRequest(2, "users anna bruno");
        client.generateMsgPagerlink();
        Texts expected = noticesFor("anna");
        for (const std::string& notice : noticesFor("bruno"))
            expected.push_back(notice);
        EXPECT_EQ(notices(), expected);
        EXPECT_EQ(socket.sentBytes()[1], "list") << "the answer came between two requests";
    }
}

TEST_F(PagerlinkClientTest, GivesALoneUserNothingButOneWithABlankBehindHim) {
    answerAtRequest(1, "users anna");
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sentBytes(), Texts{"list"});
    EXPECT_TRUE(log.messages.empty());
    socket.sent.clear();
    answerAtRequest(1, "users anna ");
    client.generateMsgPagerlink();
    Texts expected = noticesFor("anna");
    for (const std::string& notice : noticesFor(""))
        expected.push_back(notice);
    EXPECT_EQ(notices(), expected);
}

TEST_F(PagerlinkClientTest, FailsAfterTenSecondsOfSilence) {
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sentBytes(), Texts(101, "list"));
    EXPECT_EQ(clock.steady(), 10100ms);
    EXPECT_GE(clock.pumps, 101);
    EXPECT_EQ(log.messages, Texts{failure});
}

TEST_F(PagerlinkClientTest, FailsAtTheHundredthRequestThoughItWasAnswered) {
    answerAtRequest(100, "users anna bruno");
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sentBytes(), Texts(100, "list"));
    EXPECT_EQ(log.messages, Texts{failure});
}

TEST_F(PagerlinkClientTest, SucceedsAtTheNinetyNinthRequest) {
    answerAtRequest(99, "users anna bruno");
    client.generateMsgPagerlink();
    EXPECT_EQ(notices().size(), 10u);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PagerlinkClientTest, TakesOneOfSeveralWaitingAnswersAtATime) {
    socket.waiting = {"users anna bruno", "users anna bruno", "users anna bruno"};
    client.generateMsgPagerlink();
    EXPECT_EQ(notices().size(), 10u);
    EXPECT_TRUE(socket.waiting.empty()) << "the notices drop what each of them finds";
}

TEST_F(PagerlinkClientTest, TakesTheTimeAnewForEachNotice) {
    select("anna");
    socket.onSend = [this] { clock.advance(1s); };
    client.generateMsgPagerlink();
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_TRUE(
            socket.sent[i].bytes.ends_with("10:15:0" + std::to_string(2 + i) + "\x02" + "anna"))
            << socket.sent[i].bytes;
}

TEST_F(PagerlinkClientTest, SendsOfTheNewestEventAlone) {
    addEvent("2021-01-15 00:00:00", "-1.5", "100", "0", "6");
    addEvent("2020-12-31 23:59:59", "1", "2", "3", "7");
    select("anna");
    client.generateMsgPagerlink();
    const Texts sent = socket.sentBytes();
    ASSERT_EQ(sent.size(), 5u);
    EXPECT_TRUE(sent[0].starts_with("formNEW EARTQUAKE = 2021-01-15 00:00:0010:"));
    EXPECT_TRUE(sent[2].starts_with("formLATITUDE = -1.510:"));
}

TEST_F(PagerlinkClientTest, SendsForEveryMagnitudeWhateverTheThresholdOfTheSettings) {
    settings.PGLmagToSend = 8;
    select("anna");
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sent.size(), 5u);
}

TEST_F(PagerlinkClientTest, SendsNothingFromAnEmptyOrClosedCatalogue) {
    select("anna");
    ASSERT_EQ(database.slsExe("delete from Events"), 0);
    client.generateMsgPagerlink();
    database.slClose();
    client.generateMsgPagerlink();
    EXPECT_TRUE(socket.sent.empty());
}

TEST_F(PagerlinkClientTest, RaisesOneErrorForAPortThatIsNoNumber) {
    for (const std::string mode : {"anna|bruno", ""}) {
        select(mode);
        settings.PGLAllOrSelected = mode.empty() ? 0 : 1;
        for (const std::string port : {"", "seven", "7000 7001"}) {
            settings.PGLport = port;
            prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
            client.generateMsgPagerlink();
        }
        settings.PGLport = "65536";
        prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
        client.generateMsgPagerlink();
    }
    EXPECT_TRUE(socket.sent.empty());
}

TEST_F(PagerlinkClientTest, TriesAgainWhenTheOperatorHasMendedThePort) {
    select("anna");
    settings.PGLport = "x";
    prompts.expectRuntimeError("generateMsgPagerlink", ErrorAnswer::Retry);
    prompts.expectRuntimeError("generateMsgPagerlink", ErrorAnswer::Ignore);
    client.generateMsgPagerlink();
    settings.PGLport = " 7000 ";
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sent.size(), 5u);
}

TEST_F(PagerlinkClientTest, EndsItsWaitWithoutAWordWhenTheProgramCloses) {
    clock.onPump = [this] { session.Closing = socket.sent.size() == 3; };
    client.generateMsgPagerlink();
    EXPECT_EQ(socket.sent.size(), 3u);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(PagerlinkClientTest, SendsTextInOneBytePerCharacter) {
    select("Jos\xC3\xA9|\xD0\x98\xF0\x9F\x98\x80"); // é; a Cyrillic letter and an emoji
    client.generateMsgPagerlink();
    EXPECT_EQ(notices()[1], "formMAGNITUDE = 4.510:15:02\x02Jos\xE9");
    EXPECT_EQ(notices()[6], "formMAGNITUDE = 4.510:15:02\x02??");
}

TEST_F(PagerlinkClientTest, GivesTheBytesOfANameBackAsTheyCame) {
    std::string name;
    for (int byte = 0; byte < 256; ++byte)
        name += static_cast<char>(byte);
    EXPECT_EQ(pagerlinkBytes(pagerlinkText(name)), name);
    answerAtRequest(1, "users \x80\xFF \xC3\xA9");
    client.generateMsgPagerlink();
    EXPECT_EQ(notices()[1], "formMAGNITUDE = 4.510:15:02\x02\x80\xFF");
    EXPECT_EQ(notices()[6], "formMAGNITUDE = 4.510:15:02\x02\xC3\xA9");
}

TEST_F(PagerlinkClientTest, SurvivesGarbageForAList) {
    const std::string zeros("\0\xFF\x02\r\n", 5);
    for (const std::string& reply : {std::string(" "), zeros, std::string(65507, 'x')}) {
        socket.sent.clear();
        answerAtRequest(1, reply);
        client.generateMsgPagerlink();
        EXPECT_EQ(socket.sentBytes(), Texts{"list"});
    }
    socket.sent.clear();
    answerAtRequest(1, std::string(2000, ' '));
    client.generateMsgPagerlink();
    EXPECT_EQ(notices().size(), 5u * 2000);
}

TEST_F(PagerlinkClientTest, AnswersARequestWithWhatHasComeInByThen) {
    EXPECT_EQ(client.sendPagerlinkRequest("list"), "");
    socket.waiting = {"one", "", "two"};
    EXPECT_EQ(client.sendPagerlinkRequest("a"), "one");
    EXPECT_EQ(client.sendPagerlinkRequest("b"), "");
    EXPECT_EQ(client.sendPagerlinkRequest("c"), "two");
    EXPECT_EQ(socket.sentBytes(), (Texts{"list", "a", "b", "c"}));
}

TEST(PagerlinkPort, ReadsTheTextOfTheSettingUnderTheLocale) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        EXPECT_EQ(pagerlinkPort("0", locale), 0);
        EXPECT_EQ(pagerlinkPort("65535", locale), 65535);
        EXPECT_THROW(pagerlinkPort("-1", locale), RuntimeError);
        EXPECT_THROW(pagerlinkPort("99999999999", locale), RuntimeError);
    }
    EXPECT_EQ(pagerlinkPort("7.000", NumberLocale::comma()), 7000);
}

TEST(PagerlinkUsers, AreAllWordsButTheFirst) {
    using Names = std::vector<std::string_view>;
    EXPECT_EQ(pagerlinkUsers(""), Names{});
    EXPECT_EQ(pagerlinkUsers("users"), Names{});
    EXPECT_EQ(pagerlinkUsers("users anna  bruno "), (Names{"anna", "", "bruno", ""}));
}

} // namespace
} // namespace tremor
