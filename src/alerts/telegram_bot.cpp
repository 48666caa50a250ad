#include "alerts/telegram_bot.h"

#include "core/common_text.h"
#include "core/files.h"
#include "core/flag_scope.h"
#include "database/row_writer.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::int32_t chunkSize = 4096; // bytes
constexpr int silentFollowersLimit = 3;

// The first lines of a message.
std::string headOf(const NewestEvent& event) {
    return fmt::format("EVT {}%0Amag={} loc={} {} d={}%0A", event.utc, event.magnitude,
                       event.latitude, event.longitude, event.depth);
}

// The town report in fewer words and with the line feeds of a query.
std::string rewordedTowns(std::string_view report) {
    std::string text =
        replaceAll(report, "TOWNS WITH DISTANCE LESS OF 10 KM", "=== Towns less than 10km");
    text = replaceAll(text, "-----------------------------\r\n", "");
    text = replaceAll(text, "TOWNS WITH DISTANCE BETWEEN FROM 10 KM TO 20 KM",
                      "=== Towns > 10km < 20km");
    return replaceAll(text, "\r\n", "%0A");
}

// Why a message was not taken; empty when it was, or when its follower is gone.
std::string failureIn(std::string_view reply) {
    if (reply.empty())
        return "the service did not answer";
    if (isGoodReply(reply) || isForbiddenReply(reply))
        return {};
    const std::string code = cutErrorCode(reply);
    return code.empty() ? "the answer of the service could not be read"
                        : fmt::format("the service answered with error {}", code);
}

} // namespace

struct TelegramBot::UserInserts {
    std::int32_t tried = 0;
    std::int32_t lost = 0; // that the log has not told of
    std::string reason;    // of the first loss
};

TelegramBot::TelegramBot(const AppSettings& settings, Session& session, Database& database,
                         NearbyTowns& towns, TelegramTransfer& transfer, Log& log,
                         ErrorReport& errors, std::string applicationPath, std::string host)
    : settings_(settings),
      session_(session),
      database_(database),
      towns_(towns),
      transfer_(transfer),
      log_(log),
      errors_(errors),
      applicationPath_(std::move(applicationPath)),
      host_(std::move(host)) {}

std::string TelegramBot::urlOf(std::string_view token, std::string_view request) const {
    return fmt::format("{}/bot{}{}", host_, token, request);
}

std::string TelegramBot::logFolder() const {
    return applicationPath_ + "/logs/";
}

void TelegramBot::makeLogFolder(ProcedureTrace& trace) const {
    trace.step([&] { createFolder(logFolder()); });
}

// The reply, empty when none came. Window messages run meanwhile, and one of them may begin a
// request to the same file.
std::string TelegramBot::request(const std::string& url, std::string_view file,
                                 ProcedureTrace& trace) {
    std::string target = logFolder().append(file);
    const bool nested = requests_ > 0;
    if (nested)
        target += fmt::format(".{}", requests_);
    ++requests_;
    bool answered = false;
    trace.step([&] { answered = transfer_.DownloadFile(url, target, chunkSize, true); });
    std::string reply;
    if (answered)
        trace.step([&] { reply = readWholeFile(target); });
    if (nested)
        DeleteFileText(target);
    --requests_;
    return reply;
}

std::int16_t TelegramBot::testToken(std::string_view token, std::string& botName) {
    ProcedureTrace trace(errors_, "Module - Common", "testToken");
    makeLogFolder(trace);
    const bool works =
        isGoodUpdatesReply(request(urlOf(token, "/getUpdates"), "checkToken.log", trace));
    botName = cutBotName(request(urlOf(token, "/getMe"), "checkTokenName.log", trace));
    return works ? 0 : 1;
}

bool TelegramBot::telegramTokenValid() {
    std::string botName;
    return testToken(settings_.TelegramToken, botName) == 0;
}

void TelegramBot::checkIdTelegram(std::int32_t& added, bool& changed) {
    ProcedureTrace trace(errors_, module, "checkIdTelegram");
    changed = false;
    makeLogFolder(trace);
    TelegramUpdates updates =
        cutUpdates(request(urlOf(settings_.TelegramToken, "/getUpdates"), "idFound.log", trace));
    if (updates.error)
        trace.step([&] { throw RuntimeError(*updates.error); });
    if (updates.users.empty())
        return;
    markKnown(updates.users);
    const UserInserts inserts = insertUnknown(updates.users);
    added += inserts.tried;
    changed = inserts.tried > 0;
    if (inserts.lost > 0)
        log_.addLogToList(fmt::format("Telegram : {} {} not stored, {}", inserts.lost,
                                      inserts.lost == 1 ? "follower" : "followers",
                                      inserts.reason));
}

void TelegramBot::markKnown(std::vector<telegramUser>& users) {
    std::unordered_map<std::string, std::vector<telegramUser*>> byId;
    std::string list = "'";
    for (telegramUser& user : users) {
        if (!pastedTextValue(user.id))
            return;
        byId[user.id].push_back(&user);
        list.append(user.id).append("','");
    }
    list.resize(list.size() - 2);
    database_.slsEach(fmt::format("select chat_id from TelegramChats where chat_id IN ({})", list),
                      [&](const CurrentRow& row) {
                          if (const auto found = byId.find(std::string(row.text(1)));
                              found != byId.end()) {
                              for (telegramUser* user : found->second)
                                  user->known = true;
                          }
                          return true;
                      });
}

TelegramBot::UserInserts TelegramBot::insertUnknown(const std::vector<telegramUser>& users) {
    const FlagScope importing(session_.ImportInProgress);
    UserInserts inserts;
    Transaction transaction(database_);
    bool stored = transaction.isOpen();
    for (const telegramUser& user : users) {
        if (stored && !user.known)
            stored = insertUser(user, inserts);
    }
    if (stored && transaction.commit())
        return inserts;
    const auto unknown = std::count_if(users.begin(), users.end(),
                                       [](const telegramUser& user) { return !user.known; });
    return {0, static_cast<std::int32_t>(unknown), database_.slGetError()};
}

// False when the catalogue cannot be written at all.
bool TelegramBot::insertUser(const telegramUser& user, UserInserts& inserts) {
    ++inserts.tried;
    std::string reason = "a name holds an apostrophe";
    if (pastedTextValue(user.id) && pastedTextValue(user.name)) {
        const int error = database_.slsExe(fmt::format(
            "insert INTO TelegramChats(chat_id, Username) Values ('{}','{}')", user.id, user.name));
        switch (error & 0xff) { // extended codes keep the primary one in the low byte
        case SQLITE_OK:
        case SQLITE_CONSTRAINT: // the sender under another name
            return true;
        case SQLITE_TOOBIG:
            reason = database_.slGetError();
            break;
        default:
            return false;
        }
    }
    if (refused_.insert(user.id).second && inserts.lost++ == 0)
        inserts.reason = reason;
    return true;
}

std::vector<std::string> TelegramBot::followers() {
    std::vector<std::string> ids;
    database_.slsEach("select chat_id from TelegramChats", [&](const CurrentRow& row) {
        ids.emplace_back(row.text(1));
        return true;
    });
    return ids;
}

void TelegramBot::generateMsgTelegram() {
    if (settings_.enableTelegram != 1)
        return;
    ProcedureTrace trace(errors_, module, "generateMsgTelegram");
    const std::optional<NewestEvent> newest = newestEvent(database_);
    const NewestEvent event = newest.value_or(NewestEvent{});
    std::int32_t added = 0;
    bool changed = false;
    checkIdTelegram(added, changed);
    std::string report;
    trace.step([&] { towns_.eventOnPOI(event.latitude, event.longitude, report); });
    sendToAll(event, (newest ? headOf(event) : std::string()) + rewordedTowns(report));
}

void TelegramBot::sendToAll(const NewestEvent& event, std::string_view text) {
    // Messages that run meanwhile may change the table, so its rows are read first.
    const std::vector<std::string> chats = followers();
    int silent = 0;
    std::int32_t lost = 0;
    std::string reason;
    for (const std::string& chat : chats) {
        if (session_.waitsMustEnd())
            return;
        std::string failure = failureIn({});
        if (silent < silentFollowersLimit) {
            sendLocationTelegram(event.latitude, event.longitude, chat);
            const std::string reply = sendMessageTelegram(text, chat);
            silent = reply.empty() ? silent + 1 : 0;
            failure = failureIn(reply);
        }
        if (!failure.empty() && lost++ == 0)
            reason = failure;
    }
    if (session_.waitsMustEnd())
        return;
    log_.addLogToList(fmt::format("Telegram : Event sended to {} {}.", chats.size(),
                                  chats.size() > 1 ? "contacts" : "contact"));
    if (lost > 0)
        log_.addLogToList(fmt::format("Telegram : {} {} got no message, {}", lost,
                                      lost == 1 ? "contact" : "contacts", reason));
}

// A transfer that fails leaves DownloadState at 2.
std::string TelegramBot::send(std::string_view query, std::string_view file,
                              ProcedureTrace& trace) {
    session_.DownloadState = 2;
    try {
        createFolder(logFolder());
    } catch (const RuntimeError&) { // the transfer fails, too, and one box a follower is too many
    }
    std::string reply = request(urlOf(settings_.TelegramToken, query), file, trace);
    if (!reply.empty())
        session_.DownloadState = 0;
    return reply;
}

std::string TelegramBot::sendMessageTelegram(std::string_view text, std::string_view chatId) {
    ProcedureTrace trace(errors_, module, "sendMessageTelegram");
    std::string reply =
        send(fmt::format("/sendMessage?text={}&chat_id={}", messageText(text), chatId),
             "sendMessageTelegram.log", trace);
    if (isForbiddenReply(reply) && pastedTextValue(chatId))
        database_.slsExe(fmt::format("delete from TelegramChats where chat_id = '{}'", chatId));
    return reply;
}

std::string TelegramBot::sendLocationTelegram(std::string_view latitude, std::string_view longitude,
                                              std::string_view chatId) {
    ProcedureTrace trace(errors_, module, "sendLocationTelegram");
    return send(fmt::format("/sendLocation?chat_id={}&latitude={}&longitude={}", chatId, latitude,
                            longitude),
                "sendLocationTelegram.log", trace);
}

void storeTelegramSettings(AppSettings& settings, std::string_view token, std::string_view pollText,
                           const NumberLocale& locale) {
    settings.TelegramToken = token;
    settings.TelegramPollEvery = std::max<std::int32_t>(1, SafeToLong(pollText, locale));
}

} // namespace tremor
