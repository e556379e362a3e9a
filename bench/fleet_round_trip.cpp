// A call on each of many gateways through a broker, against the bare round trip of the same bytes through the same broker: many
// bridges in this process, whose platform answers at once, and as many clients that send a ready answer back.
//
//   tarn_bench_fleet [GATEWAYS [WINDOW [ROUNDS]]]     1000, 64 and 3 if left out; WINDOW calls are under way at a time
#include "fleet/broker.h"

#include "fleet/bridge.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <mosquitto.h>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace tarn::fleet;
using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kCommand = 5, kLength = 9584; // TarnGetRadioNum
constexpr char kOperator[] = "noc-1";

LinkSettings linkSettings(const std::string& name, std::uint16_t port)
{
    LinkSettings settings;
    std::snprintf(settings.clientId, sizeof settings.clientId, "%s", name.c_str());
    std::snprintf(settings.brokers[0].host, sizeof settings.brokers[0].host, "127.0.0.1");
    settings.brokers[0].port = port;
    settings.brokerCount = 1;
    return settings;
}

std::string nameOf(std::size_t gateway)
{
    return "home-" + std::to_string(gateway);
}

Bytes encodedAs(const Envelope& envelope)
{
    Bytes bytes(kLongestEnvelope);
    std::size_t size = 0;
    if (encode(envelope, bytes.data(), bytes.size(), size) != Fault::kNone)
        std::abort();
    bytes.resize(size);
    return bytes;
}

Envelope requestOf(std::uint32_t sequence)
{
    Envelope request;
    request.kind = Kind::kRequest;
    request.byteOrder = kOwnByteOrder;
    request.session = 1;
    request.sequence = sequence;
    request.live = 60000;
    request.command = kCommand;
    request.wait = 3;
    request.contract = kContractHash;
    request.length = kLength;
    std::snprintf(request.operatorId, sizeof request.operatorId, kOperator);
    std::snprintf(request.service, sizeof request.service, "TARN");
    return request;
}

// The same bytes as a bridge answers with.
Bytes readyReply(std::uint32_t sequence)
{
    const Bytes message(kLength, 0x55);
    Envelope reply = requestOf(sequence);
    reply.kind = Kind::kReply;
    reply.run = reply.clock = 1;
    reply.live = reply.wait = 0;
    reply.operatorId[0] = '\0';
    reply.message = message.data();
    reply.present = kLength;
    return encodedAs(reply);
}

// A client that sends a ready answer back.
class Echo
{
public:
    Echo(const std::string& name, std::uint16_t port) : settings_(linkSettings(name, port)), link_(settings_, handlers())
    {
        thread_ = std::thread(
            [this]
            {
                while (!isDone_)
                    link_.turn(-1, 100);
                link_.close();
            });
    }
    ~Echo()
    {
        isDone_ = true;
        thread_.join();
    }
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

private:
    LinkHandlers handlers()
    {
        LinkHandlers result;
        result.context = this;
        result.connected = [](void* self)
        {
            auto* that = static_cast<Echo*>(self);
            that->link_.subscribe(requestTopic(that->settings_.clientId).text);
        };
        result.received = [](void* self, const char*, const void* payload, std::size_t size)
        {
            auto* that = static_cast<Echo*>(self);
            Envelope request;
            if (decode(payload, size, request) != Fault::kNone)
                return;
            const Bytes reply = readyReply(request.sequence);
            that->link_.publish(replyTopic(kOperator, that->settings_.clientId).text, reply.data(), reply.size(), false);
        };
        return result;
    }

    const LinkSettings settings_;
    BrokerLink link_;
    std::atomic<bool> isDone_{false};
    std::thread thread_;
};

struct Figures
{
    double callsPerSecond = 0, p50 = 0, p99 = 0; // the latter in milliseconds
};

// Asks every gateway so many times, in a window.
class Caller
{
public:
    explicit Caller(std::uint16_t port) : settings_(linkSettings(kOperator, port)), link_(settings_, handlers())
    {
        while (!link_.isUp())
            link_.turn(-1, 10);
    }

    // Until all have answered once: those that are not connected yet do not.
    void awaitAll(std::size_t gateways)
    {
        for (std::size_t gateway = 0; gateway < gateways; ++gateway)
            for (bool hasAnswered = false; !hasAnswered;)
            {
                send(gateway);
                const auto end = Clock::now() + std::chrono::milliseconds(200);
                while (!waiting_.empty() && Clock::now() < end)
                    link_.turn(-1, 1);
                hasAnswered = waiting_.empty();
                waiting_.clear();
            }
        times_.clear();
    }

    Figures run(std::size_t gateways, std::size_t window, std::size_t rounds)
    {
        const auto start = Clock::now();
        for (std::size_t call = 0; call < gateways * rounds; ++call)
        {
            send(call % gateways);
            while (waiting_.size() >= window)
                link_.turn(-1, 1);
        }
        while (!waiting_.empty())
            link_.turn(-1, 1);
        const std::chrono::duration<double> taken = Clock::now() - start;
        std::sort(times_.begin(), times_.end());
        return {static_cast<double>(times_.size()) / taken.count(), times_[times_.size() / 2],
                times_[times_.size() * 99 / 100]};
    }

private:
    LinkHandlers handlers()
    {
        LinkHandlers result;
        result.context = this;
        result.connected = [](void* self) { static_cast<Caller*>(self)->link_.subscribe(allReplies(kOperator).text); };
        result.received = [](void* self, const char*, const void* payload, std::size_t size)
        {
            auto* that = static_cast<Caller*>(self);
            Envelope reply;
            if (decode(payload, size, reply) != Fault::kNone || reply.present != kLength)
                std::abort();
            const auto found = that->waiting_.find(reply.sequence);
            if (found == that->waiting_.end())
                return;
            that->times_.push_back(std::chrono::duration<double, std::milli>(Clock::now() - found->second).count());
            that->waiting_.erase(found);
        };
        return result;
    }

    void send(std::size_t gateway)
    {
        const Bytes bytes = encodedAs(requestOf(++sequence_));
        waiting_[sequence_] = Clock::now();
        link_.publish(requestTopic(nameOf(gateway).c_str()).text, bytes.data(), bytes.size(), false);
    }

    const LinkSettings settings_;
    BrokerLink link_;
    std::uint32_t sequence_ = 0;
    std::map<std::uint32_t, Clock::time_point> waiting_;
    std::vector<double> times_;
};

std::size_t residentKilobytes()
{
    std::ifstream file("/proc/self/statm");
    std::size_t size = 0, resident = 0;
    file >> size >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

void print(const char* what, const Figures& figures)
{
    std::printf("%-8s %9.0f calls/s   p50 %7.3f ms   p99 %7.3f ms\n", what, figures.callsPerSecond, figures.p50, figures.p99);
}

Figures measureEcho(std::uint16_t port, std::size_t gateways, std::size_t window, std::size_t rounds)
{
    std::vector<std::unique_ptr<Echo>> all;
    for (std::size_t gateway = 0; gateway < gateways; ++gateway)
        all.push_back(std::make_unique<Echo>(nameOf(gateway), port));
    Caller caller(port);
    caller.awaitAll(gateways);
    return caller.run(gateways, window, rounds);
}

Figures measureBridges(std::uint16_t port, std::size_t gateways, std::size_t window, std::size_t rounds)
{
    struct One
    {
        BridgeSettings settings;
        std::unique_ptr<Bridge> bridge;
    };
    const BridgePlatform platform = {
        nullptr,
        [](void*, const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t length, void* message)
        {
            std::memset(message, 0x55, length);
            return 0u;
        },
        nullptr};
    const std::size_t before = residentKilobytes();
    std::vector<std::unique_ptr<One>> all;
    for (std::size_t gateway = 0; gateway < gateways; ++gateway)
    {
        auto one = std::make_unique<One>();
        one->settings.link = linkSettings(nameOf(gateway), port);
        std::snprintf(one->settings.programVersion, sizeof one->settings.programVersion, "bench");
        one->bridge = std::make_unique<Bridge>(one->settings, platform, Policy::ofReading());
        if (!one->bridge->start())
            std::abort();
        all.push_back(std::move(one));
    }
    Caller caller(port);
    caller.awaitAll(gateways);
    const Figures figures = caller.run(gateways, window, rounds);
    std::printf("a bridge takes %zu KiB of this process\n", (residentKilobytes() - before) / gateways);
    return figures;
}

} // namespace

int main(int count, char** arguments)
{
    const auto argument = [&](int at, std::size_t otherwise)
    { return count > at ? static_cast<std::size_t>(std::strtoul(arguments[at], nullptr, 10)) : otherwise; };
    const std::size_t gateways = argument(1, 1000), window = argument(2, 64), rounds = argument(3, 3);
    rlimit descriptors = {};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = descriptors.rlim_max;
    setrlimit(RLIMIT_NOFILE, &descriptors);
    mosquitto_lib_init();

    const fleet_test::MosquittoBroker broker("listener @PORT@ 127.0.0.1\nallow_anonymous true\nset_tcp_nodelay true\n"
                                             "max_queued_messages 10000\n");
    std::printf("%zu gateways, %zu calls each, %zu at a time\n", gateways, rounds, window);
    const Figures bare = measureEcho(broker.port(), gateways, window, rounds);
    const Figures bridged = measureBridges(broker.port(), gateways, window, rounds);
    print("bare", bare);
    print("bridged", bridged);
    std::printf("ratio at p50: %.2f\n", bridged.p50 / bare.p50);
}
