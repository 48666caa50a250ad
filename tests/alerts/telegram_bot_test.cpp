#include "alerts/telegram_bot.h"
#include "alerts/telegram_fixture.h"

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

class TelegramBotTest : public testing::TelegramTest {
  protected:
    void serve(const std::vector<testing::Sender>& senders) {
        service.replies["getUpdates"] = testing::updatesReply(senders);
    }
};

class TestToken : public TelegramBotTest {};

TEST_F(TestToken, GivesZeroAndTheNameOfTheBot) {
    std::string name;
    EXPECT_EQ(bot.testToken("77:other", name), 0);
    EXPECT_TRUE(name.starts_with("DemoExampleBot\",\"can_join_groups\":true")) << name;
    EXPECT_EQ(service.urls,
              (Texts{"http://service/bot77:other/getUpdates", "http://service/bot77:other/getMe"}));
    EXPECT_EQ(service.files, (Texts{"checkToken.log", "checkTokenName.log"}));
    EXPECT_TRUE(std::filesystem::exists(folder.file("logs/checkToken.log")));
}

TEST_F(TestToken, GivesOneForARefusedTokenAndStillAsksForTheName) {
    service.replies["getUpdates"] = testing::telegramReply("error_401.json");
    std::string name = "old";
    EXPECT_EQ(bot.testToken("1:x", name), 1);
    EXPECT_TRUE(name.starts_with("DemoExampleBot"));
    service.replies["getMe"] = testing::telegramReply("error_401.json");
    EXPECT_EQ(bot.testToken("1:x", name), 1);
    EXPECT_EQ(name, "");
    EXPECT_FALSE(bot.telegramTokenValid());
}

TEST_F(TestToken, GivesOneWhenNobodyAnswersOrGarbageComes) {
    service.replies.clear();
    std::string name = "old";
    EXPECT_EQ(bot.testToken("1:x", name), 1);
    EXPECT_EQ(name, "");
    service.replies["getUpdates"] = service.replies["getMe"] = std::string(3000, '\xB5');
    EXPECT_EQ(bot.testToken("1:x", name), 1);
    EXPECT_EQ(name, "");
}

TEST_F(TestToken, TakesTheTokenOfTheSettings) {
    EXPECT_TRUE(bot.telegramTokenValid());
    EXPECT_EQ(service.urls.front(), "http://service/bot12:secret/getUpdates");
}

TEST_F(TestToken, KeepsItsReplyApartFromThatOfATestInside) {
    bool inside = false;
    service.onRequest = [&](const std::string& url) {
        if (inside || url.find("/getUpdates") == std::string::npos)
            return;
        inside = true;
        service.replies["getUpdates"] = testing::telegramReply("error_401.json");
        std::string name;
        EXPECT_EQ(bot.testToken("1:x", name), 1);
        service.replies["getUpdates"] = testing::telegramReply("getUpdates_empty.json");
    };
    EXPECT_TRUE(bot.telegramTokenValid());
    EXPECT_EQ(service.files, (Texts{"checkToken.log", "checkToken.log.1", "checkTokenName.log.1",
                                    "checkTokenName.log"}));
    EXPECT_FALSE(std::filesystem::exists(folder.file("logs/checkToken.log.1")));
}

TEST_F(TestToken, ReportsALogFolderThatCannotBeMade) {
    std::ofstream(folder.file("logs")) << "a file";
    prompts.expectRuntimeError("testToken (Module - Common)", ErrorAnswer::Ignore);
    service.replies.clear();
    EXPECT_FALSE(bot.telegramTokenValid());
}

class CheckIdTelegram : public TelegramBotTest {};

TEST_F(CheckIdTelegram, StoresWhoWroteAndIsNotYetKnown) {
    follow("2");
    serve({{"1", R"("first_name":"Ann","last_name":"Bel")"},
           {"2", R"("first_name":"Bob")"},
           {"3", R"("first_name":"Cy","language_code":"it")"}});
    EXPECT_EQ(check(), 2);
    EXPECT_EQ(stored(), (Texts{"1|Ann Bel", "2|n", "3|Cy,language_code:it"}));
    EXPECT_EQ(service.urls, Texts{"http://service/bot12:secret/getUpdates"});
    EXPECT_EQ(service.files, Texts{"idFound.log"});
    EXPECT_EQ(check(), 0);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CheckIdTelegram, StoresARealReplysSenderOnce) {
    service.replies["getUpdates"] = testing::telegramReply("getUpdates_three_private.json");
    EXPECT_EQ(check(), 1);
    EXPECT_EQ(stored(), Texts{"100000001|Anon,username:anonuser,language_code:en"});
}

TEST_F(CheckIdTelegram, AddsToTheCountThatItIsGiven) {
    serve({{"1", R"("first_name":"Ann")"}});
    std::int32_t added = 5;
    bool changed = false;
    bot.checkIdTelegram(added, changed);
    EXPECT_EQ(added, 6);
    EXPECT_TRUE(changed);
}

TEST_F(CheckIdTelegram, CountsBothRecordsOfANewUserWhoChangedName) {
    serve({{"5", R"("first_name":"Ann")"}, {"5", R"("first_name":"Anna")"}});
    EXPECT_EQ(check(), 2);
    EXPECT_EQ(stored(), Texts{"5|Ann"});
    EXPECT_EQ(check(), 0);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CheckIdTelegram, HoldsImportsOffOnlyWhileItWrites) {
    serve({{"1", R"("first_name":"Ann")"}});
    service.onRequest = [this](const std::string&) { EXPECT_FALSE(session.ImportInProgress); };
    check();
}

TEST_F(CheckIdTelegram, LosesANameWithAnApostropheAndSaysSoOnce) {
    serve({{"1", R"("first_name":"O'Neil")"}, {"2", R"("first_name":"Bob")"}});
    EXPECT_EQ(check(), 2);
    EXPECT_EQ(stored(), Texts{"2|Bob"});
    const Texts told{"Telegram : 1 follower not stored, a name holds an apostrophe"};
    EXPECT_EQ(log.messages, told);
    EXPECT_EQ(check(), 1);
    EXPECT_EQ(log.messages, told);
}

TEST_F(CheckIdTelegram, LetsAHostileNameChangeNothingButItsOwnRow) {
    storeEvent();
    follow("900");
    const std::string large(100000, 'n');
    serve({{"1", R"("first_name":"x'); drop table Events; --")"},
           {"2", R"("first_name":"x'),('999','y")"},
           {"3", R"("first_name":"x|998,evil")"},
           {"4", R"("first_name":"a{b")"},
           {"5", R"("first_name":"a}b\"c")"},
           {"6", R"("first_name":")" + large + "\""},
           {"7", R"("first_name":"x''),(''997'',''y")"},
           {"8", R"("first_name":"Ann")"}});
    EXPECT_EQ(check(), 8);
    EXPECT_EQ(stored(),
              (Texts{"3|x", "4|a", "5|a", "6|" + large, "7|x'),('997','y", "8|Ann", "900|n"}));
    EXPECT_EQ(testing::valueOf(database, "select count(*) from Events"), "1");
    EXPECT_EQ(log.messages, Texts{"Telegram : 2 followers not stored, a name holds an apostrophe"});
}

TEST_F(CheckIdTelegram, ReportsUpdatesWithoutAMessageInOneBox) {
    service.replies["getUpdates"] =
        "{\"ok\":true,\"result\":[{\"update_id\":7,\n\"my_chat_member\":{}}]}";
    prompts.expectRuntimeError("checkIdTelegram (Form - panel)", ErrorAnswer::Ignore);
    EXPECT_EQ(check(), 0);
}

TEST_F(CheckIdTelegram, ReportsSeveralMessagesWithoutASenderInOneBoxAndTakesTheOthers) {
    service.replies["getUpdates"] =
        "x\n\"message\":{\"id\":1,\"chat\":{\"id\":-1}}\n"
        "\"message\":{\"id\":1,\"chat\":{\"id\":-2}}\n"
        "\"message\":{\"id\":1,\"from\":{\"id\":3,\"first_name\":\"A\"}}";
    prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
    EXPECT_EQ(check(), 1);
    EXPECT_EQ(stored(), Texts{"3|A"});
}

TEST_F(CheckIdTelegram, AddsNobodyWhenNobodyAnswers) {
    follow("1");
    service.replies.clear();
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(stored(), Texts{"1|n"});
}

TEST_F(CheckIdTelegram, WritesNothingIntoACatalogueThatIsInUseAndFindsAllTheNextTime) {
    serve({{"1", R"("first_name":"Ann")"}});
    run("BEGIN TRANSACTION;");
    EXPECT_EQ(check(), 0);
    ASSERT_EQ(log.messages.size(), 1u);
    EXPECT_TRUE(log.messages[0].starts_with("Telegram : 1 follower not stored, 1 "))
        << log.messages[0];
    run("ROLLBACK;");
    EXPECT_EQ(stored(), Texts{});
    EXPECT_EQ(check(), 1);
    EXPECT_EQ(stored(), Texts{"1|Ann"});
}

TEST_F(CheckIdTelegram, SurvivesAClosedCatalogue) {
    serve({{"1", R"("first_name":"Ann")"}});
    database.slClose();
    EXPECT_EQ(check(), 0);
    EXPECT_EQ(log.messages.size(), 1u);
}

class GenerateMsgTelegram : public TelegramBotTest {
  protected:
    GenerateMsgTelegram() { storeEvent(); }
};

TEST_F(GenerateMsgTelegram, DoesNothingUnlessSwitchedOn) {
    follow("1");
    settings.enableTelegram = 0;
    bot.generateMsgTelegram();
    EXPECT_TRUE(service.urls.empty());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(GenerateMsgTelegram, SendsPositionAndTextToEveryFollower) {
    run("insert into Cities(Name, Latitude, Longitude) values ('Borgo Alto', '1', '1'), "
        "('Colle Rosso', '1', '2'), ('Last', '1', '3')");
    run("insert into Events(UTC, Latitude, Longitude, Depth, Magnitude) values "
        "('2016-08-23 23:59:59', 1, 2, 3, 9)");
    follow("11"), follow("22");
    bot.generateMsgTelegram();
    const std::string text =
        "/sendMessage?text=EVT 2016-08-24 01:36:32%0Amag=6.0 loc=42.7 13.23 d=8.1%0A"
        "=== Towns less than 10km%0ABorgo Alto = Km 3.27%0A"
        "=== Towns > 10km < 20km%0AColle Rosso = Km 16.41%0A&chat_id=";
    const std::string start = "http://service/bot12:secret";
    EXPECT_EQ(service.urls, (Texts{start + "/getUpdates",
                                   start + "/sendLocation?chat_id=11&latitude=42.7&longitude=13.23",
                                   start + text + "11",
                                   start + "/sendLocation?chat_id=22&latitude=42.7&longitude=13.23",
                                   start + text + "22"}));
    EXPECT_EQ(service.files,
              (Texts{"idFound.log", "sendLocationTelegram.log", "sendMessageTelegram.log",
                     "sendLocationTelegram.log", "sendMessageTelegram.log"}));
    EXPECT_EQ(log.messages, Texts{"Telegram : Event sended to 2 contacts."});
}

TEST_F(GenerateMsgTelegram, SendsTheNamesOfTownsInUtf8) {
    run("insert into Cities(Name, Latitude, Longitude) values ('Forl\xC3\xAC & L''Aquila #1', '1', "
        "'1'), ('Last', '1', '3')");
    follow("11");
    bot.generateMsgTelegram();
    EXPECT_NE(service.of("sendMessage").at(0).find("Forl\xC3\xAC & L'Aquila #1 = Km 3.27%0A"),
              std::string::npos);
}

TEST_F(GenerateMsgTelegram, ReachesAFollowerWhoHasJustWritten) {
    serve({{"33", R"("first_name":"Ann")"}});
    bot.generateMsgTelegram();
    EXPECT_EQ(service.of("sendLocation"),
              Texts{"/sendLocation?chat_id=33&latitude=42.7&longitude=13.23"});
    EXPECT_EQ(log.messages, Texts{"Telegram : Event sended to 1 contact."});
}

TEST_F(GenerateMsgTelegram, SaysContactForNobody) {
    bot.generateMsgTelegram();
    EXPECT_EQ(log.messages, Texts{"Telegram : Event sended to 0 contact."});
}

TEST_F(GenerateMsgTelegram, DropsAFollowerWhoBlockedTheBotAndCountsHim) {
    follow("11"), follow("22");
    service.onRequest = [this](const std::string& url) {
        const bool blocked = url.ends_with("chat_id=11");
        service.replies["sendMessage"] = testing::telegramReply(
            blocked ? "error_403_blocked.json" : "sendMessage_ok_group.json");
    };
    bot.generateMsgTelegram();
    EXPECT_EQ(stored(), Texts{"22|n"});
    EXPECT_EQ(service.of("sendMessage").size(), 2u);
    EXPECT_EQ(log.messages, Texts{"Telegram : Event sended to 2 contacts."});
}

TEST_F(GenerateMsgTelegram, KeepsTheFollowersAtOtherErrorsAndSaysWhatWasLost) {
    follow("11"), follow("22");
    service.replies["sendMessage"] = testing::telegramReply("error_429.json");
    bot.generateMsgTelegram();
    EXPECT_EQ(stored().size(), 2u);
    EXPECT_EQ(log.messages,
              (Texts{"Telegram : Event sended to 2 contacts.",
                     "Telegram : 2 contacts got no message, the service answered with error 429"}));
    log.messages.clear();
    service.replies["sendMessage"] = std::string(3000, '\xB5');
    run("delete from TelegramChats where chat_id = '11'");
    bot.generateMsgTelegram();
    EXPECT_EQ(log.messages.back(),
              "Telegram : 1 contact got no message, the answer of the service could not be read");
}

TEST_F(GenerateMsgTelegram, TriesADeadServiceForThreeFollowersAndCountsAll) {
    for (int i = 0; i < 50; ++i)
        follow(std::to_string(i));
    service.replies.clear();
    bot.generateMsgTelegram();
    EXPECT_EQ(service.urls.size(), 1u + 2 * 3);
    EXPECT_EQ(session.DownloadState, 2);
    EXPECT_EQ(log.messages,
              (Texts{"Telegram : Event sended to 50 contacts.",
                     "Telegram : 50 contacts got no message, the service did not answer"}));
}

TEST_F(GenerateMsgTelegram, EndsWithTheProgram) {
    follow("11"), follow("22");
    service.onRequest = [this](const std::string& url) {
        session.Closing = url.find("sendMessage") != std::string::npos;
    };
    bot.generateMsgTelegram();
    EXPECT_EQ(service.of("sendMessage").size(), 1u);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(GenerateMsgTelegram, TakesTheRightReplyWhenAnotherDispatchRunsInside) {
    follow("11"), follow("22");
    bool inside = false;
    service.onRequest = [&](const std::string& url) {
        if (url.ends_with("chat_id=11") && !inside) {
            inside = true;
            service.replies["sendMessage"] = testing::telegramReply("error_403_blocked.json");
            bot.sendMessageTelegram("other", "22");
            service.replies["sendMessage"] = testing::telegramReply("sendMessage_ok_group.json");
        }
    };
    bot.generateMsgTelegram();
    EXPECT_EQ(stored(), Texts{"11|n"});
}

class SendTelegram : public TelegramBotTest {};

TEST_F(SendTelegram, HoldsTheDownloadStateUntilTheAnswerIsThere) {
    service.onRequest = [this](const std::string& url) {
        EXPECT_EQ(session.DownloadState, url.find("/send") == std::string::npos ? 0 : 2);
    };
    follow("1");
    bot.generateMsgTelegram();
    EXPECT_EQ(session.DownloadState, 0);
    service.replies.erase("sendLocation");
    EXPECT_EQ(bot.sendLocationTelegram("1", "2", "3"), "");
    EXPECT_EQ(session.DownloadState, 2);
}

TEST_F(SendTelegram, DeletesNobodyButTheChatThatIsForbidden) {
    follow("1"), follow("2");
    service.replies["sendMessage"] = testing::telegramReply("error_403_blocked.json");
    bot.sendMessageTelegram("text", "1' or '1'='1");
    EXPECT_EQ(stored().size(), 2u);
    bot.sendMessageTelegram("text", "1");
    EXPECT_EQ(stored(), Texts{"2|n"});
}

TEST(StoreTelegramSettings, TakesTheTokenAndRaisesThePeriodToOne) {
    AppSettings settings;
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        const std::pair<const char*, int> cases[] = {{"10", 10}, {"0", 1},   {"-4", 1},
                                                     {"", 1},    {"abc", 1}, {"99999999999", 1}};
        for (const auto& [text, minutes] : cases) {
            storeTelegramSettings(settings, "1:token", text, locale);
            EXPECT_EQ(settings.TelegramPollEvery, minutes) << text;
        }
        EXPECT_EQ(settings.TelegramToken, "1:token");
    }
    storeTelegramSettings(settings, "", "2,6", NumberLocale::comma());
    EXPECT_EQ(settings.TelegramPollEvery, 3);
    EXPECT_EQ(settings.TelegramToken, "");
}

} // namespace
} // namespace tremor
