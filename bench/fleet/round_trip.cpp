// A call on each of many gateways through a broker, against the bare round trip of the same bytes through the same broker: many
// bridges in this process, whose platform answers at once, called as tarn-fleet does it, and as many clients that send a ready
// answer back. Both take turns. Then the programs: the time of one `tarn-fleet call` on all bridges, and what is resident.
//
//   tarn_bench_fleet GATEWAYS WINDOW ROUNDS     WINDOW calls are under way at a time, and one
//
// A line begins with what it is about: a round of calls (its name; p50 and p99 in milliseconds, calls a second), what a process
// keeps (its name; KiB resident, KiB of it private), or the call of a program (seconds, KiB resident at most).
#include "fleet/broker.h"

#include "fleet/bridge.h"
#include "fleet/exchange.h"
#include "fleet/roll.h"
#include "support/process.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <mosquitto.h>
#include <sys/resource.h>
#include <unistd.h>

namespace
{

using namespace tarn::fleet;
using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kCommand = 5, kLength = 9584; // TarnGetRadioNum
constexpr std::uint32_t kPresent = kLength - 4;       // of a reply: all but its status, which is 0
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

std::vector<std::string> namesOf(const char* kind, std::size_t count)
{
    std::vector<std::string> names;
    names.reserve(count);
    for (std::size_t number = 1; number <= count; ++number)
        names.push_back(kind + std::to_string(number));
    return names;
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
    const Bytes message(kPresent, 0x55);
    Envelope reply = requestOf(sequence);
    reply.kind = Kind::kReply;
    reply.run = reply.clock = 1;
    reply.live = reply.wait = 0;
    reply.operatorId[0] = '\0';
    reply.message = message.data();
    reply.present = kPresent;
    return encodedAs(reply);
}

// A client that sends a ready answer back.
class Echo
{
public:
    Echo(const std::string& name, std::uint16_t port, const std::atomic<bool>& isDone)
        : settings_(linkSettings(name, port)), link_(settings_, handlers())
    {
        thread_ = std::thread(
            [this, &isDone]
            {
                while (!isDone)
                    link_.turn(-1, 100);
                link_.close();
            });
    }
    ~Echo()
    {
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
    std::thread thread_;
};

// How long calls took, and all of them together.
class Figures
{
public:
    void add(double milliseconds)
    {
        times_.push_back(milliseconds);
    }
    void addRound(std::chrono::duration<double> taken)
    {
        taken_ += taken;
    }
    double percentile(std::size_t percent)
    {
        std::sort(times_.begin(), times_.end());
        return times_.at(times_.size() * percent / 100);
    }
    void print(const std::string& name)
    {
        std::printf("calls %s %.4f %.4f %.0f\n", name.c_str(), percentile(50), percentile(99),
                    static_cast<double>(times_.size()) / taken_.count());
    }

private:
    std::vector<double> times_;
    std::chrono::duration<double> taken_{0};
};

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Asks the echoing clients.
class Asker
{
public:
    explicit Asker(std::uint16_t port) : settings_(linkSettings("asker", port)), link_(settings_, handlers())
    {
        while (!link_.isUp())
            link_.turn(-1, 10);
    }

    // Until all have answered once: those that are not connected yet do not.
    void awaitAll(const std::vector<std::string>& names)
    {
        Figures none;
        figures_ = &none;
        for (const std::string& name : names)
            for (bool hasAnswered = false; !hasAnswered;)
            {
                send(name);
                const auto end = Clock::now() + std::chrono::milliseconds(200);
                while (!waiting_.empty() && Clock::now() < end)
                    link_.turn(-1, 1);
                hasAnswered = waiting_.empty();
                waiting_.clear();
            }
    }

    void askAll(const std::vector<std::string>& names, std::size_t window, Figures& figures)
    {
        figures_ = &figures;
        const auto start = Clock::now();
        for (const std::string& name : names)
        {
            send(name);
            while (waiting_.size() >= window)
                link_.turn(-1, 1);
        }
        while (!waiting_.empty())
            link_.turn(-1, 1);
        figures.addRound(Clock::now() - start);
    }

private:
    LinkHandlers handlers()
    {
        LinkHandlers result;
        result.context = this;
        result.connected = [](void* self) { static_cast<Asker*>(self)->link_.subscribe(allReplies(kOperator).text); };
        result.received = [](void* self, const char*, const void* payload, std::size_t size)
        {
            auto* that = static_cast<Asker*>(self);
            Envelope reply;
            if (decode(payload, size, reply) != Fault::kNone || reply.present != kPresent)
                std::abort();
            const auto found = that->waiting_.find(reply.sequence);
            if (found == that->waiting_.end())
                return;
            that->figures_->add(millisecondsSince(found->second));
            that->waiting_.erase(found);
        };
        return result;
    }

    void send(const std::string& name)
    {
        const Bytes bytes = encodedAs(requestOf(++sequence_));
        waiting_[sequence_] = Clock::now();
        link_.publish(requestTopic(name.c_str()).text, bytes.data(), bytes.size(), false);
    }

    const LinkSettings settings_;
    BrokerLink link_;
    std::uint32_t sequence_ = 0;
    std::map<std::uint32_t, Clock::time_point> waiting_;
    Figures* figures_ = nullptr;
};

// A bridge whose platform answers at once.
class Home
{
public:
    Home(const std::string& name, std::uint16_t port)
    {
        settings_.link = linkSettings(name, port);
        std::snprintf(settings_.programVersion, sizeof settings_.programVersion, "bench");
        const BridgePlatform platform = {
            nullptr,
            [](void*, const char*, const char*, std::uint32_t, std::uint32_t, std::uint32_t length, void* message)
            {
                std::memset(message, 0, length);
                std::memset(message, 0x55, kPresent);
                return 0u;
            },
            nullptr};
        bridge_ = std::make_unique<Bridge>(settings_, platform, Policy::ofReading());
        if (!bridge_->start())
            std::abort();
    }
    void awaitConnection() const
    {
        while (bridge_->counters().births == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

private:
    BridgeSettings settings_;
    std::unique_ptr<Bridge> bridge_;
};

// Raises this process's limit, and so the broker's, to the highest that it may have.
bool haveDescriptorsFor(std::size_t gateways)
{
    // A connection takes a socket and libmosquitto's pair of them; a bridge one more to be woken with.
    constexpr std::size_t kOfGateway = 3 + 1 + 3; // with the client that stands beside it
    constexpr std::size_t kOthers = 100;
    rlimit descriptors = {};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    descriptors.rlim_cur = descriptors.rlim_max;
    setrlimit(RLIMIT_NOFILE, &descriptors);
    const std::size_t most = descriptors.rlim_max < kOthers ? 0 : (descriptors.rlim_max - kOthers) / kOfGateway;
    if (gateways > most)
        std::fprintf(stderr, "expected at most %zu gateways, not %zu: a process may have %zu descriptors (ulimit -Hn)\n", most,
                     gateways, static_cast<std::size_t>(descriptors.rlim_max));
    return gateways <= most;
}

void callAll(Exchange& exchange, const std::vector<std::string>& names, std::size_t window, Figures& figures)
{
    std::mutex mutex;
    const auto start = Clock::now();
    forEach(names, window,
            [&](std::size_t index)
            {
                Bytes message(kLength);
                const auto begun = Clock::now();
                const Outcome outcome =
                    exchange.call(names[index], {"TARN", kCommand, 3, kLength}, message.data(), std::chrono::seconds(30));
                if (outcome.fate != Fate::kAnswered || outcome.status != 0)
                    std::abort();
                const double milliseconds = millisecondsSince(begun);
                const std::lock_guard<std::mutex> guard(mutex);
                figures.add(milliseconds);
                return true;
            });
    figures.addRound(Clock::now() - start);
}

// --- Memory -----------------------------------------------------------------------------------------------------------------

// In KiB, as the system counts it.
std::size_t memoryOf(int process, const std::string& field)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    std::string word;
    std::size_t size = 0;
    while (file >> word)
        if (word == field + ":" && file >> size)
            return size;
    return 0;
}

void printMemory(const char* what, int process)
{
    std::printf("memory %s %zu %zu\n", what, memoryOf(process, "Rss"), memoryOf(process, "Private_Dirty"));
}

// --- The programs -----------------------------------------------------------------------------------------------------------

void measureTool(const std::string& broker, std::size_t window)
{
    const int output = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const auto start = Clock::now();
    tarn::test::Process tool({TARN_FLEET_PROGRAM, "--broker", broker, "--config", "/dev/null", "call", "home-*",
                              "TarnGetRadioNum", "--window", std::to_string(window)},
                             {STDIN_FILENO, output, STDERR_FILENO});
    close(output);
    if (tool.finish() != 0)
        std::abort();
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage); // the first that has ended
    std::printf("program %.3f %ld\n", millisecondsSince(start) / 1000, usage.ru_maxrss);
}

void measureBridge(const std::string& broker, Exchange& exchange)
{
    const tarn::test::Process bridge({TARN_BRIDGE_PROGRAM, "--id", "alone", "--broker", broker, "--no-events"},
                                     {STDIN_FILENO, STDERR_FILENO, STDERR_FILENO});
    Bytes message(kLength);
    for (int answered = 0; answered < 100;) // no service is there: its IPC says so
        answered += exchange.call("alone", {"TARN", kCommand, 3, kLength}, message.data(), std::chrono::seconds(3)).fate ==
                    Fate::kAnswered;
    printMemory("tarn-bridge", bridge.id());
}

} // namespace

int main(int count, char** arguments)
{
    const auto argument = [&](int at)
    { return count == 4 ? static_cast<std::size_t>(std::strtoul(arguments[at], nullptr, 10)) : 0; };
    const std::size_t gateways = argument(1), window = argument(2), rounds = argument(3);
    if (gateways == 0 || window == 0 || rounds == 0)
    {
        std::fprintf(stderr, "usage: tarn_bench_fleet GATEWAYS WINDOW ROUNDS, numbers above 0\n");
        return 2;
    }
    if (!haveDescriptorsFor(gateways))
        return 2;
    mosquitto_lib_init();

    const fleet_test::MosquittoBroker broker("listener @PORT@ 127.0.0.1\nallow_anonymous true\nset_tcp_nodelay true\n"
                                             "max_queued_messages 10000\n");
    const std::string address = "127.0.0.1:" + std::to_string(broker.port());
    const std::vector<std::string> homeNames = namesOf("home-", gateways), echoNames = namesOf("echo-", gateways);
    const std::size_t before[] = {memoryOf(getpid(), "Rss"), memoryOf(getpid(), "Private_Dirty")};
    std::vector<std::unique_ptr<Home>> homes;
    for (const std::string& name : homeNames)
        homes.push_back(std::make_unique<Home>(name, broker.port()));
    for (const auto& home : homes)
        home->awaitConnection();
    printMemory("broker", broker.processId());
    const LinkSettings settings = linkSettings("noc-2", broker.port());
    Exchange exchange(settings, {}, {}, nullptr);
    exchange.awaitUp(std::chrono::seconds(10));
    Figures first;
    callAll(exchange, homeNames, window, first); // pings go before these
    first.print("first/" + std::to_string(window));
    std::printf("memory another %zu %zu\n", (memoryOf(getpid(), "Rss") - before[0]) / gateways,
                (memoryOf(getpid(), "Private_Dirty") - before[1]) / gateways);
    measureTool(address, window);
    measureBridge(address, exchange);

    std::atomic<bool> isDone{false};
    std::vector<std::unique_ptr<Echo>> echoes;
    for (const std::string& name : echoNames)
        echoes.push_back(std::make_unique<Echo>(name, broker.port(), isDone));
    Asker asker(broker.port());
    asker.awaitAll(echoNames);
    for (const std::size_t atATime : {std::size_t{1}, window})
    {
        for (std::size_t round = 0; round < rounds; ++round)
        {
            Figures bare, calls;
            asker.askAll(echoNames, atATime, bare);
            callAll(exchange, homeNames, atATime, calls);
            bare.print("bare/" + std::to_string(atATime));
            calls.print("call/" + std::to_string(atATime));
        }
    }
    isDone = true;
}
