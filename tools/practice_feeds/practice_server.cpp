#include "practice_feeds/practice_server.h"

#include "practice_feeds/emsc_feed.h"
#include "practice_feeds/fault_plan.h"
#include "practice_feeds/faulty_answer.h"
#include "practice_feeds/geonames_area.h"
#include "practice_feeds/ingv_feed.h"
#include "practice_feeds/iside_site.h"
#include "practice_feeds/liveloc_folder.h"
#include "practice_feeds/pagerlink_service.h"
#include "practice_feeds/seiscomp_folder.h"
#include "practice_feeds/service_catalogues.h"
#include "practice_feeds/telegram_service.h"
#include "practice_feeds/usgs_feed.h"

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

// How often folders are looked after.
constexpr auto tick = 200ms;

struct HostKey {
    const char* key;
    std::string_view path; // behind the address of the server
};

// Keys of hosts.ini that may point here.
constexpr HostKey hostKeys[] = {
    {"InternetProbe", ""}, {"Ingv", ""},     {"Usgs", UsgsFeed::prefix},        {"Emsc", ""},
    {"Iside", ""},         {"Telegram", ""}, {"GeoNames", GeoNamesArea::prefix}};

std::optional<int> wholeNumber(const std::string& text) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 0)
        return std::nullopt;
    return number;
}

// "42.5,1.53"
std::optional<Epicentre> epicentreOf(std::string_view text) {
    Epicentre place;
    const char* end = text.data() + text.size();
    const auto latitude = std::from_chars(text.data(), end, place.latitude);
    if (latitude.ec != std::errc() || latitude.ptr == end || *latitude.ptr != ',')
        return std::nullopt;
    const auto longitude = std::from_chars(latitude.ptr + 1, end, place.longitude);
    // Written so that "nan" is refused too.
    const bool onEarth = std::abs(place.latitude) <= 90 && std::abs(place.longitude) <= 180;
    if (longitude.ec != std::errc() || longitude.ptr != end || !onEarth)
        return std::nullopt;
    return place;
}

void refuse(httplib::Response& response, const std::string& reason) {
    response.status = 400;
    response.set_content(reason + "\n", "text/plain");
}

void give(const Answer& answer, httplib::Response& response) {
    response.status = answer.status;
    response.set_content(answer.body, answer.contentType);
}

Request serviceRequest(const httplib::Request& received) {
    Request request;
    request.path = received.path;
    request.query = {received.params.begin(), received.params.end()};
    return request;
}

// Every line that stood in one of the documents, once, in the order of appearance.
class GivenLines {
  public:
    void add(const std::string& document) {
        std::istringstream stream(document);
        for (std::string line; std::getline(stream, line);)
            if (known_.insert(line).second)
                text_ += line + "\n";
    }
    const std::string& text() const { return text_; }

  private:
    std::unordered_set<std::string> known_;
    std::string text_;
};

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
    static void switchFault(FaultPlan& plan, const httplib::Request& request,
                            httplib::Response& response);
    void addEvent(const httplib::Request& request, httplib::Response& response);
    void lookAfterFolders();
    void startPagerlink(int port);
    void startTelegram();
    void startIside();
    void startGeoNames();

    // The service or locator that a control request names; nothing (null) for another name.
    template <class Source>
    static Source* named(const std::vector<Source*>& sources, const httplib::Request& request) {
        const std::string name =
            request.has_param("source") ? request.get_param_value("source") : "ingv";
        const auto found = std::find_if(sources.begin(), sources.end(), [&](const Source* source) {
            return source->name() == name;
        });
        return found == sources.end() ? nullptr : *found;
    }

    std::shared_ptr<std::atomic<bool>> held_;
    FaultPlan faults_;
    IngvFeed ingv_;
    UsgsFeed usgs_;
    EmscFeed emsc_;
    std::unique_ptr<SeisCompFolder> seisComp_;
    std::unique_ptr<LivelocFolder> liveloc_;
    std::unique_ptr<PagerlinkService> pagerlink_;
    FaultPlan geoNamesFaults_;
    GeoNamesArea geoNames_;
    FaultPlan telegramFaults_;
    TelegramService telegram_;
    IsideSite iside_;
    std::vector<PracticeService*> services_{&ingv_, &usgs_, &emsc_};
    std::vector<LocalLocator*> locators_;
    std::vector<EventSource*> sources_{&ingv_, &usgs_, &emsc_, &iside_};
    std::atomic<bool> ending_ = false;
    std::mutex mutex_; // of the three below
    std::string log_;
    std::string last_;
    std::map<const PracticeService*, GivenLines> given_;
    httplib::Server server_;
    int port_ = 0;
    std::thread thread_;
    std::thread folderThread_;
};

PracticeServer::Impl::Impl(const ServerOptions& options)
    : held_(options.catalogue.held),
      ingv_(ingvCatalogue(options.dataFolder, options.catalogue), options.catalogue.fixed),
      usgs_(usgsCatalogue(options.catalogue)),
      emsc_(emscCatalogue(options.catalogue)),
      geoNames_(options.dataFolder + "/geonames"),
      iside_(ingvCatalogue(options.dataFolder, options.catalogue)) {
    if (!options.seisCompFolder.empty()) {
        seisComp_ = std::make_unique<SeisCompFolder>(options.seisCompFolder,
                                                     localCatalogue(options.catalogue));
        locators_.push_back(seisComp_.get());
    }
    if (!options.livelocFolder.empty()) {
        liveloc_ = std::make_unique<LivelocFolder>(options.livelocFolder,
                                                   localCatalogue(options.catalogue));
        locators_.push_back(liveloc_.get());
    }
    sources_.insert(sources_.end(), locators_.begin(), locators_.end());
    for (PracticeService* service : services_)
        serve(*service);
    addControls();
    startTelegram();
    startIside();
    startGeoNames();
    if (options.pagerlinkPort)
        startPagerlink(*options.pagerlinkPort);
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response&) {
        log(request);
        return httplib::Server::HandlerResponse::Unhandled;
    });
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
    if (!locators_.empty())
        folderThread_ = std::thread([this] { lookAfterFolders(); });
    while (!server_.is_running())
        std::this_thread::yield();
}

PracticeServer::Impl::~Impl() {
    ending_ = true;
    server_.stop();
    thread_.join();
    if (folderThread_.joinable())
        folderThread_.join();
}

// A folder that cannot be written for a while is no reason to end.
void PracticeServer::Impl::lookAfterFolders() {
    for (; !ending_; std::this_thread::sleep_for(tick)) {
        for (LocalLocator* locator : locators_) {
            try {
                locator->advance();
            } catch (const std::exception& error) {
                fmt::print(stderr, "practice_feeds: {}\n", error.what());
            }
        }
    }
}

void PracticeServer::Impl::log(const httplib::Request& request) {
    if (request.path.starts_with("/practice/"))
        return;
    const std::lock_guard lock(mutex_);
    log_ += request.method + " " + request.target + "\n";
}

void PracticeServer::Impl::serve(PracticeService& service) {
    for (const std::string& path : service.paths())
        server_.Get(
            path, [this, &service](const httplib::Request& received, httplib::Response& response) {
                const Fault fault = faults_.take();
                const Answer answer = service.answer(serviceRequest(received));
                if (fault == Fault::None) {
                    const std::lock_guard lock(mutex_);
                    last_ = answer.status == 200 ? answer.body : "";
                    given_[&service].add(last_);
                }
                respond(answer, fault, response, ending_);
            });
}

void PracticeServer::Impl::startTelegram() {
    server_.Get(std::string(TelegramService::requestPattern),
                [this](const httplib::Request& request, httplib::Response& response) {
                    const Fault fault = telegramFaults_.take();
                    respond(telegram_.answer(TelegramService::requestOf(request.target)), fault,
                            response, ending_);
                });
    for (const std::string& path : TelegramService::controlPaths())
        control(path, [this](const httplib::Request& request, httplib::Response& response) {
            give(telegram_.control(serviceRequest(request)), response);
        });
    control("/practice/telegram/fault",
            [this](const httplib::Request& request, httplib::Response& response) {
                switchFault(telegramFaults_, request, response);
            });
}

void PracticeServer::Impl::startIside() {
    for (const std::string& path : IsideSite::paths())
        control(path, [this](const httplib::Request& request, httplib::Response& response) {
            const SiteAnswer answer =
                iside_.answer({serviceRequest(request), request.get_header_value("Cookie")});
            if (!answer.location.empty())
                response.set_header("Location", answer.location);
            if (!answer.setCookie.empty())
                response.set_header("Set-Cookie", answer.setCookie);
            respond(answer, answer.fault, response, ending_);
        });
    for (const std::string& path : IsideSite::controlPaths())
        control(path, [this](const httplib::Request& request, httplib::Response& response) {
            give(iside_.control(serviceRequest(request)), response);
        });
}

void PracticeServer::Impl::startGeoNames() {
    server_.Get(std::string(GeoNamesArea::requestPattern),
                [this](const httplib::Request& request, httplib::Response& response) {
                    const Fault fault = geoNamesFaults_.take();
                    respond(geoNames_.answer(serviceRequest(request)), fault, response, ending_);
                });
    control("/practice/geonames/fault",
            [this](const httplib::Request& request, httplib::Response& response) {
                switchFault(geoNamesFaults_, request, response);
            });
}

void PracticeServer::Impl::startPagerlink(int port) {
    pagerlink_ = std::make_unique<PagerlinkService>(port);
    for (const std::string& path : pagerlink_->paths())
        control(path, [this](const httplib::Request& request, httplib::Response& response) {
            give(pagerlink_->answer(serviceRequest(request)), response);
        });
}

void PracticeServer::Impl::control(const std::string& path, const Handler& handler) {
    server_.Get(path, handler);
    server_.Post(path, handler);
}

void PracticeServer::Impl::addControls() {
    const std::string text = "text/plain;charset=UTF-8";
    server_.Get("/", [](const httplib::Request&, httplib::Response& response) {
        response.set_content("practice feeds\n", "text/plain");
    });
    control("/practice/fault",
            [this](const httplib::Request& request, httplib::Response& response) {
                switchFault(faults_, request, response);
            });
    control("/practice/add", [this](const httplib::Request& request, httplib::Response& response) {
        addEvent(request, response);
    });
    control("/practice/relocate",
            [this, text](const httplib::Request&, httplib::Response& response) {
                if (!seisComp_)
                    return refuse(response, "no folder of SeisComP is written");
                response.set_content(seisComp_->relocateLatest() + "\n", text);
            });
    control("/practice/served",
            [this, text](const httplib::Request& request, httplib::Response& response) {
                PracticeService* service = named(services_, request);
                if (service == nullptr)
                    return refuse(response, "source is ingv, usgs or emsc");
                response.set_content(service->served(), text);
            });
    control("/practice/given",
            [this, text](const httplib::Request& request, httplib::Response& response) {
                const PracticeService* service = named(services_, request);
                if (service == nullptr)
                    return refuse(response, "source is that of a service");
                const std::lock_guard lock(mutex_);
                response.set_content(given_[service].text(), text);
            });
    for (const auto& [path, held] : {std::pair("/practice/hold", true), {"/practice/go", false}})
        control(path, [this, held = held](const httplib::Request&, httplib::Response& response) {
            *held_ = held;
            response.set_content("ok\n", "text/plain");
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

void PracticeServer::Impl::switchFault(FaultPlan& plan, const httplib::Request& request,
                                       httplib::Response& response) {
    const std::optional<Fault> fault = faultFromText(request.get_param_value("kind"));
    const std::optional<int> count =
        wholeNumber(request.has_param("count") ? request.get_param_value("count") : "0");
    if (!fault || !count)
        return refuse(response, "kind is 404, 204, 500, cut, stall, garbage, slow or none; "
                                "count is a number from 1 on, or 0 for all requests");
    plan.set(*fault, *count);
    response.set_content("ok\n", "text/plain");
}

void PracticeServer::Impl::addEvent(const httplib::Request& request, httplib::Response& response) {
    EventSource* source = named(sources_, request);
    EventWish wish;
    if (request.has_param("age")) {
        const std::optional<int> minutes = wholeNumber(request.get_param_value("age"));
        if (!minutes)
            return refuse(response, "age is a number of minutes");
        wish.age = std::chrono::minutes(*minutes);
    }
    if (request.has_param("at")) {
        wish.epicentre = epicentreOf(request.get_param_value("at"));
        if (!wish.epicentre)
            return refuse(response, "at is a latitude and a longitude in degrees, as in 42.5,1.53");
    }
    if (source == nullptr)
        return refuse(response, "source is ingv, usgs, emsc, iside, or a locator whose folder is "
                                "written: seiscomp, liveloc");
    std::string added = source->addEvent(wish);
    if (!added.ends_with('\n'))
        added += '\n';
    response.set_content(added, "text/plain;charset=UTF-8");
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
    for (const auto& [key, path] : hostKeys)
        text += fmt::format("{}={}{}\n", key, url(), path);
    return text;
}

} // namespace tremor::practice
