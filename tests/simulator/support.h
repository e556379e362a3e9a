// What the tests of the simulated gateway share: a gateway in this process with a clock that they set, calls of the library's
// functions that are counted, the state of the gateway, and the events that it publishes.
#pragma once

#include "simulator/record.h"
#include "support/services.h"
#include "tarn_api.h"
#include "tarn_gateway_control.h"
#include "tarn_qtn_monitor_api.h"

#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tarn::simulator
{
class Gateway;
class Model;
} // namespace tarn::simulator

namespace simulator_test
{

using tarn::simulator::MacAddress;
using tarn::simulator::Record;
using Json = nlohmann::ordered_json;

constexpr const char* kCaller = "test";

// Statuses as the simulator's README gives them, device service first.
constexpr std::int64_t kDone = 0;
constexpr std::int64_t kNoSuchObject = 16;
constexpr std::int64_t kInvalidValue = 17;
constexpr std::int64_t kBusy = 18;
constexpr std::int64_t kFull = 19;
constexpr std::int64_t kAlreadyThere = 20;
constexpr std::int64_t kNotThere = 21;
constexpr std::int64_t kSwitchedOff = 22;
constexpr std::int64_t kModuleNoSuchObject = -201;
constexpr std::int64_t kModuleInvalidValue = -202;
constexpr std::int64_t kModuleBusy = -203;
constexpr std::int64_t kModuleFull = -204;
constexpr std::int64_t kModuleAlreadyThere = -205;
constexpr std::int64_t kModuleNotThere = -206;
constexpr std::int64_t kModuleSwitchedOff = -207;

// Of the default scenario: radio 1 is the module's, with interfaces wifi0 and wifi1, radio 2 has wlan0.
constexpr MacAddress kFirstStation = {0x02, 0, 0, 0, 1, 1};
constexpr MacAddress kSecondStation = {0x02, 0, 0, 0, 1, 2};
constexpr MacAddress kGuestStation = {0x02, 0, 0, 0, 1, 4};
constexpr MacAddress kSlowBandStation = {0x02, 0, 0, 0, 1, 5};
constexpr MacAddress kStranger = {0x02, 0, 0, 0, 9, 9};

// The interfaces' names; some functions take 65 bytes whatever the name's length.
extern const char kWifi0[65];
extern const char kWifi1[65];
extern const char kNobody[65];

// One function of the library, by its name, which is noted when it is called.
template <typename Result, typename... Parameters>
class Counted
{
public:
    Counted(const char* name, Result (*function)(const char*, Parameters...)) : name_(name), function_(function)
    {
    }

    std::int64_t operator()(Parameters... arguments) const;

private:
    const char* name_;
    Result (*function_)(const char*, Parameters...);
};

void noteCall(const char* function);
// Functions that no test has called with success so far.
std::vector<std::string> neverDone();

template <typename Result, typename... Parameters>
std::int64_t Counted<Result, Parameters...>::operator()(Parameters... arguments) const
{
    const std::int64_t status = function_(kCaller, arguments...);
    if (status == kDone)
        noteCall(name_);
    return status;
}

#define CALL(function) ::simulator_test::Counted(#function, function)

// An event as its subscriber received it.
struct ReceivedEvent
{
    std::string service;
    std::uint32_t event = 0;
    std::vector<std::uint8_t> data;
};

// Each test has a gateway of its own, in a runtime directory of its own.
class SimulatorTest : public ::testing::Test
{
protected:
    SimulatorTest();
    ~SimulatorTest() override;

    void SetUp() override;
    void TearDown() override;

    // Before SetUp of this class: another scenario than the default one.
    void useScenario(const std::string& text)
    {
        scenario_ = text;
    }
    // Likewise: the layout file of that path instead of the simulator's own.
    void useLayout(const std::string& path)
    {
        layout_ = path;
    }

    // Who is associated, and how well, is what follows from all of the state: nothing of it has been overlooked.
    void expectSettled();

    void passSeconds(double seconds);
    void appearRadar(std::uint32_t channel);
    tarn::simulator::Gateway& gateway()
    {
        return *gateway_;
    }

    // Gives the gateway an order, and returns its answer.
    static Json order(const std::string& line);
    // The status and the reason of an order that is to be refused.
    static std::string refusal(const std::string& line);

    // A part of the gateway's state, by its JSON pointer.
    static Json state(const std::string& path);

    // Collects the event from now on.
    static void subscribe(std::uint32_t event);
    // The next event that arrives. Fails, and returns an empty one, if none does.
    static ReceivedEvent nextEvent();
    // The next event, which must be that one with data of that layout.
    static Record nextEvent(std::uint32_t event, const char* layoutName);
    // True if no event published so far is still to arrive.
    bool noMoreEvents();

    std::size_t stationCount(std::uint32_t radioId = 1, std::uint32_t apId = 1);

private:
    tarn::test::TemporaryRuntimeDirectory directory_;
    std::string scenario_;
    std::string layout_;
    std::unique_ptr<tarn::simulator::Model> model_;
    std::unique_ptr<tarn::simulator::Gateway> gateway_;
};

// One of the simulator's own.
tarn::simulator::RecordLayout layoutNamed(const char* name);

// Between one of the library's records, or an array, and what the simulator's layouts say of it.
template <typename Raw>
Record recordOf(const char* layoutName, const Raw& raw)
{
    std::vector<std::uint8_t> bytes(sizeof raw);
    std::memcpy(bytes.data(), &raw, sizeof raw);
    return Record(layoutNamed(layoutName), bytes);
}

template <typename Raw>
Raw rawOf(const Record& record)
{
    Raw raw;
    EXPECT_EQ(record.bytes().size(), sizeof raw);
    std::memcpy(&raw, record.bytes().data(), sizeof raw);
    return raw;
}

Record blank(const char* layoutName);

} // namespace simulator_test
