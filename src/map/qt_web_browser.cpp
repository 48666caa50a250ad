#include "map/qt_web_browser.h"

#include "core/qt_text.h"

#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPointer>
#include <QtGui/QDesktopServices>
#include <QtGui/QImage>
#include <QtWebChannel/QWebChannel>
#include <QtWebEngineCore/QWebEngineNewWindowRequest>
#include <QtWebEngineCore/QWebEnginePage>
#include <QtWebEngineCore/QWebEngineScript>
#include <QtWebEngineCore/QWebEngineSettings>
#include <QtWidgets/QVBoxLayout>

#include <cstddef>
#include <span>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view aboutBlank = "about:blank";
constexpr int maximumRestarts = 3;
constexpr std::chrono::milliseconds heldTurn{20};

QString text(const QJsonObject& object, const char* name) {
    return object.value(QLatin1StringView(name)).toString();
}

PageSnapshot pageSnapshot(const QJsonObject& page) {
    const QJsonObject view = page.value(QLatin1StringView("selection")).toObject();
    const auto viewText = [&view](const char* name) { return toBytes(text(view, name)); };
    return {.VALORE = toBytes(text(page, "VALORE")),
            .Cursore = toBytes(text(page, "Cursore")),
            .MARSEL = toBytes(text(page, "MARSEL")),
            .selection = {.CLAT = viewText("CLAT"),
                          .CLNG = viewText("CLNG"),
                          .ZOOM = viewText("ZOOM"),
                          .BLAT = viewText("BLAT"),
                          .BLNG = viewText("BLNG"),
                          .TLAT = viewText("TLAT"),
                          .TLNG = viewText("TLNG"),
                          .SCALE = viewText("SCALE")}};
}

// A value as JavaScript reads it: JSON is a part of the language.
QString literal(const QJsonArray& array) {
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

// A page of the program stays where the program has put it; what the operator clicks in it (the
// links of an attribution) opens in the browser of the desktop.
class MapPage : public QWebEnginePage {
  public:
    MapPage(QWebEngineProfile* profile, QObject* parent) : QWebEnginePage(profile, parent) {
        connect(this, &QWebEnginePage::newWindowRequested, this,
                [](QWebEngineNewWindowRequest& request) { openOutside(request.requestedUrl()); });
    }

  protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool mainFrame) override {
        if (!mainFrame)
            return type == NavigationTypeOther || type == NavigationTypeReload;
        if (type == NavigationTypeLinkClicked)
            openOutside(url);
        return type == NavigationTypeTyped; // the program's own; a script cannot type
    }
    // A page's faults are no lines for the terminal of an operator.
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString&, int,
                                  const QString&) override {}

  private:
    static void openOutside(const QUrl& url) {
        if (url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http"))
            QDesktopServices::openUrl(url);
    }
};

} // namespace

QtWebBrowser::QtWebBrowser(QWidget& frame, MapSite& site, QtClock& clock,
                           std::function<void(std::string_view)> report, PageLimits limits)
    : site_(site), clock_(clock), report_(std::move(report)), limits_(limits), view_(&frame) {
    view_.setContextMenuPolicy(Qt::NoContextMenu);
    view_.setAcceptDrops(false);
    view_.installEventFilter(this);
    auto* layout = new QVBoxLayout(&frame);
    layout->setContentsMargins({});
    layout->addWidget(&view_);

    for (QTimer* timer : {&flushTimer_, &dispatchTimer_, &loadTimer_})
        timer->setSingleShot(true);
    loadTimer_.setInterval(limits_.load);
    connect(&flushTimer_, &QTimer::timeout, this, &QtWebBrowser::flush);
    connect(&dispatchTimer_, &QTimer::timeout, this, &QtWebBrowser::dispatchWhenFree);
    connect(&loadTimer_, &QTimer::timeout, this, &QtWebBrowser::giveUpLoading);
    makePage();
}

void QtWebBrowser::makePage() {
    auto* page = new MapPage(&site_.profile(), &view_);
    view_.setPage(page); // deletes the one before
    QWebEngineSettings& settings = *page->settings();
    settings.setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, true);
    settings.setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
    settings.setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
    // The keyboard stays where the operator has put it when a map is loaded anew.
    settings.setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
    settings.setAttribute(QWebEngineSettings::ShowScrollBars, false);
    settings.setAttribute(QWebEngineSettings::ErrorPageEnabled, false);

    auto* channel = new QWebChannel(page);
    channel->registerObject(QStringLiteral("tremorHost"), this);
    page->setWebChannel(channel, QWebEngineScript::MainWorld);

    connect(page, &QWebEnginePage::loadingChanged, this, &QtWebBrowser::loadEnded);
    connect(page, &QWebEnginePage::renderProcessTerminated, this, &QtWebBrowser::processEnded);
}

QtWebBrowser::~QtWebBrowser() {
    view_.page()->disconnect(this);
    ++navigation_;
}

void QtWebBrowser::Navigate(std::string_view target) {
    target_ = target;
    restarts_ = 0;
    load();
}

void QtWebBrowser::load() {
    if (std::exchange(gone_, false))
        makePage();
    readyState_ = 1;
    ++navigation_;
    writes_.clear();
    waitingEvents_.clear();
    loadTimer_.start();
    shown_.start();
    if (target_ == aboutBlank) {
        view_.setUrl(QUrl(QStringLiteral("about:blank")));
        return;
    }
    // The number makes each load one of its own, for the engine's cache and for loadEnded.
    QUrl url = QUrl::fromLocalFile(fromBytes(target_));
    url.setQuery(QString::number(navigation_));
    // A name without an extension would be shown as plain text.
    QFile file(url.toLocalFile());
    if (QFileInfo(file).suffix().isEmpty() && file.open(QIODevice::ReadOnly))
        view_.page()->setContent(file.readAll(), QStringLiteral("text/html;charset=UTF-8"), url);
    else
        view_.load(url);
}

void QtWebBrowser::loadEnded(const QWebEngineLoadingInfo& info) {
    if (info.status() == QWebEngineLoadingInfo::LoadStartedStatus || readyState_ == complete)
        return;
    const bool blank = target_ == aboutBlank;
    if (blank ? info.url().isLocalFile() : info.url().query() != QString::number(navigation_))
        return; // the end of an earlier navigation
    ended(info.status() == QWebEngineLoadingInfo::LoadSucceededStatus);
}

void QtWebBrowser::takeLoaded(const QString& query) {
    if (isCurrent(query) && readyState_ != complete)
        ended(true);
}

bool QtWebBrowser::isCurrent(const QString& query) const {
    return query == QLatin1Char('?') + QString::number(navigation_);
}

void QtWebBrowser::ended(bool good) {
    if (!good)
        report_(pageName() + " could not be shown.");
    completed();
    if (good && target_ != aboutBlank)
        checkMaps();
}

void QtWebBrowser::giveUpLoading() {
    if (readyState_ == complete)
        return;
    report_(pageName() + " did not come in time.");
    view_.stop();
    completed();
}

void QtWebBrowser::completed() {
    loadTimer_.stop();
    readyState_ = complete;
    if (!writes_.empty())
        flushTimer_.start(0);
    // A quick page has sent its first messages before.
    waitingEvents_.insert(waitingEvents_.begin(), {PageEvent::Kind::Complete, {}});
    dispatchTimer_.start(0);
}

// A page whose map script was refused stands there empty and answers nothing.
void QtWebBrowser::checkMaps() {
    view_.page()->runJavaScript(
        QStringLiteral("tremorPage.hasMaps()"),
        [self = QPointer(this), navigation = navigation_](const QVariant& hasMaps) {
            if (self && self->navigation_ == navigation && !hasMaps.toBool())
                self->report_("The map of " + self->pageName() +
                              " cannot be shown: its script "
                              "could not be loaded.");
        });
}

void QtWebBrowser::processEnded() {
    if (shown_.hasExpired(limits_.steady.count()))
        restarts_ = 0;
    if (restarts_ < maximumRestarts) {
        ++restarts_;
        report_(pageName() + " ended unexpectedly and is shown anew.");
        readyState_ = 1;
        gone_ = true;
        const quint64 navigation = ++navigation_;
        // In a new process the old page would be without the agent. Later, because the old one is
        // still sending this signal.
        QTimer::singleShot(0, this, [this, navigation] {
            if (navigation_ == navigation)
                load();
        });
        return;
    }
    report_(pageName() + " ended again and is not shown any more.");
    gone_ = true;
    ++navigation_;
    writes_.clear();
    waitingEvents_.clear();
    completed();
}

std::string QtWebBrowser::pageName() const {
    return toBytes(QFileInfo(fromBytes(target_)).fileName());
}

void QtWebBrowser::setAttribute(std::string_view element, std::string_view name,
                                std::string_view value) {
    writes_.push_back({{QStringLiteral("element"), fromBytes(element)},
                       {QStringLiteral("name"), fromBytes(name)},
                       {QStringLiteral("value"), fromBytes(value)}});
    flushTimer_.start(0);
}

void QtWebBrowser::replaceAttribute(std::string_view element, std::string_view name,
                                    std::string_view expected, std::string_view value) {
    setAttribute(element, name, value);
    writes_.back().insert(QStringLiteral("expected"), fromBytes(expected));
}

void QtWebBrowser::flush() {
    if (!writes_.empty() && readyState_ == complete && !gone_)
        send({}, Fire::Onclick);
}

PageStatus QtWebBrowser::fire(std::string_view element, Fire how) {
    return command(element, how, nullptr);
}

std::optional<PageSnapshot> QtWebBrowser::snapshot() {
    PageSnapshot page;
    if (command({}, Fire::Onclick, &page) != PageStatus::Done)
        return std::nullopt;
    return page;
}

bool QtWebBrowser::eventFilter(QObject* watched, QEvent* event) {
    const bool minimised = event->type() == QEvent::Hide && event->spontaneous();
    return minimised || QObject::eventFilter(watched, event);
}

// The screen may have a higher density than the control's own pixels.
std::optional<Picture> QtWebBrowser::picture() {
    if (!view_.isVisible() || target_ == aboutBlank || gone_)
        return std::nullopt;
    QImage painted(view_.size(), QImage::Format_RGB32);
    if (painted.isNull())
        return std::nullopt;
    painted.fill(Qt::white);
    view_.render(&painted);
    painted.convertTo(QImage::Format_RGB888);
    Picture picture{painted.width(), painted.height(), {}};
    const std::size_t row = std::size_t{3} * static_cast<std::size_t>(picture.width);
    picture.rgb.reserve(row * static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        const std::span pixels(painted.constScanLine(y), row);
        picture.rgb.insert(picture.rgb.end(), pixels.begin(), pixels.end());
    }
    return picture;
}

PageStatus QtWebBrowser::command(std::string_view element, Fire how, PageSnapshot* page) {
    if (waiting_)
        return PageStatus::Busy;
    if (readyState_ != complete || target_ == aboutBlank || gone_)
        return PageStatus::NoElement;
    const QPointer self(this);
    const quint64 navigation = navigation_;
    const std::shared_ptr<Answer> answer = send(element, how);
    waiting_ = true;
    const bool ended = clock_.waitWithoutInput(
        [&] { return !self || answer->given || navigation_ != navigation; }, answerTime);
    if (!self)
        return PageStatus::PageGone;
    waiting_ = false;
    if (!waitingEvents_.empty())
        dispatchTimer_.start(0);
    if (navigation_ != navigation)
        return PageStatus::PageGone;
    if (!answer->given)
        return ended ? PageStatus::PageGone : PageStatus::TimedOut;
    if (page != nullptr)
        *page = answer->page;
    const bool done = answer->done;
    dispatch();
    return done ? PageStatus::Done : PageStatus::NoElement;
}

std::shared_ptr<QtWebBrowser::Answer> QtWebBrowser::send(std::string_view element, Fire how) {
    QJsonArray writes;
    for (const QJsonObject& write : writes_)
        writes.append(write);
    writes_.clear();
    flushTimer_.stop();
    const QJsonArray arguments{writes, fromBytes(element),
                               how == Fire::Click ? QStringLiteral("click")
                                                  : QStringLiteral("onclick")};
    auto answer = std::make_shared<Answer>();
    view_.page()->runJavaScript(
        QStringLiteral("tremorPage.command(...%1)").arg(literal(arguments)),
        [self = QPointer(this), answer, navigation = navigation_](const QVariant& value) {
            if (self && self->navigation_ == navigation)
                self->takeAnswer(value.toString(), *answer);
        });
    return answer;
}

void QtWebBrowser::takeAnswer(const QString& text, Answer& answer) {
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    answer.given = true;
    answer.done = object.value(QLatin1StringView("done")).toBool();
    answer.page = pageSnapshot(object.value(QLatin1StringView("page")).toObject());
    addEvents(object.value(QLatin1StringView("events")).toArray());
}

void QtWebBrowser::takeEvents(const QString& query, const QString& events) {
    if (isCurrent(query)) // else from a page that was left
        addEvents(QJsonDocument::fromJson(events.toUtf8()).array());
}

void QtWebBrowser::addEvents(const QJsonArray& events) {
    for (const auto& value : events) {
        const QJsonObject event = value.toObject();
        const auto kind = text(event, "kind") == QLatin1String("move") ? PageEvent::Kind::Move
                                                                       : PageEvent::Kind::Click;
        PageSnapshot page = pageSnapshot(event.value(QLatin1StringView("page")).toObject());
        auto equal = waitingEvents_.rbegin();
        while (equal != waitingEvents_.rend() && equal->kind != kind &&
               equal->page.VALORE == page.VALORE)
            ++equal;
        if (equal != waitingEvents_.rend() && equal->kind == kind &&
            equal->page.VALORE == page.VALORE)
            equal->page = std::move(page);
        else
            waitingEvents_.push_back({kind, std::move(page)});
    }
    if (!waitingEvents_.empty())
        dispatchTimer_.start(0);
}

// The wait of another page, or a long statement, is no moment for handlers either.
void QtWebBrowser::dispatchWhenFree() {
    if (clock_.ticksHeld())
        dispatchTimer_.start(heldTurn);
    else
        dispatch();
}

// Handlers may send commands, whose answers bring further events, and may end this object. Events
// keep their order: what comes in while a handler runs is handed on when it has returned.
void QtWebBrowser::dispatch() {
    if (dispatching_)
        return;
    const QPointer self(this);
    dispatching_ = true;
    while (self && !waiting_ && readyState_ == complete && !waitingEvents_.empty()) {
        const PageEvent event = std::move(waitingEvents_.front());
        waitingEvents_.erase(waitingEvents_.begin());
        if (events_ == nullptr)
            continue;
        if (event.kind == PageEvent::Kind::Click)
            events_->documentClicked(event.page);
        else if (event.kind == PageEvent::Kind::Move)
            events_->documentMouseMoved(event.page);
        else
            events_->documentComplete();
    }
    if (self)
        dispatching_ = false;
}

} // namespace tremor
