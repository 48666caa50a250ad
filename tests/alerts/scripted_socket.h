#pragma once

#include "alerts/pagerlink_client.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor::testing {

// A socket that writes down what is sent and hands out what the test has put in.
class ScriptedSocket : public DatagramSocket {
  public:
    struct Sent {
        std::string host;
        std::uint16_t port;
        std::string bytes;
        bool operator==(const Sent&) const = default;
    };

    void send(std::string_view host, std::uint16_t port, std::string_view bytes) override {
        sent.push_back({std::string(host), port, std::string(bytes)});
        if (onSend)
            onSend();
    }
    std::optional<std::string> receive() override {
        if (waiting.empty())
            return std::nullopt;
        std::string bytes = std::move(waiting.front());
        waiting.pop_front();
        return bytes;
    }
    void setDataArrival(std::function<void()> handler) override { arrival_ = std::move(handler); }

    // A datagram comes in from the event loop.
    void arrive(std::string bytes) {
        waiting.push_back(std::move(bytes));
        arrival_();
    }

    std::vector<std::string> sentBytes() const {
        std::vector<std::string> all;
        for (const Sent& datagram : sent)
            all.push_back(datagram.bytes);
        return all;
    }

    std::vector<Sent> sent;
    std::deque<std::string> waiting;
    std::function<void()> onSend;

  private:
    std::function<void()> arrival_;
};

} // namespace tremor::testing
