#pragma once

#include "core/error_report.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What is cut out of the replies of Telegram's Bot API (https://core.telegram.org/bots/api), and
// the form of what is sent to it. Replies are cut as text, never read as JSON: the layout of the
// service counts, down to the line feed that it puts in front of each "message".
namespace tremor {

// Somebody who wrote to the bot.
struct telegramUser {
    std::string id;   // the sender's; in a private chat the chat's id, too
    std::string name; // as the reply has it, \uXXXX included, with whatever stands behind the names
    bool known = false; // has a row in TelegramChats
};

struct TelegramUpdates {
    std::vector<telegramUser> users; // each id and name once, in the order of the reply
    // What could not be cut: error 5 for a reply with line feeds and no message, or for a message
    // without a sender, 9 for one without any object inside. The other messages count all the same.
    std::optional<RuntimeError> error;
};

// The senders in a reply of getUpdates. Of
//
//     {"ok":true,"result":[{"update_id":7,
//     "message":{"message_id":5,"from":{"id":123,"is_bot":false,"first_name":"Ann","last_name":
//     "Bel","language_code":"it"},"chat":{…
//
// (the message in one line) it gives id "123", name "Ann Bel,language_code:it". A reply without any
// line feed has no messages. A name ends at its first "|".
TelegramUpdates cutUpdates(std::string_view reply);

// True for the good reply of getUpdates.
bool isGoodUpdatesReply(std::string_view reply);

// The bot's name in a reply of getMe, with whatever stands behind it when it is not the last key;
// empty when there is none.
std::string cutBotName(std::string_view reply);

// True when the bot may not write to the chat, for example because its follower blocked the bot.
bool isForbiddenReply(std::string_view reply);

// True when the service did as it was asked.
bool isGoodReply(std::string_view reply);

// The digits of the reply's error code, for example "429"; empty when it has none.
std::string cutErrorCode(std::string_view reply);

// A text for sendMessage, lines separated by "%0A": each line in UTF-8 (one that is not is taken
// as Windows-1252), and of more than `limit` UTF-16 units, which the service would refuse, the
// whole lines that fit. A text whose first line does not fit stays whole.
std::string messageText(std::string_view text, std::size_t limit = 4096);

} // namespace tremor
