// Asks a gateway that runs elsewhere for every command of the contract, with messages of zeros: each has to be carried out and
// answered. Started by tests/fleet/emulated, with the broker's port in TARN_FLEET_PORT.
#include "operator.h"

#include <cstdlib>
#include <set>
#include <utility>

#include <gtest/gtest.h>

namespace fleet_test
{
namespace
{

using namespace tarn::fleet;

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
    Envelope request = noc.request("TARN", 5, 9584);
    request.byteOrder = ByteOrder::kBig;
    const auto radios = noc.call("home-1", request);
    ASSERT_TRUE(radios);
    ASSERT_EQ(radios->envelope.length, 9584u);
    const Bytes message = unpacked(radios->envelope);
    EXPECT_EQ(Bytes(message.begin() + 28, message.begin() + 32), (Bytes{0, 0, 0, 2}));
    std::printf("counted: %zu functions, %zu commands\n", kContractFunctionCount, asked.size());
}

} // namespace
} // namespace fleet_test
