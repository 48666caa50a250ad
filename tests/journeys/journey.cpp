#include "journeys/journey.h"

#include "journeys/screen_picture.h"
#include "support/texts.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace tremor::journeys {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

std::string placeOf(const char* variable, const char* ofTheBuild) {
    const char* const other = std::getenv(variable);
    return other != nullptr ? other : ofTheBuild;
}

// Starts a child with its output in a file (or thrown away) and these additions to the environment.
// A leader can be killed with all that it has started.
pid_t spawn(const std::vector<std::string>& command, const std::string& output,
            const std::vector<std::string>& environment, bool leader = false) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);

    std::vector<std::string> variables = environment;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        const bool replaced =
            std::any_of(environment.begin(), environment.end(), [&](const std::string& addition) {
                return text.starts_with(addition.substr(0, addition.find('=') + 1));
            });
        if (!replaced && !text.starts_with("WAYLAND_DISPLAY="))
            variables.push_back(text);
    }
    std::vector<char*> pointers;
    pointers.reserve(variables.size() + 1);
    for (std::string& variable : variables)
        pointers.push_back(variable.data());
    pointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (leader)
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t pid = -1;
    const int result =
        posix_spawnp(&pid, arguments[0], &actions, &attributes, arguments.data(), pointers.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (result != 0)
        throw std::runtime_error("cannot start " + command[0]);
    return pid;
}

void endChild(pid_t& pid, int signalNumber) {
    if (pid <= 0)
        return;
    kill(pid, signalNumber);
    for (int i = 0; i < 100; ++i) {
        if (waitpid(pid, nullptr, WNOHANG) == pid) {
            pid = -1;
            return;
        }
        std::this_thread::sleep_for(50ms);
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    pid = -1;
}

std::size_t appendBody(char* data, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

std::vector<std::string> splitAt(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

} // namespace

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() >= end)
            return false;
        std::this_thread::sleep_for(100ms);
    }
    return true;
}

Journey::Journey(const std::vector<std::string>& settingsLines,
                 const std::vector<std::string>& locators,
                 const std::vector<std::string>& serviceOptions) {
    std::string pattern = (fs::temp_directory_path() / "tremor-journey-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    folder_ = pattern;
    fs::create_directory(folder());
    fs::create_directory(folder_ + "/tmp");
    fs::copy_file(placeOf("TREMOR_PROGRAM", TREMOR_PROGRAM), file("TremorLedger"));
    fs::copy(placeOf("TREMOR_SHARE", TREMOR_SHARE), folder(),
             fs::copy_options::recursive | fs::copy_options::skip_existing);
    std::ofstream settingsFile(file("settings.ini"), std::ios::binary);
    for (const std::string& line : settingsLines)
        settingsFile << line << "\r\n";
    settingsFile.close();

    desktop({"start", folder_ + "/desktop", "1600x1000"});
    display_ = desktop({"display", folder_ + "/desktop"});
    display_.erase(display_.find_last_not_of('\n') + 1);

    std::vector<std::string> services{placeOf("TREMOR_PRACTICE_FEEDS", TREMOR_PRACTICE_FEEDS),
                                      "--port",
                                      "0",
                                      "--data",
                                      TREMOR_TEST_DATA,
                                      "--every",
                                      "0",
                                      "--hosts-ini",
                                      file("hosts.ini"),
                                      "--pagerlink",
                                      "0"};
    for (const std::string& locator : locators)
        services.insert(services.end(), {"--" + locator, file(locator)});
    services.insert(services.end(), serviceOptions.begin(), serviceOptions.end());
    services_ = spawn(services, folder_ + "/services.log", {});
    if (!waitUntil([&] { return readFile("hosts.ini").find("Ingv=") != std::string::npos; }, 20s))
        throw std::runtime_error("the practice services did not start: " +
                                 testing::contentOf(folder_ + "/services.log"));
    for (const std::string& line : testing::linesOf(readFile("hosts.ini")))
        if (line.starts_with("Ingv="))
            servicesUrl_ = line.substr(5);
}

Journey::~Journey() {
    killProgram();
    endChild(services_, SIGTERM);
    try {
        desktop({"stop", folder_ + "/desktop"});
    } catch (const std::exception&) {
        // The display is gone already.
    }
    // Processes that end just now may still write there.
    std::error_code error;
    if (std::getenv("TREMOR_KEEP_JOURNEYS") == nullptr)
        waitUntil(
            [&] {
                fs::remove_all(folder_, error);
                return !error;
            },
            10s);
}

std::string Journey::desktop(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{placeOf("TREMOR_DESKTOP_TOOL", TREMOR_DESKTOP_TOOL)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::string output = folder_ + "/desktop.out";
    const pid_t pid = spawn(command, output, {});
    int status = 0;
    waitpid(pid, &status, 0);
    std::string text = testing::contentOf(output);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error("desktop " + arguments[0] + ": " + text);
    return text;
}

void Journey::addHost(const std::string& line) const {
    std::ofstream stream(file("hosts.ini"), std::ios::binary | std::ios::app);
    stream << line << "\r\n";
}

void Journey::addSetting(const std::string& line) const {
    std::ofstream stream(file("settings.ini"), std::ios::binary | std::ios::app);
    stream << line << "\r\n";
}

void Journey::addVariable(const std::string& assignment) {
    variables_.push_back(assignment);
}

void Journey::startProgram() {
    std::vector<std::string> variables{"DISPLAY=" + display_, "TMPDIR=" + folder_ + "/tmp",
                                       "LC_ALL=C.UTF-8", "QT_QPA_PLATFORM=xcb"};
    variables.insert(variables.end(), variables_.begin(), variables_.end());
    program_ = spawn({file("TremorLedger")}, folder_ + "/program.log", variables, true);
}

void Journey::startWithNewCatalogue(const std::string& name) {
    startProgram();
    waitForWindow("Database error...");
    key("Return");
    waitForWindow("TREMORLEDGER 1.");
    key("alt+f c");
    waitForWindow("=TREMORLEDGER");
    type(name);
    key("Return");
    waitForWindow(" - Database: " + name + ".sqlite");
}

bool Journey::programRuns() {
    if (program_ <= 0)
        return false;
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(program_), &info, WEXITED | WNOHANG | WNOWAIT);
    return info.si_pid == 0;
}

int Journey::waitForExit(std::chrono::seconds limit) {
    if (!waitUntil([&] { return !programRuns(); }, limit))
        throw std::runtime_error("the program still runs");
    int status = 0;
    waitpid(program_, &status, 0);
    program_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void Journey::killProgram() {
    if (program_ > 0)
        kill(-program_, SIGKILL);
    endChild(program_, SIGKILL);
}

void Journey::waitForWindow(const std::string& title, int seconds) {
    desktop({"wait-window", folder_ + "/desktop", title, std::to_string(seconds)});
}

void Journey::waitForNoWindow(const std::string& title, int seconds) {
    desktop({"no-window", folder_ + "/desktop", title, std::to_string(seconds)});
}

std::vector<std::string> Journey::windowTitles() {
    std::vector<std::string> titles = splitAt(desktop({"windows", folder_ + "/desktop"}), '\n');
    titles.pop_back();
    return titles;
}

void Journey::key(const std::string& keys) {
    std::vector<std::string> arguments{"key", folder_ + "/desktop"};
    for (const std::string& one : splitAt(keys, ' '))
        arguments.push_back(one);
    desktop(arguments);
}

void Journey::type(const std::string& text) {
    desktop({"type", folder_ + "/desktop", text});
}

void Journey::paste(const std::string& text) {
    const std::string name = folder_ + "/clipboard.txt";
    std::ofstream(name, std::ios::binary) << text;
    desktop({"paste", folder_ + "/desktop", name});
}

void Journey::click(int x, int y, int button) {
    desktop({"click", folder_ + "/desktop", std::to_string(x), std::to_string(y),
             std::to_string(button)});
}

void Journey::drag(int x1, int y1, int x2, int y2) {
    desktop({"drag", folder_ + "/desktop", std::to_string(x1), std::to_string(y1),
             std::to_string(x2), std::to_string(y2)});
}

void Journey::movePointer(int x, int y) {
    desktop({"move", folder_ + "/desktop", std::to_string(x), std::to_string(y)});
}

std::string Journey::activityLog() {
    return copied("log");
}

std::string Journey::copyText() {
    std::string text = copied("copy");
    text.pop_back(); // the line end of the tool
    return text;
}

// A window that is busy for some seconds copies nothing meanwhile.
std::string Journey::copied(const std::string& verb) {
    std::string text;
    const bool copied = waitUntil(
        [&] {
            try {
                text = desktop({verb, folder_ + "/desktop"});
                return true;
            } catch (const std::runtime_error&) {
                return !programRuns();
            }
        },
        60s);
    if (!copied || !programRuns()) {
        std::string failure = "the window gives no text; windows:";
        for (const std::string& title : windowTitles())
            failure += " \"" + title + "\"";
        throw std::runtime_error(failure);
    }
    return text;
}

bool Journey::waitForLog(const std::string& text, int count, std::chrono::seconds limit) {
    return waitUntil(
        [&] {
            int found = 0;
            for (const std::string& line : testing::linesOf(activityLog()))
                if (line == text || (text.starts_with(' ') && line.ends_with(text)))
                    ++found;
            return found >= count;
        },
        limit);
}

Rectangle Journey::geometry(const std::string& title) {
    std::istringstream numbers(desktop({"geometry", folder_ + "/desktop", title}));
    Rectangle rectangle;
    numbers >> rectangle.x >> rectangle.y >> rectangle.width >> rectangle.height;
    return rectangle;
}

void Journey::resize(const std::string& title, int width, int height) {
    desktop({"resize", folder_ + "/desktop", title, std::to_string(width), std::to_string(height)});
}

long Journey::pixelsOfColour(const std::string& rrggbb) {
    return std::stol(desktop({"count-colour", folder_ + "/desktop", rrggbb}));
}

ScreenPicture Journey::picture() const {
    return ScreenPicture(testing::contentOf(folder_ + "/desktop/Xvfb_screen0"));
}

std::string Journey::service(const std::string& pathAndQuery) {
    const std::unique_ptr<CURL, void (*)(CURL*)> handle(curl_easy_init(), curl_easy_cleanup);
    std::string body;
    const std::string url = servicesUrl_ + pathAndQuery;
    curl_easy_setopt(handle.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle.get(), CURLOPT_WRITEFUNCTION, appendBody);
    curl_easy_setopt(handle.get(), CURLOPT_WRITEDATA, &body);
    curl_easy_setopt(handle.get(), CURLOPT_TIMEOUT, 20L);
    curl_easy_setopt(handle.get(), CURLOPT_NOPROXY, "*");
    const CURLcode code = curl_easy_perform(handle.get());
    if (code != CURLE_OK)
        throw std::runtime_error(url + ": " + curl_easy_strerror(code));
    return body;
}

std::string Journey::readFile(const std::string& name) const {
    return testing::contentOf(file(name));
}

std::map<std::string, std::string> Journey::settings() const {
    std::map<std::string, std::string> values;
    for (const std::string& line : testing::linesOf(readFile("settings.ini"))) {
        const auto equals = line.find('=');
        if (equals != std::string::npos)
            values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    return values;
}

std::vector<EventRow> Journey::events(const std::string& catalogue) const {
    sqlite3* raw = nullptr;
    sqlite3_open_v2(file(catalogue).c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(raw, sqlite3_close);
    sqlite3_busy_timeout(raw, 5000);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(raw,
                           "select UTC, Latitude, Longitude, Depth, Magnitude, Source from Events",
                           -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(raw));
    std::vector<EventRow> rows;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        std::array<std::string, 6> cells;
        for (int i = 0; i < 6; ++i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
            cells[static_cast<std::size_t>(i)] = text != nullptr ? text : "";
        }
        rows.push_back({cells[0], cells[1], cells[2], cells[3], cells[4], cells[5]});
    }
    sqlite3_finalize(statement);
    return rows;
}

std::string Journey::queryOne(const std::string& catalogue, const std::string& sql) const {
    sqlite3* raw = nullptr;
    sqlite3_open_v2(file(catalogue).c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(raw, sqlite3_close);
    sqlite3_busy_timeout(raw, 5000);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(raw, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(raw));
    std::string result;
    if (sqlite3_step(statement) == SQLITE_ROW)
        result = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    sqlite3_finalize(statement);
    return result;
}

void Journey::change(const std::string& catalogue, const std::string& sql) const {
    sqlite3* raw = nullptr;
    sqlite3_open_v2(file(catalogue).c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(raw, sqlite3_close);
    sqlite3_busy_timeout(raw, 5000);
    if (sqlite3_exec(raw, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(raw));
}

} // namespace tremor::journeys
