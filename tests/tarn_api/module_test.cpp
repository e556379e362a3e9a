// The Quantenna module and the daemons around it.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kState = 76;
constexpr std::uint32_t kControl = 268;
constexpr std::uint32_t kSoniq = 148;

using Module = DeviceTest;

TEST_F(Module, QhopBelongsToARadio)
{
    expectCommand(26, kState).word(0, 1).replyWord(4, 1).replyWord(72, 5);
    expectCommand(27, kControl).word(0, 1).word(4, 0x12345678).replyWord(264, 6);

    std::uint32_t enable = kUntouched;
    EXPECT_EQ(TarnGetRadioQuantennaQhopState("ledd", 2, &enable), 5u);
    EXPECT_EQ(enable, 1u);
    EXPECT_EQ(TarnSetRadioQuantennaQhopEnable("ledd", 2, 0x12345678), 6u);
}

TEST_F(Module, TdwrChannelsBelongToARadio)
{
    expectCommand(114, kControl).word(0, 1).word(4, 1).status(5);
    expectCommand(114, kControl).word(0, 0xFFFFFFFF).word(4, 0);
    EXPECT_EQ(TarnSetQuantennaTdwrChannelsEnable("ledd", 2, 1), 5u);
    EXPECT_EQ(TarnSetQuantennaTdwrChannelsEnable("ledd", 0, 0), 0u);
}

TEST_F(Module, TransmitPowerIsABlockOfEightBytes)
{
    replyNonZero(expectCommand(28, kState, 4).word(0, 1).status(5), kState);

    Output<8> power;
    EXPECT_EQ(TarnGetRadioQuantennaCurrentTransmitPower("ledd", 2, power.data()), 5u);
    power.expectFrom(4);
}

// Its name speaks of a radio, its message does not.
TEST_F(Module, CarrierIdIsAskedForWithoutARadio)
{
    expectCommand(29, kState, 4).word(0, 0).replyWord(4, 0x12345678).status(5);

    std::uint32_t id = kUntouched;
    EXPECT_EQ(TarnGetRadioQuantennaCarrierId("ledd", &id), 5u);
    EXPECT_EQ(id, 0x12345678u);
}

TEST_F(Module, StatesAreAskedForWithoutARadio)
{
    struct
    {
        std::uint32_t command;
        std::uint32_t (*read)(const char* callerId, std::uint32_t* state);
    } const states[] = {
        {31, TarnGetQuantennaATMState},  {33, TarnGetQuantennaAtmActuateState}, {35, TarnGetQuantennaDFSDaemonState},
        {36, TarnGetQuantennaMauiState}, {41, TarnGetQuantennaDownloadState},
    };
    for (const auto& each : states)
    {
        expectCommand(each.command, kState).word(0, 0).replyWord(0, 9).replyWord(4, each.command).status(5);

        std::uint32_t state = kUntouched;
        EXPECT_EQ(each.read("ledd", &state), 5u);
        EXPECT_EQ(state, each.command);
    }
}

TEST_F(Module, ValuesAreSentInTheSecondWord)
{
    struct
    {
        std::uint32_t command;
        std::uint32_t (*write)(const char* callerId, std::uint32_t value);
    } const values[] = {
        {30, TarnSetQuantennaATM},        {32, TarnSetQuantennaAtmActuate},     {34, TarnSetQuantennaDFSDaemon},
        {37, TarnSetQuantennaMauiEnable}, {77, TarnSetQuantennaRPCDebugEnable},
    };
    for (const auto& each : values)
    {
        expectCommand(each.command, kControl).word(0, 0).word(4, 0x12345678).status(5);
        EXPECT_EQ(each.write("ledd", 0x12345678), 5u);
    }
}

TEST_F(Module, PasswordFileIsUpdatedWithoutAnyArgument)
{
    expectCommand(40, kControl).replyWord(264, 5);
    EXPECT_EQ(TarnUpdateQuantennaPasswordFile("ledd"), 5u);
}

TEST_F(Module, VersionEndsAtItsNul)
{
    mock::Call call = expectCommand(38, kState).status(5);
    replyNonZero(call, kState);
    call.replyText(4, "37.4.0.81");

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 5u);
    EXPECT_STREQ(version.text(), "37.4.0.81");
}

TEST_F(Module, VersionOf64CharactersIsWhole)
{
    expectCommand(38, kState).replyText(4, letters(64).c_str());

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 0u);
    EXPECT_EQ(version.text(), letters(64));
}

TEST_F(Module, VersionOf70CharactersIsCutTo64)
{
    expectCommand(38, kState).replyBytes(4, letters(68).data(), 68).replyWord(72, 0x78797A61);

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 0x78797A61u);
    const std::string text = letters(64);
    std::vector<std::uint8_t> expected(text.begin(), text.end());
    expected.push_back(0);
    version.expectBytes(expected);
}

// Nothing in the message ends the text, the reply status least of all.
TEST_F(Module, VersionWithoutNulIsCutTo64Characters)
{
    replyNonZero(expectCommand(38, kState).status(0xFFFFFFFF), kState);

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 0xFFFFFFFFu);
    version.expectCutTextFrom(4);
}

TEST_F(Module, EmptyVersionIsAnEmptyText)
{
    expectCommand(38, kState);

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 0u);
    EXPECT_STREQ(version.text(), "");
}

TEST_F(Module, VersionIsPrintedAndNotInterpreted)
{
    expectCommand(38, kState).replyText(4, "%s%n%d 100%");

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 0u);
    EXPECT_STREQ(version.text(), "%s%n%d 100%");
}

TEST_F(Module, PathIsSentWithItsNul)
{
    expectCommand(39, kControl).text(4, 257, "tftp://192.0.2.1/%s.conf").status(5);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", "tftp://192.0.2.1/%s.conf"), 5u);
}

TEST_F(Module, PathOf256CharactersIsSentWhole)
{
    expectCommand(39, kControl).text(4, 257, letters(256).c_str());
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", letters(256).c_str()), 0u);
}

// Three bytes between text and status stay zero.
TEST_F(Module, PathOf300CharactersIsCutTo256)
{
    expectCommand(39, kControl).bytes(4, letters(256).data(), 256).byte(260, 0).byte(261, 0).byte(262, 0).byte(263, 0);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", letters(300).c_str()), 0u);
}

TEST_F(Module, PathIsSentUpToItsNul)
{
    const char path[64] = "/a\0left over";
    expectCommand(39, kControl).text(4, 257, "/a");
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", path), 0u);
}

TEST_F(Module, NullAndEmptyPathAreInvalidAlike)
{
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", ""), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("path is invalid", "path is invalid"));
}

TEST_F(Module, CallerIdIsCheckedBeforeThePath)
{
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf(nullptr, ""), TARN_REJECTED);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("", nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("handle is NULL", "invalid id is "));
}

TEST_F(Module, RejectedPathIsTracedLikeAnyOther)
{
    expectCommand(39, kControl).text(4, 257, "/a").fail(7);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", ""), TARN_REJECTED);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", "/a"), TARN_TIMED_OUT);

    const std::vector<mock::Trace> traces = platform.traces();
    ASSERT_EQ(traces.size(), 2u);
    EXPECT_EQ(traces[0].level, 1u);
    EXPECT_EQ(traces[0].fileTag, "tarn_api");
    EXPECT_NE(traces[0].line, 0u);
}

TEST_F(Module, NumberOfSoniqAssociationsStandsBehindTheAddress)
{
    expectCommand(111, kSoniq).replyWord(0, 9).replyWord(12, 3).replyWord(144, 5);

    std::uint32_t number = kUntouched;
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationNumber("ledd", &number), 5u);
    EXPECT_EQ(number, 3u);
}

TEST_F(Module, SoniqIndexIsSentAsItIs)
{
    replyNonZero(expectCommand(112, kSoniq).word(0, 1).status(5), kSoniq);
    expectCommand(112, kSoniq).word(0, 0);

    RecordOutput<TarnQuantennaSoniqCurrentAssociationData> data;
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationAt("ledd", 1, data.record()), 5u);
    data.expectFrom(16);
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationAt("ledd", 0, data.record()), 0u);
}

TEST_F(Module, SoniqAssociationIsAskedForByAddress)
{
    replyNonZero(expectCommand(113, kSoniq).word(0, 0).bytes(4, kMac.data(), 6).status(5), kSoniq);

    RecordOutput<TarnQuantennaSoniqCurrentAssociationData> data;
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociation("ledd", kMac.data(), data.record()), 5u);
    data.expectFrom(16);
}

TEST_F(Module, SoniqAddressIsCheckedBeforeTheOutput)
{
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociation("ledd", nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociation("ledd", kMac.data(), nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("mac_addr is NULL", "data is NULL"));
}

// Two of them are called invalid, the others NULL.
TEST_F(Module, MissingOutputsAreNotReportedUniformly)
{
    EXPECT_EQ(TarnGetRadioQuantennaQhopState("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioQuantennaCurrentTransmitPower("ledd", 1, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetRadioQuantennaCarrierId("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaATMState("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaAtmActuateState("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaDFSDaemonState("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaMauiState("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaDownloadState("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationNumber("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationAt("ledd", 0, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("enable is NULL", "power is invalid", "id is invalid", "state is NULL",
                                                   "state is NULL", "state is NULL", "enable is NULL", "version is NULL",
                                                   "state is NULL", "number is NULL", "data is NULL"));
}

TEST_F(Module, OutputsAreLeftAloneByAFailure)
{
    expectCommand(28, kState, 4).word(0, 0).fail(7);
    expectCommand(38, kState).fail(6);

    Output<8> power;
    Output<65> version;
    EXPECT_EQ(TarnGetRadioQuantennaCurrentTransmitPower("ledd", 1, power.data()), TARN_TIMED_OUT);
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), TARN_FAILED);
    power.expectUntouched();
    version.expectUntouched();
}

} // namespace
} // namespace tarn::test
