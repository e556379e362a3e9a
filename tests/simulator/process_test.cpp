// The program itself: how it starts, what it says, how it ends.
#include "support.h"

#include "kor_iil.h"
#include "kor_iil_service.h"
#include "support/process.h"
#include "tarn_gateway_order.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace simulator_test
{

namespace
{

// tarn-gateway in a process of its own. Its standard output and error come through one pipe.
class Program
{
public:
    explicit Program(const std::vector<std::string>& arguments)
        : process_(tarn::test::commandOf(EMULATOR, TARN_GATEWAY_PROGRAM, arguments),
                   {STDIN_FILENO, output_.writing(), output_.writing()})
    {
        output_.closeWriting();
    }

    std::string line() const
    {
        return output_.line();
    }

    std::string rest() const
    {
        return output_.rest();
    }

    void signal(int number) const
    {
        process_.signal(number);
    }

    // Its exit code; 128 and the signal that ended it.
    int wait()
    {
        return process_.finish();
    }

private:
    tarn::test::Pipe output_;
    tarn::test::Process process_;
};

std::uint32_t stationCountOf(std::uint32_t radioId, std::uint32_t apId)
{
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(TarnGetAccessPointAssociatedNum)(radioId, apId, &number), kDone);
    return number;
}

class ProcessTest : public ::testing::Test
{
private:
    tarn::test::TemporaryRuntimeDirectory runtimeDirectory_;

protected:
    const std::string directory_ = runtimeDirectory_.path();
};

TEST_F(ProcessTest, ServesUntilItIsTerminated)
{
    for (const int signal : {SIGTERM, SIGINT})
    {
        Program gateway({"--directory", directory_});
        ASSERT_EQ(gateway.line(), "ready");
        std::uint32_t number = 0;
        EXPECT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
        EXPECT_EQ(number, 2u);
        std::uint32_t status = 99;
        EXPECT_EQ(CALL(tarn_qtn_mirror_get_mirror_status)(&status), kDone);
        gateway.signal(signal);
        EXPECT_EQ(gateway.wait(), 0);
        EXPECT_EQ(gateway.rest(), "");
        EXPECT_EQ(CALL(TarnGetRadioNum)(&number), TARN_FAILED);
    }
}

TEST_F(ProcessTest, PlaysTheScenarioItIsGiven)
{
    Program gateway({"--scenario", CROWDED_SCENARIO});
    ASSERT_EQ(gateway.line(), "ready");
    char version[65];
    EXPECT_EQ(CALL(tarn_qcsapi_firmware_get_version)(version, sizeof version), kDone);
    EXPECT_STREQ(version, "5.3.9-crowded");
}

TEST_F(ProcessTest, PrintsAScenarioThatItPlays)
{
    Program generator({"--generate", "2", "3", "4"});
    const std::string path = directory_ + "/generated.json";
    std::ofstream(path) << generator.rest();
    EXPECT_EQ(generator.wait(), 0);
    Program gateway({"--scenario", path, "--speed", "0", "--seed", "9"});
    ASSERT_EQ(gateway.line(), "ready");
    EXPECT_EQ(stationCountOf(2, 3), 4u);
    Program tooMany({"--generate", "9", "8", "60"});
    EXPECT_NE(tooMany.rest().find("9; expected 1 to 8 radios"), std::string::npos);
    EXPECT_EQ(tooMany.wait(), 2);
}

TEST_F(ProcessTest, SaysWhatTheLayoutItIsGivenLacks)
{
    nlohmann::ordered_json layout = nlohmann::ordered_json::parse(tarn::layout::simulatedText());
    layout["name"] = "shed";
    layout["events"].erase("EVT_RADIO_STATUS_CHANGED");
    layout["records"]["TarnRadioStats"]["fields"].erase(0);
    const std::string path = directory_ + "/layout.json";
    std::ofstream(path) << layout;
    Program gateway({"--layout", path});
    EXPECT_EQ(gateway.line(), "tarn-gateway: left out, as the layout shed lacks it: field TarnRadioStats.txPackets");
    EXPECT_EQ(gateway.line(), "tarn-gateway: left out, as the layout shed lacks it: event EVT_RADIO_STATUS_CHANGED");
    EXPECT_EQ(gateway.line(), "ready");
}

TEST_F(ProcessTest, RefusesALayoutThatIsNotSound)
{
    const std::string path = directory_ + "/layout.json";
    std::ofstream(path) << R"({ "layout": 1, "name": "shed", "owner": "nobody" })";
    Program broken({"--layout", path});
    EXPECT_EQ(broken.line(), "tarn-gateway: " + path + ": /version: missing; expected a text of 1 to 64 characters");
    EXPECT_EQ(broken.wait(), 1);
    Program missing({"--layout", path + "x"});
    EXPECT_EQ(missing.line(), "tarn-gateway: " + path + "x: cannot be read: No such file or directory; expected a layout file");
    EXPECT_EQ(missing.wait(), 1);
}

TEST_F(ProcessTest, ShutsDownWhenItIsAskedTo)
{
    Program gateway({});
    ASSERT_EQ(gateway.line(), "ready");
    const tarn::gateway::OrderAnswer answer = tarn::gateway::giveOrder(kCaller, "shutdown", 60);
    EXPECT_EQ(answer.ipcStatus, KOR_IIL_OK);
    EXPECT_EQ(answer.text, "null");
    EXPECT_EQ(gateway.wait(), 0);
}

TEST_F(ProcessTest, SaysReadyWhereItIsTold)
{
    Program gateway({"--ready-fd", "2"});
    EXPECT_EQ(gateway.line(), "ready");
    Program closed({"--directory", directory_ + "/other", "--ready-fd", "77"});
    EXPECT_EQ(closed.line(),
              "tarn-gateway: descriptor 77 cannot be written to: Bad file descriptor; expected one that is open for writing");
    EXPECT_EQ(closed.wait(), 1);
}

TEST_F(ProcessTest, PlaysAScriptAndLogsRequests)
{
    std::ofstream(directory_ + "/script") << "0 nonsense\n0 set /radios/0/channel 44\n";
    Program gateway({"--script", directory_ + "/script", "--log", "--speed", "0"});
    std::string ready = gateway.line();
    if (ready != "ready") // the two streams are one, in any order
    {
        EXPECT_EQ(ready.substr(0, 14 + directory_.size()), "tarn-gateway: " + directory_);
        EXPECT_EQ(gateway.line(), "ready");
    }
    std::uint32_t channel = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_channel)("wifi0", &channel), kDone);
    EXPECT_EQ(channel, 44u);
    gateway.signal(SIGTERM);
    EXPECT_NE(gateway.rest().find(") tarn_qcsapi_wifi_get_channel intf_name=\"wifi0\": 0 (DONE)\n"), std::string::npos);
    EXPECT_EQ(gateway.wait(), 0);

    std::ofstream(directory_ + "/wrong") << "radar 52\n";
    Program wrong({"--script", directory_ + "/wrong"});
    EXPECT_EQ(wrong.line(), "tarn-gateway: " + directory_ +
                                "/wrong:1: \"radar 52\"; expected a time in seconds and an order, such as 60 radar 52");
    EXPECT_EQ(wrong.wait(), 1);
}

TEST_F(ProcessTest, SecondOneSaysThatTheNameIsTaken)
{
    Program first({});
    ASSERT_EQ(first.line(), "ready");
    Program second({});
    EXPECT_EQ(second.line(), "tarn-gateway: the identifier TARN is taken: another gateway runs in " + directory_);
    EXPECT_EQ(second.wait(), 1);
}

TEST_F(ProcessTest, WrongUsageIsToldSo)
{
    Program unknown({"--sead", "1"});
    EXPECT_EQ(unknown.rest(), "tarn-gateway: The following arguments were not expected: 1 --sead; "
                              "tarn-gateway --help shows what is expected\n");
    EXPECT_EQ(unknown.wait(), 2);
    Program negative({"--ready-fd", "-1"});
    EXPECT_EQ(negative.rest(), "tarn-gateway: --ready-fd: expected 0 to 2147483647; got \"-1\"; "
                               "tarn-gateway --help shows what is expected\n");
    EXPECT_EQ(negative.wait(), 2);
    Program missing({"--scenario", directory_ + "/none.json"});
    EXPECT_EQ(missing.line(), "tarn-gateway: " + directory_ +
                                  "/none.json: cannot be read: No such file or directory; expected a scenario file");
    EXPECT_EQ(missing.wait(), 1);
    Program help({"--help"});
    EXPECT_NE(help.rest().find("--scenario FILE"), std::string::npos);
    EXPECT_EQ(help.wait(), 0);
    Program version({"--version"});
    EXPECT_EQ(version.line().find("tarn-gateway "), 0u);
    EXPECT_EQ(version.wait(), 0);
}

} // namespace

} // namespace simulator_test
