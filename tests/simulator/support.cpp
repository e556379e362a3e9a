#include "support.h"

#include "contract/contract.h"
#include "kor_iil.h"
#include "simulator/gateway.h"
#include "simulator/scenario.h"
#include "tarn_gateway_order.hpp"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <mutex>
#include <set>
#include <sstream>

namespace simulator_test
{

const char kWifi0[65] = "wifi0";
const char kWifi1[65] = "wifi1";
const char kNobody[65] = "wifi9";

namespace
{

std::set<std::string>& calledFunctions()
{
    static std::set<std::string> functions;
    return functions;
}

// --- Events: the IPC library calls them on a thread of its own ---------------------------------------------------------------

std::mutex eventMutex;
std::condition_variable eventArrived;
std::deque<ReceivedEvent> events;
std::set<std::uint32_t> subscriptions; // of the running test

void collect(const char* serviceId, std::uint32_t event, const void* data, std::uint32_t length)
{
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    const std::lock_guard<std::mutex> guard(eventMutex);
    events.push_back(
        {serviceId, event, length > 0 ? std::vector<std::uint8_t>(bytes, bytes + length) : std::vector<std::uint8_t>()});
    eventArrived.notify_all();
}

// Fails the run if a function of the contract has never been called with success. Only when no test is left out.
class EveryFunction : public ::testing::Environment
{
public:
    void TearDown() override
    {
        if (::testing::UnitTest::GetInstance()->test_to_run_count() != ::testing::UnitTest::GetInstance()->total_test_count())
            return;
        EXPECT_EQ(neverDone(), std::vector<std::string>());
    }
};

[[maybe_unused]] const ::testing::Environment* const kEveryFunction = ::testing::AddGlobalTestEnvironment(new EveryFunction);

// Of all radios and stations.
std::string linksOf(const tarn::simulator::Model& model)
{
    std::ostringstream text;
    for (const tarn::simulator::Radio& radio : model.radios)
    {
        text << radio.name << " noise=" << radio.noise << " load=" << radio.channelLoad << " own=" << radio.ownLoad << '\n';
        for (const tarn::simulator::Interface& interface : radio.interfaces)
            for (const tarn::simulator::Station& station : interface.stations)
                text << "  " << interface.name << ' ' << tarn::base::macText(station.address) << " rssi=" << station.rssi
                     << " rx=" << station.rxRate << '/' << station.rxMcs << " tx=" << station.txRate << '/' << station.txMcs
                     << " chains=" << station.chains << ' ' << station.phyModeName() << " packets=" << station.packetRate
                     << '\n';
    }
    return text.str();
}

} // namespace

void noteCall(const char* function)
{
    calledFunctions().insert(function);
}

std::vector<std::string> neverDone()
{
    std::vector<std::string> names;
    for (const tarn::contract::Row& row : tarn::contract::rows())
        if (calledFunctions().count(row.command->function) == 0)
            names.push_back(row.command->function);
    return names;
}

SimulatorTest::SimulatorTest() = default;
SimulatorTest::~SimulatorTest() = default;

void SimulatorTest::SetUp()
{
    model_ = std::make_unique<tarn::simulator::Model>(layout_.empty() ? tarn::simulator::GatewayLayout()
                                                                      : tarn::simulator::GatewayLayout(layout_));
    if (scenario_.empty())
        tarn::simulator::readDefaultScenario(*model_);
    else
        tarn::simulator::readScenario(scenario_, "test", *model_);
    gateway_ = std::make_unique<tarn::simulator::Gateway>(
        *model_, [] {}, 0);
    gateway_->start();
}

void SimulatorTest::TearDown()
{
    expectSettled();
    for (const std::uint32_t event : subscriptions)
        EXPECT_EQ(tarnCancelEvent(kCaller, event, nullptr, collect), TARN_OK);
    subscriptions.clear();
    gateway_.reset();
    events.clear();
}

void SimulatorTest::expectSettled()
{
    gateway_->withModel(
        [](tarn::simulator::Model& model)
        {
            const std::string found = linksOf(model);
            model.settle();
            EXPECT_EQ(found, linksOf(model));
        });
}

void SimulatorTest::passSeconds(double seconds)
{
    gateway_->step(static_cast<tarn::simulator::Milliseconds>(seconds * 1000));
}

void SimulatorTest::appearRadar(std::uint32_t channel)
{
    gateway_->withModel([&](tarn::simulator::Model& model) { model.radarAppears(channel); });
}

Json SimulatorTest::order(const std::string& line)
{
    const tarn::gateway::OrderAnswer answer = tarn::gateway::giveOrder(kCaller, line, 60);
    EXPECT_EQ(answer.ipcStatus, 0u) << line;
    EXPECT_EQ(answer.status, 0u) << line << ": " << answer.text;
    return answer.ipcStatus == 0 && answer.status == 0 ? Json::parse(answer.text) : Json();
}

std::string SimulatorTest::refusal(const std::string& line)
{
    const tarn::gateway::OrderAnswer answer = tarn::gateway::giveOrder(kCaller, line, 60);
    EXPECT_EQ(answer.ipcStatus, 0u) << line;
    EXPECT_NE(answer.status, 0u) << line;
    return std::to_string(answer.status) + ": " + answer.text;
}

Json SimulatorTest::state(const std::string& path)
{
    return order("state " + path);
}

void SimulatorTest::subscribe(std::uint32_t event)
{
    if (!subscriptions.insert(event).second)
        return;
    ASSERT_EQ(tarnSubscribeEvent(kCaller, event, nullptr, collect), TARN_OK);
}

ReceivedEvent SimulatorTest::nextEvent()
{
    std::unique_lock<std::mutex> lock(eventMutex);
    if (!eventArrived.wait_for(lock, std::chrono::seconds(60), [] { return !events.empty(); }))
    {
        ADD_FAILURE() << "no event has come";
        return {};
    }
    ReceivedEvent event = events.front();
    events.pop_front();
    return event;
}

Record SimulatorTest::nextEvent(std::uint32_t event, const char* layoutName)
{
    const tarn::simulator::RecordLayout layout = layoutNamed(layoutName);
    ReceivedEvent received = nextEvent();
    EXPECT_EQ(received.service, "TARN");
    EXPECT_EQ(received.event, event);
    EXPECT_EQ(received.data.size(), layout.size);
    received.data.resize(layout.size);
    return Record(layout, received.data);
}

// Events arrive in the order in which they are published: a last one, of a length that no other event has, shows that all have
// arrived.
bool SimulatorTest::noMoreEvents()
{
    TarnGatewayPublish message = {};
    message.event = TARN_EVT_RADIO_STATUS_CHANGED;
    message.length = 3;
    subscribe(message.event);
    EXPECT_EQ(KorIilExecute(kCaller, TARN_GATEWAY_SERVICE, 60, TARN_GATEWAY_PUBLISH, sizeof message, &message), 0u);
    return nextEvent().data.size() == message.length;
}

std::size_t SimulatorTest::stationCount(std::uint32_t radioId, std::uint32_t apId)
{
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(TarnGetAccessPointAssociatedNum)(radioId, apId, &number), kDone);
    return number;
}

tarn::simulator::RecordLayout layoutNamed(const char* name)
{
    return tarn::simulator::GatewayLayout().record(name);
}

Record blank(const char* layoutName)
{
    return Record(layoutNamed(layoutName));
}

} // namespace simulator_test
