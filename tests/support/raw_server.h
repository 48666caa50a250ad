#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace tremor::testing {

// One accepted connection of a RawServer.
class RawConnection {
  public:
    RawConnection(int descriptor, const std::atomic<bool>& ending)
        : descriptor_(descriptor), ending_(ending) {}

    // Head of the request, up to and with its blank line.
    std::string readHead() const;
    // False when the client has gone or the server ends.
    bool send(std::string_view bytes) const;
    // Says nothing until the client goes or the server ends.
    void stall() const;
    // False when the server ends meanwhile.
    bool pause(std::chrono::milliseconds duration) const;

  private:
    int descriptor_;
    const std::atomic<bool>& ending_;
};

// A server on 127.0.0.1 that says whatever bytes a test wants, for answers that no decent HTTP
// server gives: cut, stalled, garbage. One connection at a time; it is closed when `talk` returns.
class RawServer {
  public:
    using Talk = std::function<void(const RawConnection&)>;

    explicit RawServer(Talk talk);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    int port() const { return port_; }
    std::string url(const std::string& path) const;

  private:
    void serve();

    Talk talk_;
    int port_ = 0;
    int listener_ = -1;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

// A port of 127.0.0.1 on which nobody listens.
int unusedPort();

// A port of 127.0.0.1 that leaves every attempt to connect without an answer: its queue is full.
class SilentPort {
  public:
    SilentPort();
    ~SilentPort();
    SilentPort(const SilentPort&) = delete;
    SilentPort& operator=(const SilentPort&) = delete;

    int port() const { return port_; }

  private:
    static constexpr int clientCount = 4;
    int port_ = 0;
    int listener_ = -1;
    int clients_[clientCount] = {-1, -1, -1, -1};
};

} // namespace tremor::testing
