#include "core/panel_alerts.h"

#include "alerts/frm_settings_pagerlink.h"
#include "alerts/frm_settings_smtp.h"
#include "alerts/frm_settings_telegram.h"
#include "core/panel_components.h"
#include "core/panel_widgets.h"
#include "core/qt_text.h"
#include "core/raised_window.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

#include <memory>

namespace tremor {
namespace {

// A message of some hundred bytes or a picture of some hundred kilobytes: who needs longer is as
// good as dead, and the next poll is waiting. An event takes three requests for a first follower,
// and the users who wrote to the bot are asked for meanwhile.
constexpr int totalSeconds = 30;

DownloadLimits alertLimits() {
    DownloadLimits limits;
    limits.totalSeconds = totalSeconds;
    return limits;
}

// Remembers how a transfer ended.
class TransferEnd : public DownloadEvents {
  public:
    void SizeCalculated(std::int32_t) override {}
    void ChunkDownloaded(std::int32_t) override {}
    void DownloadCompleted() override { completed = true; }
    void DownloadError(std::string_view) override {}
    void AbortCompleted() override {}

    bool completed = false;
};

} // namespace

PanelAlerts::PanelAlerts(PanelWidgets& widgets, PanelComponents& components)
    : widgets_(widgets),
      components_(components),
      network_(components.environment.clock, components.environment.session,
               components.environment.hosts, alertLimits()),
      newEvents_(components.settings, components.environment.session, components.database,
                 components.environment.locale, components.towns, components.environment.sound,
                 components.log, *this, components.environment.errors),
      telegram_(components.settings, components.environment.session, components.database,
                components.towns, *this, components.log, components.environment.errors,
                components.environment.applicationPath, components.environment.hosts.Telegram),
      pagerlink_({components.settings, components.environment.session,
                  components.environment.locale, components.database, components.environment.clock,
                  components.log, components.environment.errors, pagerlinkSocket_}),
      mailer_(components.environment.clock, components.environment.session,
              SmtpLimits{.certificateAuthorityFile = components.environment.hosts.CaFile}),
      email_({components.settings, components.environment.hosts, components.environment.session,
              components.database, components.log, components.environment.locale,
              components.environment.applicationPath, newEvents_.lastTownsReport()},
             *this, staticMaps_, mailer_) {}

std::string PanelAlerts::shownWorkspace() {
    return toBytes(widgets_.cmb_wrkSp->currentText());
}

void PanelAlerts::startWRKspace() {
    components_.workspaces.windows().startWRKspace();
}

void PanelAlerts::query2Controls() {
    components_.refresh.query2Controls();
}

void PanelAlerts::setLastEventText(std::string_view text) {
    widgets_.Label1->setText(fromBytes(text));
}

void PanelAlerts::eventsInMap2(std::string_view sql) {
    components_.map.markers().eventsInMap2(sql);
}

bool PanelAlerts::DownloadFile(std::string_view url, std::string_view target,
                               std::int32_t chunkSize, bool withoutStatusCheck) {
    FileTransfer* given = components_.environment.transfer;
    FileTransfer& transfer = given != nullptr ? *given : network_;
    TransferEnd end;
    transfer.DownloadFile(end, url, target, chunkSize, withoutStatusCheck);
    return end.completed;
}

void PanelAlerts::DownloadFile(const std::string& url, const std::string& target,
                               std::int32_t chunkSize, bool withoutStatusCheck) {
    if (DownloadFile(std::string_view(url), std::string_view(target), chunkSize,
                     withoutStatusCheck))
        components_.environment.session.DownloadState = 0;
}

void PanelAlerts::showTelegramSettings(QWidget* owner) {
    showOrRaise(telegramSettings_, [&] {
        return new FrmSettingsTelegram(components_.settings, telegram_,
                                       components_.environment.locale,
                                       components_.environment.hosts.TelegramHelp, owner);
    });
}

void PanelAlerts::showPagerlinkSettings(QWidget* owner) {
    const PanelEnvironment& environment = components_.environment;
    showOrRaise(pagerlinkSettings_, [&] {
        return new frmSettingsPagerlink({components_.settings, environment.session,
                                         environment.locale, environment.prompts, environment.clock,
                                         environment.errors},
                                        std::make_unique<UdpSocket>(), owner);
    });
}

void PanelAlerts::showEmailSettings(QWidget* owner) {
    showOrRaise(emailSettings_, [&] {
        return new frmSettingsSMTP(components_.settings, components_.environment.locale,
                                   components_.environment.errors, owner);
    });
}

} // namespace tremor
