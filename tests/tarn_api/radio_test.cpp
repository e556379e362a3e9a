// Radios: their number, descriptions, configuration and measurements.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kRadioQuery = 9584;
constexpr std::uint32_t kRadioConfiguration = 4444;
constexpr std::uint32_t kRadioOut = 28;

using Radio = DeviceTest;

TEST_F(Radio, DescriptionFillsTheMessageBehindItsInputs)
{
    replyNonZero(expectCommand(7, kRadioQuery).word(0, 1).status(4), kRadioQuery);

    RecordOutput<TarnRadioData, 9552> data;
    EXPECT_EQ(TarnGetRadio("ledd", 2, data.record()), 4u);
    data.expectFrom(kRadioOut);
}

TEST_F(Radio, IdIsSentLessOneAndNotCheckedForItsRange)
{
    expectCommand(8, kRadioQuery).word(0, 0xFFFFFFFF);
    expectCommand(8, kRadioQuery).word(0, 1);
    expectCommand(8, kRadioQuery).word(0, 0xFFFFFFFE);

    std::uint32_t isReady = 0;
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 0, &isReady), 0u);
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 2, &isReady), 0u);
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 0xFFFFFFFF, &isReady), 0u);
}

// While every other query of a radio sends an id less one as the first word.
TEST_F(Radio, IndexIsSentAsItIsInTheSecondWord)
{
    replyNonZero(expectCommand(6, kRadioQuery).word(0, 0).word(4, 1), kRadioQuery);
    expectCommand(6, kRadioQuery);

    RecordOutput<TarnRadioData, 9552> data;
    EXPECT_EQ(TarnGetRadioAt("ledd", 1, data.record()), 0u);
    data.expectFrom(kRadioOut);
    EXPECT_EQ(TarnGetRadioAt("ledd", 0, data.record()), 0u);
}

TEST_F(Radio, MissingDescriptionByIndexIsReportedAsTheNumber)
{
    EXPECT_EQ(missing(TarnGetRadioAt), "number");
    EXPECT_EQ(missing(TarnGetRadio), "data");
}

TEST_F(Radio, QueriesWithoutARadioSendZeros)
{
    expectWordAt(kRadioOut, 4, kRadioQuery, TarnGetRadioIsSupportedWFAAlliance);
    expectWordAt(kRadioOut, 5, kRadioQuery, TarnGetRadioNum);
}

TEST_F(Radio, WordsStandBehindTheInputs)
{
    expectWordAt(kRadioOut, 8, kRadioQuery, TarnGetRadioIsReady);
    expectWordAt(kRadioOut, 13, kRadioQuery, TarnGetRadioIsSupportedWdsInterface);
    expectWordAt(kRadioOut, 16, kRadioQuery, TarnGetRadioChainNumber);
    expectWordAt(kRadioOut, 18, kRadioQuery, TarnGetRadioChipTemperature, 4);
    expectWordAt(kRadioOut, 19, kRadioQuery, TarnGetRadioPrimarySSIDIntfId);
}

// Its neighbours in this list of functions have a message a hundred times as long.
TEST_F(Radio, OperatorRoamingHasTheShortMessage)
{
    expectWordAt(4, 25, 76, TarnGetRadioIsSupportedOPXRoaming);
}

TEST_F(Radio, ChainIndexIsSentAsItIs)
{
    expectCommand(17, kRadioQuery, 4).word(0, 1).word(4, 0).replyWord(kRadioOut, 0xFFFFFFC4);
    expectCommand(17, kRadioQuery, 4).word(0, 0).word(4, 3);

    std::uint32_t rssi = kUntouched;
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 2, 0, &rssi), 0u);
    EXPECT_EQ(rssi, 0xFFFFFFC4u);
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 1, 3, &rssi), 0u);
}

TEST_F(Radio, ConfigurationFillsTheMessageBehindItsParameter)
{
    const auto cfg = nonZeroRecord<TarnRadioCfg>();
    expectCommand(9, kRadioConfiguration).word(0, 1).word(4, 0x12345678).bytes(8, cfg.bytes, 4432).status(5);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 2, 0x12345678, cfg), 5u);
}

TEST_F(Radio, ExtendedConfigurationIs60BytesOfTheSameMessage)
{
    const auto cfg = nonZeroRecord<TarnRadioExCfg>();
    expectCommand(10, kRadioConfiguration).word(0, 1).word(4, 0x12345678).bytes(8, cfg.bytes, 60).status(5);
    EXPECT_EQ(TarnSetRadioExCfg("ledd", 2, 0x12345678, cfg), 5u);
}

TEST_F(Radio, ParameterIsSentAsItIs)
{
    expectCommand(10, kRadioConfiguration).word(4, 0);
    EXPECT_EQ(TarnSetRadioExCfg("ledd", 1, 0, {}), 0u);
}

TEST_F(Radio, StatisticsAre96Bytes)
{
    replyNonZero(expectCommand(11, kRadioQuery, 4).word(0, 1), kRadioQuery);

    RecordOutput<TarnRadioStats, 96> stats;
    EXPECT_EQ(TarnGetRadioStats("ledd", 2, stats.record()), 0u);
    stats.expectFrom(kRadioOut);
}

// 65 bytes and no more, and those behind a NUL among them too.
TEST_F(Radio, DriverVersionIsCopiedBeyondItsNul)
{
    mock::Call call = expectCommand(12, kRadioQuery).word(0, 1);
    replyNonZero(call, kRadioQuery);
    call.replyText(kRadioOut, "4.2");

    Output<65> version;
    EXPECT_EQ(TarnGetRadioDriverVersion("ledd", 2, version.text()), 0u);

    std::vector<std::uint8_t> expected = nonZeroBytes(kRadioOut + 65);
    expected.erase(expected.begin(), expected.begin() + kRadioOut);
    std::copy_n("4.2", 4, expected.begin());
    version.expectBytes(expected);
}

TEST_F(Radio, PossibleChannelsTakeASelectorAndGiveAList)
{
    const auto query = nonZeroRecord<TarnChannelQuery>();
    replyNonZero(expectCommand(14, kRadioQuery).word(0, 1).word(4, 0).bytes(8, query.bytes, 20), kRadioQuery);

    Output<256> channels;
    EXPECT_EQ(TarnGetRadioPossibleChannels("ledd", 2, query, channels.data()), 0u);
    channels.expectFrom(kRadioOut);
}

// The first byte of the word as it is in memory: the most significant one on a big-endian host.
TEST_F(Radio, TransmitPowerLevelIsOneByte)
{
    const std::uint8_t reply[] = {0x12, 0x34, 0x56, 0x78};
    expectCommand(15, kRadioQuery).word(0, 1).replyBytes(kRadioOut, reply, 4);

    Output<1> power;
    EXPECT_EQ(TarnGetRadioCurrentTransmitPowerLevel("ledd", 2, power.data()), 0u);
    power.expectBytes({0x12});
}

TEST_F(Radio, EachMissingOutputIsNamed)
{
    EXPECT_EQ(missing(TarnGetRadioIsSupportedWFAAlliance), "isSupported");
    EXPECT_EQ(missing(TarnGetRadioNum), "number");
    EXPECT_EQ(missing(TarnGetRadioIsReady), "isReady");
    EXPECT_EQ(missing(TarnGetRadioStats), "stats");
    EXPECT_EQ(missing(TarnGetRadioDriverVersion), "version");
    EXPECT_EQ(missing(TarnGetRadioIsSupportedWdsInterface), "isSupported");
    EXPECT_EQ(missing(TarnGetRadioPossibleChannels), "channels");
    EXPECT_EQ(missing(TarnGetRadioCurrentTransmitPowerLevel), "power");
    EXPECT_EQ(missing(TarnGetRadioChainNumber), "number");
    EXPECT_EQ(missing(TarnGetRadioChainRssiAt), "rssi");
    EXPECT_EQ(missing(TarnGetRadioChipTemperature), "temperature");
    EXPECT_EQ(missing(TarnGetRadioPrimarySSIDIntfId), "ssid_id");
    EXPECT_EQ(missing(TarnGetRadioIsSupportedOPXRoaming), "isSupported");
}

} // namespace
} // namespace tarn::test
