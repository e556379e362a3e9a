#include "support.h"

#include "kor_iil.h"
#include "kor_iil_service.h"
#include "simulator/gateway.h"
#include "simulator/scenario.h"
#include "tarn_gateway_order.hpp"

#include <atomic>
#include <cstdlib>
#include <filesystem>

namespace simulator_test
{

using ControlTest = SimulatorTest;

template <typename Message>
std::uint32_t send(std::uint32_t command, Message& message)
{
    return KorIilExecute(kCaller, TARN_GATEWAY_SERVICE, 60, command, sizeof message, &message);
}

TEST_F(ControlTest, PublishesWhatItIsGiven)
{
    TarnGatewayPublish message = {};
    message.event = TARN_EVT_AP_ASSOCIATED_CHANGED;
    message.length = 3;
    std::memcpy(message.data, "abc", 3);
    EXPECT_EQ(send(TARN_GATEWAY_PUBLISH, message), KOR_IIL_OK);
    EXPECT_EQ(message.status, TARN_GATEWAY_OK);
    EXPECT_EQ(message.subscribers, 0u);

    subscribe(TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(send(TARN_GATEWAY_PUBLISH, message), KOR_IIL_OK);
    EXPECT_EQ(message.subscribers, 1u);
    const ReceivedEvent event = nextEvent();
    EXPECT_EQ(event.event, TARN_EVT_AP_ASSOCIATED_CHANGED);
    EXPECT_EQ(event.data, (std::vector<std::uint8_t>{'a', 'b', 'c'}));
}

TEST_F(ControlTest, RefusesToPublishWhatItCannot)
{
    TarnGatewayPublish message = {};
    for (const std::uint32_t event : {0u, 6u})
    {
        message.event = event;
        EXPECT_EQ(send(TARN_GATEWAY_PUBLISH, message), KOR_IIL_OK);
        EXPECT_EQ(message.status, TARN_GATEWAY_NO_SUCH_OBJECT);
    }
    message.event = 1;
    message.length = TARN_GATEWAY_PUBLISH_DATA_SIZE + 1;
    EXPECT_EQ(send(TARN_GATEWAY_PUBLISH, message), KOR_IIL_OK);
    EXPECT_EQ(message.status, TARN_GATEWAY_INVALID_VALUE);
}

TEST_F(ControlTest, StateIsReadAsAWholeAndInPart)
{
    const Json whole = state("");
    EXPECT_EQ(whole["radios"].size(), 2u);
    EXPECT_EQ(whole["radios"][0]["channel"], state("/radios/0/channel"));
    EXPECT_EQ(state("/radios/1/country"), "eu");
}

TEST_F(ControlTest, OrderWithoutItsEndIsReadAsFarAsItGoes)
{
    const auto message = std::make_unique<TarnGatewayOrder>();
    std::memset(message->order, 'x', sizeof message->order);
    EXPECT_EQ(send(TARN_GATEWAY_ORDER, *message), KOR_IIL_OK);
    EXPECT_EQ(message->status, TARN_GATEWAY_INVALID_VALUE);
}

// A state of several messages, read while it changes, is one state.
TEST_F(ControlTest, AnswerIsReadPieceByPieceHoweverLongItIs)
{
    order("set /description '\"" + std::string(1000, 'd') + "\"'");
    for (int i = 0; i < 200; ++i)
    {
        char address[18];
        std::snprintf(address, sizeof address, "02:00:00:00:07:%02x", static_cast<unsigned>(i));
        order(std::string("station add address=") + address + " ssid=elsewhere");
    }
    const auto message = std::make_unique<TarnGatewayOrder>();
    std::strcpy(message->order, "state");
    ASSERT_EQ(send(TARN_GATEWAY_ORDER, *message), KOR_IIL_OK);
    ASSERT_EQ(message->status, TARN_GATEWAY_OK);
    ASSERT_GT(message->total, TARN_GATEWAY_TEXT_SIZE);
    std::string text(message->text, message->length);
    order("station add address=02:00:00:00:08:01");
    const auto piece = std::make_unique<TarnGatewayReadAnswer>();
    while (text.size() < message->total)
    {
        piece->number = message->number;
        piece->offset = static_cast<std::uint32_t>(text.size());
        ASSERT_EQ(send(TARN_GATEWAY_READ_ANSWER, *piece), KOR_IIL_OK);
        ASSERT_GT(piece->length, 0u);
        text.append(piece->text, piece->length);
    }
    EXPECT_EQ(Json::parse(text)["clients"].size() + 1, order("state /clients").size());

    for (int i = 0; i < 8; ++i)
        order("state");
    EXPECT_EQ(send(TARN_GATEWAY_READ_ANSWER, *piece), KOR_IIL_OK);
    EXPECT_EQ(piece->status, TARN_GATEWAY_NOT_THERE);
}

// Whatever a caller has set, the state is JSON text.
TEST_F(ControlTest, StateShowsBytesThatAreNoText)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "caf\xe9\\"), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/ssid"), "caf\\xe9\\\\");
}

TEST_F(ControlTest, LayoutIsReadPieceByPiece)
{
    const auto message = std::make_unique<TarnGatewayReadLayout>();
    std::string text;
    do
    {
        message->offset = static_cast<std::uint32_t>(text.size());
        ASSERT_EQ(send(TARN_GATEWAY_READ_LAYOUT, *message), KOR_IIL_OK);
        ASSERT_EQ(message->status, TARN_GATEWAY_OK);
        ASSERT_GT(message->length, 0u);
        text.append(message->text, message->length);
    } while (text.size() < message->total);
    EXPECT_EQ(text, tarn::layout::simulatedText());

    message->offset = message->total + 1;
    EXPECT_EQ(send(TARN_GATEWAY_READ_LAYOUT, *message), KOR_IIL_OK);
    EXPECT_EQ(message->length, 0u);
}

TEST_F(ControlTest, OddRequestsAreToldSo)
{
    std::uint8_t message[8] = {};
    EXPECT_EQ(KorIilExecute(kCaller, TARN_GATEWAY_SERVICE, 60, 4, sizeof message, message), KOR_IIL_UNKNOWN_CMD);
    EXPECT_EQ(KorIilExecute(kCaller, TARN_GATEWAY_SERVICE, 60, 0, sizeof message, message), KOR_IIL_MISMATCH_CMD_LEN);
    EXPECT_EQ(KorIilExecute(kCaller, TARN_GATEWAY_SERVICE, 60, 1, sizeof message, message), KOR_IIL_MISMATCH_CMD_LEN);
}

TEST_F(ControlTest, ShutDownIsAskedForOnce)
{
    const tarn::test::TemporaryRuntimeDirectory elsewhere;
    tarn::simulator::Model model;
    tarn::simulator::readDefaultScenario(model);
    std::atomic<int> asked{0};
    tarn::simulator::Gateway other(model, [&] { ++asked; });
    other.start();
    order("shutdown");
    EXPECT_EQ(asked, 1);
    other.stop();
    EXPECT_EQ(tarn::gateway::giveOrder(kCaller, "shutdown", 60).ipcStatus, KOR_IIL_UNKNOWN_DST_ID);
}

TEST_F(ControlTest, SecondGatewayIsTurnedAway)
{
    tarn::simulator::Model model;
    tarn::simulator::readDefaultScenario(model);
    tarn::simulator::Gateway second(model, [] {});
    try
    {
        second.start();
        FAIL() << "two gateways in one runtime directory";
    }
    catch (const tarn::simulator::GatewayError& error)
    {
        EXPECT_EQ(error.what(),
                  std::string("the identifier TARN is taken: another gateway runs in ") + std::getenv("KORIIL_DIR"));
    }
    EXPECT_EQ(stationCount(), 3u); // the first one goes on
}

} // namespace simulator_test
