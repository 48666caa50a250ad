#pragma once

#include "alerts/newest_event.h"
#include "alerts/smtp_mailer.h"
#include "alerts/static_map.h"
#include "core/hosts.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"

#include <cstdint>
#include <string>

namespace tremor {

// Fetches the map picture from a static-map service.
class MapImageDownload {
  public:
    virtual ~MapImageDownload() = default;

    // Fetches `url` into `target`, in chunks of `chunkSize` bytes; returns when the transfer is
    // over. The target is deleted first and is not there after a failure. Sets DownloadState of the
    // session to 0 when the transfer has completed.
    virtual void DownloadFile(const std::string& url, const std::string& target,
                              std::int32_t chunkSize, bool withoutStatusCheck) = 0;
};

// What the notification works with. The references outlive it.
struct EmailContext {
    const AppSettings& settings;
    const Hosts& hosts;
    Session& session;
    Database& database;
    Log& log;
    NumberLocale locale;
    std::string applicationPath;        // folder of the executable, no "/" at its end
    const std::string& lastTownsReport; // towns near the newest event, UTF-8 or Windows-1252
};

// The mail about the newest event of the catalogue, with a map of its surroundings attached:
//
//     Subject: NEW EVENT 2021-01-14 05:45:26
//
//     EVT 2021-01-14 05:45:26
//     MAG= 4.5 DEPTH= 10.0
//     LOCATION= 42.7 13.23
//     TOWNS WITH DISTANCE LESS OF 10 KM
//     ...
//
// The picture stands in History/email.png beside the program and is replaced by the next one.
class EmailNotification {
  public:
    EmailNotification(EmailContext context, MapImageDownload& download, StaticMapMaker& maps,
                      Mailer& mailer);

    // Sends one mail when mails are enabled and the newest event reaches MagToSend; logs "Mail
    // sent" or what went wrong. A mail that was not sent is lost. Returns when the sending is over;
    // the window lives meanwhile, and a call from within sends its own mail.
    void generateMsgEmail();

  private:
    std::string mapFile() const;
    void makeMap(const NewestEvent& event);
    void drawMap(const NewestEvent& event);
    std::string send(const NewestEvent& event, const std::string& body);
    void startWaitCounter();

    EmailContext context_;
    MapImageDownload& download_;
    StaticMapMaker& maps_;
    Mailer& mailer_;
};

} // namespace tremor
