#pragma once

#include "map/web_browser.h"

#include <algorithm>
#include <cctype>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor::testing {

// A map page without a browser: it keeps what is written and answers from a script.
//
// `calls` holds one text a call, in order: "Navigate page.html", "markers.PINSMODE=1",
// "MapClick.VALORE [3]=" for a replacement of "3" by nothing, "eventi.Onclick", "eventi.Click",
// "snapshot", "picture". Elements and attributes are found in any case.
class RecordingWebBrowser : public WebBrowser {
  public:
    void setEvents(PageEvents* events) override { listener = events; }

    void Navigate(std::string_view target) override {
        calls.push_back("Navigate " + std::string(target));
        location = target;
        attributes_.clear();
        readyState = stateAfterNavigate;
    }
    std::int32_t ReadyState() const override { return readyState; }
    std::string LocationURL() const override { return location; }

    void setAttribute(std::string_view element, std::string_view name,
                      std::string_view value) override {
        calls.push_back(call(element, name) + "=" + std::string(value));
        attributes_[key(element, name)] = value;
    }
    void replaceAttribute(std::string_view element, std::string_view name,
                          std::string_view expected, std::string_view value) override {
        calls.push_back(call(element, name) + " [" + std::string(expected) +
                        "]=" + std::string(value));
        std::string& held = attributes_[key(element, name)];
        if (held == expected)
            held = value;
    }

    PageStatus fire(std::string_view element, Fire how) override {
        calls.push_back(std::string(element) + (how == Fire::Click ? ".Click" : ".Onclick"));
        const PageStatus status = next(statuses).value_or(PageStatus::Done);
        if (onFire)
            onFire(element, how);
        return status;
    }

    std::optional<PageSnapshot> snapshot() override {
        calls.emplace_back("snapshot");
        return next(snapshots).value_or(page);
    }

    std::optional<Picture> picture() override {
        calls.emplace_back("picture");
        return painted;
    }

    // What an attribute holds now; empty when nothing was written.
    std::string attribute(std::string_view element, std::string_view name) const {
        const auto found = attributes_.find(key(element, name));
        return found == attributes_.end() ? std::string() : found->second;
    }
    // What the page itself writes.
    void pageWrites(std::string_view element, std::string_view name, std::string_view value) {
        attributes_[key(element, name)] = value;
    }

    std::vector<std::string> calls;
    PageEvents* listener = nullptr;
    std::string location = "about:blank";
    std::int32_t readyState = complete;
    std::int32_t stateAfterNavigate = 1;

    // The answers to come, first one first; behind them every command is Done and every snapshot
    // is `page`. No page (std::nullopt) gives no answer.
    std::deque<PageStatus> statuses;
    std::deque<std::optional<PageSnapshot>> snapshots;
    std::optional<PageSnapshot> page = PageSnapshot();

    std::optional<Picture> painted;

    // What the page does at a command before it returns, such as a click that bubbles.
    std::function<void(std::string_view element, Fire how)> onFire;

  private:
    static std::string key(std::string_view element, std::string_view name) {
        std::string text = call(element, name);
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        return text;
    }
    static std::string call(std::string_view element, std::string_view name) {
        return std::string(element) + "." + std::string(name);
    }
    template <class Answer>
    static std::optional<Answer> next(std::deque<Answer>& answers) {
        if (answers.empty())
            return std::nullopt;
        Answer answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }

    std::map<std::string, std::string> attributes_;
};

} // namespace tremor::testing
