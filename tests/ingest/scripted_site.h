#pragma once

#include "core/error_report.h"
#include "ingest/site_browser.h"

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

// A site of which a test tells what it does at each step of its visitor. The steps are written down
// as "navigate URL", "silent", "value ID=TEXT" and "click ID".
class ScriptedSite : public SiteBrowser {
  public:
    void Navigate(std::string_view url) override {
        readyState = 1;
        step("navigate " + std::string(url));
    }
    std::int32_t ReadyState() const override { return readyState; }
    std::string LocationURL() const override { return location; }
    void setSilent() override { step("silent"); }
    bool hasElement(std::string_view id) override { return elements.contains(std::string(id)); }
    void setValue(std::string_view id, std::string_view value) override {
        step("value " + element(id) + "=" + std::string(value));
    }
    void click(std::string_view id) override { step("click " + element(id)); }
    HttpCookies cookies() const override { return {}; }

    std::vector<std::string> steps;
    std::function<void(const std::string& step)> onStep;
    std::int32_t readyState = complete;
    std::string location = "about:blank";
    std::set<std::string> elements;

  private:
    void step(const std::string& text) {
        steps.push_back(text);
        if (onStep)
            onStep(text);
    }
    std::string element(std::string_view id) {
        if (!hasElement(id))
            throw RuntimeError(ErrorNumber::ObjectNotSet);
        return std::string(id);
    }
};

} // namespace tremor::testing
