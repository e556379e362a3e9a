// The everyday commands, each against services that answer as a gateway does.
#include "support.h"
#include "tarn_gateway_control.h"

#include <algorithm>
#include <cstring>

#include <unistd.h>

namespace tarnctl_test
{

namespace
{

using tarn::contract::Command;

// What one function's output is to be; text or word.
struct Scripted
{
    const char* function;
    const char* output;
    std::uint32_t word;
    const char* text;
};

// Answers the commands of the functions named, and every other one with status 16.
Answer scripted(std::vector<Scripted> script)
{
    return [script = std::move(script)](const KorIilRequest& request, Bytes& message)
    {
        putWord(message, message.size() - 4, 16);
        for (const Scripted& answer : script)
        {
            const Command& command = *tarn::contract::find(answer.function).command;
            if (command.command != request.command)
                continue;
            putWord(message, message.size() - 4, 0);
            if (answer.output == nullptr)
                continue;
            const tarn::contract::Argument& output = *command.argument(answer.output);
            if (answer.text != nullptr)
                std::memcpy(&message.at(output.offset), answer.text, std::strlen(answer.text) + 1);
            else if (output.encoding == tarn::contract::Encoding::kByte)
                message.at(output.offset) = static_cast<unsigned char>(answer.word);
            else
                putWord(message, output.offset, answer.word);
        }
        return std::uint32_t{KOR_IIL_OK};
    };
}

class EverydayTest : public TarnctlTest
{
};

TEST_F(EverydayTest, LogLevel)
{
    const Service device("TARN",
                         scripted({{"TarnGetLogLevel", "level", 4, nullptr}, {"TarnSetLogLevel", nullptr, 0, nullptr}}));
    EXPECT_EQ(run({"log-level"}).out, "log level: 4\n");
    EXPECT_EQ(runJson({"log-level"}).document.at("level"), 4);
    EXPECT_EQ(run({"log-level", "7"}).out, "log level: 7\n");
    EXPECT_EQ(wordAt(device.requests().back().message, 0), 7u);
}

TEST_F(EverydayTest, Radios)
{
    const Service device("TARN", scripted({{"TarnGetRadioNum", "number", 2, nullptr},
                                           {"TarnGetRadioIsReady", "isReady", 1, nullptr},
                                           {"TarnGetRadioChainNumber", "number", 4, nullptr},
                                           {"TarnGetRadioCurrentTransmitPowerLevel", "power", 100, nullptr},
                                           {"TarnGetRadioChipTemperature", "temperature", 0xFFFFFFFBu, nullptr},
                                           {"TarnGetRadioDriverVersion", "version", 0, "drv 1.2"}}));
    const Ran ran = run({"radios"});
    EXPECT_EQ(ran.exit, 0) << ran.err;
    EXPECT_EQ(ran.out,
              "id  name  band  ready  enabled  channel  bandwidth  power level  mode  country  chains  temperature  driver\n"
              " 1  -     -         1  -        -        -                  100  -     -             4           -5  drv 1.2\n"
              " 2  -     -         1  -        -        -                  100  -     -             4           -5  drv 1.2\n");
    const RanJson json = runJson({"radios"});
    ASSERT_EQ(json.document.at("radios").size(), 2u);
    const Json& second = json.document.at("radios")[1];
    const Json expected = {{"id", 2},           {"ready", 1},         {"chains", 4}, {"power_level", 100},
                           {"temperature", -5}, {"driver", "drv 1.2"}};
    for (const auto& [key, value] : expected.items())
        EXPECT_EQ(second.at(key), value) << key;
    EXPECT_TRUE(second.at("channel").is_null());
}

TEST_F(EverydayTest, ARadioThatDoesNotAnswerEverything)
{
    const Service device("TARN",
                         scripted({{"TarnGetRadioNum", "number", 1, nullptr}, {"TarnGetRadioIsReady", "isReady", 1, nullptr}}));
    const Ran ran = run({"radios"});
    EXPECT_EQ(ran.exit, 7);
    EXPECT_NE(ran.out.find(" 1  -     -         1  -        -        -          -            -"), std::string::npos) << ran.out;
    EXPECT_NE(ran.err.find("service TARN answered TarnGetRadioChainNumber with status 16"), std::string::npos) << ran.err;
    const RanJson json = runJson({"radios"});
    EXPECT_TRUE(json.document.at("radios")[0].at("chains").is_null());
    EXPECT_EQ(json.document.at("notes").size(), 4u);
}

TEST_F(EverydayTest, RadiosBeyondBelief)
{
    const Service device("TARN", scripted({{"TarnGetRadioNum", "number", 65, nullptr}}));
    EXPECT_EQ(runJson({"radios"}).exit, 1);
}

TEST_F(EverydayTest, Firmware)
{
    const Service proxy("QTN_RPC_PROXY", scripted({{"tarn_qcsapi_firmware_get_version", "firmware_version", 0, "v37.4"}}));
    EXPECT_EQ(run({"firmware"}).out, "firmware: v37.4\n");
    EXPECT_EQ(runJson({"firmware"}).document.at("version"), "v37.4");
}

TEST_F(EverydayTest, Mirror)
{
    const Service service("QTN_MIRROR", scripted({{"tarn_qtn_mirror_get_mirror_status", "status", 1, nullptr},
                                                  {"tarn_qtn_mirror_set_mirror_enable", nullptr, 0, nullptr}}));
    EXPECT_EQ(run({"mirror"}).out, "mirror status: 1\n");
    EXPECT_EQ(service.requests().size(), 1u);
    EXPECT_EQ(runJson({"mirror", "on"}).document.at("status"), 1);
    ASSERT_EQ(service.requests().size(), 3u);
    EXPECT_EQ(service.requests()[1].command, 2u);
    EXPECT_EQ(wordAt(service.requests()[1].message, 0), 1u);
    EXPECT_EQ(run({"mirror", "off"}).exit, 0);
    EXPECT_EQ(wordAt(service.requests()[3].message, 0), 0u);
}

TEST_F(EverydayTest, Telnet)
{
    const Service service("QTN_MIRROR", scripted({{"tarn_qtn_mirror_get_telnet_status", "status", 1, nullptr},
                                                  {"tarn_qtn_mirror_get_telnet_status", "ref_cnt", 3, nullptr},
                                                  {"tarn_qtn_mirror_set_telnet_enable", nullptr, 0, nullptr}}));
    EXPECT_EQ(run({"telnet"}).out, "telnet status: 1\nreferences: 3\n");
    EXPECT_EQ(runJson({"telnet", "on", "--pid", "77"}).document.at("references"), 3);
    ASSERT_EQ(service.requests().size(), 3u);
    EXPECT_EQ(service.requests()[1].command, 1u);
    EXPECT_EQ(wordAt(service.requests()[1].message, 0), 1u);
    EXPECT_EQ(wordAt(service.requests()[1].message, 4), 77u);
    const RanJson refused = runJson({"telnet", "off", "--pid", "0"});
    EXPECT_EQ(refused.exit, 3);
    EXPECT_EQ(refused.document.at("traces")[0].at("text"), "invalid pid");
}

TEST_F(EverydayTest, FailuresKeepTheirExitCodes)
{
    for (const Words& words :
         {Words{"log-level"}, Words{"log-level", "1"}, Words{"radios"}, Words{"firmware"}, Words{"mirror"},
          Words{"mirror", "on"}, Words{"telnet"}, Words{"telnet", "on", "--pid", "1"}, Words{"publish", "1"}})
    {
        SCOPED_TRACE(::testing::PrintToString(words));
        const RanJson ran = runJson(words);
        EXPECT_EQ(ran.exit, 4);
        EXPECT_EQ(ran.document.at("exit"), 4);
    }
    const Service device("TARN", statusAnswer(5));
    EXPECT_EQ(run({"log-level"}).exit, 7);
    const Service proxy("QTN_RPC_PROXY", ipcAnswer(KOR_IIL_BUSY));
    EXPECT_EQ(run({"firmware"}).exit, 6);
}

Answer gateway(std::uint32_t status)
{
    return [status](const KorIilRequest& request, Bytes& message)
    {
        if (request.command != TARN_GATEWAY_PUBLISH || message.size() != sizeof(TarnGatewayPublish))
            return std::uint32_t{KOR_IIL_UNKNOWN_CMD};
        TarnGatewayPublish publish;
        std::memcpy(&publish, message.data(), sizeof publish);
        publish.subscribers = publish.event + publish.length;
        publish.status = status;
        std::memcpy(message.data(), &publish, sizeof publish);
        return std::uint32_t{KOR_IIL_OK};
    };
}

TEST_F(EverydayTest, Publish)
{
    const Service control(TARN_GATEWAY_SERVICE, gateway(TARN_GATEWAY_OK));
    EXPECT_EQ(run({"publish", "1"}).out, "sent to 1 subscriber\n");
    EXPECT_EQ(run({"publish", "EVT_AP_ASSOCIATED_CHANGED", "--data", "00fF"}).out, "sent to 6 subscribers\n");
    const RanJson json = runJson({"publish", "2", "--data", std::string(2048, 'a')});
    EXPECT_EQ(json.exit, 0);
    EXPECT_EQ(json.document.at("subscribers"), 1026);
    EXPECT_EQ(json.document.at("name"), "EVT_RADIO_OPR_CHANNEL_CHANGED");

    TarnGatewayPublish sent;
    ASSERT_EQ(control.requests().size(), 3u);
    std::memcpy(&sent, control.requests()[1].message.data(), sizeof sent);
    EXPECT_EQ(sent.event, 4u);
    EXPECT_EQ(sent.length, 2u);
    EXPECT_EQ(sent.data[0], 0x00);
    EXPECT_EQ(sent.data[1], 0xFF);
    EXPECT_EQ(sent.data[2], 0x00);
}

TEST_F(EverydayTest, PublishWithoutAGateway)
{
    EXPECT_EQ(run({"publish", "1"}).err, "tarnctl: no simulated gateway is running in " + directory +
                                             " (only that one publishes on request): UNKNOWN_DST_ID (IPC status 9)\n");
}

TEST_F(EverydayTest, Ipc)
{
    EXPECT_EQ(run({"ipc"}).err, "tarnctl: no service is running in " + directory + "\n");
    EXPECT_EQ(run({"ipc"}).exit, 4);

    const Service device("TARN", statusAnswer(0)), proxy("QTN_RPC_PROXY", ipcAnswer(KOR_IIL_BUSY));
    EXPECT_EQ(run({"log-level"}).exit, 0);
    EXPECT_EQ(run({"firmware"}).exit, 6);
    const RanJson json = runJson({"ipc"});
    EXPECT_EQ(json.exit, 0);
    const Json& services = json.document.at("services");
    ASSERT_EQ(services.size(), 2u);
    EXPECT_EQ(services[0].at("service"), "QTN_RPC_PROXY");
    EXPECT_EQ(services[1].at("service"), "TARN");
    for (const Json& service : services)
    {
        EXPECT_EQ(service.at("process"), getpid());
        EXPECT_EQ(service.at("connections"), 1);
        EXPECT_EQ(service.at("calls"), 1) << "the handler's own refusal is a call";
        EXPECT_EQ(service.at("refusals"), 0);
    }
    const std::string table = run({"ipc"}).out;
    EXPECT_EQ(table.rfind("service        since                     process  ", 0), 0u) << table;
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 3);
}

TEST_F(EverydayTest, IpcNamesAServiceThatDoesNotAnswer)
{
    KorIilService* stopped = nullptr;
    const auto refuse = [](void*, const KorIilRequest*, void*) -> std::uint32_t { return KOR_IIL_UNSUPPORT; };
    ASSERT_EQ(KorIilServiceOpen("TARN", 0, refuse, nullptr, &stopped), KOR_IIL_OK); // and not run
    const RanJson json = runJson({"ipc"});
    EXPECT_EQ(json.exit, 5);
    EXPECT_EQ(json.document.at("notes"), Json::array({"service TARN cannot be asked: TIMEOUT (IPC status 7)"}));
    KorIilServiceClose(stopped);
}

TEST_F(EverydayTest, PublishRefused)
{
    const Service control(TARN_GATEWAY_SERVICE, gateway(TARN_GATEWAY_NO_SUCH_OBJECT));
    const RanJson ran = runJson({"publish", "1"});
    EXPECT_EQ(ran.exit, 7);
    EXPECT_EQ(ran.document.at("message"), "the simulated gateway answered with status 16");
}

TEST_F(EverydayTest, TheDirectoryCanBeChosen)
{
    const Service device("TARN", scripted({{"TarnGetLogLevel", "level", 4, nullptr}}));
    setenv("KORIIL_DIR", "/nowhere/at/all", 1);
    EXPECT_EQ(Program({"log-level"}).exitCode(), 6);
    Program program({"log-level", "--directory", directory});
    EXPECT_EQ(program.nextLine(), "log level: 4");
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(EverydayTest, TheProgramEndsWithTheExitCode)
{
    EXPECT_EQ(Program({"list"}).exitCode(), 0);
    EXPECT_EQ(Program({"call", "tarnValidatePinCode", "pin=1"}).exitCode(), 1);
    EXPECT_EQ(Program({"call"}).exitCode(), 2);
    EXPECT_EQ(Program({"call", "TarnGetLogLevel", "level=null"}).exitCode(), 3);
    EXPECT_EQ(Program({"call", "TarnGetLogLevel"}).exitCode(), 4);
    const Service device("TARN", ipcAnswer(KOR_IIL_TIMEOUT));
    EXPECT_EQ(Program({"call", "TarnGetLogLevel"}).exitCode(), 5);
    const Service proxy("QTN_RPC_PROXY", ipcAnswer(KOR_IIL_ERR));
    EXPECT_EQ(Program({"firmware"}).exitCode(), 6);
    const Service mirror("QTN_MIRROR", statusAnswer(9));
    EXPECT_EQ(Program({"mirror"}).exitCode(), 7);
}

TEST_F(EverydayTest, TracesGoToStandardError)
{
    setenv("KORIIL_TRACE", "1", 1);
    Program program({"call", "TarnGetLogLevel", "level=null", "--json"});
    const std::string trace = program.nextErrorLine();
    EXPECT_NE(trace.find(" error tarn_api:"), std::string::npos) << trace;
    EXPECT_NE(trace.find(" level is NULL"), std::string::npos) << trace;
    EXPECT_EQ(program.nextErrorLine(),
              "tarnctl: TarnGetLogLevel refused an argument: level is NULL (result 3; nothing was sent)");
    std::string document;
    for (std::string line = program.nextLine(); !line.empty(); line = program.nextLine())
        document += line;
    EXPECT_EQ(checkedDocument(document).at("outcome"), "rejected");
    EXPECT_EQ(program.exitCode(), 3);
}

} // namespace

} // namespace tarnctl_test
