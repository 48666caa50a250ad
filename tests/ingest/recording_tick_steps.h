#pragma once

#include "ingest/tick_steps.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace tremor::testing {

// Writes down every outward step of a tick in its order, and answers what the test has set.
class RecordingTickSteps : public TickSteps {
  public:
    void setCountdownText(std::string_view text) override { countdowns.emplace_back(text); }
    bool IsInternetUp() override { return step("IsInternetUp"), internetUp; }
    bool mapPageLoaded() override { return pageLoaded; }
    void refreshLogList() override { step("refreshLogList"); }
    void mapsInJPGLastEvent() override { step("mapsInJPGLastEvent"); }
    void mapsInJPGWorkspace() override { step("mapsInJPGWorkspace"); }
    void saveAllWorkspace() override { step("saveAllWorkspace"); }
    void startServices() override { step("startServices"); }
    void downloadCsvFromIngv() override { step("downloadCsvFromIngv"); }
    void downloadCsvFromIside() override { step("downloadCsvFromIside"); }
    void downloadCsvFromUSGS() override { step("downloadCsvFromUSGS"); }
    void downloadCsvFromEmsc() override { step("downloadCsvFromEmsc"); }
    void ListFolder(std::string_view path) override { step("ListFolder " + std::string(path)); }
    void exportLast24HoursCSV() override { step("exportLast24HoursCSV"); }
    bool thereIsNewEv() override { return step("thereIsNewEv"), newEvents; }
    void positioningWbrLast() override { step("positioningWbrLast"); }
    void generateMsgEmail() override { step("generateMsgEmail"); }
    void generateMsgPagerlink() override { step("generateMsgPagerlink"); }
    void generateMsgTelegram() override { step("generateMsgTelegram"); }
    bool telegramTokenValid() override { return step("telegramTokenValid"), tokenValid; }
    std::int32_t checkIdTelegram() override { return step("checkIdTelegram"), chatsAdded; }

    std::ptrdiff_t count(const std::string& name) const {
        return std::count(calls.begin(), calls.end(), name);
    }

    std::vector<std::string> calls;
    std::vector<std::string> countdowns;
    std::function<void(const std::string& name)> onStep; // what happens inside a step
    bool internetUp = true;
    bool pageLoaded = true;
    bool newEvents = false;
    bool tokenValid = true;
    std::int32_t chatsAdded = 0;

  private:
    void step(const std::string& name) {
        calls.push_back(name);
        if (onStep)
            onStep(name);
    }
};

} // namespace tremor::testing
