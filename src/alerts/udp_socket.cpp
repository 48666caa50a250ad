#include "alerts/udp_socket.h"

#include "core/qt_text.h"

#include <QtCore/QCoreApplication>
#include <QtNetwork/QHostInfo>
#include <QtNetwork/QNetworkDatagram>

#include <algorithm>
#include <utility>

namespace tremor {

namespace {

// Strangers' datagrams that one call passes over: a flood of them must not hold the program.
constexpr int mostStrangers = 1000;

QHostAddress plainAddress(const QHostAddress& address) {
    bool isIPv4 = false;
    const quint32 ipv4 = address.toIPv4Address(&isIPv4); // also of the form ::ffff:10.0.0.1
    return isIPv4 ? QHostAddress(ipv4) : address;
}

} // namespace

void UdpSocket::send(std::string_view host, std::uint16_t port, std::string_view bytes) {
    turnTo(fromBytes(host).trimmed());
    if (host_.isEmpty())
        return;
    if (socket_.state() == QAbstractSocket::UnconnectedState && !socket_.bind())
        return;
    const Datagram datagram{port, QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size()))};
    if (addressKnown()) {
        write(datagram);
        return;
    }
    if (waiting_.size() < mostWaiting)
        waiting_.push_back(datagram);
    lookUp();
}

void UdpSocket::turnTo(const QString& host) {
    if (host == host_)
        return;
    lookup_ = -1; // the answer of a running one is not waited for any more
    waiting_.clear();
    addresses_.clear();
    host_ = host;
    const QHostAddress address(host);
    hostIsAddress_ = !address.isNull();
    if (hostIsAddress_)
        addresses_.push_back(address);
}

bool UdpSocket::addressKnown() const {
    const bool fresh =
        hostIsAddress_ || std::chrono::steady_clock::now() - lookedUpAt_ < addressLife;
    return !addresses_.empty() && fresh;
}

void UdpSocket::lookUp() {
    if (lookup_ >= 0)
        return;
    // Qt 6.4 leaks the handler of a lookup that is aborted or whose receiver has gone, so the
    // receiver is the program and the handler looks whether the socket is still there.
    lookup_ = QHostInfo::lookupHost(host_, QCoreApplication::instance(),
                                    [socket = std::weak_ptr(self_)](const QHostInfo& info) {
                                        if (const auto self = socket.lock())
                                            (*self)->lookedUp(info);
                                    });
}

void UdpSocket::lookedUp(const QHostInfo& info) {
    if (info.lookupId() != lookup_)
        return;
    lookup_ = -1;
    const QList<QHostAddress> found = info.addresses();
    addresses_.assign(found.begin(), found.end());
    std::stable_partition(addresses_.begin(), addresses_.end(), [](const QHostAddress& address) {
        return address.protocol() == QAbstractSocket::IPv4Protocol;
    });
    lookedUpAt_ = std::chrono::steady_clock::now();
    const std::vector<Datagram> waiting = std::exchange(waiting_, {});
    if (addresses_.empty())
        return;
    for (const Datagram& datagram : waiting)
        write(datagram);
}

void UdpSocket::write(const Datagram& datagram) {
    socket_.writeDatagram(datagram.bytes, addresses_.front(), datagram.port);
}

bool UdpSocket::isFromServer(const QHostAddress& sender) const {
    return std::any_of(addresses_.begin(), addresses_.end(), [&](const QHostAddress& address) {
        return plainAddress(address) == plainAddress(sender);
    });
}

std::optional<std::string> UdpSocket::receive() {
    if (socket_.state() != QAbstractSocket::BoundState)
        return std::nullopt;
    for (int looked = 0; looked < mostStrangers && socket_.hasPendingDatagrams(); ++looked) {
        const QNetworkDatagram datagram = socket_.receiveDatagram();
        if (datagram.isValid() && isFromServer(datagram.senderAddress()))
            return datagram.data().toStdString();
    }
    return std::nullopt;
}

void UdpSocket::setDataArrival(std::function<void()> handler) {
    QObject::connect(&socket_, &QUdpSocket::readyRead, &socket_, std::move(handler));
}

} // namespace tremor
