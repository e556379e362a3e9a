#include "support.h"

namespace simulator_test
{

using RadioTest = SimulatorTest;

TEST_F(RadioTest, LogLevelIsReadBack)
{
    std::uint32_t level = 99;
    EXPECT_EQ(kDone, CALL(TarnGetLogLevel)(&level));
    EXPECT_EQ(3U, level);
    EXPECT_EQ(kDone, CALL(TarnSetLogLevel)(7));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetLogLevel)(8));
    EXPECT_EQ(kDone, CALL(TarnGetLogLevel)(&level));
    EXPECT_EQ(7U, level);
}

TEST_F(RadioTest, ErrorMaskRemembersFailuresUntilItIsRead)
{
    std::uint32_t mask = 99;
    std::uint32_t number = 0;
    EXPECT_EQ(kDone, CALL(TarnGetLastErrorMask)(&mask));
    EXPECT_EQ(0U, mask);
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioChainNumber)(9, &number));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetLogLevel)(100));
    EXPECT_EQ(kDone, CALL(TarnGetLastErrorMask)(&mask));
    EXPECT_EQ(3U, mask); // bit 0: no such object, bit 1: invalid value
    EXPECT_EQ(kDone, CALL(TarnGetLastErrorMask)(&mask));
    EXPECT_EQ(0U, mask);
}

TEST_F(RadioTest, StoppedPollingFreezesTheStatisticsOfTheDeviceServiceAlone)
{
    const auto radioPackets = []
    {
        TarnRadioStats stats;
        EXPECT_EQ(kDone, CALL(TarnGetRadioStats)(1, &stats));
        return recordOf("TarnRadioStats", stats).number("txPackets");
    };
    const auto stationPackets = []
    {
        TarnAccessPointAssociatedStats stats;
        EXPECT_EQ(kDone, CALL(TarnGetAccessPointAssociatedStats)(1, 1, kFirstStation.data(), &stats));
        return recordOf("TarnAccessPointAssociatedStats", stats).number("txPackets");
    };
    passSeconds(10);
    const std::uint32_t radioBefore = radioPackets();
    const std::uint32_t stationBefore = stationPackets();
    EXPECT_EQ(10 * (80U + 20 + 20 + 20), radioBefore);
    EXPECT_EQ(800U, stationBefore);

    EXPECT_EQ(kDone, CALL(TarnSetStopPollingEnable)(1, 1)); // radios only
    passSeconds(10);
    EXPECT_EQ(radioBefore, radioPackets());
    EXPECT_EQ(2 * stationBefore, stationPackets());
    EXPECT_EQ(Json({1}), state("/service/stoppedPolling"));

    EXPECT_EQ(kDone, CALL(TarnSetStopPollingEnable)(0, 1)); // everything
    passSeconds(10);
    EXPECT_EQ(2 * stationBefore, stationPackets());
    EXPECT_EQ(kDone, CALL(TarnSetStopPollingEnable)(0, 0));
    EXPECT_EQ(3 * radioBefore, radioPackets());
    EXPECT_EQ(3 * stationBefore, stationPackets());

    EXPECT_EQ(kInvalidValue, CALL(TarnSetStopPollingEnable)(4, 1));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetStopPollingEnable)(1, 2));
}

TEST_F(RadioTest, TwoRadiosAreCountedListedAndRead)
{
    std::uint32_t number = 0;
    std::uint32_t isSupported = 0;
    EXPECT_EQ(kDone, CALL(TarnGetRadioIsSupportedWFAAlliance)(&isSupported));
    EXPECT_EQ(1U, isSupported);
    ASSERT_EQ(kDone, CALL(TarnGetRadioNum)(&number));
    ASSERT_EQ(2U, number);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnRadioData listed;
        TarnRadioData single;
        ASSERT_EQ(kDone, CALL(TarnGetRadioAt)(index, &listed));
        ASSERT_EQ(kDone, CALL(TarnGetRadio)(index + 1, &single));
        EXPECT_EQ(0, std::memcmp(&listed, &single, sizeof listed));
        EXPECT_EQ(index + 1, recordOf("TarnRadioData", listed).number("radioId"));
    }
    TarnRadioData data;
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioAt)(number, &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadio)(number + 1, &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadio)(0, &data));
}

TEST_F(RadioTest, DescriptionTellsWhatTheSingleQueriesTell)
{
    TarnRadioData raw;
    ASSERT_EQ(kDone, CALL(TarnGetRadio)(1, &raw));
    const Record data = recordOf("TarnRadioData", raw);
    EXPECT_EQ("5GHz", data.text("band"));
    EXPECT_EQ("radio0", data.text("name"));
    EXPECT_EQ(36U, data.number("channel"));
    EXPECT_EQ(80U, data.number("bandwidth"));
    EXPECT_EQ(40U, data.number("secondaryChannel"));
    EXPECT_EQ("eu", data.text("country"));
    EXPECT_EQ(1U, data.number("onModule"));
    EXPECT_EQ(2U, data.number("ssidNumber"));

    std::uint32_t word = 0;
    std::uint8_t power = 0;
    char version[65];
    ASSERT_EQ(kDone, CALL(TarnGetRadioIsReady)(1, &word));
    EXPECT_EQ(1U, word);
    EXPECT_EQ(word, data.number("ready"));
    ASSERT_EQ(kDone, CALL(TarnGetRadioDriverVersion)(1, version));
    EXPECT_STREQ("5.3.1-sim", version);
    EXPECT_EQ(version, data.text("driverVersion"));
    ASSERT_EQ(kDone, CALL(TarnGetRadioIsSupportedWdsInterface)(1, &word));
    EXPECT_EQ(1U, word);
    ASSERT_EQ(kDone, CALL(TarnGetRadioCurrentTransmitPowerLevel)(1, &power));
    EXPECT_EQ(100, power);
    EXPECT_EQ(power, data.number("transmitPower"));
    ASSERT_EQ(kDone, CALL(TarnGetRadioChainNumber)(1, &word));
    EXPECT_EQ(4U, word);
    EXPECT_EQ(word, data.number("chains"));
    ASSERT_EQ(kDone, CALL(TarnGetRadioChipTemperature)(1, &word));
    EXPECT_EQ(58U, word);
    EXPECT_EQ(word, data.number("temperature"));
    ASSERT_EQ(kDone, CALL(TarnGetRadioPrimarySSIDIntfId)(1, &word));
    EXPECT_EQ(1U, word);
    ASSERT_EQ(kDone, CALL(TarnGetRadioIsSupportedOPXRoaming)(1, &word));
    EXPECT_EQ(1U, word);
    ASSERT_EQ(kDone, CALL(TarnGetRadioIsSupportedOPXRoaming)(2, &word));
    EXPECT_EQ(0U, word);
}

TEST_F(RadioTest, ChainRssiIsKnownForEachChain)
{
    std::uint32_t rssi = 0;
    EXPECT_EQ(kDone, CALL(TarnGetRadioChainRssiAt)(1, 0, &rssi));
    EXPECT_EQ(-48, static_cast<std::int32_t>(rssi)); // the strongest station's
    EXPECT_EQ(kDone, CALL(TarnGetRadioChainRssiAt)(1, 3, &rssi));
    EXPECT_EQ(-51, static_cast<std::int32_t>(rssi));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioChainRssiAt)(1, 4, &rssi));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioChainRssiAt)(2, 2, &rssi));
}

// --- Configuration -----------------------------------------------------------------------------------------------------------

TarnRadioCfg radioCfg(std::uint32_t channel, std::uint32_t bandwidth)
{
    Record cfg = blank("TarnRadioCfg");
    cfg.setNumber("enabled", 1);
    cfg.setNumber("channel", channel);
    cfg.setNumber("bandwidth", bandwidth);
    cfg.setNumber("transmitPower", 50);
    cfg.setText("country", "us");
    cfg.setText("phyMode", "11ax");
    return rawOf<TarnRadioCfg>(cfg);
}

Record radio(std::uint32_t id)
{
    TarnRadioData data;
    EXPECT_EQ(kDone, CALL(TarnGetRadio)(id, &data));
    return recordOf("TarnRadioData", data);
}

TEST_F(RadioTest, ConfigurationIsTakenAsAWhole)
{
    EXPECT_EQ(kDone, CALL(TarnSetRadioCfg)(1, 0, radioCfg(149, 40)));
    const Record data = radio(1);
    EXPECT_EQ(149U, data.number("channel"));
    EXPECT_EQ(40U, data.number("bandwidth"));
    EXPECT_EQ(50U, data.number("transmitPower"));
    EXPECT_EQ("us", data.text("country"));
    EXPECT_EQ("11ax", data.text("phyMode"));
    EXPECT_EQ(0U, data.number("shortGuardInterval"));
}

TEST_F(RadioTest, ConfigurationIsTakenInPart)
{
    constexpr std::uint32_t kChannel = 1U << 1; // the second field
    EXPECT_EQ(kDone, CALL(TarnSetRadioCfg)(1, kChannel, radioCfg(44, 160)));
    EXPECT_EQ(44U, radio(1).number("channel"));
    EXPECT_EQ(80U, radio(1).number("bandwidth"));
    EXPECT_EQ("eu", radio(1).text("country"));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetRadioCfg)(1, 1U << 8, radioCfg(44, 160))); // it has eight fields
}

TEST_F(RadioTest, ConfigurationThatDoesNotFitChangesNothing)
{
    EXPECT_EQ(kInvalidValue, CALL(TarnSetRadioCfg)(1, 0, radioCfg(37, 80)));  // no channel of the band
    EXPECT_EQ(kInvalidValue, CALL(TarnSetRadioCfg)(1, 0, radioCfg(165, 80))); // nothing beside it to make 80 MHz of
    EXPECT_EQ(kInvalidValue, CALL(TarnSetRadioCfg)(1, 0, radioCfg(36, 81)));
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetRadioCfg)(3, 0, radioCfg(36, 80)));
    EXPECT_EQ(36U, radio(1).number("channel"));
    EXPECT_EQ("eu", radio(1).text("country"));
    EXPECT_EQ(100U, radio(1).number("transmitPower"));
}

TEST_F(RadioTest, AutomaticChannelIsTheQuietestOne)
{
    Record cfg = blank("TarnRadioCfg");
    cfg.setNumber("autoChannel", 1);
    EXPECT_EQ(kDone, CALL(TarnSetRadioCfg)(2, 1U << 2, rawOf<TarnRadioCfg>(cfg)));
    EXPECT_EQ(2U, radio(2).number("channel")); // there are neighbours on 1, 6 and 11
    EXPECT_EQ(1U, radio(2).number("autoChannel"));

    cfg.setNumber("channel", 11);
    EXPECT_EQ(kDone, CALL(TarnSetRadioCfg)(2, 1U << 1, rawOf<TarnRadioCfg>(cfg)));
    EXPECT_EQ(11U, radio(2).number("channel"));
    EXPECT_EQ(0U, radio(2).number("autoChannel"));
}

TEST_F(RadioTest, ExtendedConfigurationIsReadBack)
{
    Record cfg = blank("TarnRadioExCfg");
    cfg.setNumber("multiUser", 0);
    cfg.setNumber("disable11b", 1);
    cfg.setNumber("scs", 1);
    EXPECT_EQ(kDone, CALL(TarnSetRadioExCfg)(1, 0, rawOf<TarnRadioExCfg>(cfg)));
    EXPECT_EQ(0U, radio(1).number("multiUser"));
    EXPECT_EQ(1U, radio(1).number("disable11b"));
    std::uint32_t scs = 0;
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_get_scs_status)("wifi0", &scs));
    EXPECT_EQ(1U, scs);
    cfg.setNumber("ldpc", 2);
    EXPECT_EQ(kInvalidValue, CALL(TarnSetRadioExCfg)(1, 0, rawOf<TarnRadioExCfg>(cfg)));
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetRadioExCfg)(0, 0, rawOf<TarnRadioExCfg>(cfg)));
}

TEST_F(RadioTest, PossibleChannelsFollowTheQuery)
{
    const auto possible = [](std::uint32_t radioId, std::uint32_t bandwidth, const char* country, bool withoutRadar)
    {
        Record query = blank("TarnChannelQuery");
        query.setNumber("bandwidth", bandwidth);
        query.setText("country", country);
        query.setNumber("withoutRadarChannels", withoutRadar ? 1 : 0);
        std::uint8_t channels[256];
        EXPECT_EQ(kDone, CALL(TarnGetRadioPossibleChannels)(radioId, rawOf<TarnChannelQuery>(query), channels));
        return std::string(reinterpret_cast<const char*>(channels));
    };
    EXPECT_EQ(std::string("\x24\x28\x2c\x30", 4), possible(1, 20, "eu", true));
    EXPECT_EQ(std::string("\x24\x28\x2c\x30\x95\x99\x9d\xa1\xa5", 9), possible(1, 20, "us", true));
    EXPECT_EQ(std::string("\x24\x28\x2c\x30\x95\x99\x9d\xa1", 8), possible(1, 80, "us", true));
    EXPECT_EQ(std::string("\x24\x28\x2c\x30\x34\x38\x3c\x40", 8), possible(1, 160, "", false)); // weather channels are off
    EXPECT_EQ(11U, possible(2, 0, "us", false).size());
    EXPECT_EQ(13U, possible(2, 0, "", false).size());

    std::uint8_t channels[256];
    Record query = blank("TarnChannelQuery");
    query.setText("country", "xx");
    EXPECT_EQ(kInvalidValue, CALL(TarnGetRadioPossibleChannels)(1, rawOf<TarnChannelQuery>(query), channels));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioPossibleChannels)(7, rawOf<TarnChannelQuery>(query), channels));
}

// --- The neighbourhood -------------------------------------------------------------------------------------------------------

std::uint32_t scanStatus(std::uint32_t radioId)
{
    std::uint32_t status = 99;
    EXPECT_EQ(kDone, CALL(TarnGetRadioNeighboringStatus)(radioId, &status));
    return status;
}

std::uint32_t resultNumber(std::uint32_t radioId)
{
    std::uint32_t number = 99;
    EXPECT_EQ(kDone, CALL(TarnGetRadioNeighboringResultNum)(radioId, &number));
    return number;
}

TEST_F(RadioTest, ScanTakesItsTime)
{
    EXPECT_EQ(0U, scanStatus(1));
    EXPECT_EQ(0U, resultNumber(1));
    EXPECT_EQ(kDone, CALL(TarnScanRadioNeighborhood)(1));
    EXPECT_EQ(kBusy, CALL(TarnScanRadioNeighborhood)(1));
    passSeconds(3.9);
    EXPECT_EQ(1U, scanStatus(1));
    EXPECT_EQ(0U, resultNumber(1));
    passSeconds(0.1);
    EXPECT_EQ(2U, scanStatus(1));
    ASSERT_EQ(4U, resultNumber(1));
    EXPECT_EQ(0U, scanStatus(2));

    TarnNeighborBss bss;
    ASSERT_EQ(kDone, CALL(TarnGetRadioNeighboringResultAt)(1, 0, &bss));
    const Record first = recordOf("TarnNeighborBss", bss);
    EXPECT_EQ("upstairs", first.text("ssid"));
    EXPECT_EQ(44U, first.number("channel"));
    EXPECT_EQ(-72, first.signedNumber("rssi"));
    EXPECT_EQ("wpa2", first.text("security"));
    EXPECT_EQ((MacAddress{0x02, 0, 0, 0, 2, 1}), first.address("bssid"));
    EXPECT_EQ(kDone, CALL(TarnGetRadioNeighboringResultAt)(1, 3, &bss));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetRadioNeighboringResultAt)(1, 4, &bss));
}

TEST_F(RadioTest, CancelledScanBringsNothing)
{
    EXPECT_EQ(kNotThere, CALL(TarnCancelRadioNeighborhoodScanning)(1));
    EXPECT_EQ(kDone, CALL(TarnScanRadioNeighborhood)(1));
    EXPECT_EQ(kDone, CALL(TarnCancelRadioNeighborhoodScanning)(1));
    EXPECT_EQ(3U, scanStatus(1));
    passSeconds(10);
    EXPECT_EQ(3U, scanStatus(1));
    EXPECT_EQ(0U, resultNumber(1));
    EXPECT_EQ(kNoSuchObject, CALL(TarnScanRadioNeighborhood)(3));
    EXPECT_EQ(kNoSuchObject, CALL(TarnCancelRadioNeighborhoodScanning)(3));
}

TEST_F(RadioTest, RadioThatIsOffDoesNotScan)
{
    EXPECT_EQ(kDone, CALL(TarnScanRadioNeighborhood)(1));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_radio_rfenable)("wifi0", 0));
    EXPECT_EQ(3U, scanStatus(1));
    EXPECT_EQ(kSwitchedOff, CALL(TarnScanRadioNeighborhood)(1));
}

} // namespace simulator_test
