#include "practice_feeds/telegram_service.h"

#include "core/code_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <optional>

namespace tremor::practice {

namespace {

constexpr std::size_t mostUpdates = 100;
constexpr std::size_t longestMessage = 4096; // UTF-16 units
constexpr std::string_view botUser =
    R"({"id":1,"is_bot":true,"first_name":"Practice","username":"TremorPracticeBot"})";
constexpr std::string_view me =
    R"({"ok":true,"result":{"id":1,"is_bot":true,"first_name":"Practice","username":"TremorPracticeBot","can_join_groups":true,"can_read_all_group_messages":false,"supports_inline_queries":false,"can_connect_to_business":false,"has_main_web_app":false,"has_topics_enabled":false,"allows_users_to_create_topics":false,"can_manage_bots":false}})";

std::optional<std::int64_t> wholeNumber(const std::string* text) {
    std::int64_t number = 0;
    if (text == nullptr)
        return std::nullopt;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, number);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

std::string decoded(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        const char* digits = text.data() + i + 1;
        if (text[i] == '%' && text.size() - i > 2 &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            plain += static_cast<char>(byte);
            i += 2;
        } else {
            plain += text[i] == '+' ? ' ' : text[i];
        }
    }
    return plain;
}

// A string of JSON, all ASCII as the service writes it.
std::string jsonText(std::string_view utf8) {
    std::string text = "\"";
    for (const char16_t unit : DecodeUTF8(utf8)) {
        if (unit == u'"' || unit == u'\\' || unit == u'/')
            text.append(1, '\\').append(1, static_cast<char>(unit));
        else if (unit == u'\n')
            text += "\\n";
        else if (unit < 0x20 || unit > 0x7E)
            text += fmt::format("\\u{:04x}", static_cast<unsigned>(unit));
        else
            text += static_cast<char>(unit);
    }
    return text + '"';
}

Answer json(int status, std::string body) {
    return {status, std::move(body), "application/json"};
}

Answer failure(int status, std::string_view description) {
    return json(status, fmt::format(R"({{"ok":false,"error_code":{},"description":"{}"}})", status,
                                    description));
}

bool looksLikeToken(std::string_view text) {
    const std::size_t digits = text.find_first_not_of("0123456789");
    return digits != 0 && digits != std::string_view::npos && text[digits] == ':' &&
           digits + 1 < text.size();
}

bool isCoordinate(const std::string* text, double limit) {
    double degrees = 0;
    if (text == nullptr)
        return false;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, degrees);
    return error == std::errc() && stop == end && degrees >= -limit && degrees <= limit;
}

// What is wrong with a message; nothing when it is good.
std::optional<std::string_view> fault(const std::string& method, const Request& request) {
    if (method == "sendLocation") {
        if (!isCoordinate(request.find("latitude"), 90) ||
            !isCoordinate(request.find("longitude"), 180))
            return "Bad Request: wrong location";
        return std::nullopt;
    }
    const std::string text = request.value("text");
    if (!isValidUtf8(text))
        return "Bad Request: strings must be encoded in UTF-8";
    if (text.find_first_not_of(" \n") == std::string::npos)
        return "Bad Request: message text is empty";
    if (DecodeUTF8(text).size() > longestMessage)
        return "Bad Request: message is too long";
    return std::nullopt;
}

std::string content(const std::string& method, const Request& request) {
    if (method == "sendLocation")
        return fmt::format(R"("location":{{"latitude":{},"longitude":{}}})",
                           request.value("latitude"), request.value("longitude"));
    return "\"text\":" + jsonText(request.value("text"));
}

std::int64_t secondsNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string names(std::string_view first, std::string_view last) {
    std::string text = "\"first_name\":" + jsonText(first);
    if (!last.empty())
        text += ",\"last_name\":" + jsonText(last);
    return text;
}

} // namespace

std::vector<std::string> TelegramService::controlPaths() {
    return {"/practice/telegram", "/practice/telegram/write", "/practice/telegram/block",
            "/practice/telegram/unblock", "/practice/telegram/clear"};
}

Request TelegramService::requestOf(std::string_view target) {
    const std::size_t mark = std::min(target.find('?'), target.size());
    Request request{std::string(target.substr(0, mark)), {}};
    for (std::string_view rest = target.substr(mark); !rest.empty();) {
        rest.remove_prefix(1); // the "?" or "&"
        const std::string_view pair = rest.substr(0, rest.find('&'));
        const std::size_t equals = std::min(pair.find('='), pair.size());
        if (!pair.empty())
            request.query[decoded(pair.substr(0, equals))] =
                decoded(pair.substr(std::min(equals + 1, pair.size())));
        rest.remove_prefix(pair.size());
    }
    return request;
}

Answer TelegramService::answer(const Request& request) {
    const std::lock_guard lock(mutex_);
    const std::string_view path = std::string_view(request.path).substr(4); // behind "/bot"
    const std::size_t slash = path.rfind('/');
    const std::string_view given = path.substr(0, slash);
    const std::string method(path.substr(slash + 1));
    if (!looksLikeToken(given))
        return failure(404, "Not Found");
    if (given != token)
        return failure(401, "Unauthorized");
    if (method == "getMe")
        return json(200, std::string(me));
    if (method == "getUpdates")
        return getUpdates(request);
    if (method == "sendMessage" || method == "sendLocation")
        return send(method, request);
    return failure(404, "Not Found");
}

// With an offset the updates before it are forgotten; a negative one counts from the end.
Answer TelegramService::getUpdates(const Request& request) {
    if (const auto offset = wholeNumber(request.find("offset"))) {
        const std::int64_t first = *offset < 0 ? nextUpdate_ + *offset : *offset;
        std::erase_if(updates_, [&](const Update& update) { return update.id < first; });
    }
    const std::int64_t limit = wholeNumber(request.find("limit")).value_or(mostUpdates);
    const std::size_t count = std::min(
        {updates_.size(), mostUpdates, static_cast<std::size_t>(std::max<std::int64_t>(limit, 1))});
    std::string list;
    for (std::size_t i = 0; i < count; ++i)
        list += fmt::format("{}{{\"update_id\":{},\n{}}}", i == 0 ? "" : ",", updates_[i].id,
                            updates_[i].body);
    return json(200, fmt::format(R"({{"ok":true,"result":[{}]}})", list));
}

Answer TelegramService::send(const std::string& method, const Request& request) {
    if (request.value("chat_id").empty())
        return failure(400, "Bad Request: chat_id is empty");
    const auto id = wholeNumber(request.find("chat_id"));
    const auto chat = id ? chats_.find(*id) : chats_.end();
    if (const auto wrong = fault(method, request))
        return failure(400, *wrong);
    if (chat == chats_.end())
        return failure(400, "Bad Request: chat not found");
    if (chat->second.blocked)
        return failure(403, "Forbidden: bot was blocked by the user");
    const std::string what = content(method, request);
    taken_ += fmt::format("{{\"method\":\"{}\",\"chat_id\":{},{}}}\n", method, *id, what);
    return json(200, fmt::format(R"({{"ok":true,"result":{{"message_id":{},"from":{},"chat":)"
                                 R"({{"id":{},{},"type":"private"}},"date":{},{}}}}})",
                                 nextMessage_++, botUser, *id,
                                 names(chat->second.firstName, chat->second.lastName), secondsNow(),
                                 what));
}

Answer TelegramService::control(const Request& request) {
    const std::lock_guard lock(mutex_);
    const std::string& path = request.path;
    if (path == "/practice/telegram")
        return {200, taken_};
    if (path.ends_with("/clear")) {
        taken_.clear();
        return {200, "ok\n"};
    }
    const auto id = wholeNumber(request.find("id"));
    if (!id)
        return {400, "id is a number\n"};
    if (path.ends_with("/write"))
        return write(*id, request);
    return setBlocked(*id, path.ends_with("/block"));
}

Answer TelegramService::write(Chats::key_type id, const Request& request) {
    if (request.value("first_name").empty())
        return {400, "first_name is the writer's\n"};
    Chat& chat = chats_[id];
    chat = {request.value("first_name"), request.value("last_name"), false};
    const std::string* text = request.find("text");
    addUpdate(messageBody({id, chat}, text == nullptr ? "/start" : *text));
    return {200, "ok\n"};
}

// The service tells the bot of it by an update of its own, which is no message.
Answer TelegramService::setBlocked(Chats::key_type id, bool blocked) {
    const auto chat = chats_.find(id);
    if (chat == chats_.end())
        return {400, "nobody with this id has written yet\n"};
    chat->second.blocked = blocked;
    const std::string who = names(chat->second.firstName, chat->second.lastName);
    const auto member = [](std::string_view status) {
        return fmt::format(R"({{"user":{},"status":"{}"}})", botUser, status);
    };
    addUpdate(fmt::format(
        R"("my_chat_member":{{"chat":{{"id":{0},{1},"type":"private"}},"from":{{"id":{0},)"
        R"("is_bot":false,{1},"language_code":"en"}},"date":{2},"old_chat_member":{3},)"
        R"("new_chat_member":{4}}})",
        id, who, secondsNow(), member(blocked ? "member" : "kicked"),
        member(blocked ? "kicked" : "member")));
    return {200, "ok\n"};
}

void TelegramService::addUpdate(std::string body) {
    updates_.push_back({nextUpdate_++, std::move(body)});
}

std::string TelegramService::messageBody(const Chats::value_type& chat, const std::string& text) {
    const std::string who = names(chat.second.firstName, chat.second.lastName);
    return fmt::format(R"("message":{{"message_id":{0},"from":{{"id":{1},"is_bot":false,{2},)"
                       R"("language_code":"en"}},"chat":{{"id":{1},{2},"type":"private"}},)"
                       R"("date":{3},"text":{4}}})",
                       nextMessage_++, chat.first, who, secondsNow(), jsonText(text));
}

} // namespace tremor::practice
