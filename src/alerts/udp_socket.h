#pragma once

#include "alerts/pagerlink_client.h"

#include <QtCore/QString>
#include <QtNetwork/QHostAddress>
#include <QtNetwork/QUdpSocket>

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

class QHostInfo;

namespace tremor {

// DatagramSocket on Qt's. Bound to a free port at the first send. Works with IPv4 and IPv6; of a
// name's addresses the first of IPv4 is sent to and all are listened to.
class UdpSocket : public DatagramSocket {
  public:
    // How long an address that was looked up is trusted, and how many datagrams are kept for a
    // name that is being looked up; further ones are lost.
    static constexpr std::chrono::seconds addressLife{60};
    static constexpr std::size_t mostWaiting = 20000;

    UdpSocket() = default;
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    void send(std::string_view host, std::uint16_t port, std::string_view bytes) override;
    std::optional<std::string> receive() override;
    void setDataArrival(std::function<void()> handler) override;

  private:
    struct Datagram {
        std::uint16_t port;
        QByteArray bytes;
    };

    void turnTo(const QString& host);
    void lookUp();
    void lookedUp(const QHostInfo& info);
    bool addressKnown() const;
    bool isFromServer(const QHostAddress& sender) const;
    void write(const Datagram& datagram);

    QString host_;
    bool hostIsAddress_ = false;
    std::vector<QHostAddress> addresses_; // the first one is sent to
    std::chrono::steady_clock::time_point lookedUpAt_;
    std::vector<Datagram> waiting_;
    int lookup_ = -1; // number of the running one, -1 for none
    std::shared_ptr<UdpSocket*> self_ = std::make_shared<UdpSocket*>(this); // for late answers
    QUdpSocket socket_;
};

} // namespace tremor
