#include "map/engine/engine_page.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>
#include <QWebEngineSettings>
#include <QWheelEvent>

#include <memory>

namespace tremor {
namespace {

constexpr int answerTime = 10000; // milliseconds
constexpr QSize pageSize(800, 600);

// Attributes of the bridge as properties, as the program's own host gives them, and a record of
// what reaches the document: the pending code at each click.
const char* const hostScript = R"(
    const names = ["LATITUDE", "LONGITUDE", "EUTC", "DEPTH", "MAGNITUDE", "EVENTSCOLOR", "MARSEL",
        "PINSMODE", "PINSCALE", "URLPIN", "GIFLAST", "CHECK", "STATIONCODE", "BLAT", "BLNG", "TLAT",
        "TLNG", "CLAT", "CLNG", "ZOOM", "SCALE", "VALORE", "UTC", "FLAG", "BOL"];
    for (const name of names) {
        Object.defineProperty(HTMLInputElement.prototype, name, {
            get() { return this.getAttribute(name) ?? undefined; },
            set(value) { this.setAttribute(name, value); },
        });
    }
    window.faults = [];
    window.codes = [];
    window.addEventListener("error", (event) => faults.push(String(event.message)));
    document.addEventListener("click", () =>
        codes.push(document.getElementById("MapClick")?.VALORE ?? "none"));
)";

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

EnginePage::EnginePage() {
    view_.resize(pageSize);
    view_.settings()->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
    view_.show();
    QFile::copy(QStringLiteral(TREMOR_MAPS_ENGINE),
                folder_.filePath(QStringLiteral("maps_engine.js")));
}

void EnginePage::write(const QString& name, const QByteArray& bytes) {
    QFile file(folder_.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

bool EnginePage::load(const QString& name, const QString& options) {
    QByteArray page = contents(QStringLiteral(TREMOR_TEST_DATA "/pages/") + name);
    if (page.isEmpty())
        return false;
    write(QStringLiteral("default.css"),
          contents(QStringLiteral(TREMOR_TEST_DATA "/pages/default.css")));
    QString text = QString::fromUtf8(page);
    static const QRegularExpression script(
        QStringLiteral("src=\"https?://[^\"]*/maps/api/js[^\"]*\""));
    text.replace(script, QStringLiteral("src=\"maps_engine.js\""));
    static const QRegularExpression overlay(QStringLiteral("https?://[^'\"/]*/TremorLedger/"));
    text.replace(overlay, QStringLiteral("file://" TREMOR_SHARE "/Img/"));
    return loadText(text.toUtf8(), options);
}

bool EnginePage::loadMap(const QString& mapOptions, const QString& options) {
    const QString page = QStringLiteral(R"(<!DOCTYPE html><html><head><meta charset="utf-8">
        <style>html, body, #map { height: 100%; margin: 0 }</style>
        <script src="maps_engine.js"></script></head><body><div id="map"></div><script>
        var rests = 0;
        var map = new google.maps.Map(document.getElementById("map"), %1);
        map.addListener("tilesloaded", () => { rests += 1; });
        </script></body></html>)")
                             .arg(mapOptions);
    return loadText(page.toUtf8(), options);
}

bool EnginePage::loadText(QByteArray page, const QString& options) {
    const QByteArray first =
        QByteArray("<script>") + hostScript + options.toUtf8() + "</script>\n<script";
    const auto at = page.indexOf("<script");
    page.replace(at, 7, first);
    write(QStringLiteral("page.html"), page);
    auto loaded = std::make_shared<int>(-1);
    QObject::connect(&view_, &QWebEngineView::loadFinished, &view_,
                     [loaded](bool good) { *loaded = good ? 1 : 0; });
    view_.load(QUrl::fromLocalFile(folder_.filePath(QStringLiteral("page.html"))));
    return wait([loaded] { return *loaded >= 0; }, answerTime) && *loaded == 1;
}

void EnginePage::turnEvents(int milliseconds) {
    wait([] { return false; }, milliseconds);
}

bool EnginePage::wait(const std::function<bool()>& done, int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QTest::qWait(1);
    }
    return done();
}

QJsonValue EnginePage::evaluate(const QString& expression) {
    auto answer = std::make_shared<QString>();
    view_.page()->runJavaScript(
        QStringLiteral("JSON.stringify([%1])").arg(expression), [answer](const QVariant& value) {
            *answer = value.isValid() ? value.toString() : QStringLiteral("[]");
        });
    wait([answer] { return !answer->isNull(); }, answerTime);
    return QJsonDocument::fromJson(answer->toUtf8()).array().at(0);
}

double EnginePage::number(const QString& expression) {
    return evaluate(expression).toDouble(std::numeric_limits<double>::quiet_NaN());
}

QString EnginePage::text(const QString& expression) {
    return evaluate(expression).toString();
}

bool EnginePage::waitFor(const QString& expression) {
    const QDeadlineTimer deadline(answerTime);
    while (!deadline.hasExpired()) {
        if (evaluate(expression).toBool())
            return true;
        turnEvents(20);
    }
    return false;
}

// Input comes to the page with its next frame, and what it changes shows in the one after.
void EnginePage::waitForFrames() {
    turnEvents(20);
    evaluate(QStringLiteral("(window.framesDone = false, requestAnimationFrame(() => "
                            "requestAnimationFrame(() => { framesDone = true; })), 0)"));
    waitFor(QStringLiteral("framesDone"));
}

QImage EnginePage::picture() {
    waitForFrames();
    turnEvents(150); // from the page to the widget
    return view_.grab().toImage();
}

QColor EnginePage::pixel(int x, int y) {
    return picture().pixelColor(x, y);
}

QWidget* EnginePage::target() {
    return view_.focusProxy();
}

void EnginePage::moveTo(int x, int y) {
    QMouseEvent move(QEvent::MouseMove, QPointF(x, y), target()->mapToGlobal(QPointF(x, y)),
                     Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target(), &move);
    waitForFrames();
}

void EnginePage::click(int x, int y) {
    moveTo(x, y);
    QTest::mouseClick(target(), Qt::LeftButton, Qt::NoModifier, QPoint(x, y));
    waitForFrames();
}

void EnginePage::drag(QPoint from, QPoint to) {
    QTest::mousePress(target(), Qt::LeftButton, Qt::NoModifier, from);
    waitForFrames();
    for (int i = 1; i <= 5; ++i) {
        const QPointF at = from + (to - from) * i / 5;
        QMouseEvent move(QEvent::MouseMove, at, target()->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target(), &move);
        waitForFrames();
    }
    QTest::mouseRelease(target(), Qt::LeftButton, Qt::NoModifier, to);
    waitForFrames();
}

void EnginePage::turnWheel(int x, int y, int steps) {
    const QPointF at(x, y);
    QWheelEvent wheel(at, target()->mapToGlobal(at), QPoint(), QPoint(0, 120 * steps), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(target(), &wheel);
    turnEvents(600);
}

void EnginePage::pressKey(Qt::Key key) {
    QTest::keyClick(target(), key);
    turnEvents(600);
}

} // namespace tremor
