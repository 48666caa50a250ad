#include "journeys/chromium.h"

#include "journeys/journey.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

constexpr auto answerLimit = 30s;
constexpr auto loadLimit = 60s;
constexpr char lifetime[] = "300"; // seconds
constexpr int commandDescriptor = 3;
constexpr int answerDescriptor = 4;

// A pipe whose ends stand above the numbers that the browser wants.
std::array<int, 2> makePipe() {
    std::array<int, 2> low{};
    if (pipe(low.data()) != 0)
        throw std::runtime_error("no pipe");
    std::array<int, 2> high{};
    for (std::size_t i = 0; i < low.size(); ++i) {
        high[i] = fcntl(low[i], F_DUPFD_CLOEXEC, 10);
        close(low[i]);
    }
    return high;
}

} // namespace

Chromium::Chromium(const std::string& hosts) {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tremor-chromium-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    profile_ = pattern;
    try {
        start(hosts);
        const QString target =
            call("Target.createTarget", {{"url", "about:blank"}}).value("targetId").toString();
        session_ = call("Target.attachToTarget", {{"targetId", target}, {"flatten", true}})
                       .value("sessionId")
                       .toString()
                       .toStdString();
        for (const char* domain : {"Page.enable", "Runtime.enable", "Log.enable"})
            call(domain, {});
    } catch (...) {
        stop();
        throw;
    }
}

Chromium::~Chromium() {
    stop();
}

// In a process group of its own with a limit of its own, so that nothing of it stays.
void Chromium::start(const std::string& hosts) {
    std::vector<std::string> command{"timeout",
                                     "--signal=KILL",
                                     lifetime,
                                     "chromium",
                                     "--headless=new",
                                     "--remote-debugging-pipe",
                                     "--user-data-dir=" + profile_,
                                     "--no-first-run",
                                     "--disable-gpu",
                                     "--disable-background-networking",
                                     "--disable-component-update",
                                     "--disable-dev-shm-usage",
                                     "--ignore-certificate-errors",
                                     "--host-resolver-rules=" + hosts +
                                         "MAP * ~NOTFOUND,EXCLUDE 127.0.0.1"};
    if (geteuid() == 0)
        command.emplace_back("--no-sandbox");
    command.emplace_back("about:blank");
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    const std::array<int, 2> commands = makePipe();
    const std::array<int, 2> answers = makePipe();
    commands_ = commands[1];
    answers_ = answers[0];
    const std::string log = profile_ + "/chromium.log";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    posix_spawn_file_actions_adddup2(&actions, commands[0], commandDescriptor);
    posix_spawn_file_actions_adddup2(&actions, answers[1], answerDescriptor);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    const int result =
        posix_spawnp(&process_, arguments[0], &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(commands[0]);
    close(answers[1]);
    if (result != 0)
        throw std::runtime_error("cannot start chromium");
}

void Chromium::stop() {
    if (process_ > 0) {
        kill(-process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        process_ = -1;
    }
    for (int* descriptor : {&commands_, &answers_})
        if (*descriptor >= 0)
            close(std::exchange(*descriptor, -1));
    std::error_code ignored;
    std::filesystem::remove_all(profile_, ignored);
}

// A message is one JSON object and a zero byte.
QJsonObject Chromium::call(const char* method, const QJsonObject& parameters) {
    QJsonObject message{{"id", ++lastId_}, {"method", method}, {"params", parameters}};
    if (!session_.empty())
        message.insert("sessionId", QString::fromStdString(session_));
    const std::string text =
        QJsonDocument(message).toJson(QJsonDocument::Compact).toStdString() + '\0';
    if (write(commands_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error(std::string("chromium takes no command: ") + method);
    const auto end = SteadyClock::now() + answerLimit;
    for (;;) {
        const QJsonObject answer = nextMessage(end);
        if (answer.value("id").toInt() != lastId_) {
            note(answer);
        } else if (answer.contains("error")) {
            throw std::runtime_error(
                std::string(method) + ": " +
                answer.value("error").toObject().value("message").toString().toStdString());
        } else {
            return answer.value("result").toObject();
        }
    }
}

QJsonObject Chromium::nextMessage(SteadyClock::time_point end) {
    std::size_t size = received_.find('\0');
    while (size == std::string::npos) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - SteadyClock::now());
        pollfd waiting{answers_, POLLIN, 0};
        if (left <= 0ms || poll(&waiting, 1, static_cast<int>(left.count())) <= 0)
            throw std::runtime_error("chromium gives no answer");
        std::array<char, 65536> block{};
        const ssize_t count = read(answers_, block.data(), block.size());
        if (count <= 0)
            throw std::runtime_error("chromium has gone");
        const std::size_t before = received_.size();
        received_.append(block.data(), static_cast<std::size_t>(count));
        size = received_.find('\0', before);
    }
    const QByteArray text(received_.data(), static_cast<qsizetype>(size));
    received_.erase(0, size + 1);
    return QJsonDocument::fromJson(text).object();
}

void Chromium::note(const QJsonObject& event) {
    const QString method = event.value("method").toString();
    const QJsonObject parameters = event.value("params").toObject();
    if (method == "Runtime.exceptionThrown") {
        const QJsonObject details = parameters.value("exceptionDetails").toObject();
        const QString text = details.value("exception").toObject().value("description").toString();
        errors_.push_back((text.isEmpty() ? details.value("text").toString() : text).toStdString());
    } else if (method == "Log.entryAdded") {
        const QJsonObject entry = parameters.value("entry").toObject();
        if (entry.value("source").toString() == "security")
            errors_.push_back(entry.value("text").toString().toStdString());
    }
}

void Chromium::setWindow(const BrowserWindow& window) {
    call("Emulation.setDeviceMetricsOverride", {{"width", window.width},
                                                {"height", window.height},
                                                {"deviceScaleFactor", 1},
                                                {"mobile", window.phone}});
    const QJsonObject scheme{{"name", "prefers-color-scheme"},
                             {"value", window.dark ? "dark" : "light"}};
    call("Emulation.setEmulatedMedia", {{"features", QJsonArray{scheme}}});
}

void Chromium::open(const std::string& url) {
    call("Page.navigate", {{"url", QString::fromStdString(url)}});
    if (!soon("document.readyState === 'complete' && location.href !== 'about:blank'", loadLimit))
        throw std::runtime_error("the page does not load: " + url);
}

std::string Chromium::evaluate(const std::string& expression) {
    const QJsonObject answer = call(
        "Runtime.evaluate", {{"expression", QString::fromStdString("String(" + expression + ")")},
                             {"returnByValue", true}});
    const QJsonObject exception = answer.value("exceptionDetails").toObject();
    const QJsonValue value = exception.isEmpty()
                                 ? answer.value("result").toObject().value("value")
                                 : exception.value("exception").toObject().value("description");
    return value.toString().toStdString();
}

bool Chromium::soon(const std::string& expression, std::chrono::seconds limit) {
    return waitUntil([&] { return evaluate(expression) == "true"; }, limit);
}

void Chromium::click(double x, double y) {
    for (const char* type : {"mousePressed", "mouseReleased"})
        call("Input.dispatchMouseEvent",
             {{"type", type}, {"x", x}, {"y", y}, {"button", "left"}, {"clickCount", 1}});
}

QImage Chromium::picture() {
    const QJsonObject answer = call("Page.captureScreenshot", {{"format", "png"}});
    QImage image;
    if (!image.loadFromData(QByteArray::fromBase64(answer.value("data").toString().toLatin1()),
                            "PNG"))
        throw std::runtime_error("chromium gives no picture");
    return image.convertToFormat(QImage::Format_RGB32);
}

} // namespace tremor::journeys
