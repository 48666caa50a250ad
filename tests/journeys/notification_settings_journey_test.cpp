#include "bench_catalogue.h"
#include "journeys/journey.h"
#include "journeys/screen_picture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

// The outcome of a test stands there in pure red or green.
constexpr std::uint32_t red = 0xFF0000;
constexpr std::uint32_t green = 0x00FF00;

constexpr char telegramWindow[] = "Settings Telegram";
constexpr char pagerlinkWindow[] = "Settings Pagerlink";
constexpr char mailWindow[] = "Settings SMTP";

// The page "Miscellaneous" of the window Setup, by keyboard alone, in a program without settings of
// any channel.
class NotificationSettingsJourney : public ::testing::Test {
  protected:
    NotificationSettingsJourney() {
        makeCatalogue(journey_.file("catalogue.sqlite"), 0);
        journey_.startProgram();
        journey_.waitForWindow(" - Database: catalogue.sqlite", 60);
        journey_.key("alt+f u");
        journey_.waitForWindow("Setup", 60);
        journey_.key("ctrl+Tab ctrl+Tab ctrl+Tab");
    }

    // Turns a channel on and opens its window; the button stands behind the box.
    void open(const std::string& mnemonic, const std::string& title) {
        journey_.key(mnemonic + " Tab space");
        journey_.waitForWindow(title, 60);
    }
    void fill(const std::string& mnemonic, const std::string& text) {
        journey_.key(mnemonic + " ctrl+a");
        journey_.type(text);
    }
    void accept(const std::string& title) {
        journey_.key("alt+o");
        journey_.waitForNoWindow(title, 60);
        journey_.waitForWindow("Setup", 60);
    }
    bool shows(const std::string& title, std::uint32_t colour, std::uint32_t notTheOther) {
        const Rectangle window = journey_.geometry(title);
        return waitUntil(
            [&] {
                const ScreenPicture picture = journey_.picture();
                return picture.count(window, colour) > 10 &&
                       picture.count(window, notTheOther) == 0;
            },
            60s);
    }
    std::map<std::string, std::string> settingsAfterTheEnd() {
        journey_.key("Return"); // OK of Setup
        journey_.waitForNoWindow("Setup", 60);
        journey_.waitForWindow("TREMORLEDGER 1.", 60);
        journey_.key("alt+f x");
        EXPECT_EQ(journey_.waitForExit(60s), 0);
        return journey_.settings();
    }

    Journey journey_{{"StartupLogo=1", "Path=catalogue.sqlite"}};
};

TEST_F(NotificationSettingsJourney, TelegramTellsAGoodTokenFromABadOneAndKeepsIt) {
    open("alt+t", telegramWindow);
    journey_.type("1:wrong"); // the window begins in the box of the token
    journey_.key("alt+k");
    EXPECT_TRUE(shows(telegramWindow, red, green));
    fill("alt+t", "1:practice");
    journey_.key("alt+k");
    EXPECT_TRUE(shows(telegramWindow, green, red));
    fill("alt+p", "7");
    accept(telegramWindow);

    const auto settings = settingsAfterTheEnd();
    EXPECT_EQ(settings.at("enableTelegram"), "1");
    EXPECT_EQ(settings.at("TelegramToken"), "1:practice");
    EXPECT_EQ(settings.at("TelegramPollEvery"), "7");
    EXPECT_EQ(settings.at("enablePagerlink"), "0");
    EXPECT_EQ(settings.at("enableEmail"), "0");
}

TEST_F(NotificationSettingsJourney, PagerlinkTellsAServerThatAnswersFromASilentOneAndKeepsIt) {
    std::string port = journey_.service("/practice/pagerlink");
    port.erase(port.find('\n'));
    open("alt+p", pagerlinkWindow);
    fill("alt+s", "127.0.0.1");
    fill("alt+p", port);
    journey_.service("/practice/pagerlink/fault?kind=silent");
    journey_.key("alt+t");
    EXPECT_TRUE(shows(pagerlinkWindow, red, green));
    journey_.service("/practice/pagerlink/fault?kind=none");
    journey_.key("alt+t");
    EXPECT_TRUE(shows(pagerlinkWindow, green, red));
    journey_.key("alt+m 3");
    accept(pagerlinkWindow);

    const auto settings = settingsAfterTheEnd();
    EXPECT_EQ(settings.at("enablePagerlink"), "1");
    EXPECT_EQ(settings.at("PGLserver"), "127.0.0.1");
    EXPECT_EQ(settings.at("PGLport"), port);
    EXPECT_EQ(settings.at("PGLmagToSend"), "3");
    EXPECT_EQ(settings.at("PGLAllOrSelected"), "0");
}

TEST_F(NotificationSettingsJourney, TheMailAccountIsKept) {
    open("alt+e", mailWindow);
    fill("alt+s", "localhost");
    fill("alt+u", "operator");
    fill("alt+p", "secret");
    fill("alt+t", "2525");
    journey_.key("alt+r");
    fill("alt+n", "Control Room");
    fill("alt+e", "room@example.org");
    journey_.key("Tab");
    journey_.type("first@example.org, second@example.org");
    journey_.key("Tab 4");
    accept(mailWindow);

    const auto settings = settingsAfterTheEnd();
    EXPECT_EQ(settings.at("enableEmail"), "1");
    EXPECT_EQ(settings.at("SMTPserver"), "localhost");
    EXPECT_EQ(settings.at("SMTPusername"), "operator");
    EXPECT_EQ(settings.at("SMTPpassword"), "secret");
    EXPECT_EQ(settings.at("SMTPport"), "2525");
    EXPECT_EQ(settings.at("SMTPreqSSL"), "1");
    EXPECT_EQ(settings.at("SMTPfromName"), "Control Room");
    EXPECT_EQ(settings.at("SMTPfromEmail"), "room@example.org");
    EXPECT_EQ(settings.at("SMTPrecipient"), "first@example.org, second@example.org");
    EXPECT_EQ(settings.at("MagToSend"), "4");
}

} // namespace
} // namespace tremor::journeys
