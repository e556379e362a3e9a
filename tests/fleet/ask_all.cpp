// Asks a gateway that runs elsewhere for every command of the contract: each has to be carried out and answered, and through
// tarn-fleet as a gateway answers that runs here. Started by tests/fleet/emulated, with the broker's port in TARN_FLEET_PORT,
// the directory of tarn-fleet's services in TARN_FLEET_ATTACHED, and that of the gateway's here in TARN_FLEET_LOCAL.
#include "commands.h"
#include "operator.h"

#include "kor_iil.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;

// What one function's call returned.
struct Result
{
    std::uint32_t status = 0;
    Bytes message;
};

// Of all functions in the contract's order, with the services in the directory that this variable names. On a thread of its
// own, which has connections of its own.
std::vector<Result> resultsIn(const char* variable)
{
    const char* const directory = std::getenv(variable);
    EXPECT_NE(directory, nullptr) << variable;
    std::vector<Result> results;
    if (directory == nullptr || setenv("KORIIL_DIR", directory, 1) != 0)
        return results;
    const auto callAll = [&results]
    {
        for (const ContractFunction& function : kContractFunctions)
        {
            const std::string service = kContractServices[function.service].name;
            Result& result = results.emplace_back();
            result.message.resize(function.length);
            if (service == "QTN_RPC_PROXY") // its messages begin with an interface's name
                std::memcpy(result.message.data(), "wifi0", 6);
            result.status = KorIilExecute("ask", service.c_str(), 30, function.command, function.length, result.message.data());
        }
    };
    std::thread(callAll).join();
    return results;
}

// The first of everything is asked for, on two gateways of the same state whose time stands.
TEST(EmulatedBridgeTest, EveryFunctionHasTheResultThatItHasHere)
{
    const std::vector<Result> far = resultsIn("TARN_FLEET_ATTACHED"), near = resultsIn("TARN_FLEET_LOCAL");
    ASSERT_EQ(far.size(), kContractFunctionCount);
    ASSERT_EQ(near.size(), kContractFunctionCount);
    std::size_t succeeded = 0, outputs = 0;
    for (std::size_t at = 0; at < kContractFunctionCount; ++at)
    {
        EXPECT_EQ(far[at].status, near[at].status) << kContractFunctions[at].name;
        EXPECT_EQ(far[at].message, near[at].message) << kContractFunctions[at].name;
        std::uint32_t reply = 0;
        std::memcpy(&reply, &far[at].message[far[at].message.size() - sizeof reply], sizeof reply);
        succeeded += far[at].status == 0 && reply == 0 ? 1 : 0;
        outputs += std::set<std::uint8_t>(far[at].message.begin(), far[at].message.end()).size() > 1 ? 1 : 0;
    }
    EXPECT_GT(succeeded, kContractFunctionCount / 2);
    std::printf("counted: %zu functions compared, %zu with reply status 0, %zu with more than zeros in the message\n",
                far.size(), succeeded, outputs);
}

TEST(EmulatedBridgeTest, EveryCommandIsCarriedOutAndAnsweredInTheGatewaysByteOrder)
{
    const char* port = std::getenv("TARN_FLEET_PORT");
    ASSERT_NE(port, nullptr);
    Operator noc(static_cast<std::uint16_t>(std::strtoul(port, nullptr, 10)));
    const auto pong = noc.ping("home-1");
    ASSERT_TRUE(pong);
    EXPECT_EQ(pong->envelope.byteOrder, ByteOrder::kBig);
    EXPECT_EQ(pong->envelope.contract, kContractHash);
    std::set<std::pair<std::uint8_t, std::uint8_t>> asked;
    for (const ContractFunction& function : kContractFunctions)
    {
        SCOPED_TRACE(function.name);
        Envelope request = noc.request(kContractServices[function.service].name, function.command, function.length);
        request.byteOrder = ByteOrder::kBig;
        const auto reply = noc.call("home-1", request);
        ASSERT_TRUE(reply);
        ASSERT_EQ(reply->envelope.refusal, Refusal::kNone);
        ASSERT_EQ(reply->envelope.status, 0u);
        EXPECT_EQ(reply->envelope.length, function.length);
        EXPECT_EQ(reply->envelope.byteOrder, ByteOrder::kBig);
        asked.emplace(function.service, function.command);
    }
    // The radios' number, a word at offset 28: it is in the gateway's order.
    Envelope request = noc.request("TARN", kGetRadioNum, kLong);
    request.byteOrder = ByteOrder::kBig;
    const auto radios = noc.call("home-1", request);
    ASSERT_TRUE(radios);
    ASSERT_EQ(radios->envelope.length, kLong);
    const Bytes message = unpacked(radios->envelope);
    EXPECT_EQ(Bytes(message.begin() + 28, message.begin() + 32), (Bytes{0, 0, 0, 2}));
    std::printf("counted: %zu functions, %zu commands\n", kContractFunctionCount, asked.size());
}

} // namespace
} // namespace fleet_test
