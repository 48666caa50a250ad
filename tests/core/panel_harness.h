#pragma once

#include "core/panel.h"
#include "map/recording_web_browser.h"
#include "support/fakes.h"
#include "support/reachable_host.h"
#include "support/texts.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <fmt/format.h>

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tremor::testing {

// Gives a document instead of fetching one.
class DocumentTransfer : public FileTransfer {
  public:
    void DownloadFile(DownloadEvents& events, std::string_view url, std::string_view target,
                      std::int32_t, bool) override {
        urls.emplace_back(url);
        if (meanwhile)
            meanwhile();
        if (document.empty()) {
            events.DownloadError("Server error code:204.");
            return;
        }
        std::ofstream(std::string(target), std::ios::binary) << document;
        events.DownloadCompleted();
    }
    std::string document; // empty: the transfer fails
    std::function<void()> meanwhile;
    std::vector<std::string> urls;
};

// Scripted prompts that let a test look around while a question is open.
class WatchedPrompts : public ScriptedPrompts {
  public:
    BoxAnswer showMessageBox(const MessageBox& box) override {
        look();
        return ScriptedPrompts::showMessageBox(box);
    }
    std::optional<std::string> showFileDialog(const FileDialogRequest& request) override {
        look();
        return ScriptedPrompts::showFileDialog(request);
    }
    std::function<void()> whileOpen;

  private:
    void look() {
        if (whileOpen)
            whileOpen();
    }
};

// A page that completes at the next turn of the event loop.
class CompletingBrowser : public RecordingWebBrowser {
  public:
    CompletingBrowser() { stateAfterNavigate = complete; }
    void Navigate(std::string_view target) override {
        RecordingWebBrowser::Navigate(target);
        QTimer::singleShot(0, &context_, [this] {
            if (listener != nullptr)
                listener->documentComplete();
        });
    }

  private:
    QObject context_; // ends the timers with the page
};

// A web site that is not there: its pages never complete.
class NoSite : public SiteBrowser {
  public:
    void Navigate(std::string_view) override {}
    std::int32_t ReadyState() const override { return 1; }
    std::string LocationURL() const override { return {}; }
    void setSilent() override {}
    bool hasElement(std::string_view) override { return false; }
    void setValue(std::string_view, std::string_view) override {}
    void click(std::string_view) override {}
    HttpCookies cookies() const override { return {}; }
};

// Gives the window such pages, by the object names of their frames.
class RecordingBrowsers : public BrowserMaker {
  public:
    std::unique_ptr<WebBrowser> makeBrowser(QWidget& frame, Log&, const AppSettings&) override {
        auto browser = std::make_unique<CompletingBrowser>();
        made[frame.objectName().toStdString()] = browser.get();
        return browser;
    }
    std::unique_ptr<SiteBrowser> makeSiteBrowser() override { return std::make_unique<NoSite>(); }
    RecordingWebBrowser& of(const std::string& frame) { return *made.at(frame); }

  private:
    std::map<std::string, RecordingWebBrowser*> made;
};

// Writes down what would be heard.
class RecordingSound : public Sound {
  public:
    void play(std::string_view path) override { played.emplace_back(path); }
    std::vector<std::string> played;
};

// A main window in a folder of its own, with a clock that jumps and a scripted operator.
class PanelHarness {
  public:
    PanelHarness() {
        clock.onPump = [this] {
            QCoreApplication::processEvents();
            if (meanwhile)
                meanwhile();
        };
        hosts.InternetProbe = host_.address();
    }

    // Lines of settings.ini, each without its end.
    void writeSettings(const std::vector<std::string>& lines) const {
        std::ofstream file(folder.file("settings.ini"), std::ios::binary);
        for (const std::string& line : lines)
            file << line << "\r\n";
    }
    std::string settingsFile() const { return contentOf(folder.file("settings.ini")); }

    // A catalogue with so many events of the last hours; its path.
    std::string makeCatalogue(const std::string& name, int events) {
        AppSettings settings;
        Session session_;
        RecordingControls controls;
        RecordingLog log;
        struct NoUpgrade : DatabaseUpgrade {
            bool upgradeDB() override { return false; }
        } noUpgrade;
        Database database;
        CatalogueFile catalogue(database, settings, session_, controls, prompts, log, errors,
                                noUpgrade, folder.path());
        catalogue.fillDBTables();
        catalogue.createDatabase(name, ".sqlite", "");
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        EXPECT_EQ(database.slsExe("BEGIN TRANSACTION;"), 0);
        for (int i = 0; i < events; ++i)
            EXPECT_EQ(database.slsExe(fmt::format(
                          "INSERT INTO Events (UTC, Latitude, Longitude, Depth, Magnitude, Source) "
                          "VALUES ('2014-03-07 {:02}:{:02}:00.000', 42.7, 13.2, 10, 2.5, 'INGV')",
                          i / 60, i % 60)),
                      0);
        EXPECT_EQ(database.slsExe("COMMIT;"), 0);
        return settings.Path;
    }

    // The window, not yet loaded.
    panel& make() {
        window_ = std::make_unique<panel>(PanelEnvironment{session, prompts, clock, errors, hosts,
                                                           folder.path(), NumberLocale::point(),
                                                           browsers, sound, &transfer});
        QObject::connect(window_.get(), &panel::unloaded, window_.get(), [this] { ++unloads; });
        return *window_;
    }
    // The window after its start, over a catalogue of so many events, without the logo.
    panel& start(int events) {
        writeSettings({"Path=" + makeCatalogue("catalogue", events), "StartupLogo=1",
                       "UsePrimaryDataSource=1", "IsideOrIngv=1", "PrimaryPollEvery=5",
                       "AlternatePollEvery=1", "LocalPollEvery=5"});
        make().Form_Load();
        QCoreApplication::processEvents(); // the map's page completes
        return *window_;
    }
    panel& window() { return *window_; }

    template <class Control>
    Control& control(const char* name) {
        auto* found = window_->findChild<Control*>(QLatin1StringView(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("no control ") + name);
        return *found;
    }
    const std::vector<std::string>& log() { return window_->components().log.lines(); }

    TemporaryFolder folder;
    Session session;
    WatchedPrompts prompts;
    FakeClock clock;
    ErrorReport errors{prompts, [] { throw ProcessEnded{}; }, 60, session.TicksHeld};
    Hosts hosts;
    DocumentTransfer transfer;
    RecordingBrowsers browsers;
    RecordingSound sound;
    std::function<void()> meanwhile; // at every pump
    int unloads = 0;

  private:
    ReachableHost host_;
    std::unique_ptr<panel> window_;
};

inline void expectMissingDatabase(PanelHarness& harness) {
    harness.prompts.expectBox(
        "Database doesn't exist, select one in File->Open DataBase or create a new one",
        "Database error...", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
}

} // namespace tremor::testing
