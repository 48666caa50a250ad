#include "map/map_site.h"

#include "core/qt_text.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>
#include <QtWebEngineCore/QWebEngineScript>
#include <QtWebEngineCore/QWebEngineScriptCollection>
#include <QtWebEngineCore/QWebEngineUrlRequestInfo>
#include <QtWebEngineCore/QWebEngineUrlRequestInterceptor>
#include <QtWebEngineCore/QWebEngineUrlRequestJob>
#include <QtWebEngineCore/QWebEngineUrlScheme>
#include <QtWebEngineCore/QWebEngineUrlSchemeHandler>

#include <utility>

namespace tremor {
namespace {

constexpr char schemeName[] = "tremor";
constexpr int overlayTimeMs = 3000;
constexpr qint64 largestOverlay = qint64{50} * 1024 * 1024;

const QString engineHost = QStringLiteral("engine");
const QString overlayHost = QStringLiteral("overlays");
const QString enginePath = QStringLiteral(":/map/maps_engine.js");
const QString mapScriptPath = QStringLiteral("/maps/api/js");
const QString overlayPath = QStringLiteral("/TremorLedger/"); // on the web host

QUrl ownUrl(const QString& host, const QString& file) {
    QUrl url;
    url.setScheme(QLatin1StringView(schemeName));
    url.setHost(host);
    url.setPath(QLatin1Char('/') + file);
    return url;
}

QByteArray contents(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestOverlay)
        return {};
    return file.readAll();
}

QString withSlash(QString folder) {
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    return folder;
}

// Where a file or folder really is, behind every link; what is not there stays as it is.
QString realPath(const QString& path) {
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

// The local form of a file in a URL, without "." and ".."; empty for what is no local file.
QString localPath(const QUrl& url) {
    return url.isLocalFile()
               ? url.adjusted(QUrl::NormalizePathSegments | QUrl::RemoveQuery).toLocalFile()
               : QString();
}

void answer(QWebEngineUrlRequestJob& job, const QByteArray& type, const QByteArray& bytes) {
    if (bytes.isEmpty()) {
        job.fail(QWebEngineUrlRequestJob::UrlNotFound);
        return;
    }
    auto* buffer = new QBuffer(&job); // lives as long as the request
    buffer->setData(bytes);
    job.reply(type, buffer);
}

} // namespace

void registerMapScheme() {
    QWebEngineUrlScheme scheme(schemeName);
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Host);
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme | QWebEngineUrlScheme::LocalAccessAllowed |
                    QWebEngineUrlScheme::CorsEnabled);
    QWebEngineUrlScheme::registerScheme(scheme);
}

// Decides about each request of a page before it leaves.
class MapSite::Requests : public QWebEngineUrlRequestInterceptor {
  public:
    explicit Requests(const Environment& environment)
        : environment_(environment),
          mapsApi_(fromBytes(environment.hosts.MapsApi)),
          webHost_(fromBytes(environment.hosts.WebHost)),
          applicationPath_(withSlash(realPath(fromBytes(environment.applicationPath)))),
          embedded_(environment.hosts.MapsEngine != "online") {}

    void interceptRequest(QWebEngineUrlRequestInfo& info) override {
        const QUrl url = info.requestUrl();
        if (embedded_ && isMapScript(url))
            info.redirect(ownUrl(engineHost, QStringLiteral("maps_engine.js")));
        else if (embedded_ && isOverlay(url))
            info.redirect(ownUrl(overlayHost, url.path().mid(overlayPath.size())));
        else if (url.isLocalFile() && !isReadable(realPath(localPath(url))))
            info.block(true);
    }

  private:
    bool isMapScript(const QUrl& url) const {
        return url.host() == mapsApi_.host() && url.path() == mapScriptPath;
    }

    // Without a web host the address has the folder alone and belongs to the page's own scheme.
    bool isOverlay(const QUrl& url) const {
        return url.path().startsWith(overlayPath) &&
               (webHost_.isEmpty()
                    ? url.isLocalFile()
                    : url.host() == webHost_.host() && url.port() == webHost_.port());
    }

    // The pages, their pictures and the operator's pins; no other file of this machine.
    bool isReadable(const QString& path) const {
        if (path.startsWith(applicationPath_))
            return true;
        const QString pins = realPins();
        return !pins.isEmpty() && path.startsWith(pins);
    }

    // What the paths of all pins begin with: a folder, and the first letters of the names when the
    // setting does not end in "/". Empty when it would open the whole machine.
    QString realPins() const {
        QString pins = fromBytes(environment_.pathPins());
        if (pins.startsWith(QLatin1String("file:")))
            pins = QUrl(pins).toLocalFile();
        const auto slash = pins.lastIndexOf(QLatin1Char('/'));
        if (slash < 0)
            return {};
        const QString folder = withSlash(realPath(pins.first(slash + 1)));
        const QString names = pins.sliced(slash + 1);
        return folder == QLatin1String("/") && names.isEmpty() ? QString() : folder + names;
    }

    const Environment& environment_;
    QUrl mapsApi_;
    QUrl webHost_;
    QString applicationPath_;
    bool embedded_;
};

// Answers what was redirected.
class MapSite::Answers : public QWebEngineUrlSchemeHandler {
  public:
    explicit Answers(const Environment& environment)
        : environment_(environment),
          webHost_(fromBytes(environment.hosts.WebHost)),
          images_(withSlash(fromBytes(environment.applicationPath)) + QStringLiteral("Img/")) {
        network_.setTransferTimeout(overlayTimeMs);
    }

    void requestStarted(QWebEngineUrlRequestJob* job) override {
        const QUrl url = job->requestUrl();
        const QString file = url.path().mid(1);
        if (url.host() == engineHost)
            answer(*job, QByteArrayLiteral("text/javascript"), contents(enginePath));
        else if (url.host() == overlayHost && !file.contains(QLatin1Char('/')))
            answerOverlay(*job, file);
        else
            job->fail(QWebEngineUrlRequestJob::UrlNotFound);
    }

  private:
    // The web host first: there the deployment keeps its own overlays.
    void answerOverlay(QWebEngineUrlRequestJob& job, const QString& file) {
        if (webHost_.isEmpty()) {
            answer(job, overlayType(), contents(images_ + file));
            return;
        }
        QNetworkReply* reply =
            network_.get(QNetworkRequest(QUrl(webHost_.toString() + overlayPath + file)));
        // The request may be given up before the host answers.
        connect(reply, &QNetworkReply::finished, &job, [this, reply, &job, file] {
            const QByteArray bytes =
                reply->error() == QNetworkReply::NoError ? reply->readAll() : QByteArray();
            noteHost(!bytes.isEmpty(), file);
            answer(job, overlayType(), bytes.isEmpty() ? contents(images_ + file) : bytes);
        });
        connect(reply, &QNetworkReply::readyRead, reply, [reply] {
            if (reply->bytesAvailable() > largestOverlay)
                reply->abort();
        });
        connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    }

    // Pages ask again at each reload: one line is enough until the host has answered.
    void noteHost(bool answered, const QString& file) {
        if (!answered && hostAnswers_)
            environment_.report(toBytes(file) + " does not come from the web host; the program's "
                                                "own overlays are shown.");
        hostAnswers_ = answered;
    }

    static QByteArray overlayType() { return QByteArrayLiteral("application/octet-stream"); }

    const Environment& environment_;
    QUrl webHost_;
    QString images_;
    bool hostAnswers_ = true;
    QNetworkAccessManager network_;
};

MapSite::MapSite(Environment environment)
    : environment_(std::move(environment)),
      requests_(std::make_unique<Requests>(environment_)),
      answers_(std::make_unique<Answers>(environment_)) {
    profile_.setHttpCacheType(QWebEngineProfile::NoCache);
    profile_.setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
    profile_.setUrlRequestInterceptor(requests_.get());
    profile_.installUrlSchemeHandler(schemeName, answers_.get());
    installScripts();
}

MapSite::~MapSite() = default;

// One script, because the parts need each other in this order: the tile source for the engine, the
// channel's library, the agent.
void MapSite::installScripts() {
    const QJsonObject options{
        {QStringLiteral("tileUrl"), fromBytes(environment_.hosts.TileUrl)},
        {QStringLiteral("tileAttribution"), fromBytes(environment_.hosts.TileAttribution)}};
    const QByteArray text =
        "window.TREMOR_MAP_OPTIONS = " + QJsonDocument(options).toJson(QJsonDocument::Compact) +
        ";\n" + contents(QStringLiteral(":/qtwebchannel/qwebchannel.js")) + "\n" +
        contents(QStringLiteral(":/map/page_agent.js"));
    QWebEngineScript script;
    script.setName(QStringLiteral("page agent"));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(false);
    script.setSourceCode(QString::fromUtf8(text));
    profile_.scripts()->insert(script);
}

} // namespace tremor
