#include "core/panel_manage.h"

#include "core/files.h"
#include "core/panel_components.h"
#include "core/panel_widgets.h"
#include "core/raised_window.h"

#include <QtWidgets/QGroupBox>

namespace tremor {
namespace {

// Hands the course of a transfer on; a failed one has no end for the import.
class GeoNamesTransfer : public DownloadEvents {
  public:
    explicit GeoNamesTransfer(GeoNamesTransferEvents& events) : events_(events) {}

    void SizeCalculated(std::int32_t kilobytes) override { events_.SizeCalculated(kilobytes); }
    void ChunkDownloaded(std::int32_t totalKilobytes) override {
        events_.ChunkDownloaded(totalKilobytes);
    }
    void DownloadCompleted() override { events_.DownloadCompleted(); }
    void DownloadError(std::string_view) override {}
    void AbortCompleted() override {}

  private:
    GeoNamesTransferEvents& events_;
};

} // namespace

PanelManage::PanelManage(PanelWidgets& widgets, PanelComponents& components)
    : widgets_(widgets),
      components_(components),
      editing_(components.database, components.environment.prompts, components.environment.errors,
               widgets.FrmWorkspace->window()),
      manager_(components.database, components.environment.session, components.environment.prompts,
               components.environment.locale, components.environment.errors, editing_),
      geoNames_(
          components.environment.session, components.database, components.environment.prompts,
          components.environment.clock, components.environment.errors, *this,
          [folder = components.environment.applicationPath] { return GetTmpFolder(folder); },
          components.environment.hosts.GeoNames),
      pointsOfInterest_(components.database, components.environment.prompts,
                        components.environment.errors) {}

void PanelManage::mnu_ManageDB_Click() {
    showOrRaise(manageDb_, [this] {
        return new FrmManageDB(manager_, components_.environment.clock,
                               widgets_.FrmWorkspace->window());
    });
}

void PanelManage::showGeoNames(QWidget* owner) {
    showOrRaise(geoNamesWindow_, [&] { return new frmDownload(geoNames_, owner); });
}

void PanelManage::showPointsOfInterest(QWidget* owner) {
    showOrRaise(pointsOfInterestWindow_,
                [&] { return new FrmManagePoI(pointsOfInterest_, owner); });
}

bool PanelManage::IsInternetUp() {
    return components_.probe.IsInternetUp();
}

void PanelManage::DownloadFile(GeoNamesTransferEvents& events, std::string_view url,
                               std::string_view target, std::int32_t chunkSize) {
    const PanelEnvironment& environment = components_.environment;
    GeoNamesTransfer transfer(events);
    DownloadLimits limits;
    limits.certificateAuthorityFile = environment.hosts.CaFile;
    ClsDownloader downloader(transfer, environment.clock, environment.session, limits);
    download_ = &downloader;
    downloader.DownloadFile(url, target, chunkSize, false);
    download_ = nullptr;
}

void PanelManage::AbortDownload() {
    if (download_ != nullptr)
        download_->AbortDownload();
}

} // namespace tremor
