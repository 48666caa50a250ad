#include "journeys/notification_journey.h"

#include <fmt/format.h>

#include <array>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

// A row as the catalogue gives it, which is how the notices have it.
struct NewestEvent {
    std::string utc;
    std::string latitude;
    std::string longitude;
    std::string depth;
    std::string magnitude;
};

class NewEventJourney : public NotificationJourney {
  protected:
    void SetUp() override { pollForTheFirstTime(); }

    NewestEvent newestEvent() const {
        const auto value = [this](const std::string& column) {
            return journey_.queryOne("catalogue.sqlite",
                                     "select " + column + " from Events order by UTC desc limit 1");
        };
        return {value("UTC"), value("Latitude"), value("Longitude"), value("Depth"),
                value("Magnitude")};
    }

    // The report of the towns leaves out the last one that it finds.
    void addTownsNear(const EventRow& event) const {
        for (const char* name : {"Borgo Alto", "Borgo Basso", "Zocca"})
            journey_.change("catalogue.sqlite",
                            fmt::format("insert into Cities values ('{}', '{}', '{}', '')", name,
                                        event.latitude, event.longitude));
    }

    void expectMail(int number, const NewestEvent& event) {
        EXPECT_EQ(mail_.envelope(number),
                  (Lines{"from room@example.org", "to first@example.org", "to second@example.org",
                         "user operator", "tls yes"}));
        const testing::UnpackedMail mail(mail_.raw(number));
        EXPECT_EQ(mail.part("defects"), "");
        EXPECT_EQ(mail.part("subject"), "NEW EVENT " + event.utc);
        const std::string text = mail.part("text");
        EXPECT_TRUE(text.starts_with(
            fmt::format("EVT {}\r\nMAG= {} DEPTH= {}\r\nLOCATION= {} {}\r\n", event.utc,
                        event.magnitude, event.depth, event.latitude, event.longitude)))
            << text;
        EXPECT_NE(text.find("\r\nBorgo Alto = Km "), std::string::npos) << text;
        EXPECT_EQ(mail.part("attachment-type"), "image/png");
        EXPECT_TRUE(mail.part("attachment").starts_with("\x89PNG\r\n\x1A\n"));
        EXPECT_TRUE(mail.part("attachment") == journey_.readFile("History/email.png"));
    }

    void expectDatagrams(const NewestEvent& event) {
        const std::array<std::string, 5> notices{
            "formNEW EARTQUAKE = " + event.utc, "formMAGNITUDE = " + event.magnitude,
            "formLATITUDE = " + event.latitude, "formLONGITUDE = " + event.longitude,
            "formDEPTH = " + event.depth};
        constexpr std::size_t timeLength = 8; // "10:15:02"
        const Lines received = datagrams();
        std::size_t next = 0;
        for (const std::string user : {"anna", "bruno", "carla"})
            for (const std::string& notice : notices) {
                const std::string mark = "\\x02" + user;
                ASSERT_LT(next, received.size());
                const std::string& datagram = received[next++];
                EXPECT_TRUE(datagram.starts_with(notice)) << datagram;
                EXPECT_TRUE(datagram.ends_with(mark)) << datagram;
                EXPECT_EQ(datagram.size(), notice.size() + timeLength + mark.size()) << datagram;
            }
        EXPECT_EQ(next, received.size());
    }

    void expectTelegrams(const NewestEvent& event) {
        const Lines received = telegrams();
        ASSERT_EQ(received.size(), 2U);
        EXPECT_EQ(received[0],
                  fmt::format("{{\"method\":\"sendLocation\",\"chat_id\":{},\"location\":"
                              "{{\"latitude\":{},\"longitude\":{}}}}}",
                              follower, event.latitude, event.longitude));
        EXPECT_TRUE(received[1].starts_with(fmt::format(
            "{{\"method\":\"sendMessage\",\"chat_id\":{},\"text\":\"EVT {}\\nmag={} "
            "loc={} {} d={}\\n=== Towns less than 10km",
            follower, event.utc, event.magnitude, event.latitude, event.longitude, event.depth)))
            << received[1];
        EXPECT_NE(received[1].find("Borgo Alto = Km "), std::string::npos) << received[1];
    }

    Lines lastEventText() {
        findSurfaces();
        return look().ink(lastEventText_);
    }
};

// Each channel stands still until it has been seen that those behind it wait.
TEST_F(NewEventJourney, AnEventOfThePrimarySourceRingsMovesTheMapMailsPagesAndMessagesInThisOrder) {
    const Lines textBefore = lastEventText();
    const int reportsBefore = countInLog(eventReported);
    const int countsBefore = countInLog("1 New Events in Workspace World");
    mail_.pause();
    journey_.service("/practice/pagerlink/fault?kind=silent");
    const EventRow event = addEventOfIngv();
    addTownsNear(event);
    journey_.key("F5");

    ASSERT_TRUE(soonInLog(eventReported, reportsBefore + 1)) << journey_.activityLog();
    EXPECT_TRUE(rang(soundOf(event.magnitude)));
    EXPECT_FALSE(listAsked());
    EXPECT_TRUE(telegrams().empty());

    mail_.resume();
    ASSERT_TRUE(soon([&] { return mails() == 1 && listAsked(); })) << journey_.activityLog();
    EXPECT_TRUE(datagrams().empty());
    EXPECT_TRUE(telegrams().empty());

    journey_.service("/practice/pagerlink/fault?kind=none");
    ASSERT_TRUE(soon([&] { return telegrams().size() == 2; })) << journey_.activityLog();
    const NewestEvent newest = newestEvent();
    EXPECT_TRUE(newest.utc.starts_with(event.utc.substr(0, 19)));
    EXPECT_EQ(newest.magnitude, event.magnitude);
    expectMail(2, newest);
    expectDatagrams(newest);
    expectTelegrams(newest);
    EXPECT_EQ(countInLog("1 New Events in Workspace World"), countsBefore + 1);
    EXPECT_EQ(countInLog(fmt::format("UTC: {} Magnitude: {} Depth: {}", newest.utc,
                                     newest.magnitude, newest.depth)),
              1);
    EXPECT_TRUE(soon([&] { return standsOnLastEventMap(event); }));
    EXPECT_NE(lastEventText(), textBefore);

    // Once: the next polls are quiet.
    forgetWhatWasSent();
    ASSERT_TRUE(poll() && poll()) << journey_.activityLog();
    EXPECT_TRUE(sentOnEveryChannel(0));
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(countInLog(eventReported), reportsBefore + 1);
}

TEST_F(NewEventJourney, AnEventOfTheAlternateSourceOnlyRingsAndMovesTheMap) {
    const Lines textBefore = lastEventText();
    const int reportsBefore = countInLog(eventReported);
    const EventRow event = addEventOfEmsc();
    ASSERT_TRUE(poll()) << journey_.activityLog();
    ASSERT_TRUE(soonInLog(eventReported, reportsBefore + 1)) << journey_.activityLog();
    EXPECT_EQ(journey_.queryOne("catalogue.sqlite",
                                "select Source from Events order by UTC desc limit 1"),
              "EMSC");
    EXPECT_TRUE(rang(soundOf(event.magnitude)));
    EXPECT_TRUE(soon([&] { return standsOnLastEventMap(event); }));
    EXPECT_NE(lastEventText(), textBefore);

    forgetWhatWasSent();
    ASSERT_TRUE(poll()) << journey_.activityLog();
    EXPECT_TRUE(sentOnEveryChannel(0));
    EXPECT_TRUE(isSilent());
    EXPECT_EQ(countInLog(eventReported), reportsBefore + 1);
}

TEST_F(NewEventJourney, AStartReportsNothingASecondTimeAndWhatCameMeanwhileOnce) {
    const Lines text = lastEventText();
    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(60s), 0);
    startProgram();
    ASSERT_TRUE(poll() && poll()) << journey_.activityLog();
    EXPECT_TRUE(sentOnEveryChannel(0));
    EXPECT_TRUE(isSilent());
    EXPECT_TRUE(soon([&] { return lastEventText() == text; }));

    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(60s), 0);
    const EventRow event = addEventOfIngv();
    startProgram();
    ASSERT_TRUE(poll()) << journey_.activityLog();
    ASSERT_TRUE(soonInLog(messagesSent, 1)) << journey_.activityLog();
    EXPECT_TRUE(rang(soundOf(event.magnitude)));
    ASSERT_TRUE(poll()) << journey_.activityLog();
    EXPECT_TRUE(sentOnEveryChannel(1));
}

} // namespace
} // namespace tremor::journeys
