#include "alerts/pagerlink_client.h"

#include "alerts/newest_event.h"
#include "core/code_pages.h"
#include "core/common_text.h"
#include "core/conversions.h"
#include "core/dates.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <limits>

namespace tremor {

namespace {

using namespace std::chrono_literals;

constexpr int mostTries = 100;
constexpr auto pauseBetweenTries = 100ms;

struct Notice {
    std::string_view prefix;
    std::string NewestEvent::*value;
};

// In the order in which the server wants them.
constexpr auto notices = std::to_array<Notice>({
    {"formNEW EARTQUAKE = ", &NewestEvent::utc},
    {"formMAGNITUDE = ", &NewestEvent::magnitude},
    {"formLATITUDE = ", &NewestEvent::latitude},
    {"formLONGITUDE = ", &NewestEvent::longitude},
    {"formDEPTH = ", &NewestEvent::depth},
});

// Behind it the server reads the name of the user.
constexpr char nameMark = '\x02';

// "10:15:02"
std::string timeOfDay(DateTime time) {
    return dateToText(time).substr(11);
}

} // namespace

std::uint16_t pagerlinkPort(std::string_view text, const NumberLocale& locale) {
    const std::int32_t port = textToLong(text, locale);
    if (port < 0 || port > std::numeric_limits<std::uint16_t>::max())
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return static_cast<std::uint16_t>(port);
}

std::string pagerlinkBytes(std::string_view text) {
    std::string bytes;
    for (const char16_t unit : DecodeUTF8(text)) {
        const bool secondOfPair = unit >= 0xDC00 && unit <= 0xDFFF;
        if (!secondOfPair)
            bytes += unit <= 0xFF ? static_cast<char>(unit) : '?';
    }
    return bytes;
}

std::string pagerlinkText(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (const char byte : bytes)
        text += static_cast<char16_t>(static_cast<unsigned char>(byte));
    return EncodeUTF8(text);
}

std::vector<std::string_view> pagerlinkUsers(std::string_view reply) {
    std::vector<std::string_view> words = split(reply, ' ');
    words.erase(words.begin());
    return words;
}

void PagerlinkClient::generateMsgPagerlink() {
    if (context_.settings.enablePagerlink != 1)
        return;
    ProcedureTrace trace(context_.errors, "Form - panel", "generateMsgPagerlink");
    // One step for all of it: a bad port would otherwise ask at each of the datagrams.
    trace.step([this] { sendNewestEvent(); });
}

std::string PagerlinkClient::sendPagerlinkRequest(std::string_view text) {
    context_.udpClient.send(context_.settings.PGLserver,
                            pagerlinkPort(context_.settings.PGLport, context_.locale),
                            pagerlinkBytes(text));
    return pagerlinkText(context_.udpClient.receive().value_or(""));
}

void PagerlinkClient::sendNewestEvent() {
    const std::vector<std::string> users = recipients();
    if (users.empty())
        return;
    const std::optional<NewestEvent> event = newestEvent(context_.database);
    if (!event)
        return;
    for (const std::string& user : users) {
        for (const Notice& notice : notices)
            sendPagerlinkRequest(fmt::format("{}{}{}{}{}", notice.prefix, (*event).*notice.value,
                                             timeOfDay(context_.clock.now()), nameMark, user));
    }
}

std::vector<std::string> PagerlinkClient::recipients() {
    const AppSettings& settings = context_.settings;
    if (settings.PGLAllOrSelected == 1) {
        if (settings.PGLselectedUsers.empty())
            return {};
        const std::vector<std::string_view> names = split(settings.PGLselectedUsers, '|');
        return {names.begin(), names.end()};
    }
    const std::optional<std::string> reply = askForUsers();
    if (!reply)
        return {};
    const std::vector<std::string_view> names = pagerlinkUsers(*reply);
    if (names.size() <= 1)
        return {};
    return {names.begin(), names.end()};
}

std::optional<std::string> PagerlinkClient::askForUsers() {
    int tries = 0;
    std::string reply;
    while (reply.empty() && tries <= mostTries) {
        reply = sendPagerlinkRequest(pagerlinkListRequest);
        context_.clock.sleep(pauseBetweenTries);
        context_.clock.pump();
        if (context_.session.waitsMustEnd())
            return std::nullopt;
        ++tries;
    }
    if (tries >= mostTries) {
        context_.log.addLogToList("Connection failed to Pagerlink.");
        return std::nullopt;
    }
    return reply;
}

} // namespace tremor
