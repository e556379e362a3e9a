// Radios: their number, descriptions, configuration and measurements.
#include "device_test.h"

using testing::Each;
using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kQuery = 9584;
constexpr std::uint32_t kConfiguration = 4444;
constexpr std::uint32_t kOut = 28;

using Radio = DeviceTest;

TEST_F(Radio, DescriptionFillsTheMessageBehindItsInputs)
{
    replyNonZero(expectCommand(7, kQuery).word(0, 0).status(4), kQuery);

    RecordOutput<TarnRadioData> data;
    EXPECT_EQ(TarnGetRadio("ledd", 1, data.record()), 4u);
    data.expectFrom(kOut);
}

TEST_F(Radio, DescriptionIsNotWrittenAfterAFailure)
{
    expectCommand(7, kQuery).word(0, 1).fail(6);

    RecordOutput<TarnRadioData> data;
    EXPECT_EQ(TarnGetRadio("ledd", 2, data.record()), TARN_FAILED);
    data.expectUntouched();
}

TEST_F(Radio, IdIsSentLessOneAndNotCheckedForItsRange)
{
    expectCommand(8, kQuery).word(0, 0xFFFFFFFF);
    expectCommand(8, kQuery).word(0, 1);
    expectCommand(8, kQuery).word(0, 0xFFFFFFFE);

    std::uint32_t isReady = 0;
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 0, &isReady), 0u);
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 2, &isReady), 0u);
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 0xFFFFFFFF, &isReady), 0u);
}

// While every other query of a radio sends an id less one as the first word.
TEST_F(Radio, IndexIsSentAsItIsInTheSecondWord)
{
    replyNonZero(expectCommand(6, kQuery).word(0, 0).word(4, 1), kQuery);
    expectCommand(6, kQuery);
    expectCommand(6, kQuery).word(4, 0xFFFFFFFF);

    RecordOutput<TarnRadioData> data;
    EXPECT_EQ(TarnGetRadioAt("ledd", 1, data.record()), 0u);
    data.expectFrom(kOut);
    EXPECT_EQ(TarnGetRadioAt("ledd", 0, data.record()), 0u);
    EXPECT_EQ(TarnGetRadioAt("ledd", 0xFFFFFFFF, data.record()), 0u);
}

TEST_F(Radio, MissingDescriptionByIndexIsReportedAsTheNumber)
{
    EXPECT_EQ(TarnGetRadioAt("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadio("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("number is NULL", "data is NULL"));
}

TEST_F(Radio, QueriesWithoutARadioSendZeros)
{
    expectCommand(4, kQuery).replyWord(kOut, 1);
    expectCommand(5, kQuery).replyWord(kOut, 2).status(3);

    std::uint32_t isSupported = kUntouched;
    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetRadioIsSupportedWFAAlliance("ledd", &isSupported), 0u);
    EXPECT_EQ(TarnGetRadioNum("ledd", &number), 3u);
    EXPECT_EQ(isSupported, 1u);
    EXPECT_EQ(number, 2u);
}

TEST_F(Radio, ConfigurationFillsTheMessageBehindItsParameter)
{
    const auto cfg = nonZeroRecord<TarnRadioCfg>();
    expectCommand(9, kConfiguration).word(0, 1).word(4, 0x12345678).bytes(8, cfg.bytes, 4432).status(5);
    EXPECT_EQ(TarnSetRadioCfg("ledd", 2, 0x12345678, cfg), 5u);
}

TEST_F(Radio, ExtendedConfigurationIs60BytesOfTheSameMessage)
{
    const auto cfg = nonZeroRecord<TarnRadioExCfg>();
    expectCommand(10, kConfiguration).word(0, 1).word(4, 0x12345678).bytes(8, cfg.bytes, 60).status(5);
    EXPECT_EQ(TarnSetRadioExCfg("ledd", 2, 0x12345678, cfg), 5u);
}

TEST_F(Radio, ParameterIsSentAsItIs)
{
    const TarnRadioExCfg cfg = {};
    expectCommand(10, kConfiguration).word(4, 0);
    EXPECT_EQ(TarnSetRadioExCfg("ledd", 1, 0, cfg), 0u);
}

TEST_F(Radio, StatisticsAre96Bytes)
{
    replyNonZero(expectCommand(11, kQuery, 4).word(0, 1), kQuery);

    RecordOutput<TarnRadioStats> stats;
    EXPECT_EQ(TarnGetRadioStats("ledd", 2, stats.record()), 0u);
    stats.expectFrom(kOut);
}

// 65 bytes and no more, whether there is a NUL among them or not.
TEST_F(Radio, DriverVersionIsCopiedAsItComes)
{
    replyNonZero(expectCommand(12, kQuery).word(0, 1), kQuery);

    Output<65> version;
    EXPECT_EQ(TarnGetRadioDriverVersion("ledd", 2, version.text()), 0u);
    version.expectFrom(kOut);
}

TEST_F(Radio, DriverVersionIsCopiedBeyondItsNul)
{
    mock::Call call = expectCommand(12, kQuery).word(0, 0);
    replyNonZero(call, kQuery);
    call.replyText(kOut, "4.2");

    Output<65> version;
    EXPECT_EQ(TarnGetRadioDriverVersion("ledd", 1, version.text()), 0u);

    std::vector<std::uint8_t> expected = nonZeroBytes(kOut + 65);
    expected.erase(expected.begin(), expected.begin() + kOut);
    std::copy_n("4.2", 4, expected.begin());
    version.expectBytes(expected);
}

TEST_F(Radio, PossibleChannelsTakeASelectorAndGiveAList)
{
    const auto query = nonZeroRecord<TarnChannelQuery>();
    replyNonZero(expectCommand(14, kQuery).word(0, 1).word(4, 0).bytes(8, query.bytes, 20), kQuery);

    Output<256> channels;
    EXPECT_EQ(TarnGetRadioPossibleChannels("ledd", 2, query, channels.data()), 0u);
    channels.expectFrom(kOut);
}

// The first byte of the word as it stands in memory: the most significant one on a big-endian host.
TEST_F(Radio, TransmitPowerLevelIsOneByte)
{
    const std::uint8_t reply[] = {0x12, 0x34, 0x56, 0x78};
    expectCommand(15, kQuery).word(0, 1).replyBytes(kOut, reply, 4);

    Output<1> power;
    EXPECT_EQ(TarnGetRadioCurrentTransmitPowerLevel("ledd", 2, power.data()), 0u);
    power.expectBytes({0x12});
}

TEST_F(Radio, ChainIndexIsSentAsItIs)
{
    expectCommand(17, kQuery, 4).word(0, 1).word(4, 0).replyWord(kOut, 0xFFFFFFC4);
    expectCommand(17, kQuery, 4).word(0, 0).word(4, 3);

    std::uint32_t rssi = kUntouched;
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 2, 0, &rssi), 0u);
    EXPECT_EQ(rssi, 0xFFFFFFC4u);
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 1, 3, &rssi), 0u);
}

TEST_F(Radio, WordsStandBehindTheInputs)
{
    expectCommand(8, kQuery).word(0, 1).replyWord(kOut, 11);
    expectCommand(13, kQuery).word(0, 1).replyWord(kOut, 12);
    expectCommand(16, kQuery).word(0, 1).replyWord(kOut, 13);
    expectCommand(18, kQuery, 4).word(0, 1).replyWord(kOut, 14);
    expectCommand(19, kQuery).word(0, 1).replyWord(kOut, 15);

    std::uint32_t word = 0;
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 2, &word), 0u);
    EXPECT_EQ(word, 11u);
    EXPECT_EQ(TarnGetRadioIsSupportedWdsInterface("ledd", 2, &word), 0u);
    EXPECT_EQ(word, 12u);
    EXPECT_EQ(TarnGetRadioChainNumber("ledd", 2, &word), 0u);
    EXPECT_EQ(word, 13u);
    EXPECT_EQ(TarnGetRadioChipTemperature("ledd", 2, &word), 0u);
    EXPECT_EQ(word, 14u);
    EXPECT_EQ(TarnGetRadioPrimarySSIDIntfId("ledd", 2, &word), 0u);
    EXPECT_EQ(word, 15u);
}

// Its neighbours in this list of functions have a message a hundred times as long.
TEST_F(Radio, OperatorRoamingHasTheShortMessage)
{
    expectCommand(25, 76).word(0, 1).replyWord(4, 1).replyWord(28, 9).replyWord(72, 6);

    std::uint32_t isSupported = kUntouched;
    EXPECT_EQ(TarnGetRadioIsSupportedOPXRoaming("ledd", 2, &isSupported), 6u);
    EXPECT_EQ(isSupported, 1u);
}

TEST_F(Radio, EachMissingOutputIsNamed)
{
    EXPECT_EQ(TarnGetRadioIsSupportedWFAAlliance("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioNum("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioIsReady("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioStats("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioDriverVersion("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioIsSupportedWdsInterface("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioPossibleChannels("ledd", 1, {}, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioCurrentTransmitPowerLevel("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioChainNumber("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioChainRssiAt("ledd", 1, 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioChipTemperature("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioPrimarySSIDIntfId("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioIsSupportedOPXRoaming("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("isSupported is NULL", "number is NULL", "isReady is NULL", "stats is NULL", "version is NULL",
                            "isSupported is NULL", "channels is NULL", "power is NULL", "number is NULL", "rssi is NULL",
                            "temperature is NULL", "ssid_id is NULL", "isSupported is NULL"));
}

} // namespace
} // namespace tarn::test
