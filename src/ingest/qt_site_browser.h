#pragma once

#include "core/qt_clock.h"
#include "ingest/site_browser.h"

#include <QtCore/QJsonArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QVariant>
#include <QtNetwork/QNetworkCookie>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class QWebEnginePage;
class QWebEngineProfile;

namespace tremor {

// The browser of a web session on Qt WebEngine, without a view. The engine starts with the first
// navigation. The session is in memory alone and shares nothing with the program's own pages; what
// the site sends gets no files of this machine, no windows, no dialogs, no downloads and no sound.
//
// The engine checks certificates against its own and the system's authorities (the NSS store); it
// cannot be given a file with another one, so a site with such a certificate is refused.
class QtSiteBrowser : public QObject, public SiteBrowser {
  public:
    // The page has `answerTime` for each question. The clock outlives this object.
    explicit QtSiteBrowser(QtClock& clock,
                           std::chrono::milliseconds answerTime = std::chrono::milliseconds(5000));
    ~QtSiteBrowser() override;

    void Navigate(std::string_view url) override;
    std::int32_t ReadyState() const override { return readyState_; }
    std::string LocationURL() const override;
    // The engine shows no script errors, and dialogs of this page are answered unseen at any time:
    // there is nobody who could.
    void setSilent() override {}
    bool hasElement(std::string_view id) override;
    void setValue(std::string_view id, std::string_view value) override;
    void click(std::string_view id) override;
    HttpCookies cookies() const override;

    // Of the page; 0 without one. For tests that end it.
    std::int64_t renderProcess() const;

  private:
    void makeProfile();
    void makePage();
    QVariant call(const QString& function, const QJsonArray& arguments);
    void callOnElement(const QString& function, const QJsonArray& arguments);

    QtClock& clock_;
    std::chrono::milliseconds answerTime_;
    std::int32_t readyState_ = complete;
    bool ended_ = false; // the page's process has ended, or the page hangs
    QList<QNetworkCookie> cookies_;
    std::unique_ptr<QWebEngineProfile> profile_;
    std::unique_ptr<QWebEnginePage> page_; // goes before its profile
};

} // namespace tremor
