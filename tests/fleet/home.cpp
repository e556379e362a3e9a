#include "home.h"

#include "link.h"
#include "numbered_call.h"

#include <chrono>
#include <cstdio>
#include <thread>

#include <gtest/gtest.h>

namespace fleet_test
{

using namespace tarn::fleet;

namespace
{

Policy policyOf(const char* line)
{
    Policy policy;
    char problem[256];
    EXPECT_TRUE(policy.add(line, problem, sizeof problem)) << problem;
    return policy;
}

} // namespace

std::string Home::nameOf(unsigned number)
{
    char name[32];
    std::snprintf(name, sizeof name, "home-%02u", number);
    return name;
}

Home::Home(std::uint16_t port, unsigned number, const Ledger* ledger) : Home(linkOf(nameOf(number), {port}), number, ledger)
{
}

Home::Home(const LinkSettings& link, unsigned number, const Ledger* ledger) : number_(number), ledger_(ledger)
{
    settings_.link = link;
    std::snprintf(settings_.programVersion, sizeof settings_.programVersion, "1.2.3");
    const BridgePlatform platform = {this,
                                     [](void* self, const char* /*callerId*/, const char* /*service*/, std::uint32_t /*wait*/,
                                        std::uint32_t command, std::uint32_t length, void* message)
                                     { return static_cast<Home*>(self)->execute(command, length, message); },
                                     nullptr};
    bridge_ = std::make_unique<Bridge>(settings_, platform, policyOf("allow *"));
    EXPECT_TRUE(bridge_->start());
}

void Home::awaitConnection() const
{
    for (int look = 0; look < 4000 && bridge_->counters().births == 0; ++look)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_GT(bridge_->counters().births, 0u);
}

void Home::allow(const char* line)
{
    bridge_->setPolicy(policyOf(line));
}

void Home::stop()
{
    bridge_->stop();
}

void Home::publish(std::uint32_t event)
{
    bridge_->publishEvent("TARN", event, nullptr, 0);
}

std::uint32_t Home::execute(std::uint32_t command, std::uint32_t length, void* message)
{
    ++calls;
    const bool isNumbered = command == kNumberedCommand && length == kNumberedLength;
    if (ledger_ != nullptr && isNumbered && !ledger_->record(number_, numberIn(message)))
        ADD_FAILURE() << "the ledger cannot be written";
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    answerInFull(message, length, number_, replyStatus);
    return ipcStatus;
}

} // namespace fleet_test
