#pragma once

#include "practice_feeds/practice_service.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::practice {

// Telegram's Bot API (https://core.telegram.org/bots/api) for one bot with the token 1:practice:
// GET /botTOKEN/METHOD for getMe, getUpdates, sendMessage and sendLocation, with the replies and
// the errors of the real service and in its layout, a line feed behind each "update_id" included.
// A chat is known when somebody has written from it.
//
// Control requests:
//   /practice/telegram                     the messages taken so far, one a line in JSON
//   /practice/telegram/write?id=N&first_name=NAME[&last_name=NAME][&text=TEXT]
//                                          somebody writes to the bot
//   /practice/telegram/block?id=N          somebody blocks the bot
//   /practice/telegram/unblock?id=N        and lets it in again
//   /practice/telegram/clear               forget the messages taken
// and /practice/telegram/fault, which the server answers itself.
class TelegramService {
  public:
    static constexpr std::string_view token = "1:practice";
    static constexpr std::string_view requestPattern = "/bot([^/]*)/([A-Za-z]*)"; // regex

    static std::vector<std::string> controlPaths();

    // A request as it came, "/bot1:practice/sendMessage?text=a%20=%20b&chat_id=5", of which a value
    // may hold "=".
    static Request requestOf(std::string_view target);

    // One request of a bot or of control. Calls come from several threads.
    Answer answer(const Request& request);
    Answer control(const Request& request);

  private:
    struct Chat {
        std::string firstName;
        std::string lastName;
        bool blocked = false;
    };
    struct Update {
        std::int64_t id;
        std::string body; // behind the update's id, for example "\"message\":{…}"
    };
    using Chats = std::map<std::int64_t, Chat>;

    Answer getUpdates(const Request& request);
    Answer send(const std::string& method, const Request& request);
    Answer write(Chats::key_type id, const Request& request);
    Answer setBlocked(Chats::key_type id, bool blocked);
    void addUpdate(std::string body);
    std::string messageBody(const Chats::value_type& chat, const std::string& text);

    std::mutex mutex_;
    Chats chats_;
    std::vector<Update> updates_;
    std::int64_t nextUpdate_ = 685677420;
    std::int64_t nextMessage_ = 2;
    std::string taken_;
};

} // namespace tremor::practice
