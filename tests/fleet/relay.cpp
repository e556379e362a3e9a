#include "relay.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fleet_test
{

namespace
{

using std::chrono::milliseconds;

// So small that the system keeps little of what is held up, and the broker the rest.
constexpr int kReceiveBuffer = 16384;
constexpr int kSegment = 1400;
constexpr int kRelayTurn = 2; // milliseconds
// Kinds of MQTT packets.
constexpr std::uint8_t kPublish = 3, kSubscribeAcknowledgement = 9;

sockaddr_in loopbackAddress(std::uint16_t port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

void setOption(int socket, int level, int option, int value)
{
    setsockopt(socket, level, option, &value, sizeof value);
}

// An MQTT packet at the beginning of the bytes: a kind, a length of 7 bits a byte, and so many bytes. 0 until all of it is
// there.
std::size_t packetSize(const Bytes& bytes, std::size_t& headerSize)
{
    std::size_t length = 0;
    for (std::size_t at = 1; at < bytes.size() && at <= 4; ++at)
    {
        length |= std::size_t{bytes[at] & 0x7Fu} << (7 * (at - 1));
        headerSize = at + 1;
        if ((bytes[at] & 0x80u) == 0)
            return headerSize + length <= bytes.size() ? headerSize + length : 0;
    }
    return 0;
}

} // namespace

Relay::Relay(std::uint16_t broker, Way way)
    : broker_(broker), way_(std::move(way)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
{
    sockaddr_in address = loopbackAddress(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, generic, size) != 0 || getsockname(listener_, generic, &size) != 0 || listen(listener_, 1024) != 0)
        throw std::runtime_error("no port for a relay");
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

Relay::~Relay()
{
    isStopping_ = true;
    thread_.join();
    close(listener_);
}

void Relay::hold()
{
    isHeld_ = true;
    while (!isHolding_)
        std::this_thread::sleep_for(milliseconds(1));
}

void Relay::release()
{
    isHeld_ = false;
}

void Relay::setConfirmations(Confirmations confirmations)
{
    confirmations_ = confirmations;
}

void Relay::cut()
{
    isCut_ = true;
    while (isCut_)
        std::this_thread::sleep_for(milliseconds(1));
}

void Relay::serve()
{
    while (!isStopping_)
    {
        isHolding_ = isHeld_.load();
        std::vector<pollfd> watched;
        if (!isHolding_)
            watched.push_back({listener_, POLLIN, 0});
        for (const Connection& connection : connections_)
            for (const Stream& stream : connection.streams)
                if (!isHolding_ && !stream.hasEnded)
                    watched.push_back({stream.from, POLLIN, 0});
        poll(watched.data(), watched.size(), kRelayTurn);
        if (isCut_)
        {
            for (const Connection& connection : connections_)
                drop(connection);
            connections_.clear();
            isCut_ = false;
        }
        if (isHolding_)
            continue;
        accept();
        std::size_t underWay = 0, waiting = 0;
        for (auto connection = connections_.begin(); connection != connections_.end();)
        {
            for (Stream& stream : connection->streams)
            {
                read(stream);
                passConfirmations(stream);
                write(stream);
                underWay += stream.packets.size() + stream.leaving.size();
                waiting += stream.confirmations.size();
            }
            const bool isOver = connection->streams[0].isShut && connection->streams[1].isShut;
            if (isOver)
                drop(*connection);
            connection = isOver ? connections_.erase(connection) : std::next(connection);
        }
        underWay_ = underWay;
        confirmationsWaiting_ = waiting;
    }
    for (const Connection& connection : connections_)
        drop(connection);
}

void Relay::drop(const Connection& connection)
{
    close(connection.streams[0].from);
    close(connection.streams[0].to);
}

void Relay::accept()
{
    for (;;)
    {
        const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (client < 0)
            return;
        const int broker = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        setOption(broker, SOL_SOCKET, SO_RCVBUF, kReceiveBuffer);
        setOption(broker, IPPROTO_TCP, TCP_MAXSEG, kSegment);
        for (const int each : {client, broker})
            setOption(each, IPPROTO_TCP, TCP_NODELAY, 1);
        const sockaddr_in address = loopbackAddress(broker_);
        if (connect(broker, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        {
            close(client);
            close(broker);
            continue;
        }
        Connection& connection = connections_.emplace_back();
        connection.streams[0].from = connection.streams[1].to = client;
        connection.streams[0].to = connection.streams[1].from = broker;
        connection.streams[0].isToBroker = true;
    }
}

void Relay::read(Stream& stream)
{
    std::uint8_t bytes[65536];
    while (!stream.hasEnded)
    {
        const ssize_t size = recv(stream.from, bytes, sizeof bytes, MSG_DONTWAIT);
        if (size > 0)
            stream.arrived.insert(stream.arrived.end(), bytes, bytes + size);
        else if (size < 0 && (errno == EAGAIN || errno == EINTR))
            break;
        else
            stream.hasEnded = true;
    }
    takePackets(stream);
}

void Relay::takePackets(Stream& stream)
{
    std::size_t headerSize = 0;
    while (const std::size_t size = packetSize(stream.arrived, headerSize))
    {
        const auto end = stream.arrived.begin() + static_cast<std::ptrdiff_t>(size);
        const Bytes packet(stream.arrived.begin(), end);
        stream.arrived.erase(stream.arrived.begin(), end);
        if (packet[0] >> 4 == kSubscribeAcknowledgement && confirmations_ != Confirmations::kPass)
            stream.confirmations.push_back(packet);
        else
            for (const milliseconds delay : wayOf(stream, packet, headerSize))
                stream.packets.emplace(Clock::now() + delay, packet);
    }
}

void Relay::passConfirmations(Stream& stream) const
{
    const Confirmations how = confirmations_;
    if (how == Confirmations::kWait)
        return;
    for (Bytes& packet : stream.confirmations)
    {
        if (how == Confirmations::kRefuse)
            packet.back() = 0x80; // of a subscription to one filter
        stream.packets.emplace(Clock::now(), packet);
    }
    stream.confirmations.clear();
}

std::vector<milliseconds> Relay::wayOf(const Stream& stream, const Bytes& packet, std::size_t headerSize) const
{
    if (way_ == nullptr || packet[0] >> 4 != kPublish)
        return {milliseconds(0)};
    // Two bytes of length, the topic, and the payload; of QoS 0 there is no more.
    const auto* text = reinterpret_cast<const char*>(packet.data() + headerSize);
    const std::size_t topicSize = std::size_t{packet[headerSize]} << 8 | packet[headerSize + 1];
    const auto payload = packet.begin() + static_cast<std::ptrdiff_t>(headerSize + 2 + topicSize);
    return way_({stream.isToBroker, std::string(text + 2, topicSize), Bytes(payload, packet.end())});
}

void Relay::write(Stream& stream)
{
    const auto due = stream.packets.upper_bound(Clock::now());
    for (auto each = stream.packets.begin(); each != due; each = stream.packets.erase(each))
        stream.leaving.insert(stream.leaving.end(), each->second.begin(), each->second.end());
    while (!stream.leaving.empty() && !stream.isShut)
    {
        const ssize_t size = send(stream.to, stream.leaving.data(), stream.leaving.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (size < 0 && (errno == EAGAIN || errno == EINTR))
            break;
        if (size < 0) // nobody is there any more
        {
            stream.hasEnded = stream.isShut = true;
            stream.packets.clear();
            stream.leaving.clear();
            break;
        }
        stream.leaving.erase(stream.leaving.begin(), stream.leaving.begin() + size);
    }
    if (stream.hasEnded && stream.packets.empty() && stream.leaving.empty() && !stream.isShut)
    {
        shutdown(stream.to, SHUT_WR);
        stream.isShut = true;
    }
}

} // namespace fleet_test
