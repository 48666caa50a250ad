#pragma once

#include "core/qt_clock.h"
#include "map/map_site.h"
#include "map/web_browser.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtWebEngineCore/QWebEngineLoadingInfo>
#include <QtWebEngineWidgets/QWebEngineView>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// What is to be told about a page: what reached its document, or that its navigation has ended.
struct PageEvent {
    enum class Kind { Click, Move, Complete };
    Kind kind = Kind::Click;
    PageSnapshot page;
};

struct PageLimits {
    std::chrono::milliseconds load{30000}; // a page that takes longer is given up
    // A page that ended earlier counts as one that ends at each start; only a few starts are tried.
    std::chrono::milliseconds steady{60000};
};

// A map page in a widget, on Qt WebEngine.
//
// A command is one script that the page runs at once; the program waits for its answer for at most
// `answerTime`, with ticks held and the operator's input kept back, so that nothing re-enters. What
// the page sends by itself, and the end of a navigation, is handed on from the event loop, never
// while ticks are held; of equal messages in a row the last one stands for all.
class QtWebBrowser : public QObject, public WebBrowser {
    Q_OBJECT

  public:
    // `report` gets a line for the log when a page fails: "TremorLedger.html could not be shown."
    // The widget fills `frame`. All references must outlive this object.
    QtWebBrowser(QWidget& frame, MapSite& site, QtClock& clock,
                 std::function<void(std::string_view)> report, PageLimits limits = {});
    ~QtWebBrowser() override;

    void setEvents(PageEvents* events) override { events_ = events; }
    void Navigate(std::string_view target) override;
    std::int32_t ReadyState() const override { return readyState_; }
    std::string LocationURL() const override { return target_; }
    void setAttribute(std::string_view element, std::string_view name,
                      std::string_view value) override;
    void replaceAttribute(std::string_view element, std::string_view name,
                          std::string_view expected, std::string_view value) override;
    PageStatus fire(std::string_view element, Fire how) override;
    std::optional<PageSnapshot> snapshot() override;
    std::optional<Picture> picture() override;

    QWebEngineView& view() { return view_; }

    // Of the view: its page goes on painting in a minimised window, for the pictures.
    bool eventFilter(QObject* watched, QEvent* event) override;

    static constexpr std::chrono::milliseconds answerTime{5000};

  public Q_SLOTS:
    // Called by the page's agent with the query of its address ("?3": the number of the navigation)
    // and with what has reached its document, a JSON array.
    void takeEvents(const QString& query, const QString& events);

    // Called by the agent when its page is loaded.
    void takeLoaded(const QString& query);

  private:
    // What the page says to a command. Shared with the engine, which may answer after nobody waits.
    struct Answer {
        bool given = false;
        bool done = false;
        PageSnapshot page;
    };

    PageStatus command(std::string_view element, Fire how, PageSnapshot* page);
    std::shared_ptr<Answer> send(std::string_view element, Fire how);
    void takeAnswer(const QString& text, Answer& answer);
    void flush();
    void addEvents(const QJsonArray& events);
    void dispatch();
    void dispatchWhenFree();

    void makePage();
    void load();
    void loadEnded(const QWebEngineLoadingInfo& info);
    void giveUpLoading();
    bool isCurrent(const QString& query) const;
    void ended(bool good);
    void completed();
    void checkMaps();
    void processEnded();
    std::string pageName() const;

    MapSite& site_;
    QtClock& clock_;
    std::function<void(std::string_view)> report_;
    PageLimits limits_;
    QWebEngineView view_;
    PageEvents* events_ = nullptr;
    std::string target_ = "about:blank";
    std::int32_t readyState_ = complete;
    quint64 navigation_ = 0; // counts them; a load of an earlier one says nothing about this one
    std::vector<QJsonObject> writes_;
    std::vector<PageEvent> waitingEvents_;
    bool waiting_ = false; // a command waits for its answer
    bool gone_ = false;    // the page's process has ended; the next load makes a new page
    int restarts_ = 0;     // of the page's process, shortly after each other
    QElapsedTimer shown_;  // since the page was loaded
    QTimer flushTimer_;
    bool dispatching_ = false; // a handler of PageEvents is running
    QTimer dispatchTimer_;
    QTimer loadTimer_;
};

} // namespace tremor
