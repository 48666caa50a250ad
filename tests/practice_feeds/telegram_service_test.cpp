#include "alerts/telegram_bot.h"
#include "alerts/telegram_documents.h"
#include "core/hosts.h"
#include "database/catalogue_support.h"
#include "ingest/panel_download.h"
#include "practice_feeds/practice_server.h"
#include "practice_feeds/telegram_service.h"
#include "support/download_fixture.h"
#include "support/texts.h"

#include <httplib.h>

#include <chrono>

// The service by itself, and the program's bot against it through the program's own downloader.
namespace tremor::practice {
namespace {

using namespace std::chrono_literals;
using tremor::testing::telegramReply;
using Texts = std::vector<std::string>;

Request botRequest(const std::string& path, std::map<std::string, std::string> query = {}) {
    return {"/bot1:practice" + path, std::move(query)};
}

class TelegramServiceTest : public ::testing::Test {
  protected:
    void write(const std::string& id, const std::string& name, const std::string& text = "/start") {
        EXPECT_EQ(service
                      .control({"/practice/telegram/write",
                                {{"id", id}, {"first_name", name}, {"text", text}}})
                      .status,
                  200);
    }
    void block(const std::string& id) {
        EXPECT_EQ(service.control({"/practice/telegram/block", {{"id", id}}}).status, 200);
    }
    std::string updates(std::map<std::string, std::string> query = {}) {
        const Answer answer = service.answer(botRequest("/getUpdates", std::move(query)));
        EXPECT_EQ(answer.status, 200);
        return answer.body;
    }
    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (auto place = text.find(part); place != std::string::npos;
             place = text.find(part, place + 1))
            ++found;
        return found;
    }

    TelegramService service;
};

TEST_F(TelegramServiceTest, HasNoUpdatesAtFirst) {
    EXPECT_EQ(updates(), telegramReply("getUpdates_empty.json"));
}

TEST_F(TelegramServiceTest, RefusesAWrongTokenAsTheServiceDoes) {
    const Answer wrong = service.answer({"/bot1:wrong/getUpdates", {}});
    EXPECT_EQ(wrong.status, 401);
    EXPECT_EQ(wrong.body, telegramReply("error_401.json"));
    for (const char* path : {"/bot/getMe", "/botabc/getMe", "/bot1:/getMe", "/bot1:practice/other"})
        EXPECT_EQ(service.answer({path, {}}).status, 404) << path;
}

TEST(TelegramServiceRequest, SplitsAtTheFirstEqualsSignAndDecodes) {
    const Request request =
        TelegramService::requestOf("/bot1:practice/sendMessage?text=a%20=+b%0Ac%&&chat_id=5&e&=x");
    EXPECT_EQ(request.path, "/bot1:practice/sendMessage");
    EXPECT_EQ(request.query, (std::map<std::string, std::string>{
                                 {"text", "a = b\nc%"}, {"chat_id", "5"}, {"e", ""}, {"", "x"}}));
    EXPECT_TRUE(TelegramService::requestOf("/bot1:practice/getMe?").query.empty());
    EXPECT_TRUE(TelegramService::requestOf("/bot1:practice/getMe").query.empty());
}

TEST_F(TelegramServiceTest, NamesItsBotWithTheKeysOfTheRealReply) {
    const std::string reply = service.answer(botRequest("/getMe")).body;
    for (const char* key : {"\"ok\":true", "\"username\":\"TremorPracticeBot\",", "\"is_bot\":true",
                            "\"can_manage_bots\":false}}"})
        EXPECT_NE(reply.find(key), std::string::npos) << key;
}

TEST_F(TelegramServiceTest, LaysUpdatesOutWithALineFeedBeforeEachMessage) {
    write("5", "J\xC3\xBCrgen \"J\"", "a\nb");
    write("6", "Bob");
    const std::string reply = updates();
    EXPECT_EQ(count(reply, "\n"), 2u);
    EXPECT_EQ(count(reply, "{\"update_id\":685677420,\n\"message\":{\"message_id\":2,\"from\":"
                           "{\"id\":5,\"is_bot\":false,\"first_name\":\"J\\u00fcrgen \\\"J\\\"\","
                           "\"language_code\":\"en\"},\"chat\":{\"id\":5,"),
              1u)
        << reply;
    EXPECT_EQ(count(reply, "\"text\":\"a\\nb\"}},{\"update_id\":685677421,\n"), 1u) << reply;
    EXPECT_EQ(updates(), reply); // kept until an offset confirms them
}

TEST_F(TelegramServiceTest, ForgetsTheUpdatesBeforeAnOffset) {
    for (int i = 0; i < 120; ++i)
        write(std::to_string(i + 1), "Ann");
    EXPECT_EQ(count(updates(), "\"update_id\""), 100u);
    EXPECT_EQ(count(updates({{"limit", "7"}}), "\"update_id\""), 7u);
    EXPECT_EQ(count(updates({{"offset", "685677500"}}), "\"update_id\""), 40u);
    EXPECT_EQ(count(updates({{"offset", "-1"}}), "\"update_id\""), 1u);
    EXPECT_EQ(count(updates(), "\"update_id\""), 1u);
}

TEST_F(TelegramServiceTest, TakesMessagesForChatsThatItKnows) {
    write("5", "Ann");
    EXPECT_EQ(
        service.answer(botRequest("/sendMessage", {{"chat_id", "5"}, {"text", "EVT\nmag"}})).status,
        200);
    EXPECT_EQ(
        service
            .answer(botRequest("/sendLocation",
                               {{"chat_id", "5"}, {"latitude", "42.7"}, {"longitude", "13.23"}}))
            .status,
        200);
    EXPECT_EQ(service.control({"/practice/telegram", {}}).body,
              "{\"method\":\"sendMessage\",\"chat_id\":5,\"text\":\"EVT\\nmag\"}\n"
              "{\"method\":\"sendLocation\",\"chat_id\":5,\"location\":{\"latitude\":42.7,"
              "\"longitude\":13.23}}\n");
    service.control({"/practice/telegram/clear", {}});
    EXPECT_EQ(service.control({"/practice/telegram", {}}).body, "");
}

TEST_F(TelegramServiceTest, RefusesWhatTheServiceRefuses) {
    write("5", "Ann");
    const std::map<std::string, std::string> wrong[] = {
        {{"text", "a"}},
        {{"chat_id", "6"}, {"text", "a"}},
        {{"chat_id", "x"}, {"text", "a"}},
        {{"chat_id", "5"}},
        {{"chat_id", "5"}, {"text", " \n"}},
        {{"chat_id", "5"}, {"text", "Forl\xEC"}},
        {{"chat_id", "5"}, {"text", std::string(4097, 'a')}}};
    for (const auto& query : wrong)
        EXPECT_EQ(service.answer(botRequest("/sendMessage", query)).status, 400);
    EXPECT_EQ(
        service
            .answer(botRequest("/sendLocation",
                               {{"chat_id", "5"}, {"latitude", "91"}, {"longitude", "13,23"}}))
            .status,
        400);
    EXPECT_EQ(service.control({"/practice/telegram", {}}).body, "");
    EXPECT_EQ(service.control({"/practice/telegram/write", {{"id", "x"}}}).status, 400);
    EXPECT_EQ(service.control({"/practice/telegram/write", {{"id", "7"}}}).status, 400);
    EXPECT_EQ(service.control({"/practice/telegram/block", {{"id", "7"}}}).status, 400);
}

TEST_F(TelegramServiceTest, AnswersForAChatThatBlockedTheBotAndTellsOfIt) {
    write("5", "Ann");
    block("5");
    const Answer answer =
        service.answer(botRequest("/sendMessage", {{"chat_id", "5"}, {"text", "a"}}));
    EXPECT_EQ(answer.status, 403);
    EXPECT_EQ(answer.body, telegramReply("error_403_blocked.json"));
    EXPECT_EQ(count(updates(), ",\n\"my_chat_member\":{"), 1u);
    service.control({"/practice/telegram/unblock", {{"id", "5"}}});
    EXPECT_EQ(service.answer(botRequest("/sendMessage", {{"chat_id", "5"}, {"text", "a"}})).status,
              200);
}

// The program's downloader with limits that suit a test.
class DownloaderTransfer : public TelegramTransfer {
  public:
    DownloaderTransfer(Clock& clock, const Session& session)
        : network_(clock, session, hosts_, shortLimits()) {}
    bool DownloadFile(std::string_view url, std::string_view target, std::int32_t chunkSize,
                      bool withoutStatusCheck) override {
        tremor::testing::RecordedDownload events;
        network_.DownloadFile(events, url, target, chunkSize, withoutStatusCheck);
        if (events.last().starts_with("error"))
            errors.push_back(events.last());
        return events.last() == "completed";
    }
    Texts errors;

  private:
    static DownloadLimits shortLimits() {
        DownloadLimits limits;
        limits.connectSeconds = 2;
        limits.stallSeconds = 1;
        limits.totalSeconds = 4;
        return limits;
    }

    Hosts hosts_;
    HttpFileTransfer network_;
};

struct OneTown : EarthRoutines, TownsList {
    double distance(std::string_view, std::string_view, std::string_view, std::string_view,
                    std::string_view) const override {
        return 3.27;
    }
    std::string revealBounds(double, double, std::string_view bearing, double) const override {
        return bearing == "0" ? "90|180" : "0|0";
    }
    void clear() override {}
    void add(std::string_view) override {}
};

class BotAndService : public tremor::testing::CatalogueTest {
  protected:
    BotAndService() {
        ::setenv("no_proxy", "127.0.0.1,localhost", 1);
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        settings.TelegramToken = TelegramService::token;
        settings.enableTelegram = 1;
        run("insert into Events(UTC, Latitude, Longitude, Depth, Magnitude) values "
            "('2016-08-24 01:36:32', 42.7, 13.23, 8.1, 6)");
        run("insert into Cities(Name, Latitude, Longitude) values ('Forl\xC3\xAC <i> {a=b} + \"', "
            "'1', '1'), ('Last', '1', '3')");
    }

    void run(const std::string& sql) { EXPECT_EQ(database.slsExe(sql), 0) << sql; }
    std::string get(const std::string& path) {
        const auto answer = httplib::Client("127.0.0.1", server.port()).Get("/practice/" + path);
        EXPECT_TRUE(answer && answer->status == 200) << path;
        return answer ? answer->body : std::string();
    }
    TelegramBot botAt(const std::string& host) {
        return {settings, session,        database,      towns, transfer,
                log,      harness.errors, folder.path(), host};
    }
    static ServerOptions options() {
        ServerOptions given;
        given.dataFolder = TREMOR_TEST_DATA;
        given.catalogue.fixed = true;
        return given;
    }
    std::string replyOf(const std::string& file) {
        return tremor::testing::contentOf(folder.file("logs/" + file));
    }

    PracticeServer server{options()};
    tremor::testing::FakeClock clock;
    DownloaderTransfer transfer{clock, session};
    OneTown town;
    NearbyTowns towns{database, NumberLocale::point(), town, town, harness.errors};
    TelegramBot bot = botAt(parseHosts(server.hostsIni()).Telegram);
};

TEST_F(BotAndService, TellsTheRightTokenFromWrongOnes) {
    std::string name;
    EXPECT_EQ(bot.testToken(TelegramService::token, name), 0);
    EXPECT_TRUE(name.starts_with("TremorPracticeBot")) << name;
    for (const char* token : {"1:wrong", "", "a b/\"{}\xC3\xAC", "1:practice "}) {
        EXPECT_EQ(bot.testToken(token, name), 1) << token;
        EXPECT_EQ(name, "") << token;
    }
    EXPECT_TRUE(bot.telegramTokenValid());
}

TEST_F(BotAndService, GivesTheServiceTheTextAsItIs) {
    get("telegram/write?id=5&first_name=Ann");
    bot.generateMsgTelegram();
    EXPECT_EQ(get("telegram"),
              "{\"method\":\"sendLocation\",\"chat_id\":5,\"location\":{\"latitude\":42.7,"
              "\"longitude\":13.23}}\n"
              "{\"method\":\"sendMessage\",\"chat_id\":5,\"text\":\"EVT 2016-08-24 01:36:32\\n"
              "mag=6.0 loc=42.7 13.23 d=8.1\\n=== Towns less than 10km\\n"
              // A "+" of a query is a blank.
              "Forl\\u00ec <i> {a=b}   \\\" = Km 3.27\\n=== Towns > 10km < 20km\\n\"}\n");
    EXPECT_EQ(log.messages, Texts{"Telegram : Event sended to 1 contact."});
}

TEST_F(BotAndService, LosesTheChatBehindAHashSignAndCutsAtAnAmpersand) {
    get("telegram/write?id=5&first_name=Ann");
    EXPECT_NE(bot.sendMessageTelegram("a & b", "5").find("\"text\":\"a \""), std::string::npos);
    EXPECT_NE(bot.sendMessageTelegram("a # b", "5").find("\"error_code\":400"), std::string::npos);
}

TEST_F(BotAndService, StoresNamesOfAllKindsInTheirOwnRows) {
    get("telegram/write?id=5&first_name=J%C3%BCrgen%20%22J%22");
    get("telegram/write?id=6&first_name=x%27)%3B%20drop%20table%20Events%3B%20--");
    get("telegram/write?id=7&first_name=a%7Bb%7D%7C999%2Cevil");
    get("telegram/write?id=8&first_name=Bob&last_name=Bel");
    std::int32_t added = 0;
    bool changed = false;
    bot.checkIdTelegram(added, changed);
    EXPECT_EQ(added, 4);
    using Rows = std::vector<std::vector<std::string>>;
    EXPECT_EQ(tremor::testing::rowsOf(database, "select * from TelegramChats order by chat_id"),
              (Rows{{"5", "J\\u00fcrgen \\J\\,language_code:en"},
                    {"7", "a"},
                    {"8", "Bob Bel,language_code:en"}}));
    EXPECT_EQ(tremor::testing::valueOf(database, "select count(*) from Events"), "1");
}

TEST_F(BotAndService, DropsAFollowerWhoBlocksTheBot) {
    get("telegram/write?id=5&first_name=Ann");
    get("telegram/write?id=6&first_name=Bob");
    bot.generateMsgTelegram();
    get("telegram/block?id=5");
    bot.generateMsgTelegram();
    EXPECT_EQ(tremor::testing::rowsOf(database, "select chat_id from TelegramChats"),
              (std::vector<std::vector<std::string>>{{"6"}}));
    EXPECT_EQ(replyOf("sendLocationTelegram.log").find("\"ok\":true"), 1u);
    EXPECT_EQ(log.messages, (Texts{"Telegram : Event sended to 2 contacts.",
                                   "Telegram : Event sended to 2 contacts."}));
}

TEST_F(BotAndService, EndsInTimeAtEveryFaultOfTheService) {
    get("telegram/write?id=5&first_name=Ann");
    run("insert into TelegramChats values ('5', 'Ann')");
    for (const char* kind : {"404", "204", "500", "cut", "stall", "garbage", "slow"}) {
        get(std::string("telegram/fault?kind=") + kind);
        const auto start = std::chrono::steady_clock::now();
        // Error pages of the server have line feeds and no message.
        if (std::string(kind) == "404" || std::string(kind) == "500")
            prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
        EXPECT_FALSE(bot.telegramTokenValid()) << kind;
        log.messages.clear();
        bot.generateMsgTelegram();
        EXPECT_EQ(log.messages.size(), 2u) << kind;
        EXPECT_EQ(log.messages.front(), "Telegram : Event sended to 1 contact.") << kind;
        EXPECT_LT(std::chrono::steady_clock::now() - start, 40s) << kind;
        EXPECT_EQ(tremor::testing::valueOf(database, "select count(*) from TelegramChats"), "1");
    }
    get("telegram/fault?kind=none");
    EXPECT_TRUE(bot.telegramTokenValid());
    for (const std::string& error : transfer.errors)
        EXPECT_EQ(error.find("practice"), std::string::npos) << error;
}

TEST_F(BotAndService, FailsAtOnceWhereNobodyListens) {
    TelegramBot nowhere = botAt("http://127.0.0.1:1");
    EXPECT_FALSE(nowhere.telegramTokenValid());
    nowhere.generateMsgTelegram();
    EXPECT_EQ(log.messages, Texts{"Telegram : Event sended to 0 contact."});
    ASSERT_EQ(transfer.errors.size(), 3u);
    for (const std::string& error : transfer.errors)
        EXPECT_EQ(error, tremor::testing::cannotOpen);
}

TEST_F(BotAndService, LeavesTheFeedsAloneWhenItFails) {
    get("telegram/fault?kind=500");
    const auto feed = httplib::Client("127.0.0.1", server.port())
                          .Get("/fdsnws/event/1/query?format=text&limit=4000");
    ASSERT_TRUE(feed);
    EXPECT_EQ(feed->status, 200);
    EXPECT_EQ(get("last"), feed->body);
    bot.telegramTokenValid();
    EXPECT_EQ(get("last"), feed->body);
}

} // namespace
} // namespace tremor::practice
