#include "journeys/notification_journey.h"

#include <chrono>
#include <iostream>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr char noAnswer[] = "Telegram : 1 contact got no message, the service did not answer";

class DeadServicesJourney : public NotificationJourney {
  protected:
    // A new event with every channel dead: how long the program is busy with it.
    std::chrono::seconds reportInVain(std::chrono::seconds limit) {
        const int before = countInLog(messagesSent);
        addEventOfIngv();
        journey_.key("F5");
        const auto start = std::chrono::steady_clock::now();
        EXPECT_TRUE(soon([&] { return countInLog(messagesSent) > before; }, limit))
            << journey_.activityLog();
        const auto taken = std::chrono::duration_cast<std::chrono::seconds>(
            std::chrono::steady_clock::now() - start);
        std::cout << "A poll with dead services took " << taken.count() << " s\n";
        EXPECT_EQ(countInLog("Connection failed to Pagerlink."), 1);
        EXPECT_EQ(countInLog(noAnswer), 1);
        EXPECT_EQ(mails(), 0);
        EXPECT_TRUE(datagrams().empty());
        return taken;
    }

    void expectThatTheNextEventIsReported() {
        forgetWhatWasSent();
        const int before = countInLog(messagesSent);
        addEventOfIngv();
        EXPECT_TRUE(poll()) << journey_.activityLog();
        EXPECT_TRUE(soon([&] { return countInLog(messagesSent) > before; }, 150s))
            << journey_.activityLog();
        EXPECT_TRUE(sentOnEveryChannel(1));
    }
};

TEST_F(DeadServicesJourney, ServicesThatRefuseEveryConnectionHoldUpAPollForSomeSeconds) {
    ASSERT_NO_FATAL_FAILURE(pollForTheFirstTime());
    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(60s), 0);
    journey_.addHost("Telegram=http://127.0.0.1:1");
    journey_.service("/practice/pagerlink/fault?kind=refusing");
    mail_.end();
    startProgram();
    ASSERT_TRUE(poll()) << journey_.activityLog();
    // Waits for answers would take 130 s and more.
    EXPECT_LT(reportInVain(110s), 110s);
    EXPECT_TRUE(poll()) << journey_.activityLog();
    EXPECT_TRUE(journey_.programRuns());
}

TEST_F(DeadServicesJourney, ServicesThatNeverAnswerHoldUpAPollForTheirLimitsOnly) {
    ASSERT_NO_FATAL_FAILURE(pollForTheFirstTime());
    mail_.setFaults("greeting hang");
    journey_.service("/practice/pagerlink/fault?kind=silent");
    journey_.service("/practice/telegram/fault?kind=stall");
    // Mail 30 s, Pagerlink 10 s, three requests to Telegram at 30 s; and two at 30 s each time that
    // the users who wrote to the bot are asked for meanwhile, which is once a minute.
    EXPECT_GT(reportInVain(300s), 60s);

    mail_.setFaults("");
    journey_.service("/practice/pagerlink/fault?kind=none");
    journey_.service("/practice/telegram/fault?kind=none");
    expectThatTheNextEventIsReported();
}

class OneChannelJourney : public NotificationJourney {
  protected:
    void SetUp() override { pollForTheFirstTime(); }

    void reportAnEvent() {
        forgetWhatWasSent();
        const int before = countInLog(messagesSent);
        addEventOfIngv();
        ASSERT_TRUE(poll()) << journey_.activityLog();
        ASSERT_TRUE(soonInLog(messagesSent, before + 1)) << journey_.activityLog();
        ASSERT_TRUE(poll()) << journey_.activityLog();
    }
};

TEST_F(OneChannelJourney, AChannelThatFailsTakesNothingFromTheOthers) {
    mail_.setFaults("rcpt refuse");
    ASSERT_NO_FATAL_FAILURE(reportAnEvent());
    EXPECT_EQ(mails(), 0);
    EXPECT_EQ(datagrams().size(), 15U);
    EXPECT_EQ(telegrams().size(), 2U);
    mail_.setFaults("");

    journey_.service("/practice/pagerlink/fault?kind=refusing");
    ASSERT_NO_FATAL_FAILURE(reportAnEvent());
    EXPECT_EQ(mails(), 1);
    EXPECT_EQ(datagrams().size(), 0U);
    EXPECT_EQ(telegrams().size(), 2U);
    journey_.service("/practice/pagerlink/fault?kind=none");

    journey_.service("/practice/telegram/fault?kind=cut");
    ASSERT_NO_FATAL_FAILURE(reportAnEvent());
    EXPECT_EQ(mails(), 1);
    EXPECT_EQ(datagrams().size(), 15U);
    // The service has taken the message, and the program cannot know it.
    EXPECT_EQ(countInLog(noAnswer), 1);
    journey_.service("/practice/telegram/fault?kind=none");

    ASSERT_NO_FATAL_FAILURE(reportAnEvent());
    EXPECT_TRUE(sentOnEveryChannel(1));
}

} // namespace
} // namespace tremor::journeys
