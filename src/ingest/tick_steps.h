#pragma once

#include <cstdint>
#include <string_view>

namespace tremor {

// The outward steps of a tick of the polling timer, in the order in which a tick may take them.
// The scheduler decides, the program carries out.
class TickSteps {
  public:
    virtual ~TickSteps() = default;

    virtual void setCountdownText(std::string_view text) = 0; // lbl_log_bkg

    // Preparation of a due poll.
    virtual bool IsInternetUp() = 0;
    virtual bool mapPageLoaded() = 0; // WebBrowser1 shows a page and not "about:blank"
    virtual void refreshLogList() = 0;
    virtual void mapsInJPGLastEvent() = 0; // snapshot of the map of the last event
    virtual void mapsInJPGWorkspace() = 0; // snapshot of the workspace map
    virtual void saveAllWorkspace() = 0;
    virtual void startServices() = 0;

    // Sources.
    virtual void downloadCsvFromIngv() = 0;
    virtual void downloadCsvFromIside() = 0;
    virtual void downloadCsvFromUSGS() = 0;
    virtual void downloadCsvFromEmsc() = 0;
    virtual void ListFolder(std::string_view localSourcePath) = 0;

    // The chain behind a source.
    virtual void exportLast24HoursCSV() = 0;
    virtual bool thereIsNewEv() = 0; // refreshes the views; true when there are new events
    virtual void positioningWbrLast() = 0;
    virtual void generateMsgEmail() = 0;
    virtual void generateMsgPagerlink() = 0;
    virtual void generateMsgTelegram() = 0;

    // Telegram's own poll.
    virtual bool telegramTokenValid() = 0;
    virtual std::int32_t checkIdTelegram() = 0; // number of chats added
};

} // namespace tremor
