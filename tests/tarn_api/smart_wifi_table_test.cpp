// The four Smart WiFi tables: snapshot, number of entries, one entry at a time.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kTableLength = 2240;
constexpr std::uint32_t kTableOut = 536;

using SmartWifiTable = DeviceTest;

TEST_F(SmartWifiTable, SnapshotTakesNoArgument)
{
    for (const std::uint32_t command : {97u, 100u, 103u, 106u})
        expectCommand(command, kTableLength).status(command);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiBSSTable("ledd"), 97u);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiAssoiated("ledd"), 100u);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiRecordInfo("ledd"), 103u);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiSlaveDevice("ledd"), 106u);
}

TEST_F(SmartWifiTable, NumberOfEntriesStandsWhereTheEntryWill)
{
    expectWordAt(kTableOut, 98, kTableLength, TarnGetQuantennaSmartWiFiBSSEntryNumber);
    expectWordAt(kTableOut, 101, kTableLength, TarnGetQuantennaSmartWiFiAssoiatedNumber);
    expectWordAt(kTableOut, 104, kTableLength, TarnGetQuantennaSmartWiFiRecordInfoNumber);
    expectWordAt(kTableOut, 107, kTableLength, TarnGetQuantennaSmartWiFiSlaveDeviceNumber);
}

TEST_F(SmartWifiTable, BssEntryIs256Bytes)
{
    replyNonZero(expectCommand(99, kTableLength).word(4, 1).status(5), kTableLength);

    RecordOutput<TarnQuantennaSmartWiFiBSSEntryData, 256> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiBSSEntryAt("ledd", 1, data.record()), 5u);
    data.expectFrom(kTableOut);
}

TEST_F(SmartWifiTable, AssociatedStationIs88Bytes)
{
    replyNonZero(expectCommand(102, kTableLength).word(4, 1).status(5), kTableLength);

    RecordOutput<TarnQuantennaSmartWiFiAssoiatedData, 88> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiAssoiatedAt("ledd", 1, data.record()), 5u);
    data.expectFrom(kTableOut);
}

// The only entry with a word of its own, in front of a record of an odd size.
TEST_F(SmartWifiTable, RecordInfoIsAStatusAnd257Bytes)
{
    mock::Call call = expectCommand(105, kTableLength).word(4, 1).status(5);
    replyNonZero(call, kTableLength);
    call.replyWord(532, 0x12345678);

    std::uint32_t status = kUntouched;
    RecordOutput<TarnQuantennaSmartWiFiRecordInfoData, 257> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 1, &status, data.record()), 5u);
    EXPECT_EQ(status, 0x12345678u);
    data.expectFrom(kTableOut);
}

TEST_F(SmartWifiTable, SlaveDeviceIsAnAddress)
{
    replyNonZero(expectCommand(108, kTableLength).word(4, 1).status(5), kTableLength);

    Output<6> mac;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiSlaveDeviceAt("ledd", 1, mac.data()), 5u);
    mac.expectFrom(kTableOut);
}

TEST_F(SmartWifiTable, IndexIsSentAsItIs)
{
    for (const std::uint32_t command : {99u, 102u, 105u, 108u})
        expectCommand(command, kTableLength).word(4, 0);

    RecordOutput<TarnQuantennaSmartWiFiBSSEntryData, 256> entry;
    RecordOutput<TarnQuantennaSmartWiFiAssoiatedData, 88> station;
    RecordOutput<TarnQuantennaSmartWiFiRecordInfoData, 257> info;
    Output<6> mac;
    std::uint32_t status = 0;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiBSSEntryAt("ledd", 0, entry.record()), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiAssoiatedAt("ledd", 0, station.record()), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, &status, info.record()), 0u);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiSlaveDeviceAt("ledd", 0, mac.data()), 0u);
}

// The last argument first.
TEST_F(SmartWifiTable, RecordInfoIsCheckedBeforeItsStatus)
{
    RecordOutput<TarnQuantennaSmartWiFiRecordInfoData, 257> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, nullptr, data.record()), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("data is NULL", "status is NULL"));
}

TEST_F(SmartWifiTable, EachMissingOutputIsNamed)
{
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiBSSEntryNumber), "number");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiBSSEntryAt), "data");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiAssoiatedNumber), "number");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiAssoiatedAt), "data");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiRecordInfoNumber), "number");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiSlaveDeviceNumber), "number");
    EXPECT_EQ(missing(TarnGetQuantennaSmartWiFiSlaveDeviceAt), "data");
}

} // namespace
} // namespace tarn::test
