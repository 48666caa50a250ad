#pragma once

#include "alerts/nearby_towns.h"
#include "alerts/newest_event.h"
#include "alerts/telegram_replies.h"
#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// The Telegram bot: who writes to it becomes a follower, every follower gets the newest event, who
// blocks it is dropped. The followers stand in the table TelegramChats.
namespace tremor {

// A plain HTTP GET into a file.
class TelegramTransfer {
  public:
    virtual ~TelegramTransfer() = default;

    // Fetches `url` into the file `target`, which is deleted first; with `withoutStatusCheck` the
    // body of any status. Returns when it is over, after a minute at the latest; windows live
    // meanwhile. False when no whole answer came. `url` is not encoded (blanks, letters of any
    // kind) and holds the token, so nobody may log it.
    virtual bool DownloadFile(std::string_view url, std::string_view target, std::int32_t chunkSize,
                              bool withoutStatusCheck) = 0;
};

// Requests go to `host`/botTOKEN/method. Each reply is kept in a file of its own below `logs` in
// the application's folder, overwritten at the next use: idFound.log, checkToken.log,
// checkTokenName.log, sendMessageTelegram.log, sendLocationTelegram.log. A request that begins
// while another one waits keeps its reply beside them ("checkToken.log.1") until it is read.
//
// Nothing here ever holds the token in a text for people.
class TelegramBot {
  public:
    // `applicationPath` without a separator at its end, `host` as in Hosts::Telegram. The
    // references outlive the bot.
    TelegramBot(const AppSettings& settings, Session& session, Database& database,
                NearbyTowns& towns, TelegramTransfer& transfer, Log& log, ErrorReport& errors,
                std::string applicationPath, std::string host);

    // 0 when the token works, else 1. `botName` receives the name of the token's bot (see
    // cutBotName), the empty text when the service names none.
    std::int16_t testToken(std::string_view token, std::string& botName);

    // testToken with the token of the settings.
    bool telegramTokenValid();

    // Reads who wrote to the bot and adds those who are not yet followers. `added` grows by the
    // number of rows that were tried, refused ones included; `changed` becomes true when there was
    // one. A reply with line feeds and no message is reported as a runtime error, once a call.
    //
    // A name with an apostrophe, or any other row that the catalogue refuses, is lost; the log
    // says so once for each sender. A catalogue that cannot be written gets nothing: the service
    // keeps the messages for a day, and the next call finds them again.
    void checkIdTelegram(std::int32_t& added, bool& changed);

    // Sends position and text of the newest event to every follower, with the towns near it, and
    // logs how many there were, whatever came of it ("Telegram : Event sended to 3 contacts.").
    // Does nothing unless enableTelegram is 1. After three followers in a row for whom the service
    // did not answer the others are not tried. Messages that the service did not take, for another
    // reason than a follower who blocked the bot, get a line of their own in the log.
    void generateMsgTelegram();

    // Lines of `text` are separated by "%0A"; everything else goes out as it is, so that a "&" or
    // "#" ends the text. A follower whom the bot may not write to is deleted. Gives the service's
    // reply, the empty text when none came. DownloadState is 2 until it is there.
    std::string sendMessageTelegram(std::string_view text, std::string_view chatId);

    // The same for a position, in dot text.
    std::string sendLocationTelegram(std::string_view latitude, std::string_view longitude,
                                     std::string_view chatId);

  private:
    struct UserInserts;

    std::string urlOf(std::string_view token, std::string_view request) const;
    std::string logFolder() const;
    void makeLogFolder(ProcedureTrace& trace) const;
    std::string request(const std::string& url, std::string_view file, ProcedureTrace& trace);
    std::string send(std::string_view query, std::string_view file, ProcedureTrace& trace);
    void markKnown(std::vector<telegramUser>& users);
    UserInserts insertUnknown(const std::vector<telegramUser>& users);
    bool insertUser(const telegramUser& user, UserInserts& inserts);
    std::vector<std::string> followers();
    void sendToAll(const NewestEvent& event, std::string_view text);

    const AppSettings& settings_;
    Session& session_;
    Database& database_;
    NearbyTowns& towns_;
    TelegramTransfer& transfer_;
    Log& log_;
    ErrorReport& errors_;
    std::string applicationPath_;
    std::string host_;
    int requests_ = 0;              // that wait for their answers, one inside the other
    std::set<std::string> refused_; // ids of the senders that the log has told of
};

// What OK of the settings window stores. `pollText` is the period in minutes as typed; what is no
// number or below 1 becomes 1.
void storeTelegramSettings(AppSettings& settings, std::string_view token, std::string_view pollText,
                           const NumberLocale& locale);

} // namespace tremor
