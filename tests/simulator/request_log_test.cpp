// The log of requests says who called what, with which arguments, and what came of it.
#include "support.h"

#include "kor_iil.h"
#include "kor_iil_service.h"
#include "simulator/gateway.h"

#include <unistd.h>

namespace simulator_test
{

class RequestLogTest : public SimulatorTest
{
protected:
    void SetUp() override
    {
        SimulatorTest::SetUp();
        gateway().setLogWriter([this](const std::string& line) { lines_.push_back(line); });
        gateway().setLogging(true);
    }

    // What was logged last, less its time, which stands, and the caller.
    std::string lastLine()
    {
        return gateway().withModel(
            [&](tarn::simulator::Model&)
            {
                const std::string start = "0.000 test (" + std::to_string(getpid()) + ") ";
                if (lines_.empty())
                    return std::string("nothing");
                EXPECT_EQ(lines_.back().substr(0, start.size()), start);
                return lines_.back().substr(std::min(start.size(), lines_.back().size()));
            });
    }

    std::vector<std::string> lines_;
};

TEST_F(RequestLogTest, HasArgumentsByName)
{
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(TarnGetAccessPointAssociatedNum)(1, 2, &number), kDone);
    EXPECT_EQ(lastLine(), "TarnGetAccessPointAssociatedNum radioId=1 apId=2: 0 (DONE)");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_SSID)("wifi0", "my home"), kDone);
    EXPECT_EQ(lastLine(), "tarn_qcsapi_wifi_set_SSID intf_name=\"wifi0\" ssid=\"my home\": 0 (DONE)");
}

TEST_F(RequestLogTest, HasTheFieldsOfRecords)
{
    Record cfg = blank("TarnRadioCfg");
    cfg.setNumber("channel", 44);
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 2, rawOf<TarnRadioCfg>(cfg)), kDone);
    EXPECT_EQ(lastLine(), "TarnSetRadioCfg radioId=1 param=channel (2) cfg.channel=44: 0 (DONE)");
}

TEST_F(RequestLogTest, SaysWhyARequestWasRefused)
{
    std::uint32_t rssi = 0;
    EXPECT_EQ(CALL(TarnGetRadioChainRssiAt)(1, 9, &rssi), kNoSuchObject);
    EXPECT_EQ(lastLine(), "TarnGetRadioChainRssiAt radioId=1 chainIndex=9: 16 (NO_SUCH_OBJECT), "
                          "chain 9; radio radio0 has 4, from 0");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_channel)("wifi0", 37), kModuleInvalidValue);
    EXPECT_EQ(lastLine(), "tarn_qcsapi_wifi_set_channel ifname=\"wifi0\" channel=37: -202 (INVALID_VALUE), "
                          "channel 37; radio radio0 has 36 40 44 48 52 56 60 64 100 104 108 112 at 80 MHz");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_rts_threshold)("wifi0", 2348), kModuleInvalidValue);
    EXPECT_EQ(lastLine(), "tarn_qcsapi_wifi_set_rts_threshold ifname=\"wifi0\" value=2348: -202 (INVALID_VALUE), "
                          "rtsThreshold: 2348; expected an integer from 0 to 2347");
}

TEST_F(RequestLogTest, HasRequestsThatAreNone)
{
    std::uint8_t message[12] = {};
    EXPECT_EQ(KorIilExecute(kCaller, "TARN", 60, 200, sizeof message, message), KOR_IIL_UNKNOWN_CMD);
    EXPECT_EQ(lastLine(), "TARN command 200, 12 bytes: IPC status 13, there is no such command");
    EXPECT_EQ(KorIilExecute(kCaller, "TARN", 60, 2, sizeof message, message), KOR_IIL_MISMATCH_CMD_LEN);
    EXPECT_EQ(lastLine(), "TARN command 2, 12 bytes: IPC status 16, expected 8 bytes");
}

TEST_F(RequestLogTest, IsOffUnlessItIsSwitchedOn)
{
    gateway().setLogging(false);
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
    EXPECT_EQ(lastLine(), "nothing");
}

} // namespace simulator_test
