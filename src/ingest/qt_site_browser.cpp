#include "ingest/qt_site_browser.h"

#include "core/error_report.h"
#include "core/qt_text.h"

#include <QtCore/QDateTime>
#include <QtCore/QJsonDocument>
#include <QtCore/QUrl>
#include <QtWebEngineCore/QWebEngineCookieStore>
#include <QtWebEngineCore/QWebEngineLoadingInfo>
#include <QtWebEngineCore/QWebEnginePage>
#include <QtWebEngineCore/QWebEngineProfile>
#include <QtWebEngineCore/QWebEngineScript>
#include <QtWebEngineCore/QWebEngineSettings>

#include <algorithm>
#include <iterator>
#include <optional>

namespace tremor {
namespace {

constexpr std::int32_t loading = 1;
constexpr const char* aboutBlank = "about:blank";

// Each gives false for a page without the element.
const QString isThere = QStringLiteral("id => document.getElementById(id) !== null");
const QString writeValue = QStringLiteral(
    "(id, value) => { const element = document.getElementById(id); if (element === null) return "
    "false; element.value = value; return true; }");
const QString clickElement = QStringLiteral(
    "id => { const element = document.getElementById(id); if (element === null) return false; "
    "element.click(); return true; }");

// A page of the web that nobody sees.
class SitePage : public QWebEnginePage {
  public:
    explicit SitePage(QWebEngineProfile* profile) : QWebEnginePage(profile) {}

  protected:
    // Any other scheme would open a program of the desktop.
    bool acceptNavigationRequest(const QUrl& url, NavigationType, bool) override {
        const QString scheme = url.scheme();
        return scheme == QLatin1StringView("http") || scheme == QLatin1StringView("https") ||
               url == QUrl(QLatin1StringView(aboutBlank));
    }
    QStringList chooseFiles(FileSelectionMode, const QStringList&, const QStringList&) override {
        return {};
    }
    void javaScriptAlert(const QUrl&, const QString&) override {}
    bool javaScriptConfirm(const QUrl&, const QString&) override { return false; }
    bool javaScriptPrompt(const QUrl&, const QString&, const QString&, QString*) override {
        return false;
    }
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int,
                                  const QString&) override {}
};

HttpCookie asHttpCookie(const QNetworkCookie& cookie) {
    QString domain = cookie.domain();
    const bool ofSubdomains = domain.startsWith(QLatin1Char('.'));
    if (ofSubdomains)
        domain.remove(0, 1);
    const QDateTime end = cookie.expirationDate();
    return {.name = cookie.name().toStdString(),
            .value = cookie.value().toStdString(),
            .domain = domain.toStdString(),
            .ofSubdomains = ofSubdomains,
            .path = cookie.path().toStdString(),
            .secure = cookie.isSecure(),
            .expires = end.isValid() ? end.toSecsSinceEpoch() : 0};
}

} // namespace

QtSiteBrowser::QtSiteBrowser(QtClock& clock, std::chrono::milliseconds answerTime)
    : clock_(clock), answerTime_(answerTime) {}

QtSiteBrowser::~QtSiteBrowser() = default;

void QtSiteBrowser::makeProfile() {
    profile_ = std::make_unique<QWebEngineProfile>(); // off the record
    QWebEngineSettings& settings = *profile_->settings();
    settings.setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, false);
    settings.setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    settings.setAttribute(QWebEngineSettings::PdfViewerEnabled, false);
    settings.setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
    settings.setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);

    const QWebEngineCookieStore* store = profile_->cookieStore();
    const auto forget = [this](const QNetworkCookie& cookie) {
        cookies_.removeIf(
            [&](const QNetworkCookie& known) { return known.hasSameIdentifier(cookie); });
    };
    connect(store, &QWebEngineCookieStore::cookieRemoved, this, forget);
    connect(store, &QWebEngineCookieStore::cookieAdded, this,
            [this, forget](const QNetworkCookie& cookie) {
                forget(cookie);
                cookies_.append(cookie);
            });
}

void QtSiteBrowser::makePage() {
    if (!profile_)
        makeProfile();
    page_ = std::make_unique<SitePage>(profile_.get());
    page_->setAudioMuted(true);
    connect(page_.get(), &QWebEnginePage::loadingChanged, this,
            [this](const QWebEngineLoadingInfo& info) {
                const bool loaded = info.status() == QWebEngineLoadingInfo::LoadSucceededStatus;
                readyState_ = loaded ? complete : loading;
            });
    connect(page_.get(), &QWebEnginePage::renderProcessTerminated, this, [this] {
        ended_ = true;
        readyState_ = loading;
    });
    ended_ = false;
}

// A page that is still loading, hangs or has ended would have its say about the next one, too.
void QtSiteBrowser::Navigate(std::string_view url) {
    if (!page_ || ended_ || readyState_ != complete)
        makePage();
    readyState_ = loading;
    page_->load(QUrl(fromBytes(url)));
}

std::string QtSiteBrowser::LocationURL() const {
    const QUrl url = page_ && !ended_ ? page_->url() : QUrl();
    return url.isEmpty() ? aboutBlank : url.toEncoded().toStdString();
}

bool QtSiteBrowser::hasElement(std::string_view id) {
    return call(isThere, {fromBytes(id)}).toBool();
}

void QtSiteBrowser::setValue(std::string_view id, std::string_view value) {
    callOnElement(writeValue, {fromBytes(id), fromBytes(value)});
}

void QtSiteBrowser::click(std::string_view id) {
    callOnElement(clickElement, {fromBytes(id)});
}

void QtSiteBrowser::callOnElement(const QString& function, const QJsonArray& arguments) {
    const QVariant done = call(function, arguments);
    if (done.isValid() && !done.toBool())
        throw RuntimeError(ErrorNumber::ObjectNotSet);
}

// Calls a function in the page, in a world that the page's own scripts do not reach. Invalid when
// there is no page, or when it has not answered in time.
QVariant QtSiteBrowser::call(const QString& function, const QJsonArray& arguments) {
    if (!page_ || ended_)
        return {};
    // JSON is a part of the language.
    const QByteArray list = QJsonDocument(arguments).toJson(QJsonDocument::Compact);
    auto answer = std::make_shared<std::optional<QVariant>>(); // may come after nobody waits
    page_->runJavaScript(QLatin1Char('(') + function + QStringLiteral(")(...") +
                             QString::fromUtf8(list) + QLatin1Char(')'),
                         QWebEngineScript::ApplicationWorld,
                         [answer](const QVariant& value) { *answer = value; });
    const bool inTime =
        clock_.waitWithoutInput([&] { return answer->has_value() || ended_; }, answerTime_);
    ended_ = ended_ || !inTime;
    return answer->value_or(QVariant());
}

HttpCookies QtSiteBrowser::cookies() const {
    HttpCookies list;
    std::transform(cookies_.begin(), cookies_.end(), std::back_inserter(list), asHttpCookie);
    return list;
}

std::int64_t QtSiteBrowser::renderProcess() const {
    return page_ ? page_->renderProcessPid() : 0;
}

} // namespace tremor
