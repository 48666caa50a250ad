#pragma once

#include "alerts/email_notification.h"
#include "alerts/nearby_towns.h"
#include "alerts/new_events.h"
#include "alerts/pagerlink_client.h"
#include "alerts/smtp_mailer.h"
#include "alerts/static_map_painter.h"
#include "alerts/telegram_bot.h"
#include "alerts/udp_socket.h"
#include "ingest/panel_download.h"

#include <QtCore/QPointer>

#include <cstdint>
#include <string>
#include <string_view>

class QWidget;

namespace tremor {

struct PanelComponents;
class PanelWidgets;

// What happens when there are new events: they are counted, rung, shown, and reported over the
// three channels. What these ask of the window and of the network, and the windows of their
// settings.
class PanelAlerts : private NewEventSteps, private TelegramTransfer, private MapImageDownload {
  public:
    PanelAlerts(PanelWidgets& widgets, PanelComponents& components);

    NewEvents& newEvents() { return newEvents_; }
    TelegramBot& telegram() { return telegram_; }
    PagerlinkClient& pagerlink() { return pagerlink_; }
    EmailNotification& email() { return email_; }

    // Show the windows of the channels' settings, over `owner`; one that is open already comes to
    // the front.
    void showTelegramSettings(QWidget* owner);
    void showPagerlinkSettings(QWidget* owner);
    void showEmailSettings(QWidget* owner);

  private:
    // NewEventSteps
    std::string shownWorkspace() override;
    void startWRKspace() override;
    void query2Controls() override;
    void setLastEventText(std::string_view text) override;
    void eventsInMap2(std::string_view sql) override;

    // TelegramTransfer
    bool DownloadFile(std::string_view url, std::string_view target, std::int32_t chunkSize,
                      bool withoutStatusCheck) override;
    // MapImageDownload
    void DownloadFile(const std::string& url, const std::string& target, std::int32_t chunkSize,
                      bool withoutStatusCheck) override;

    PanelWidgets& widgets_;
    PanelComponents& components_;
    HttpFileTransfer network_; // quicker to give up than the feeds
    NewEvents newEvents_;
    TelegramBot telegram_;
    UdpSocket pagerlinkSocket_;
    PagerlinkClient pagerlink_;
    StaticMapPainter staticMaps_;
    SmtpMailer mailer_;
    EmailNotification email_;
    QPointer<QWidget> telegramSettings_;
    QPointer<QWidget> pagerlinkSettings_;
    QPointer<QWidget> emailSettings_;
};

} // namespace tremor
