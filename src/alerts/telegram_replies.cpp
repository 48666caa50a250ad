#include "alerts/telegram_replies.h"

#include "core/code_pages.h"
#include "core/common_text.h"

#include <algorithm>
#include <cctype>
#include <unordered_set>

namespace tremor {

namespace {

constexpr std::string_view lineFeed = "%0A"; // as a query has it

// What stands in front of a mark, behind it; nothing without the mark.
std::optional<std::string_view> textBefore(std::string_view text, std::string_view mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string_view::npos)
        return std::nullopt;
    return text.substr(0, place);
}

std::optional<std::string_view> textBehind(std::string_view text, std::string_view mark) {
    const std::size_t place = text.find(mark);
    if (place == std::string_view::npos)
        return std::nullopt;
    return text.substr(place + mark.size());
}

std::string_view cutBefore(std::string_view text, std::string_view mark) {
    return textBefore(text, mark).value_or(text);
}

// Names are chosen by strangers. One with a "{" ends there, because the object does; one with a "|"
// ends at it, so that nobody can bring in a second follower behind it.
std::string cutName(std::string_view sender) {
    const auto given = textBehind(sender, "first_name:");
    if (!given)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    const std::string names = replaceAll(*given, ",last_name:", " ");
    return std::string(cutBefore(cutBefore(names, "}"), "|"));
}

// The sender of a line `"message":{…`; nothing when the sender has no id.
std::optional<telegramUser> cutSender(std::string_view line) {
    const std::string bare = replaceAll(line, "\"", "");
    const std::vector<std::string_view> parts = split(bare, '{');
    if (parts.size() < 3)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    std::string name = cutName(parts[2]);
    const auto id = textBehind(cutBefore(parts[2], ","), ":");
    if (!id)
        return std::nullopt;
    return telegramUser{std::string(*id), std::move(name)};
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    const auto same = [](unsigned char left, unsigned char right) {
        return std::tolower(left) == std::tolower(right);
    };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

std::size_t lengthInUtf16(std::string_view utf8) {
    return DecodeUTF8(utf8).size();
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (const auto line = textBefore(text, lineFeed)) {
        lines.push_back(*line);
        text.remove_prefix(line->size() + lineFeed.size());
    }
    lines.push_back(text);
    return lines;
}

} // namespace

TelegramUpdates cutUpdates(std::string_view reply) {
    TelegramUpdates updates;
    const std::vector<std::string_view> lines = split(reply, '\n');
    if (lines.size() < 2)
        return updates;
    bool anyMessage = false;
    std::unordered_set<std::string> seen;
    for (const std::string_view line : lines) {
        if (!line.starts_with("\"message\""))
            continue;
        anyMessage = true;
        try {
            std::optional<telegramUser> user = cutSender(line);
            if (user && seen.insert(user->id + "," + user->name).second)
                updates.users.push_back(std::move(*user));
        } catch (const RuntimeError& error) {
            if (!updates.error)
                updates.error = error;
        }
    }
    if (!anyMessage)
        updates.error = RuntimeError(ErrorNumber::InvalidProcedureCall);
    return updates;
}

bool isGoodUpdatesReply(std::string_view reply) {
    return reply.find(R"({"ok":true,"result)") != std::string_view::npos;
}

std::string cutBotName(std::string_view reply) {
    const std::size_t key = reply.find("\"username\"");
    if (key == std::string_view::npos)
        return {};
    const std::string text = replaceAll(reply.substr(key + 1), "username\":\"", "");
    return replaceAll(text, "\"}}", "");
}

bool isForbiddenReply(std::string_view reply) {
    return containsIgnoringCase(reply, "error_code\":403");
}

bool isGoodReply(std::string_view reply) {
    return reply.find("\"ok\":true") != std::string_view::npos;
}

std::string cutErrorCode(std::string_view reply) {
    constexpr std::size_t mostDigits = 3;
    const std::string_view code =
        textBehind(reply, "\"error_code\":").value_or("").substr(0, mostDigits);
    return std::string(code.substr(0, code.find_first_not_of("0123456789")));
}

std::string messageText(std::string_view text, std::size_t limit) {
    std::vector<std::string> lines;
    for (const std::string_view line : linesOf(text))
        lines.push_back(isValidUtf8(line) ? std::string(line) : EncodeUTF8(DecodeUTF8(line)));

    std::string message = lines.front();
    std::size_t length = lengthInUtf16(message);
    const bool firstFits = length <= limit;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        length += 1 + lengthInUtf16(lines[i]);
        if (firstFits && length > limit)
            break;
        message.append(lineFeed).append(lines[i]);
    }
    return message;
}

} // namespace tremor
