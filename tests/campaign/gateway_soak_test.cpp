// 64 callers of a simulated gateway to which faults, orders and restarts happen at random, for hours of its own time: every
// call ends in time, each reply is the caller's own, nothing is carried out twice, and the gateway's memory does not grow.
//
// The callers are threads, each with connections of its own: to the gateway they are no different from processes, and one
// ledger can be kept of them all. The gateway is a process, whose memory is that of nothing else.
#include "gateway_process.h"
#include "support.h"

#include "base/mac_address.h"
#include "contract/contract.h"
#include "kor_iil.h"
#include "simulator/record.h"
#include "simulator/scenario.h"
#include "tarn_api.h"
#include "tarn_gateway_order.hpp"
#include "tarn_qtn_monitor_api.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <deque>
#include <fstream>
#include <map>
#include <random>
#include <set>

#include <nlohmann/json.hpp>

namespace campaign
{
namespace
{

using std::chrono::steady_clock;
using Json = nlohmann::ordered_json;
using tarn::base::MacAddress;

constexpr std::uint32_t kRadios = 8;
constexpr std::uint32_t kInterfaces = 8; // of each radio
constexpr std::uint32_t kStations = 4;   // of each interface
constexpr std::uint32_t kCallers = kRadios * kInterfaces;
constexpr int kSpeed = 1200; // 10 hours in 30 s
constexpr std::chrono::milliseconds kPause{5};
constexpr std::int64_t kFaultStatus = 77; // which no service has
constexpr std::int64_t kNotThere = -206;  // nothing to read, or to switch off
constexpr auto kBeyondTheWait = std::chrono::seconds(10);

// Of the gateway's resident memory: what its allocators keep of peaks, which has been 0.4 MiB at most. A request that leaves
// 8 bytes behind exceeds it in half a minute.
constexpr std::size_t kMostGrowth = 1u << 20;

// What is over after seconds, or ends a service, happens to functions that are called less often. Probabilities are in
// percent.
const Json kFaults = Json::parse(R"([
    {"kind": "noAnswer", "function": "TarnGetAccessPointMacFilterNum", "probability": 1},
    {"kind": "restart", "function": "tarn_qcsapi_set_custom_value", "probability": 1},
    {"kind": "die", "function": "tarn_qtn_mirror_set_telnet_enable", "probability": 1},
    {"kind": "delay", "milliseconds": 2, "probability": 1},
    {"kind": "length", "probability": 1},
    {"kind": "garbage", "probability": 1},
    {"kind": "status", "status": 77, "probability": 1},
    {"kind": "ipcStatus", "status": 4, "probability": 1},
    {"kind": "eventLost", "event": "EVT_AP_ASSOCIATED_CHANGED", "probability": 10},
    {"kind": "eventDoubled", "event": "EVT_AP_ASSOCIATED_CHANGED", "probability": 10},
    {"kind": "eventLate", "event": "EVT_AP_ASSOCIATED_CHANGED", "milliseconds": 500, "probability": 10}
])");

// --- What was received -------------------------------------------------------------------------------------------------------

// A request is known by its caller's identifier, which no other has: "soak 7.123", the 124th of caller 7.
std::string idOf(std::uint32_t caller, std::size_t call)
{
    return "soak" + std::to_string(caller) + "." + std::to_string(call);
}

// How often the gateway received each request, by its log.
class Ledger
{
public:
    // "12.345 soak7.123 (4711) TarnGetRadio radioId=1: 0 (DONE)"; lines that are of no request are left out.
    void note(const std::string& line)
    {
        unsigned caller = 0;
        unsigned long call = 0;
        if (std::sscanf(line.c_str(), "%*s soak%u.%lu (", &caller, &call) != 2)
            return;
        const std::lock_guard<std::mutex> guard(mutex_);
        std::vector<std::uint8_t>& received = received_.at(caller);
        received.resize(std::max<std::size_t>(received.size(), call + 1));
        ++received[call];
        ++lines_;
        // A fault that takes the place of the answer keeps the request from being carried out.
        const bool isCarriedOut = line.find("fault status") == std::string::npos &&
                                  line.find("fault ipcStatus") == std::string::npos &&
                                  line.find("fault hang") == std::string::npos;
        if (isCarriedOut && line.find(") TarnDoQuantennaSmartWiFiCfgPropagation") != std::string::npos)
            ++propagations_;
    }

    unsigned timesOf(std::uint32_t caller, std::size_t call) const
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        const std::vector<std::uint8_t>& received = received_.at(caller);
        return call < received.size() ? received[call] : 0;
    }

    std::size_t lines() const
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        return lines_;
    }

    std::size_t propagations() const
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        return propagations_;
    }

private:
    mutable std::mutex mutex_;
    std::array<std::vector<std::uint8_t>, kCallers> received_;
    std::size_t lines_ = 0;
    std::size_t propagations_ = 0;
};

// How often a request may have been received whose caller was told this.
bool agrees(std::uint32_t ipcStatus, unsigned times)
{
    switch (ipcStatus)
    {
    case KOR_IIL_OK:
    case KOR_IIL_MISMATCH_CMD_LEN: // a fault
    case KOR_IIL_NO_MEM:           // likewise
        return times == 1;
    case KOR_IIL_TIMEOUT:
    case KOR_IIL_RX_FAIL:
        return times <= 1;
    case KOR_IIL_TX_FAIL:
    case KOR_IIL_UNKNOWN_DST_ID:
        return times == 0;
    default:
        return false;
    }
}

// --- Callers -----------------------------------------------------------------------------------------------------------------

enum class Effect
{
    kNone,
    kDone,
    kUnknown
};

// What one of the gateway's values can be: the last one that was set, and those whose setting went wrong since.
class Value
{
public:
    explicit Value(std::string original) : candidates_{std::move(original)}
    {
    }

    void set(const std::string& value, Effect effect)
    {
        if (effect == Effect::kDone)
            candidates_.clear();
        if (effect != Effect::kNone)
            candidates_.insert(value);
    }

    // Whether it can be that; then it is.
    bool agreesWith(const std::string& value)
    {
        if (candidates_.count(value) == 0)
            return false;
        candidates_ = {value};
        return true;
    }

    bool isCertainly(const std::string& value) const
    {
        return candidates_ == std::set<std::string>{value};
    }

    bool isCertain() const
    {
        return candidates_.size() == 1;
    }

private:
    std::set<std::string> candidates_;
};

// Has an interface of its own, and a custom value. What it sets there is its own, and says which call set it.
class Caller
{
public:
    explicit Caller(std::uint32_t number)
        : number_(number),
          radioId_(1 + number / kInterfaces),
          interfaceId_(1 + number % kInterfaces),
          name_("wifi" + std::to_string(radioId_ - 1) + "-" + std::to_string(interfaceId_ - 1)),
          ssid_("net " + name_.substr(4)),
          random_(seed() * kCallers + number)
    {
        name_.resize(65);
    }

    // One of the things that it does. Half of the callers change their network, which its stations then leave for ever.
    void act()
    {
        switch (random_() % 10)
        {
        case 0:
            return number_ % 2 == 0 ? setSsid() : kick();
        case 1:
        case 2:
            return readSsid();
        case 3:
            return setCustomValue();
        case 4:
        case 5:
            return readCustomValue();
        case 6:
            return changeFilter();
        case 7:
            return readFilter();
        case 8:
            return switchTelnet();
        default:
            return propagate();
        }
    }

    // What it set is there, and comes back, once nothing goes wrong any more.
    void expectOwn()
    {
        readSsid();
        readCustomValue();
        readFilter();
        EXPECT_TRUE(ssid_.isCertain() && custom_.isCertain() && filter_.isCertain()) << "caller " << number_;
    }

    const std::vector<std::uint32_t>& statuses() const
    {
        return statuses_;
    }

    std::size_t surelyPropagated() const
    {
        return surelyPropagated_;
    }

    std::size_t compared() const
    {
        return compared_;
    }

private:
    std::string nextValue() const
    {
        return std::to_string(number_) + " " + std::to_string(statuses_.size());
    }

    void compare(Value& value, const std::string& answered)
    {
        ++compared_;
        EXPECT_TRUE(value.agreesWith(answered))
            << "not the reply to " << idOf(number_, statuses_.size() - 1) << ": " << answered;
    }

    // `function` gets the caller id. Its result is a reply's if the IPC has brought one.
    template <typename Function>
    std::pair<Effect, std::int64_t> call(Function function, std::uint32_t wait = 4)
    {
        const std::string id = idOf(number_, statuses_.size());
        const auto begin = steady_clock::now();
        const std::int64_t result = function(id.c_str());
        const std::uint32_t status = KorIilLastStatus();
        EXPECT_LT(steady_clock::now() - begin, std::chrono::seconds(wait) + kBeyondTheWait) << id;
        statuses_.push_back(status);
        switch (status)
        {
        case KOR_IIL_OK:
            return {effectOf(result), result};
        case KOR_IIL_TIMEOUT:
        case KOR_IIL_RX_FAIL:
        case KOR_IIL_MISMATCH_CMD_LEN:
            return {Effect::kUnknown, result};
        default:
            return {Effect::kNone, result};
        }
    }

    // Any other result is the fault garbage.
    static Effect effectOf(std::int64_t result)
    {
        const bool isRefusal = result == kFaultStatus || (result >= 16 && result <= 22) || (result <= -201 && result >= -207);
        if (result == 0)
            return Effect::kDone;
        return isRefusal ? Effect::kNone : Effect::kUnknown;
    }

    void setSsid()
    {
        std::string ssid = nextValue();
        const auto [effect, result] =
            call([&](const char* id) { return tarn_qcsapi_wifi_set_SSID(id, name_.c_str(), ssid.c_str()); });
        ssid_.set(ssid, effect);
    }

    void readSsid()
    {
        static const tarn::simulator::GatewayLayout kLayout;
        std::vector<std::uint8_t> bytes(sizeof(TarnSsidIntfData));
        auto* const data = reinterpret_cast<TarnSsidIntfData*>(bytes.data());
        if (call([&](const char* id) { return TarnGetSsidIntf(id, radioId_, interfaceId_, data); }).first == Effect::kDone)
            compare(ssid_, tarn::simulator::Record(kLayout.record("TarnSsidIntfData"), bytes).text("ssid"));
    }

    void setCustomValue()
    {
        const std::string value = nextValue();
        const std::string key = std::to_string(number_);
        custom_.set(value,
                    call([&](const char* id) { return tarn_qcsapi_set_custom_value(id, key.c_str(), value.c_str()); }).first);
    }

    void readCustomValue()
    {
        const std::string key = std::to_string(number_);
        char text[1024] = "";
        const auto [effect, result] =
            call([&](const char* id) { return tarn_qcsapi_get_custom_value(id, key.c_str(), text, sizeof text); });
        if (effect == Effect::kDone || result == kNotThere)
            compare(custom_, effect == Effect::kDone ? text : "");
    }

    // The filter has one address or none.
    void changeFilter()
    {
        if (!filter_.isCertain())
            return readFilter();
        MacAddress address = {6, static_cast<std::uint8_t>(number_)};
        const auto number = static_cast<std::uint32_t>(statuses_.size());
        std::memcpy(&address[2], &number, sizeof number);
        if (filter_.isCertainly(""))
            filter_.set(
                tarn::base::macText(address),
                call([&](const char* id) { return TarnAddAccessPointMacFilter(id, radioId_, interfaceId_, address.data()); })
                    .first);
        else
            filter_.set("", call([&](const char* id)
                                 { return TarnDelAccessPointMacFilter(id, radioId_, interfaceId_, listed_.data()); })
                                .first);
    }

    void readFilter()
    {
        std::uint32_t number = 0;
        if (call([&](const char* id) { return TarnGetAccessPointMacFilterNum(id, radioId_, interfaceId_, &number); }).first !=
            Effect::kDone)
            return;
        if (number == 0)
            return compare(filter_, "");
        EXPECT_EQ(number, 1u) << idOf(number_, statuses_.size() - 1);
        if (call([&](const char* id) { return TarnGetAccessPointMacFilterAt(id, radioId_, interfaceId_, 0, listed_.data()); })
                .first == Effect::kDone)
            compare(filter_, tarn::base::macText(listed_));
    }

    // A station of its own comes back after some seconds.
    void kick()
    {
        const auto station = 1 + number_ * kStations + static_cast<std::uint32_t>(random_() % kStations);
        const MacAddress address = {2, 0, 1, 0, static_cast<std::uint8_t>(station >> 8), static_cast<std::uint8_t>(station)};
        call([&](const char* id) { return TarnKickOutAccessPointAssociated(id, radioId_, interfaceId_, address.data()); });
    }

    // The mirror service tells nothing of a caller's own, but a reply has what its request had.
    void switchTelnet()
    {
        static const tarn::contract::Command& kCommand = *tarn::contract::find("tarn_qtn_mirror_set_telnet_enable").command;
        std::vector<std::uint8_t> request(kCommand.length);
        const std::uint32_t enable = holdsTelnet_ ? 0 : 1;
        const std::uint32_t process = 1 + number_;
        std::memcpy(&request[kCommand.argument("enable")->offset], &enable, sizeof enable);
        std::memcpy(&request[kCommand.argument("pid")->offset], &process, sizeof process);
        std::vector<std::uint8_t> reply = request;
        const auto [effect, result] = call(
            [&](const char* id) -> std::int64_t
            {
                if (KorIilExecute(id, "QTN_MIRROR", 3, kCommand.command, kCommand.length, reply.data()) != KOR_IIL_OK)
                    return -1;
                std::int32_t status = 0;
                std::memcpy(&status, &reply[kCommand.statusOffset()], sizeof status);
                return status;
            });
        if (effect != Effect::kDone && result != kNotThere)
            return;
        ++compared_;
        EXPECT_TRUE(std::equal(request.begin(), request.begin() + kCommand.statusOffset(), reply.begin()))
            << "not the reply to " << idOf(number_, statuses_.size() - 1);
        holdsTelnet_ = !holdsTelnet_;
    }

    void propagate()
    {
        surelyPropagated_ += call(&TarnDoQuantennaSmartWiFiCfgPropagation, 10).first == Effect::kDone ? 1 : 0;
    }

    const std::uint32_t number_;
    const std::uint32_t radioId_;
    const std::uint32_t interfaceId_;
    std::string name_;
    Value ssid_;
    Value custom_{""};
    Value filter_{""};
    MacAddress listed_{};
    bool holdsTelnet_ = false;
    std::mt19937 random_;
    std::vector<std::uint32_t> statuses_; // of the IPC, one a call
    std::size_t surelyPropagated_ = 0;
    std::size_t compared_ = 0;
};

// --- The tester --------------------------------------------------------------------------------------------------------------

std::string order(const std::string& words)
{
    const tarn::gateway::OrderAnswer answer = tarn::gateway::giveOrder("tester", words, kAmple);
    EXPECT_EQ(answer.ipcStatus, 0u) << words;
    EXPECT_EQ(answer.status, 0u) << words << ": " << answer.text;
    return answer.text;
}

// Brings about what happens around a gateway, and publishes events that are numbered.
class Tester
{
public:
    void act()
    {
        switch (random_() % 40)
        {
        case 0:
            ++reboots_;
            order("reboot");
            break;
        case 1:
            breakService();
            break;
        case 2:
        case 3:
            order("radar " + std::to_string(52 + 4 * (random_() % 4)));
            break;
        case 4:
        case 5:
            order("neighbour add bssid=02:00:00:00:0a:01 band=5GHz channel=36 load=60");
            order("neighbour remove 02:00:00:00:0a:01");
            break;
        case 6:
        case 7:
            order("station add address=02:00:00:00:0a:02 ssid='net 1-1' pathLoss=60");
            order("station move 02:00:00:00:0a:02 80");
            order("station remove 02:00:00:00:0a:02");
            break;
        case 8:
        case 9:
            order("step " + std::to_string(random_() % 600));
            break;
        case 10:
        case 11:
            EXPECT_EQ(Json::parse(order("state"))["radios"].size(), kRadios);
            break;
        default:
            publish();
        }
    }

    std::size_t reboots() const
    {
        return reboots_;
    }

    std::uint32_t published() const
    {
        return published_;
    }

private:
    // For a moment; its callers wait, or have to look for it again.
    void breakService()
    {
        const char* const kind = std::array{"hang", "die", "restart"}.at(random_() % 3);
        const char* const service = std::array{"TARN", "QTN_RPC_PROXY", "QTN_MIRROR"}.at(random_() % 3);
        Json faults = kFaults;
        faults.insert(faults.begin(), Json::object({{"kind", kind}, {"service", service}}));
        order("set /faults '" + faults.dump() + "'");
        sleepMilliseconds(50);
        order("set /faults '" + kFaults.dump() + "'");
    }

    void publish()
    {
        TarnGatewayPublish message = {};
        message.event = 5;
        message.length = sizeof published_;
        ++published_;
        std::memcpy(message.data, &published_, sizeof published_);
        KorIilExecute("tester", TARN_GATEWAY_SERVICE, kAmple, TARN_GATEWAY_PUBLISH, sizeof message, &message);
    }

    std::mt19937 random_{seed()};
    std::size_t reboots_ = 0;
    std::uint32_t published_ = 0;
};

// Handlers have no context, so what they find is static.
std::atomic<std::uint32_t> eventsReceived{0};
std::atomic<std::uint32_t> lastNumber{0};
std::atomic<std::uint32_t> disorders{0};
std::atomic<std::uint32_t> renewals{0};

void receive(const char*, std::uint32_t, const void* data, std::uint32_t length)
{
    ++eventsReceived;
    std::uint32_t number = 0;
    if (length != sizeof number)
        return;
    std::memcpy(&number, data, sizeof number);
    disorders += number <= lastNumber.exchange(number) ? 1 : 0;
}

void watch(void*, const char*, const char*, std::uint32_t, std::uint32_t status)
{
    renewals += status == KOR_IIL_OK ? 1 : 0;
}

std::size_t medianOf(std::vector<std::size_t>::const_iterator begin, std::vector<std::size_t>::const_iterator end)
{
    std::vector<std::size_t> values(begin, end);
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values.at(values.size() / 2);
}

class GatewaySoakTest : public CampaignTest
{
protected:
    // In the first half its tables and allocators fill. Of the second, the beginning and the end are compared.
    static std::pair<std::size_t, std::size_t> growthOf(const std::vector<std::size_t>& samples)
    {
        const auto eighth = static_cast<std::ptrdiff_t>(samples.size() / 8);
        return {medianOf(samples.begin() + 4 * eighth, samples.begin() + 5 * eighth),
                medianOf(samples.begin() + 7 * eighth, samples.end())};
    }
};

TEST_F(GatewaySoakTest, EachReplyIsItsCallersOwnNothingIsDoneTwiceAndMemoryStaysFlat)
{
    const HangGuard guard(2 * duration() + std::chrono::seconds(2 * kAmple), [] { return "the gateway's soak"; });
    Ledger ledger;
    const std::string scenario = directory() + "/scenario.json";
    std::ofstream(scenario) << tarn::simulator::generatedScenario(kRadios, kInterfaces, kStations);
    GatewayProcess gateway(
        {"--scenario", scenario, "--log", "--speed", std::to_string(kSpeed), "--seed", std::to_string(seed())},
        [&](const std::string& line) { ledger.note(line); });
    for (std::uint32_t event = 1; event <= 5; ++event)
        ASSERT_EQ(KorIilKeepSubscription("soak", "TARN", event, receive, watch, nullptr), KOR_IIL_OK);
    order("set /faults '" + kFaults.dump() + "'");

    std::deque<Caller> callers;
    std::vector<std::size_t> samples; // of the gateway's resident memory
    Tester tester;
    {
        std::atomic<bool> isOver{false};
        for (std::uint32_t i = 0; i < kCallers; ++i)
            callers.emplace_back(i);
        std::deque<std::thread> threads;
        for (Caller& caller : callers)
            threads.emplace_back(
                [&]
                {
                    for (; !isOver; std::this_thread::sleep_for(kPause))
                        caller.act();
                });
        const auto end = steady_clock::now() + duration();
        for (int i = 0; steady_clock::now() < end; ++i)
        {
            if (i % 5 == 0)
                tester.act();
            samples.push_back(gateway.residentBytes());
            sleepMilliseconds(10);
        }
        isOver = true;
        for (std::thread& thread : threads)
            thread.join();
    }

    order("faults clear");
    for (Caller& caller : callers)
        caller.expectOwn();
    const double hours = Json::parse(order("speed"))["seconds"].get<double>() / 3600;
    const auto propagations = Json::parse(order("state /smartWiFi/propagations")).get<std::size_t>();
    for (std::uint32_t event = 1; event <= 5; ++event)
        EXPECT_EQ(KorIilCancelEvent("soak", "TARN", event, receive), KOR_IIL_OK);
    EXPECT_EQ(gateway.end(), 0);

    std::map<std::uint32_t, std::size_t> statuses;
    std::size_t calls = 0;
    std::size_t compared = 0;
    std::size_t surelyPropagated = 0;
    for (std::uint32_t i = 0; i < kCallers; ++i)
    {
        const std::vector<std::uint32_t>& told = callers[i].statuses();
        for (std::size_t call = 0; call < told.size(); ++call)
        {
            ++statuses[told[call]];
            EXPECT_TRUE(agrees(told[call], ledger.timesOf(i, call)))
                << idOf(i, call) << ": IPC status " << told[call] << ", received " << ledger.timesOf(i, call) << " times";
        }
        calls += told.size();
        compared += callers[i].compared();
        surelyPropagated += callers[i].surelyPropagated();
    }
    EXPECT_GT(statuses[KOR_IIL_OK], 0u);
    EXPECT_EQ(propagations, ledger.propagations()) << "each that was received was carried out once";
    EXPECT_GE(propagations, surelyPropagated);
    EXPECT_GE(hours, static_cast<double>(duration().count()) * kSpeed / 3600);
    EXPECT_EQ(disorders, 0u) << "events doubled or out of order";
    const auto [before, after] = growthOf(samples);
    EXPECT_LE(after, before + (kIsSanitized ? SIZE_MAX / 2 : kMostGrowth)); // a sanitizer keeps what is freed

    std::printf("counted: %.1f hours, %zu calls (IPC status", hours, calls);
    for (const auto& [status, count] : statuses)
        std::printf(" %u: %zu", static_cast<unsigned>(status), count);
    std::printf("), %zu replies compared, %zu propagations, %zu reboots, %u events (%u renewals), memory from %zu to %zu KiB\n",
                compared, propagations, tester.reboots(), eventsReceived.load(), renewals.load(), before / 1024, after / 1024);
}

} // namespace
} // namespace campaign
