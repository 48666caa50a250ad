#pragma once

#include <QImage>
#include <QJsonValue>
#include <QString>
#include <QTemporaryDir>
#include <QWebEngineView>

#include <functional>

// A page in the real web engine, with the maps engine in the place of the public script. Every wait
// has an end; what did not come in time is an invalid value.
namespace tremor {

class EnginePage {
  public:
    EnginePage();

    // Loads one of tests/data/pages, with the attributes of its elements as properties. Overlays of
    // the web host come from share/Img. `options`: script that runs before the engine's.
    bool load(const QString& name, const QString& options = {});

    // Loads a page that has nothing but a map of the given options: {center: …, zoom: …}.
    bool loadMap(const QString& mapOptions, const QString& options = {});

    // The value of an expression, by way of JSON.
    QJsonValue evaluate(const QString& expression);
    double number(const QString& expression);
    QString text(const QString& expression);

    // Waits until an expression is true, at most ten seconds.
    bool waitFor(const QString& expression);

    // What the view shows after its next paints.
    QImage picture();
    QColor pixel(int x, int y);

    void click(int x, int y);
    void moveTo(int x, int y);
    void drag(QPoint from, QPoint to);
    void turnWheel(int x, int y, int steps);
    void pressKey(Qt::Key key);

    QWebEngineView& view() { return view_; }
    // A file beside the page.
    void write(const QString& name, const QByteArray& bytes);

  private:
    bool loadText(QByteArray page, const QString& options);
    void turnEvents(int milliseconds);
    void waitForFrames();
    bool wait(const std::function<bool()>& done, int milliseconds);
    QWidget* target();

    QTemporaryDir folder_;
    QWebEngineView view_;
};

} // namespace tremor
