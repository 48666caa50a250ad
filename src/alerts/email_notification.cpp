#include "alerts/email_notification.h"

#include "core/common_text.h"
#include "core/error_report.h"
#include "core/files.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

namespace tremor {

namespace {

constexpr int mapZoom = 8;
constexpr int mapSide = 250; // pixels
constexpr std::int32_t chunkSize = 4096;
constexpr std::int32_t waitLimit = 200; // of WaitCounter; only a closing program gets there

} // namespace

EmailNotification::EmailNotification(EmailContext context, MapImageDownload& download,
                                     StaticMapMaker& maps, Mailer& mailer)
    : context_(std::move(context)), download_(download), maps_(maps), mailer_(mailer) {}

void EmailNotification::generateMsgEmail() {
    if (context_.settings.enableEmail != 1)
        return;
    const std::optional<NewestEvent> event = newestEvent(context_.database);
    if (!event || ParseDotDouble(event->magnitude, context_.locale) < context_.settings.MagToSend)
        return;
    // Now, because the towns of another event may be reported during the waits.
    const std::string body = fmt::format(
        "EVT {}\r\nMAG= {} DEPTH= {}\r\nLOCATION= {} {}\r\n{}", event->utc, event->magnitude,
        event->depth, event->latitude, event->longitude, context_.lastTownsReport);

    startWaitCounter();
    context_.session.DownloadState = 2;
    makeMap(*event);
    if (context_.session.WaitCounter >= waitLimit || context_.session.Closing)
        return;
    const std::string error = send(*event, body);
    context_.log.addLogToList(error.empty() ? "Mail sent" : error);
    startWaitCounter();
}

// A closing program keeps the value that ends every wait.
void EmailNotification::startWaitCounter() {
    if (!context_.session.Closing)
        context_.session.WaitCounter = 0;
}

std::string EmailNotification::mapFile() const {
    return context_.applicationPath + "/History/email.png";
}

// Without a picture the file is missing, and the mail's own error tells so.
void EmailNotification::makeMap(const NewestEvent& event) {
    try {
        createFolder(context_.applicationPath + "/History");
        if (context_.hosts.StaticMap == "embedded")
            drawMap(event);
        else
            download_.DownloadFile(
                fmt::format("{0}/maps/api/staticmap?center={1},{2}&zoom={3}&size={4}x{4}"
                            "&maptype=hybrid&markers=color:red%7C{1},{2}",
                            context_.hosts.StaticMap, event.latitude, event.longitude, mapZoom,
                            mapSide),
                mapFile(), chunkSize, false);
    } catch (const RuntimeError& error) {
        context_.log.addLogToList(fmt::format("{}: {}", mapFile(), error.description()));
    }
}

void EmailNotification::drawMap(const NewestEvent& event) {
    DeleteFileText(mapFile());
    const std::string picture = maps_.drawStaticMap(
        {ParseDotDouble(event.latitude, context_.locale),
         ParseDotDouble(event.longitude, context_.locale), mapZoom, mapSide, mapSide});
    if (!picture.empty())
        writeFileAtomically(mapFile(), picture, false);
    context_.session.DownloadState = 0;
}

std::string EmailNotification::send(const NewestEvent& event, const std::string& body) {
    const AppSettings& settings = context_.settings;
    OutgoingMail mail;
    mail.to = settings.SMTPrecipient;
    mail.subject = "NEW EVENT " + event.utc;
    mail.from = trim(fmt::format("{}<{}>", settings.SMTPfromName, settings.SMTPfromEmail));
    mail.body = body;
    mail.attachment = mapFile();
    return mailer_.sendMailCDO(mail, {settings.SMTPserver, settings.SMTPport, settings.SMTPusername,
                                      settings.SMTPpassword});
}

} // namespace tremor
