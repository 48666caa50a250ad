#include "journeys/soak_watch.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr auto pauseBetweenQuestions = 100ms;
constexpr double lateFrom = 0.25;   // seconds
constexpr double memoryEvery = 2.0; // seconds

template <class Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

// A client of the display that puts the question and hears the answer.
class Questioner {
  public:
    explicit Questioner(const std::string& display)
        : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {
        if (xcb_connection_has_error(connection_.get()) != 0)
            throw std::runtime_error("no display " + display);
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
        protocols_ = atom("WM_PROTOCOLS");
        ping_ = atom("_NET_WM_PING");
        // Answers go to the root window; toolkits differ in the listeners that they name.
        const std::uint32_t events =
            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(connection_.get(), root_, XCB_CW_EVENT_MASK, &events);
        xcb_flush(connection_.get());
    }

    // The process that shows the display.
    pid_t server() const {
        ucred peer{};
        socklen_t size = sizeof(peer);
        getsockopt(xcb_get_file_descriptor(connection_.get()), SOL_SOCKET, SO_PEERCRED, &peer,
                   &size);
        return peer.pid;
    }

    // The window with this beginning of its title; nothing when there is none.
    std::optional<xcb_window_t> window(const std::string& title) {
        const std::string clients = property(root_, "_NET_CLIENT_LIST");
        for (std::size_t i = 0; i + sizeof(xcb_window_t) <= clients.size();
             i += sizeof(xcb_window_t)) {
            xcb_window_t id = 0;
            std::memcpy(&id, clients.data() + i, sizeof(id));
            if (property(id, "_NET_WM_NAME").starts_with(title))
                return id;
        }
        return std::nullopt;
    }

    void ask(xcb_window_t window) {
        xcb_client_message_event_t question{};
        question.response_type = XCB_CLIENT_MESSAGE;
        question.format = 32;
        question.window = window;
        question.type = protocols_;
        question.data.data32[0] = ping_;
        question.data.data32[1] = ++number_; // in the place of a time stamp
        question.data.data32[2] = window;
        xcb_send_event(connection_.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&question));
        xcb_flush(connection_.get());
    }

    // Whether the latest question is answered; waits for the limit at most.
    bool isAnswered(std::chrono::milliseconds limit) {
        const auto end = std::chrono::steady_clock::now() + limit;
        for (;;) {
            while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get()),
                                                          std::free})
                if (isTheAnswer(*event))
                    return true;
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
            if (left <= 0ms || xcb_connection_has_error(connection_.get()) != 0)
                return false;
            pollfd waiting{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
            ::poll(&waiting, 1, static_cast<int>(left.count()));
        }
    }

  private:
    xcb_atom_t atom(const std::string& name) {
        const Owned<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection_.get(),
                                  xcb_intern_atom(connection_.get(), 0,
                                                  static_cast<std::uint16_t>(name.size()),
                                                  name.c_str()),
                                  nullptr),
            std::free);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    std::string property(xcb_window_t window, const std::string& name) {
        constexpr std::uint32_t words = 4096; // of the value at most
        const Owned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_.get(),
                                   xcb_get_property(connection_.get(), 0, window, atom(name),
                                                    XCB_GET_PROPERTY_TYPE_ANY, 0, words),
                                   nullptr),
            std::free);
        if (!reply)
            return {};
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }

    bool isTheAnswer(const xcb_generic_event_t& event) const {
        constexpr int sentByAProgram = 0x80;
        if ((event.response_type & ~sentByAProgram) != XCB_CLIENT_MESSAGE)
            return false;
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == protocols_ && message.data.data32[0] == ping_ &&
               message.data.data32[1] == number_;
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    xcb_window_t root_ = 0;
    xcb_atom_t protocols_ = 0;
    xcb_atom_t ping_ = 0;
    std::uint32_t number_ = 0;
};

// Seconds for which the threads have been ready to run without a core, each since its start.
double secondsWithoutCore(const std::vector<pid_t>& threads) {
    double seconds = 0;
    for (const pid_t thread : threads) {
        std::ifstream stream("/proc/" + std::to_string(thread) + "/schedstat");
        double ran = 0;
        double waited = 0; // both in nanoseconds
        stream >> ran >> waited;
        seconds += waited / 1e9;
    }
    return seconds;
}

long residentKiB(pid_t process) {
    std::ifstream stream("/proc/" + std::to_string(process) + "/statm");
    long size = 0;
    long resident = 0; // both in pages
    stream >> size >> resident;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

std::optional<pid_t> parentOf(const std::filesystem::path& processFolder) {
    std::ifstream stream(processFolder / "stat");
    std::string text;
    std::getline(stream, text);
    const std::size_t nameEnd = text.rfind(')'); // the name may hold anything
    if (nameEnd == std::string::npos)
        return std::nullopt;
    std::istringstream fields(text.substr(nameEnd + 1));
    char state = 0;
    pid_t parent = 0;
    fields >> state >> parent;
    return parent;
}

} // namespace

std::vector<pid_t> processesOf(pid_t program) {
    std::multimap<pid_t, pid_t> children;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        if (const auto parent = parentOf(entry.path()))
            children.emplace(*parent, std::stoi(name));
    }
    std::vector<pid_t> found{program};
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto [first, last] = children.equal_range(found[i]);
        for (auto child = first; child != last; ++child)
            found.push_back(child->second);
    }
    return found;
}

double growthPerMinute(const std::vector<MemorySample>& samples, double from) {
    double count = 0;
    double sumX = 0;
    double sumY = 0;
    double sumXx = 0;
    double sumXy = 0;
    for (const MemorySample& sample : samples) {
        if (sample.at < from)
            continue;
        const double x = sample.at / 60;
        const auto y = static_cast<double>(sample.program + sample.web);
        count += 1;
        sumX += x;
        sumY += y;
        sumXx += x * x;
        sumXy += x * y;
    }
    const double spread = count * sumXx - sumX * sumX;
    return spread > 0 ? (count * sumXy - sumX * sumY) / spread : 0;
}

ProgramWatch::ProgramWatch(const std::string& display, pid_t program)
    : program_(program), thread_([this, display] { watch(display); }) {}

ProgramWatch::~ProgramWatch() {
    end();
}

void ProgramWatch::end() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    wakeUp_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

double ProgramWatch::now() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

bool ProgramWatch::goesOn(std::chrono::milliseconds pause) {
    std::unique_lock lock(mutex_);
    return !wakeUp_.wait_for(lock, pause, [this] { return ending_; });
}

void ProgramWatch::lookAtMemory() {
    const double at = now();
    if (!memory_.empty() && at < memory_.back().at + memoryEvery)
        return;
    const std::vector<pid_t> processes = processesOf(program_);
    MemorySample sample{at, residentKiB(program_), 0};
    std::for_each(processes.begin() + 1, processes.end(),
                  [&](pid_t process) { sample.web += residentKiB(process); });
    memory_.push_back(sample);
}

void ProgramWatch::watch(const std::string& display) {
    Questioner questioner(display);
    const auto window = questioner.window("TREMORLEDGER 1.");
    if (!window)
        return; // no answers, which the test sees
    // Question and answer go through all of them.
    const std::vector<pid_t> threads{program_, questioner.server(), gettid()};
    bool on = true;
    while (on) {
        lookAtMemory();
        const double at = now();
        const double withoutCore = secondsWithoutCore(threads);
        questioner.ask(*window);
        bool answered = false;
        while (!(answered = questioner.isAnswered(200ms)) && (on = goesOn(0ms)))
            lookAtMemory();
        const LateAnswer answer{at, now() - at, secondsWithoutCore(threads) - withoutCore};
        answers_ += answered ? 1 : 0;
        if (answer.after >= lateFrom)
            late_.push_back(answer);
        on = on && goesOn(pauseBetweenQuestions);
    }
}

} // namespace tremor::journeys
