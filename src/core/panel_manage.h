#pragma once

#include "ingest/cls_downloader.h"
#include "manage/database_manager.h"
#include "manage/frm_download.h"
#include "manage/frm_manage_db.h"
#include "manage/frm_manage_poi.h"
#include "manage/frm_new_edit_event.h"
#include "manage/geonames_import.h"
#include "manage/poi_manager.h"

#include <QtCore/QPointer>

#include <cstdint>
#include <string_view>

namespace tremor {

struct PanelComponents;
class PanelWidgets;

// The windows in which events and points of interest are edited by hand and points of interest
// are imported.
class PanelManage : private GeoNamesNetwork {
  public:
    PanelManage(PanelWidgets& widgets, PanelComponents& components);

    void mnu_ManageDB_Click();
    void showGeoNames(QWidget* owner);
    void showPointsOfInterest(QWidget* owner);

  private:
    // GeoNamesNetwork
    bool IsInternetUp() override;
    void DownloadFile(GeoNamesTransferEvents& events, std::string_view url, std::string_view target,
                      std::int32_t chunkSize) override;
    void AbortDownload() override;

    PanelWidgets& widgets_;
    PanelComponents& components_;
    EventEditingWindow editing_;
    DatabaseManager manager_;
    GeoNamesImport geoNames_;
    ClsDownloader* download_ = nullptr; // the one that runs
    QPointer<FrmManageDB> manageDb_;
    PoiManager pointsOfInterest_;
    QPointer<frmDownload> geoNamesWindow_;
    QPointer<FrmManagePoI> pointsOfInterestWindow_;
};

} // namespace tremor
