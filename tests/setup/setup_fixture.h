#pragma once

#include "setup/setup_form.h"
#include "support/fakes.h"

#include <functional>
#include <string>
#include <vector>

namespace tremor::testing {

// Writes down the outward steps in their order.
class RecordingSetupSteps : public SetupSteps {
  public:
    void showProgress(int percent, std::string_view text) override {
        steps.push_back(std::to_string(percent) + " " + std::string(text));
    }
    void setPinPath(std::string_view path) override {
        steps.push_back("pins " + std::string(path));
    }
    void hideProgress() override { steps.emplace_back("hide"); }
    void unloadForm() override {
        steps.emplace_back("unload");
        if (onUnload)
            onUnload();
    }
    void WriteSettings() override { steps.emplace_back("write"); }
    void gotoWRK() override { steps.emplace_back("gotoWRK"); }

    std::vector<std::string> steps;
    std::function<void()> onUnload;
};

// The window's logic on settings of a first start.
struct SetupHarness {
    explicit SetupHarness(const NumberLocale& given) : locale(given) {
        hosts.Ingv = "https://ingv.test";
        hosts.Iside = "http://iside.test";
        hosts.Emsc = "https://emsc.test";
        hosts.Usgs = "https://usgs.test";
    }

    NumberLocale locale;
    AppSettings settings;
    Session session;
    Hosts hosts;
    ErrorHarness harness;
    ScriptedPrompts& prompts = harness.prompts;
    RecordingSetupSteps steps;
    SetupForm form{settings, session, hosts, locale, harness.errors, prompts, steps};
};

} // namespace tremor::testing
