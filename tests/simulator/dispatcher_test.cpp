#include "support.h"

#include "contract/contract.h"
#include "kor_iil.h"
#include "kor_iil_service.h"
#include "simulator/dispatcher.h"
#include "simulator/scenario.h"

#include <random>
#include <set>

namespace simulator_test
{

using DispatcherTest = SimulatorTest;
namespace contract = tarn::contract;

TEST_F(DispatcherTest, EveryFunctionHasItsHandler)
{
    std::set<std::string> functions;
    for (const contract::Row& row : contract::rows())
    {
        EXPECT_NE(tarn::simulator::handlers().find(row.command->function), nullptr) << row.command->function;
        functions.insert(row.command->function);
    }
    EXPECT_EQ(functions.size(), tarn::contract::rows().size());
    EXPECT_EQ(tarn::simulator::handlers().find("TarnGetNothing"), nullptr);
}

TEST_F(DispatcherTest, HandlerIsForOneFunctionOfTheContract)
{
    tarn::simulator::HandlerTable table;
    const tarn::simulator::Handler nothing = [](tarn::simulator::Model&, tarn::simulator::CommandRequest&) {};
    table.add("TarnGetRadioNum", nothing);
    EXPECT_THROW(table.add("TarnGetRadioNum", nothing), std::logic_error);
    EXPECT_THROW(table.add("TarnGetNothing", nothing), std::logic_error);
}

TEST_F(DispatcherTest, UnknownCommandsAndWrongLengthsAreToldSo)
{
    std::vector<std::uint8_t> message(9600);
    for (const contract::Contract& service : contract::all())
    {
        std::set<std::uint32_t> commands;
        for (const contract::Command& command : service.commands)
        {
            commands.insert(command.command);
            for (const std::uint32_t length : {command.length - 4, command.length + 4, 0u})
                EXPECT_EQ(KorIilExecute(kCaller, service.service.c_str(), 60, command.command, length, message.data()),
                          KOR_IIL_MISMATCH_CMD_LEN)
                    << command.function;
        }
        for (std::uint32_t command = 0; command < 200; ++command)
        {
            if (commands.count(command) != 0)
                continue;
            EXPECT_EQ(KorIilExecute(kCaller, service.service.c_str(), 60, command, 12, message.data()), KOR_IIL_UNKNOWN_CMD)
                << service.service << ' ' << command;
        }
    }
}

// What the service writes is outputs and status; the rest of the message is what the caller sent.
TEST_F(DispatcherTest, ReplyKeepsTheRequest)
{
    std::uint8_t message[140];
    std::memset(message, 0x5a, sizeof message);
    std::memset(message, 0, 8); // radio 1, access point 1
    EXPECT_EQ(KorIilExecute(kCaller, "TARN", 60, 66, sizeof message, message), KOR_IIL_OK);
    std::uint8_t expected[140];
    std::memset(expected, 0x5a, sizeof expected);
    const std::uint32_t number = 3;
    const std::uint32_t status = 0;
    std::memset(expected, 0, 8);
    std::memcpy(expected + 20, &number, sizeof number);
    std::memcpy(expected + 136, &status, sizeof status);
    EXPECT_EQ(std::memcmp(expected, message, sizeof message), 0);
}

// Both halves of the mirror's one reply.
TEST_F(DispatcherTest, MirrorAnswersAllThreeWordsAtOnce)
{
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_mirror_enable)(1), kDone);
    EXPECT_EQ(CALL(tarn_qtn_mirror_set_telnet_enable)(1, 7), kDone);
    std::uint32_t words[6] = {};
    EXPECT_EQ(KorIilExecute(kCaller, "QTN_MIRROR", 60, 0, sizeof words, words), KOR_IIL_OK);
    EXPECT_EQ(words[2], 1u);
    EXPECT_EQ(words[3], 1u);
    EXPECT_EQ(words[4], 1u);
    EXPECT_EQ(words[5], 0u);
}

// Requests of arbitrary bytes are answered with a documented status, and the gateway goes on.
TEST_F(DispatcherTest, AnyBytesGetAnAnswer)
{
    tarn::simulator::Model model;
    tarn::simulator::readDefaultScenario(model);
    model.start();
    std::mt19937 random(1);

    for (const contract::Contract& service : contract::all())
    {
        std::set<std::uint32_t> documented;
        for (std::uint32_t i = 0; i < tarn::simulator::kReplyStatusCount; ++i)
            documented.insert(model.layout.status(service.service, static_cast<tarn::simulator::ReplyStatus>(i)));
        const tarn::simulator::Dispatcher dispatcher(service, true);
        for (const contract::Command& command : service.commands)
            for (int round = 0; round < 30; ++round)
            {
                // One byte too many in front, so that no word of the message is aligned.
                std::vector<std::uint8_t> bytes(command.length + 1);
                for (std::uint8_t& byte : bytes)
                    byte = round == 0 ? 0xff : round % 2 == 0 ? static_cast<std::uint8_t>(random()) : 0;
                // Ids and names that exist, so that the requests are not refused for them.
                for (const contract::Argument& argument : command.arguments)
                    if (round % 3 != 0 && argument.encoding == contract::Encoding::kId)
                        std::memset(bytes.data() + 1 + argument.offset, 0, 4);
                    else if (round % 3 != 0 && (argument.name == "ifname" || argument.name == "intf_name"))
                        std::memcpy(bytes.data() + 1 + argument.offset, "wifi0", 6);
                EXPECT_EQ(dispatcher.serve(model, command.command, command.length, bytes.data() + 1), KOR_IIL_OK);
                std::uint32_t answered;
                std::memcpy(&answered, bytes.data() + 1 + command.statusOffset(), sizeof answered);
                EXPECT_EQ(documented.count(answered), 1u) << command.function << ": " << answered;
            }
    }
}

} // namespace simulator_test
