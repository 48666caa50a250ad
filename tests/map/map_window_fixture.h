#pragma once

#include "core/qt_clock.h"
#include "core/qt_text.h"
#include "core/session.h"
#include "map/pages_fixture.h"
#include "map/qt_web_browser.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtWebEngineCore/QWebEnginePage>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

// Keeps what a page sends: "click 99", "move 77", "complete".
class RecordingPageEvents : public PageEvents {
  public:
    void documentClicked(const PageSnapshot& page) override { add("click " + page.VALORE, page); }
    void documentMouseMoved(const PageSnapshot& page) override { add("move " + page.VALORE, page); }
    void documentComplete() override { add("complete", {}); }

    std::ptrdiff_t count(std::string_view name) const {
        return std::count(names.begin(), names.end(), name);
    }
    void clear() {
        names.clear();
        pages.clear();
    }

    Texts names;
    std::vector<PageSnapshot> pages; // for each name
    std::function<void(const std::string& name)> onEvent;

  private:
    void add(const std::string& name, const PageSnapshot& page) {
        names.push_back(name);
        pages.push_back(page);
        if (onEvent)
            onEvent(name);
    }
};

// A map page in the browser engine, in a program folder of its own. Every wait has an end.
class MapWindowFixture : public PagesFixture {
  protected:
    MapWindowFixture() { environment.hosts.WebHost.clear(); }

    // Makes the view. To be called when hosts and settings are as the test wants them.
    QtWebBrowser& browser() {
        if (!browser_) {
            const auto report = [this](std::string_view line) { log.addLogToList(line); };
            site_ = std::make_unique<MapSite>(MapSite::Environment{
                .hosts = environment.hosts,
                .applicationPath = applicationPath.empty() ? folder.path() : applicationPath,
                .pathPins = [this] { return settings.PathPins; },
                .report = report});
            frame_ = std::make_unique<QWidget>();
            frame_->resize(800, 600);
            browser_ = std::make_unique<QtWebBrowser>(*frame_, *site_, clock, report, limits);
            browser_->setEvents(&events);
            frame_->show();
        }
        return *browser_;
    }

    // The main page as the program writes it.
    void writeMainPage() {
        JSMaps pages = jsMaps();
        pages.generaDefaultCSS();
        pages.Maps();
    }

    // Writes and loads it; true when the map has drawn itself and has said so.
    bool showMainPage() {
        writeMainPage();
        return showFile("TremorLedger.html") &&
               waitFor([this] { return events.count("click 99") > 0; });
    }

    // A page of the test's own in the program's folder.
    bool showPage(const std::string& html) {
        writeFileAtomically(folder.file("page.html"), "<!DOCTYPE html>" + html, false);
        return showFile("page.html");
    }
    bool showFile(const std::string& file) {
        const std::ptrdiff_t before = events.count("complete");
        browser().Navigate(folder.file(file));
        return waitFor([&] { return events.count("complete") > before; });
    }

    bool waitFor(const std::function<bool()>& done, int milliseconds = 20000) {
        const QDeadlineTimer deadline(milliseconds);
        while (!done() && !deadline.hasExpired())
            clock.sleep(std::chrono::milliseconds(5));
        return done();
    }
    void turnEvents(int milliseconds) { clock.sleep(std::chrono::milliseconds(milliseconds)); }

    // The value of an expression, as JSON.
    QJsonValue evaluate(const QString& expression) {
        auto answer = std::make_shared<std::optional<QString>>();
        browser().view().page()->runJavaScript(
            QStringLiteral("JSON.stringify([%1])").arg(expression),
            [answer](const QVariant& value) { *answer = value.toString(); });
        EXPECT_TRUE(waitFor([&] { return answer->has_value(); }));
        return QJsonDocument::fromJson(answer->value_or(QString()).toUtf8()).array().at(0);
    }
    std::string text(const QString& expression) { return toBytes(evaluate(expression).toString()); }
    std::string attribute(const QString& element, const QString& name) {
        return text(
            QStringLiteral("document.getElementById('%1').getAttribute('%2')").arg(element, name));
    }
    bool waitForPage(const QString& expression) {
        return waitFor([&] { return evaluate(expression).toBool(); });
    }
    QWidget& frame() { return *frame_; }

    Session session;
    QtClock clock{session};
    RecordingPageEvents events;
    PageLimits limits;
    std::string applicationPath; // empty: that of the folder

  private:
    std::unique_ptr<MapSite> site_;
    std::unique_ptr<QWidget> frame_;
    std::unique_ptr<QtWebBrowser> browser_;
};

} // namespace tremor::testing
