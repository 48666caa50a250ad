#pragma once

#include <QtGui/QImage>

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

class QByteArray;
class QJsonObject;

namespace tremor::journeys {

// A window of a visitor's browser.
struct BrowserWindow {
    int width = 1280; // CSS pixels, one of them a pixel of the picture
    int height = 800;
    bool phone = false;
    bool dark = false; // the visitor prefers dark colours
};

// A headless Chromium with one page, driven by the DevTools protocol
// (https://chromedevtools.github.io/devtools-protocol) over its pipe. It keeps nothing of its own
// and is killed after five minutes at the latest. What fails throws std::runtime_error.
class Chromium {
  public:
    // `hosts` are the rules for names ("MAP web.example 127.0.0.1:4443,"); all other names but
    // 127.0.0.1 are unknown. It takes every certificate.
    explicit Chromium(const std::string& hosts = {});
    ~Chromium();
    Chromium(const Chromium&) = delete;
    Chromium& operator=(const Chromium&) = delete;

    void setWindow(const BrowserWindow& window);
    void open(const std::string& url);

    // The value of an expression as text. Exceptions of the expression give their text.
    std::string evaluate(const std::string& expression);
    // Asks again and again whether an expression is true.
    bool soon(const std::string& expression, std::chrono::seconds limit = std::chrono::seconds(30));
    // Presses and releases the mouse at a point of the window.
    void click(double x, double y);
    QImage picture();

    // What pages have reported so far: errors that no script caught, and violations of their
    // content security policy.
    const std::vector<std::string>& errors() const { return errors_; }

  private:
    QJsonObject call(const char* method, const QJsonObject& parameters);
    QJsonObject nextMessage(std::chrono::steady_clock::time_point end);
    void note(const QJsonObject& event);
    void start(const std::string& hosts);
    void stop();

    std::string profile_;
    pid_t process_ = -1;
    int commands_ = -1; // our ends of the pipes
    int answers_ = -1;
    int lastId_ = 0;
    std::string received_;
    std::string session_;
    std::vector<std::string> errors_;
};

} // namespace tremor::journeys
