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
    expectWordAt(4, 26, kState, TarnGetRadioQuantennaQhopState);
    expectCommand(27, kControl).word(0, 1).word(4, 0x12345678).replyWord(264, 6);
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
    expectWordAt(4, 29, kState, TarnGetRadioQuantennaCarrierId, 4);
}

TEST_F(Module, StatesAreAskedForWithoutARadio)
{
    expectWordAt(4, 31, kState, TarnGetQuantennaATMState);
    expectWordAt(4, 33, kState, TarnGetQuantennaAtmActuateState);
    expectWordAt(4, 35, kState, TarnGetQuantennaDFSDaemonState);
    expectWordAt(4, 36, kState, TarnGetQuantennaMauiState);
    expectWordAt(4, 41, kState, TarnGetQuantennaDownloadState);
}

TEST_F(Module, ValuesAreSentInTheSecondWord)
{
    const std::pair<std::uint32_t, std::uint32_t (*)(const char* callerId, std::uint32_t value)> functions[] = {
        {30, TarnSetQuantennaATM},        {32, TarnSetQuantennaAtmActuate},     {34, TarnSetQuantennaDFSDaemon},
        {37, TarnSetQuantennaMauiEnable}, {77, TarnSetQuantennaRPCDebugEnable},
    };
    for (const auto& [command, write] : functions)
    {
        expectCommand(command, kControl).word(0, 0).word(4, 0x12345678).status(5);
        EXPECT_EQ(write("ledd", 0x12345678), 5u) << command;
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

// Nothing in the message ends the text, the reply status least of all.
TEST_F(Module, VersionWithoutNulIsCutTo64Characters)
{
    replyNonZero(expectCommand(38, kState).status(0xFFFFFFFF), kState);

    Output<65> version;
    EXPECT_EQ(TarnGetQuantennaMauiVersion("ledd", version.text()), 0xFFFFFFFFu);
    version.expectCutTextFrom(4);
}

// Three bytes between text and status stay zero.
TEST_F(Module, PathOf300CharactersIsCutTo256)
{
    expectCommand(39, kControl).text(4, 257, letters(256).c_str());
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", letters(300).c_str()), 0u);
}

TEST_F(Module, NullAndEmptyPathAreInvalidAlike)
{
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnDownloadQuantennaWirelessConf("ledd", ""), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("path is invalid", "path is invalid"));
}

TEST_F(Module, NumberOfSoniqAssociationsStandsBehindTheAddress)
{
    expectWordAt(12, 111, kSoniq, TarnGetQuantennaSoniqCurrentAssociationNumber);
}

TEST_F(Module, SoniqIndexIsSentAsItIs)
{
    replyNonZero(expectCommand(112, kSoniq).word(0, 1).status(5), kSoniq);
    expectCommand(112, kSoniq).word(0, 0);

    RecordOutput<TarnQuantennaSoniqCurrentAssociationData, 128> data;
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationAt("ledd", 1, data.record()), 5u);
    data.expectFrom(16);
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociationAt("ledd", 0, data.record()), 0u);
}

TEST_F(Module, SoniqAssociationIsAskedForByAddress)
{
    replyNonZero(expectCommand(113, kSoniq).word(0, 0).bytes(4, kMac.data(), 6).status(5), kSoniq);

    RecordOutput<TarnQuantennaSoniqCurrentAssociationData, 128> data;
    EXPECT_EQ(TarnGetQuantennaSoniqCurrentAssociation("ledd", kMac.data(), data.record()), 5u);
    data.expectFrom(16);
}

TEST_F(Module, SoniqAddressIsCheckedBeforeTheOutput)
{
    EXPECT_EQ(missing(TarnGetQuantennaSoniqCurrentAssociation), "mac_addr, data");
}

// Two of them are called invalid, the others NULL.
TEST_F(Module, MissingOutputsAreNotReportedUniformly)
{
    EXPECT_EQ(missing(TarnGetRadioQuantennaCurrentTransmitPower), "power is invalid");
    EXPECT_EQ(missing(TarnGetRadioQuantennaCarrierId), "id is invalid");
    EXPECT_EQ(missing(TarnGetRadioQuantennaQhopState), "enable");
    EXPECT_EQ(missing(TarnGetQuantennaATMState), "state");
    EXPECT_EQ(missing(TarnGetQuantennaAtmActuateState), "state");
    EXPECT_EQ(missing(TarnGetQuantennaDFSDaemonState), "state");
    EXPECT_EQ(missing(TarnGetQuantennaMauiState), "enable");
    EXPECT_EQ(missing(TarnGetQuantennaMauiVersion), "version");
    EXPECT_EQ(missing(TarnGetQuantennaDownloadState), "state");
    EXPECT_EQ(missing(TarnGetQuantennaSoniqCurrentAssociationNumber), "number");
    EXPECT_EQ(missing(TarnGetQuantennaSoniqCurrentAssociationAt), "data");
}

} // namespace
} // namespace tarn::test
