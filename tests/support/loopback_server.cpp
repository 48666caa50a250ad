#include "support/loopback_server.h"

#include <httplib.h>
#include <strings.h>

#include <mutex>
#include <stdexcept>
#include <thread>

namespace tremor::testing {

std::string LoopbackRequest::header(const std::string& name) const {
    for (const auto& [key, value] : headers)
        if (strcasecmp(key.c_str(), name.c_str()) == 0)
            return value;
    return {};
}

struct LoopbackServer::State {
    Handler handler;
    std::string scheme;
    std::unique_ptr<httplib::Server> server;
    int port = 0;
    std::thread thread;
    mutable std::mutex mutex;
    std::vector<LoopbackRequest> requests;

    void start();
    void answer(const httplib::Request& received, httplib::Response& response);
};

void LoopbackServer::State::start() {
    server->Get("[\\s\\S]*", [this](const httplib::Request& request, httplib::Response& response) {
        answer(request, response);
    });
    port = server->bind_to_any_port("127.0.0.1");
    if (port <= 0)
        throw std::runtime_error("no loopback port");
    thread = std::thread([this] { server->listen_after_bind(); });
    while (!server->is_running())
        std::this_thread::yield();
}

void LoopbackServer::State::answer(const httplib::Request& received, httplib::Response& response) {
    LoopbackRequest request{
        received.method, received.target, {received.headers.begin(), received.headers.end()}};
    {
        const std::lock_guard lock(mutex);
        requests.push_back(request);
    }
    LoopbackAnswer answer = handler(request);
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers)
        response.set_header(name, value);
    const std::string given = response.get_header_value("Content-Type");
    const std::string type = given.empty() ? "application/octet-stream" : given;
    if (answer.announceLength) {
        response.set_content(std::move(answer.body), type);
        return;
    }
    response.set_chunked_content_provider(
        type, [body = std::move(answer.body)](std::size_t, httplib::DataSink& sink) {
            if (!body.empty())
                sink.write(body.data(), body.size());
            sink.done();
            return true;
        });
}

LoopbackServer::LoopbackServer(Handler handler) : state_(std::make_unique<State>()) {
    state_->handler = std::move(handler);
    state_->scheme = "http";
    state_->server = std::make_unique<httplib::Server>();
    state_->start();
}

LoopbackServer::LoopbackServer(Handler handler, const TestCertificate& certificate)
    : state_(std::make_unique<State>()) {
    state_->handler = std::move(handler);
    state_->scheme = "https";
    state_->server = std::make_unique<httplib::SSLServer>(certificate.certificateFile().c_str(),
                                                          certificate.keyFile().c_str());
    state_->start();
}

LoopbackServer::~LoopbackServer() {
    state_->server->stop();
    state_->thread.join();
}

int LoopbackServer::port() const {
    return state_->port;
}

std::string LoopbackServer::url(const std::string& path, const std::string& host) const {
    return state_->scheme + "://" + host + ":" + std::to_string(state_->port) + path;
}

std::vector<LoopbackRequest> LoopbackServer::requests() const {
    const std::lock_guard lock(state_->mutex);
    return state_->requests;
}

} // namespace tremor::testing
