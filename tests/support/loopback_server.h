#pragma once

#include "support/test_certificate.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tremor::testing {

struct LoopbackRequest {
    std::string method;
    std::string target; // path and query as received
    std::vector<std::pair<std::string, std::string>> headers;

    // The value of a header, whatever its case; empty when there is none.
    std::string header(const std::string& name) const;
};

struct LoopbackAnswer {
    int status = 200;
    std::string body = {};
    std::vector<std::pair<std::string, std::string>> headers = {};
    bool announceLength = true; // otherwise the body is sent in HTTP chunks
};

// A real HTTP or HTTPS server on 127.0.0.1, with threads of its own.
class LoopbackServer {
  public:
    // Called on a thread of the server; several calls may run at once.
    using Handler = std::function<LoopbackAnswer(const LoopbackRequest&)>;

    explicit LoopbackServer(Handler handler);
    LoopbackServer(Handler handler, const TestCertificate& certificate);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    int port() const;
    // "http://127.0.0.1:PORT" + path, or https for a server with a certificate.
    std::string url(const std::string& path, const std::string& host = "127.0.0.1") const;
    std::vector<LoopbackRequest> requests() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace tremor::testing
