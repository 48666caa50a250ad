#include "alerts/telegram_documents.h"
#include "alerts/telegram_replies.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::telegramReply;
using testing::updatesReply;

// "id|name" of each sender.
std::vector<std::string> usersOf(const std::string& reply) {
    std::vector<std::string> users;
    for (const telegramUser& user : cutUpdates(reply).users) {
        EXPECT_FALSE(user.known);
        users.push_back(user.id + "|" + user.name);
    }
    return users;
}

ErrorNumber errorOf(const std::string& reply) {
    const TelegramUpdates updates = cutUpdates(reply);
    EXPECT_TRUE(updates.error.has_value()) << reply;
    return updates.error ? updates.error->number() : ErrorNumber::UserDefined;
}

using Users = std::vector<std::string>;

TEST(CutUpdates, TakesIdAndNamesOfASender) {
    const std::string reply =
        R"({"ok":true,"result":[{"update_id":7,)"
        "\n"
        R"("message":{"message_id":5,"from":{"id":123,"is_bot":false,"first_name":"Ann",)"
        R"("last_name":"Bel"},"chat":{"id":123,"first_name":"Ann","type":"private"}}}]})";
    EXPECT_EQ(usersOf(reply), Users{"123|Ann Bel"});
    EXPECT_FALSE(cutUpdates(reply).error);
}

TEST(CutUpdates, LeavesOtherKeysBehindTheNames) {
    EXPECT_EQ(usersOf(updatesReply({{"123", R"("first_name":"Ann","language_code":"it")"}})),
              Users{"123|Ann,language_code:it"});
}

TEST(CutUpdates, MakesOneRecordOfThreeMessagesOfARealReply) {
    EXPECT_EQ(usersOf(telegramReply("getUpdates_three_private.json")),
              Users{"100000001|Anon,username:anonuser,language_code:en"});
}

TEST(CutUpdates, MakesTwoRecordsOfAUserWhoChangedName) {
    EXPECT_EQ(usersOf(updatesReply({{"5", R"("first_name":"Ann")"},
                                    {"5", R"("first_name":"Anna")"},
                                    {"5", R"("first_name":"Ann")"}})),
              (Users{"5|Ann", "5|Anna"}));
}

TEST(CutUpdates, FindsNobodyInAReplyWithoutALineFeed) {
    for (const std::string& reply :
         {telegramReply("getUpdates_empty.json"), telegramReply("error_401.json"), std::string(),
          std::string(3000, '\xB5'), std::string(R"("message":{"from":{"id":1}})")}) {
        EXPECT_EQ(usersOf(reply), Users{});
        EXPECT_FALSE(cutUpdates(reply).error);
    }
}

TEST(CutUpdates, FailsOnLineFeedsWithoutAMessage) {
    EXPECT_EQ(errorOf("{\"ok\":true,\"result\":[{\"update_id\":7,\n\"my_chat_member\":{}}]}"),
              ErrorNumber::InvalidProcedureCall);
    EXPECT_EQ(errorOf("\n"), ErrorNumber::InvalidProcedureCall);
    EXPECT_EQ(errorOf("<html>\n<body>\n</body>\n</html>\n"), ErrorNumber::InvalidProcedureCall);
}

TEST(CutUpdates, FailsOnAMessageWithoutASenderAndTakesTheOthers) {
    const std::string reply =
        "[{\n\"message\":{\"message_id\":5,\"chat\":{\"id\":-100,\"title\":\"Room\"}}},{\n"
        "\"message\":{\"message_id\":6,\"from\":{\"id\":9,\"first_name\":\"Ann\"},\"chat\":{}}}]";
    EXPECT_EQ(errorOf(reply), ErrorNumber::InvalidProcedureCall);
    EXPECT_EQ(usersOf(reply), Users{"9|Ann"});
}

TEST(CutUpdates, FailsOnAMessageWithoutAnyObject) {
    EXPECT_EQ(errorOf("x\n\"message\""), ErrorNumber::SubscriptOutOfRange);
    EXPECT_EQ(errorOf("x\n\"message\":{\"message_id\":5}"), ErrorNumber::SubscriptOutOfRange);
}

TEST(CutUpdates, SkipsASenderWithoutAnId) {
    EXPECT_EQ(usersOf("x\n\"message\":{{id,first_name:Ann}"), Users{});
}

TEST(CutUpdates, KeepsAHostileNameInsideItsOwnRecord) {
    const std::pair<const char*, const char*> names[] = {
        {R"(x|999,evil)", "x"},
        {R"(a{b)", "a"},
        {R"(a}b)", "a"},
        {R"(\"quoted\")", R"(\quoted\)"},
        {R"(x'); drop table Events; --)", "x'); drop table Events; --"},
        {R"(x'),('999','y)", "x'),('999','y"},
        {R"(\nfirst_name:Bob)", R"(\nfirst_name:Bob)"},
        {R"(,last_name:Bob)", " Bob"},
        {R"(%0A&chat_id=5)", "%0A&chat_id=5"},
        {"", ""}};
    for (const auto& [name, cut] : names) {
        const std::string keys = R"("first_name":")" + std::string(name) + "\"";
        EXPECT_EQ(usersOf(updatesReply({{"5", keys}, {"6", R"("first_name":"Ann")"}})),
                  (Users{"5|" + std::string(cut), "6|Ann"}))
            << name;
    }
}

// Work that copies what is left at each sender would not end.
TEST(CutUpdates, ReadsALargeReply) {
    std::vector<testing::Sender> senders;
    for (int i = 0; i < 200000; ++i)
        senders.push_back({std::to_string(i), R"("first_name":"Ann")"});
    const std::string reply = updatesReply(senders);
    EXPECT_EQ(cutUpdates(reply).users.size(), 200000u);
    const std::string name(100000, 'n');
    EXPECT_EQ(usersOf(updatesReply({{"5", R"("first_name":")" + name + "\""}})),
              Users{"5|" + name});
}

TEST(CutUpdates, SurvivesEveryCutOfARealReply) {
    const std::string whole = telegramReply("getUpdates_three_private.json");
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const TelegramUpdates updates = cutUpdates(whole.substr(0, length));
        ASSERT_LE(updates.users.size(), 3u) << length;
        for (const telegramUser& user : updates.users)
            ASSERT_EQ(user.id, "100000001") << length;
    }
}

TEST(TelegramReplies, TellAGoodTokenFromABadOne) {
    EXPECT_TRUE(isGoodUpdatesReply(telegramReply("getUpdates_empty.json")));
    EXPECT_TRUE(isGoodUpdatesReply(telegramReply("getUpdates_three_private.json")));
    EXPECT_FALSE(isGoodUpdatesReply(telegramReply("error_401.json")));
    EXPECT_FALSE(isGoodUpdatesReply(""));
}

TEST(TelegramReplies, NameTheBotWithWhatStandsBehindIt) {
    EXPECT_EQ(cutBotName(R"({"ok":true,"result":{"id":1,"username":"mybot"}})"), "mybot");
    EXPECT_EQ(cutBotName(telegramReply("getMe_2026.json")).substr(0, 34),
              R"(DemoExampleBot","can_join_groups":)");
    EXPECT_EQ(cutBotName(telegramReply("error_401.json")), "");
    EXPECT_EQ(cutBotName("\"username\""), "username\"");
}

TEST(TelegramReplies, KnowTheErrorsOfTheService) {
    const std::string blocked = telegramReply("error_403_blocked.json");
    EXPECT_EQ(blocked.size(), 84u);
    EXPECT_TRUE(isForbiddenReply(blocked));
    EXPECT_TRUE(isForbiddenReply("{\"ERROR_CODE\":403}"));
    EXPECT_FALSE(isForbiddenReply(telegramReply("error_429.json")));
    EXPECT_FALSE(isForbiddenReply(R"({"ok":true,"result":{"text":"error_code\":403"}})"));
    EXPECT_EQ(cutErrorCode(telegramReply("error_429.json")), "429");
    EXPECT_EQ(cutErrorCode("{\"error_code\":"), "");
    EXPECT_EQ(cutErrorCode("{\"error_code\":40012345}"), "400");
    EXPECT_TRUE(isGoodReply(telegramReply("sendMessage_ok_group.json")));
    EXPECT_FALSE(isGoodReply(blocked));
}

TEST(MessageText, LeavesAnOrdinaryTextAlone) {
    for (const char* text : {"", "EVT 2016-08-24 01:36:32%0Amag=6.0 loc=42.7 13.23 d=8.1%0A",
                             "L'Aquila & Teramo #1%0A%0A", "Forl\xC3\xAC = Km 3.27"})
        EXPECT_EQ(messageText(text), text);
}

// Names of towns come in Windows-1252, which the service would refuse.
TEST(MessageText, IsUtf8LineByLine) {
    EXPECT_EQ(messageText("Forl\xEC = Km 3.27%0A\xD0\xA1\xD0\xBE\xD1\x87\xD0\xB8 = Km 9.1"),
              "Forl\xC3\xAC = Km 3.27%0A\xD0\xA1\xD0\xBE\xD1\x87\xD0\xB8 = Km 9.1");
}

TEST(MessageText, KeepsTheWholeLinesThatTheServiceTakes) {
    EXPECT_EQ(messageText("abc%0Adef", 7), "abc%0Adef");
    EXPECT_EQ(messageText("abc%0Adef", 6), "abc");
    EXPECT_EQ(messageText("abc%0A%0Adef", 7), "abc%0A");
    EXPECT_EQ(messageText("\xC3\xAC\xC3\xAC%0A\xF0\x9F\x98\x80", 5),
              "\xC3\xAC\xC3\xAC%0A\xF0\x9F\x98\x80");
    EXPECT_EQ(messageText("\xC3\xAC\xC3\xAC%0A\xF0\x9F\x98\x80", 4), "\xC3\xAC\xC3\xAC");
    EXPECT_EQ(messageText("abcdef%0Ag", 5), "abcdef%0Ag");
    std::string towns;
    for (int i = 0; i < 300; ++i)
        towns += "Borgo Alto = Km 3.27%0A"; // 21 characters each
    EXPECT_EQ(messageText(towns).size(), 195u * 23 - 3);
}

} // namespace
} // namespace tremor
