#include "support.h"

namespace simulator_test
{

using RadioTest = SimulatorTest;

TEST_F(RadioTest, LogLevelIsReadBack)
{
    std::uint32_t level = 99;
    EXPECT_EQ(CALL(TarnGetLogLevel)(&level), kDone);
    EXPECT_EQ(level, 3u);
    EXPECT_EQ(CALL(TarnSetLogLevel)(7), kDone);
    EXPECT_EQ(CALL(TarnSetLogLevel)(8), kInvalidValue);
    EXPECT_EQ(CALL(TarnGetLogLevel)(&level), kDone);
    EXPECT_EQ(level, 7u);
}

TEST_F(RadioTest, ErrorMaskRemembersFailuresUntilItIsRead)
{
    std::uint32_t mask = 99;
    std::uint32_t number = 0;
    EXPECT_EQ(CALL(TarnGetLastErrorMask)(&mask), kDone);
    EXPECT_EQ(mask, 0u);
    EXPECT_EQ(CALL(TarnGetRadioChainNumber)(9, &number), kNoSuchObject);
    EXPECT_EQ(CALL(TarnSetLogLevel)(100), kInvalidValue);
    EXPECT_EQ(CALL(TarnGetLastErrorMask)(&mask), kDone);
    EXPECT_EQ(mask, 3u); // bit 0: no such object, bit 1: invalid value
    EXPECT_EQ(CALL(TarnGetLastErrorMask)(&mask), kDone);
    EXPECT_EQ(mask, 0u);
}

TEST_F(RadioTest, StoppedPollingFreezesTheStatisticsOfTheDeviceServiceAlone)
{
    const auto radioPackets = []
    {
        TarnRadioStats stats;
        EXPECT_EQ(CALL(TarnGetRadioStats)(1, &stats), kDone);
        return recordOf("TarnRadioStats", stats).number("txPackets");
    };
    const auto stationPackets = []
    {
        TarnAccessPointAssociatedStats stats;
        EXPECT_EQ(CALL(TarnGetAccessPointAssociatedStats)(1, 1, kFirstStation.data(), &stats), kDone);
        return recordOf("TarnAccessPointAssociatedStats", stats).number("txPackets");
    };
    passSeconds(10);
    const std::uint32_t radioBefore = radioPackets();
    const std::uint32_t stationBefore = stationPackets();
    EXPECT_EQ(radioBefore, 10 * (80u + 20 + 20 + 20));
    EXPECT_EQ(stationBefore, 800u);

    EXPECT_EQ(CALL(TarnSetStopPollingEnable)(1, 1), kDone); // radios only
    passSeconds(10);
    EXPECT_EQ(radioPackets(), radioBefore);
    EXPECT_EQ(stationPackets(), 2 * stationBefore);
    EXPECT_EQ(state("/service/stoppedPolling"), Json({"radios"}));

    EXPECT_EQ(CALL(TarnSetStopPollingEnable)(0, 1), kDone); // everything
    passSeconds(10);
    EXPECT_EQ(stationPackets(), 2 * stationBefore);
    EXPECT_EQ(CALL(TarnSetStopPollingEnable)(0, 0), kDone);
    EXPECT_EQ(radioPackets(), 3 * radioBefore);
    EXPECT_EQ(stationPackets(), 3 * stationBefore);

    EXPECT_EQ(CALL(TarnSetStopPollingEnable)(4, 1), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetStopPollingEnable)(1, 2), kInvalidValue);
}

TEST_F(RadioTest, TwoRadiosAreCountedListedAndRead)
{
    std::uint32_t number = 0;
    std::uint32_t isSupported = 0;
    EXPECT_EQ(CALL(TarnGetRadioIsSupportedWFAAlliance)(&isSupported), kDone);
    EXPECT_EQ(isSupported, 1u);
    ASSERT_EQ(CALL(TarnGetRadioNum)(&number), kDone);
    ASSERT_EQ(number, 2u);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnRadioData listed;
        TarnRadioData single;
        ASSERT_EQ(CALL(TarnGetRadioAt)(index, &listed), kDone);
        ASSERT_EQ(CALL(TarnGetRadio)(index + 1, &single), kDone);
        EXPECT_EQ(std::memcmp(&listed, &single, sizeof listed), 0);
        EXPECT_EQ(recordOf("TarnRadioData", listed).number("radioId"), index + 1);
    }
    TarnRadioData data;
    EXPECT_EQ(CALL(TarnGetRadioAt)(number, &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetRadio)(number + 1, &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetRadio)(0, &data), kNoSuchObject);
}

TEST_F(RadioTest, DescriptionTellsWhatTheSingleQueriesTell)
{
    TarnRadioData raw;
    ASSERT_EQ(CALL(TarnGetRadio)(1, &raw), kDone);
    const Record data = recordOf("TarnRadioData", raw);
    EXPECT_EQ(data.text("band"), "5GHz");
    EXPECT_EQ(data.text("name"), "radio0");
    EXPECT_EQ(data.number("channel"), 36u);
    EXPECT_EQ(data.number("bandwidth"), 80u);
    EXPECT_EQ(data.number("secondaryChannel"), 40u);
    EXPECT_EQ(data.text("country"), "eu");
    EXPECT_EQ(data.number("onModule"), 1u);
    EXPECT_EQ(data.number("ssidNumber"), 2u);

    std::uint32_t word = 0;
    std::uint8_t power = 0;
    char version[65];
    ASSERT_EQ(CALL(TarnGetRadioIsReady)(1, &word), kDone);
    EXPECT_EQ(word, 1u);
    EXPECT_EQ(word, data.number("ready"));
    ASSERT_EQ(CALL(TarnGetRadioDriverVersion)(1, version), kDone);
    EXPECT_STREQ(version, "5.3.1-sim");
    EXPECT_EQ(version, data.text("driverVersion"));
    ASSERT_EQ(CALL(TarnGetRadioIsSupportedWdsInterface)(1, &word), kDone);
    EXPECT_EQ(word, 1u);
    ASSERT_EQ(CALL(TarnGetRadioCurrentTransmitPowerLevel)(1, &power), kDone);
    EXPECT_EQ(power, 100);
    EXPECT_EQ(power, data.number("transmitPower"));
    ASSERT_EQ(CALL(TarnGetRadioChainNumber)(1, &word), kDone);
    EXPECT_EQ(word, 4u);
    EXPECT_EQ(word, data.number("chains"));
    ASSERT_EQ(CALL(TarnGetRadioChipTemperature)(1, &word), kDone);
    EXPECT_EQ(word, 58u);
    EXPECT_EQ(word, data.number("temperature"));
    ASSERT_EQ(CALL(TarnGetRadioPrimarySSIDIntfId)(1, &word), kDone);
    EXPECT_EQ(word, 1u);
    ASSERT_EQ(CALL(TarnGetRadioIsSupportedOPXRoaming)(1, &word), kDone);
    EXPECT_EQ(word, 1u);
    ASSERT_EQ(CALL(TarnGetRadioIsSupportedOPXRoaming)(2, &word), kDone);
    EXPECT_EQ(word, 0u);
}

TEST_F(RadioTest, ChainRssiIsKnownForEachChain)
{
    std::uint32_t rssi = 0;
    EXPECT_EQ(CALL(TarnGetRadioChainRssiAt)(1, 0, &rssi), kDone);
    EXPECT_EQ(static_cast<std::int32_t>(rssi), -48); // the strongest station's
    EXPECT_EQ(CALL(TarnGetRadioChainRssiAt)(1, 3, &rssi), kDone);
    EXPECT_EQ(static_cast<std::int32_t>(rssi), -51);
    EXPECT_EQ(CALL(TarnGetRadioChainRssiAt)(1, 4, &rssi), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetRadioChainRssiAt)(2, 2, &rssi), kNoSuchObject);
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
    EXPECT_EQ(CALL(TarnGetRadio)(id, &data), kDone);
    return recordOf("TarnRadioData", data);
}

TEST_F(RadioTest, ConfigurationIsTakenAsAWhole)
{
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 0, radioCfg(149, 40)), kDone);
    const Record data = radio(1);
    EXPECT_EQ(data.number("channel"), 149u);
    EXPECT_EQ(data.number("bandwidth"), 40u);
    EXPECT_EQ(data.number("transmitPower"), 50u);
    EXPECT_EQ(data.text("country"), "us");
    EXPECT_EQ(data.text("phyMode"), "11ax");
    EXPECT_EQ(data.number("shortGuardInterval"), 0u);
}

TEST_F(RadioTest, ConfigurationIsTakenInPart)
{
    constexpr std::uint32_t kChannel = 1u << 1; // the second field
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, kChannel, radioCfg(44, 160)), kDone);
    EXPECT_EQ(radio(1).number("channel"), 44u);
    EXPECT_EQ(radio(1).number("bandwidth"), 80u);
    EXPECT_EQ(radio(1).text("country"), "eu");
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 1u << 8, radioCfg(44, 160)), kInvalidValue); // it has eight fields
}

TEST_F(RadioTest, ConfigurationThatDoesNotFitChangesNothing)
{
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 0, radioCfg(37, 80)), kInvalidValue);  // no channel of the band
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 0, radioCfg(165, 80)), kInvalidValue); // nothing beside it to make 80 MHz of
    EXPECT_EQ(CALL(TarnSetRadioCfg)(1, 0, radioCfg(36, 81)), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetRadioCfg)(3, 0, radioCfg(36, 80)), kNoSuchObject);
    EXPECT_EQ(radio(1).number("channel"), 36u);
    EXPECT_EQ(radio(1).text("country"), "eu");
    EXPECT_EQ(radio(1).number("transmitPower"), 100u);
}

TEST_F(RadioTest, AutomaticChannelIsTheQuietestOne)
{
    Record cfg = blank("TarnRadioCfg");
    cfg.setNumber("autoChannel", 1);
    EXPECT_EQ(CALL(TarnSetRadioCfg)(2, 1u << 2, rawOf<TarnRadioCfg>(cfg)), kDone);
    EXPECT_EQ(radio(2).number("channel"), 1u); // hears one of the neighbours on 1, 6 and 11; those in between hear two
    EXPECT_EQ(radio(2).number("autoChannel"), 1u);

    cfg.setNumber("channel", 11);
    EXPECT_EQ(CALL(TarnSetRadioCfg)(2, 1u << 1, rawOf<TarnRadioCfg>(cfg)), kDone);
    EXPECT_EQ(radio(2).number("channel"), 11u);
    EXPECT_EQ(radio(2).number("autoChannel"), 0u);
}

TEST_F(RadioTest, ExtendedConfigurationIsReadBack)
{
    Record cfg = blank("TarnRadioExCfg");
    cfg.setNumber("multiUser", 0);
    cfg.setNumber("disable11b", 1);
    cfg.setNumber("scs", 1);
    EXPECT_EQ(CALL(TarnSetRadioExCfg)(1, 0, rawOf<TarnRadioExCfg>(cfg)), kDone);
    EXPECT_EQ(radio(1).number("multiUser"), 0u);
    EXPECT_EQ(radio(1).number("disable11b"), 1u);
    std::uint32_t scs = 0;
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_get_scs_status)("wifi0", &scs), kDone);
    EXPECT_EQ(scs, 1u);
    cfg.setNumber("ldpc", 2);
    EXPECT_EQ(CALL(TarnSetRadioExCfg)(1, 0, rawOf<TarnRadioExCfg>(cfg)), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetRadioExCfg)(0, 0, rawOf<TarnRadioExCfg>(cfg)), kNoSuchObject);
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
        EXPECT_EQ(CALL(TarnGetRadioPossibleChannels)(radioId, rawOf<TarnChannelQuery>(query), channels), kDone);
        return std::string(reinterpret_cast<const char*>(channels));
    };
    EXPECT_EQ(possible(1, 20, "eu", true), std::string("\x24\x28\x2c\x30", 4));
    EXPECT_EQ(possible(1, 20, "us", true), std::string("\x24\x28\x2c\x30\x95\x99\x9d\xa1\xa5", 9));
    EXPECT_EQ(possible(1, 80, "us", true), std::string("\x24\x28\x2c\x30\x95\x99\x9d\xa1", 8));
    EXPECT_EQ(possible(1, 160, "", false), std::string("\x24\x28\x2c\x30\x34\x38\x3c\x40", 8)); // weather channels are off
    EXPECT_EQ(possible(2, 0, "us", false).size(), 11u);
    EXPECT_EQ(possible(2, 0, "", false).size(), 13u);

    std::uint8_t channels[256];
    Record query = blank("TarnChannelQuery");
    query.setText("country", "xx");
    EXPECT_EQ(CALL(TarnGetRadioPossibleChannels)(1, rawOf<TarnChannelQuery>(query), channels), kInvalidValue);
    EXPECT_EQ(CALL(TarnGetRadioPossibleChannels)(7, rawOf<TarnChannelQuery>(query), channels), kNoSuchObject);
}

// --- The neighbourhood -------------------------------------------------------------------------------------------------------

std::uint32_t scanStatus(std::uint32_t radioId)
{
    std::uint32_t status = 99;
    EXPECT_EQ(CALL(TarnGetRadioNeighboringStatus)(radioId, &status), kDone);
    return status;
}

std::uint32_t resultNumber(std::uint32_t radioId)
{
    std::uint32_t number = 99;
    EXPECT_EQ(CALL(TarnGetRadioNeighboringResultNum)(radioId, &number), kDone);
    return number;
}

TEST_F(RadioTest, ScanTakesItsTime)
{
    EXPECT_EQ(scanStatus(1), 0u);
    EXPECT_EQ(resultNumber(1), 0u);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kBusy);
    passSeconds(3.9);
    EXPECT_EQ(scanStatus(1), 1u);
    EXPECT_EQ(resultNumber(1), 0u);
    passSeconds(0.1);
    EXPECT_EQ(scanStatus(1), 2u);
    ASSERT_EQ(resultNumber(1), 4u);
    EXPECT_EQ(scanStatus(2), 0u);

    TarnNeighborBss bss;
    ASSERT_EQ(CALL(TarnGetRadioNeighboringResultAt)(1, 0, &bss), kDone);
    const Record first = recordOf("TarnNeighborBss", bss);
    EXPECT_EQ(first.text("ssid"), "upstairs");
    EXPECT_EQ(first.number("channel"), 44u);
    EXPECT_EQ(first.signedNumber("rssi"), -72);
    EXPECT_EQ(first.text("security"), "wpa2");
    EXPECT_EQ(first.address("bssid"), (MacAddress{0x02, 0, 0, 0, 2, 1}));
    EXPECT_EQ(CALL(TarnGetRadioNeighboringResultAt)(1, 3, &bss), kDone);
    EXPECT_EQ(CALL(TarnGetRadioNeighboringResultAt)(1, 4, &bss), kNoSuchObject);
}

TEST_F(RadioTest, CancelledScanBringsNothing)
{
    EXPECT_EQ(CALL(TarnCancelRadioNeighborhoodScanning)(1), kNotThere);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(TarnCancelRadioNeighborhoodScanning)(1), kDone);
    EXPECT_EQ(scanStatus(1), 3u);
    passSeconds(10);
    EXPECT_EQ(scanStatus(1), 3u);
    EXPECT_EQ(resultNumber(1), 0u);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(3), kNoSuchObject);
    EXPECT_EQ(CALL(TarnCancelRadioNeighborhoodScanning)(3), kNoSuchObject);
}

TEST_F(RadioTest, RadioThatIsOffDoesNotScan)
{
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_radio_rfenable)("wifi0", 0), kDone);
    EXPECT_EQ(scanStatus(1), 3u);
    EXPECT_EQ(CALL(TarnScanRadioNeighborhood)(1), kSwitchedOff);
}

} // namespace simulator_test
