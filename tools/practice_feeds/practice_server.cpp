#include "practice_feeds/practice_server.h"

#include "practice_feeds/fault_plan.h"
#include "practice_feeds/faulty_answer.h"
#include "practice_feeds/ingv_feed.h"

#include <fmt/format.h>
#include <httplib.h>

#include <atomic>
#include <charconv>
#include <fstream>
#include <iterator>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace tremor::practice {

namespace {

// Keys of hosts.ini that may point here.
constexpr const char* hostKeys[] = {"InternetProbe", "Ingv",     "Usgs",    "Emsc",
                                    "Iside",         "Telegram", "GeoNames"};

UtcTime systemNow() {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

FdsnDocument readDocument(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + path);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    try {
        return parseFdsnDocument(text);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

IngvCatalogue readCatalogue(const ServerOptions& options) {
    const std::string folder = options.dataFolder + "/ingv/";
    return {readDocument(folder + "ingv_2026-06-15_2026-06-29.txt"),
            readDocument(folder + "derived_laquila_2009-04-06.txt"), options.catalogue, systemNow};
}

Request serviceRequest(const httplib::Request& received) {
    Request request;
    request.path = received.path;
    request.query = {received.params.begin(), received.params.end()};
    return request;
}

} // namespace

class PracticeServer::Impl {
  public:
    explicit Impl(const ServerOptions& options);
    ~Impl();

    int port() const { return port_; }

  private:
    using Handler = std::function<void(const httplib::Request&, httplib::Response&)>;

    void serve(PracticeService& service);
    void control(const std::string& path, const Handler& handler);
    void addControls();
    void log(const httplib::Request& request);
    void switchFault(const httplib::Request& request, httplib::Response& response);

    FaultPlan faults_;
    IngvFeed ingv_;
    std::atomic<bool> ending_ = false;
    std::mutex mutex_; // of the two below
    std::string log_;
    std::string last_;
    httplib::Server server_;
    int port_ = 0;
    std::thread thread_;
};

PracticeServer::Impl::Impl(const ServerOptions& options)
    : ingv_(readCatalogue(options), options.catalogue.fixed) {
    serve(ingv_);
    addControls();
    // The library's own choice would let a second process share the port unnoticed.
    server_.set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    });
    const std::string host = "127.0.0.1";
    if (options.port == 0)
        port_ = server_.bind_to_any_port(host);
    else if (server_.bind_to_port(host, options.port))
        port_ = options.port;
    if (port_ <= 0)
        throw std::runtime_error(fmt::format("cannot listen on {}:{}", host, options.port));
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running())
        std::this_thread::yield();
}

PracticeServer::Impl::~Impl() {
    ending_ = true;
    server_.stop();
    thread_.join();
}

void PracticeServer::Impl::log(const httplib::Request& request) {
    const std::lock_guard lock(mutex_);
    log_ += request.method + " " + request.target + "\n";
}

void PracticeServer::Impl::serve(PracticeService& service) {
    for (const std::string& path : service.paths())
        server_.Get(
            path, [this, &service](const httplib::Request& received, httplib::Response& response) {
                log(received);
                const Fault fault = faults_.take();
                const Answer answer = service.answer(serviceRequest(received));
                if (fault == Fault::None) {
                    const std::lock_guard lock(mutex_);
                    last_ = answer.status == 200 ? answer.body : "";
                }
                respond(answer, fault, response, ending_);
            });
}

void PracticeServer::Impl::control(const std::string& path, const Handler& handler) {
    server_.Get(path, handler);
    server_.Post(path, handler);
}

void PracticeServer::Impl::addControls() {
    const std::string text = "text/plain;charset=UTF-8";
    server_.Get("/", [this](const httplib::Request& request, httplib::Response& response) {
        log(request);
        response.set_content("practice feeds\n", "text/plain");
    });
    control("/practice/fault",
            [this](const httplib::Request& request, httplib::Response& response) {
                switchFault(request, response);
            });
    control("/practice/add", [this, text](const httplib::Request&, httplib::Response& response) {
        response.set_content(ingv_.addEvent() + "\n", text);
    });
    control("/practice/served", [this, text](const httplib::Request&, httplib::Response& response) {
        response.set_content(ingv_.served(), text);
    });
    control("/practice/last", [this, text](const httplib::Request&, httplib::Response& response) {
        const std::lock_guard lock(mutex_);
        response.set_content(last_, text);
    });
    control("/practice/log", [this, text](const httplib::Request&, httplib::Response& response) {
        const std::lock_guard lock(mutex_);
        response.set_content(log_, text);
    });
}

void PracticeServer::Impl::switchFault(const httplib::Request& request,
                                       httplib::Response& response) {
    const std::optional<Fault> fault = faultFromText(request.get_param_value("kind"));
    const std::string countText =
        request.has_param("count") ? request.get_param_value("count") : "0";
    int count = 0;
    const char* end = countText.data() + countText.size();
    const auto [stop, error] = std::from_chars(countText.data(), end, count);
    if (!fault || error != std::errc() || stop != end || count < 0) {
        response.status = 400;
        response.set_content("kind is 404, 204, 500, cut, stall, garbage, slow or none; "
                             "count is a number from 1 on, or 0 for all requests\n",
                             "text/plain");
        return;
    }
    faults_.set(*fault, count);
    response.set_content("ok\n", "text/plain");
}

PracticeServer::PracticeServer(const ServerOptions& options)
    : impl_(std::make_unique<Impl>(options)) {}

PracticeServer::~PracticeServer() = default;

int PracticeServer::port() const {
    return impl_->port();
}

std::string PracticeServer::url() const {
    return fmt::format("http://127.0.0.1:{}", port());
}

std::string PracticeServer::hostsIni() const {
    std::string text = "[HOSTS]\n";
    for (const char* key : hostKeys)
        text += fmt::format("{}={}\n", key, url());
    return text;
}

} // namespace tremor::practice
