// An access point's configuration, security and WPS settings.
#include "device_test.h"

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kRead = 344;
constexpr std::uint32_t kWrite = 336;
constexpr std::uint32_t kWpsLength = 220;

using AccessPoint = DeviceTest;

// Reads and writes differ in length, and so in the place of their status.
TEST_F(AccessPoint, DescriptionIs32BytesOfTheReadMessage)
{
    replyNonZero(expectCommand(56, kRead).word(0, 1).word(4, 2).replyWord(340, 5), kRead);

    RecordOutput<TarnAccessPointData, 32> data;
    EXPECT_EQ(TarnGetAccessPoint("ledd", 2, 3, data.record()), 5u);
    data.expectFrom(8);
}

TEST_F(AccessPoint, ConfigurationIs28BytesOfTheWriteMessage)
{
    const auto cfg = nonZeroRecord<TarnAccessPointCfg>();
    expectCommand(57, kWrite).word(0, 1).word(4, 2).bytes(8, cfg.bytes, 28).replyWord(332, 5);
    EXPECT_EQ(TarnSetAccessPointCfg("ledd", 2, 3, cfg), 5u);
}

TEST_F(AccessPoint, SecurityIsReadAs332Bytes)
{
    replyNonZero(expectCommand(58, kRead).word(0, 1).word(4, 2).replyWord(340, 5), kRead);

    RecordOutput<TarnAccessPointSecurityData, 332> data;
    EXPECT_EQ(TarnGetAccessPointSecurity("ledd", 2, 3, data.record()), 5u);
    data.expectFrom(8);
}

TEST_F(AccessPoint, SecurityIsWrittenAs324Bytes)
{
    const auto cfg = nonZeroRecord<TarnAccessPointSecurityCfg>();
    expectCommand(59, kWrite).word(0, 1).word(4, 2).bytes(8, cfg.bytes, 324).replyWord(332, 5);
    EXPECT_EQ(TarnSetAccessPointSecurityCfg("ledd", 2, 3, cfg), 5u);
}

TEST_F(AccessPoint, SecurityExtensionIsTwoWords)
{
    expectCommand(60, kWrite).word(0, 1).word(4, 2).word(8, 3).word(12, 0xFFFFFFFF).replyWord(332, 5);
    EXPECT_EQ(TarnSetAccessPointSecurityExCfg("ledd", 2, 3, 3, 0xFFFFFFFF), 5u);
}

TEST_F(AccessPoint, WpsIsReadAs164BytesBehindWhatIsWritten)
{
    replyNonZero(expectCommand(61, kWpsLength).word(0, 1).word(4, 2).replyWord(216, 5), kWpsLength);

    RecordOutput<TarnAccessPointWpsData, 164> data;
    EXPECT_EQ(TarnGetAccessPointWps("ledd", 2, 3, data.record()), 5u);
    data.expectFrom(52);
}

// The value is an argument in front of the record, and comes behind it in the message.
TEST_F(AccessPoint, WpsConfigurationIsARecordAndAValueBehindIt)
{
    const auto cfg = nonZeroRecord<TarnAccessPointWpsCfg>();
    expectCommand(62, kWpsLength).word(0, 1).word(4, 2).bytes(16, cfg.bytes, 28).word(44, 0x12345678).replyWord(216, 5);
    EXPECT_EQ(TarnSetAccessPointWpsCfg("ledd", 2, 3, 0x12345678, cfg), 5u);
}

TEST_F(AccessPoint, IdsOfZeroAreNoError)
{
    expectCommand(56, kRead).word(0, 0xFFFFFFFF).word(4, 0xFFFFFFFF);
    expectCommand(60, kWrite).word(0, 0xFFFFFFFF).word(4, 0xFFFFFFFF);
    expectCommand(61, kWpsLength).word(0, 0xFFFFFFFF).word(4, 0xFFFFFFFF);

    RecordOutput<TarnAccessPointData, 32> data;
    RecordOutput<TarnAccessPointWpsData, 164> wps;
    EXPECT_EQ(TarnGetAccessPoint("ledd", 0, 0, data.record()), 0u);
    EXPECT_EQ(TarnSetAccessPointSecurityExCfg("ledd", 0, 0, 0, 0), 0u);
    EXPECT_EQ(TarnGetAccessPointWps("ledd", 0, 0, wps.record()), 0u);
}

TEST_F(AccessPoint, EachMissingOutputIsNamedAndNothingIsSent)
{
    EXPECT_EQ(missing(TarnGetAccessPoint), "data");
    EXPECT_EQ(missing(TarnGetAccessPointSecurity), "data");
    EXPECT_EQ(missing(TarnGetAccessPointWps), "data");
}

} // namespace
} // namespace tarn::test
