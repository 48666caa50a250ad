#pragma once

#include <string_view>

namespace tremor {

// The outward steps of startServices, in their order: one full refresh of maps, grid and lists.
class ServiceSteps {
  public:
    virtual ~ServiceSteps() = default;

    virtual bool openDB() = 0;
    virtual bool IsInternetUp() = 0;
    virtual void EnableDisableWebBrowser(bool on) = 0;
    virtual void controlliForm(int state) = 0;

    // The pages, written in this order.
    virtual void generaDefaultCSS() = 0;
    virtual void Maps() = 0;
    virtual void MapsLastEvent() = 0;
    virtual void savingWorkspacePage() = 0;

    virtual void popolaComboWorkspace() = 0;
    virtual void lastEventInDb() = 0;
    virtual void moveSaveMapsOutOfSight() = 0;
    virtual void boundsVisualizedMap() = 0;
    // `order` empty: newest first.
    virtual void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) = 0;
    virtual void eventsInMap(std::string_view sql) = 0;
    virtual void pictureMagnitudeEvents() = 0;
    virtual void repaintChart() = 0;

    virtual void webPageForKml() = 0;
    virtual void webPageForCsv() = 0;
};

} // namespace tremor
