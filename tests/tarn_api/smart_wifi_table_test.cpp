// The four Smart WiFi tables: snapshot, number of entries, one entry at a time.
#include "device_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

constexpr std::uint32_t kLength = 2240;
constexpr std::uint32_t kOut = 536;

using SmartWifiTable = DeviceTest;

TEST_F(SmartWifiTable, SnapshotTakesNoArgument)
{
    for (const std::uint32_t command : {97u, 100u, 103u, 106u})
        expectCommand(command, kLength).status(command);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiBSSTable("ledd"), 97u);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiAssoiated("ledd"), 100u);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiRecordInfo("ledd"), 103u);
    EXPECT_EQ(TarnSyncQuantennaSmartWiFiSlaveDevice("ledd"), 106u);
}

TEST_F(SmartWifiTable, NumberOfEntriesStandsWhereTheEntryWill)
{
    struct
    {
        std::uint32_t command;
        std::uint32_t (*read)(const char* callerId, std::uint32_t* number);
    } const numbers[] = {
        {98, TarnGetQuantennaSmartWiFiBSSEntryNumber},
        {101, TarnGetQuantennaSmartWiFiAssoiatedNumber},
        {104, TarnGetQuantennaSmartWiFiRecordInfoNumber},
        {107, TarnGetQuantennaSmartWiFiSlaveDeviceNumber},
    };
    for (const auto& each : numbers)
    {
        expectCommand(each.command, kLength).replyWord(532, 9).replyWord(kOut, each.command).status(5);

        std::uint32_t number = kUntouched;
        EXPECT_EQ(each.read("ledd", &number), 5u);
        EXPECT_EQ(number, each.command);
        EXPECT_EQ(each.read("ledd", nullptr), TARN_REJECTED);
        EXPECT_EQ(platform.traceTexts().back(), "number is NULL");
    }
}

TEST_F(SmartWifiTable, BssEntryIs256Bytes)
{
    replyNonZero(expectCommand(99, kLength).word(4, 1).status(5), kLength);

    RecordOutput<TarnQuantennaSmartWiFiBSSEntryData> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiBSSEntryAt("ledd", 1, data.record()), 5u);
    data.expectFrom(kOut);
}

TEST_F(SmartWifiTable, AssociatedStationIs88Bytes)
{
    replyNonZero(expectCommand(102, kLength).word(4, 1).status(5), kLength);

    RecordOutput<TarnQuantennaSmartWiFiAssoiatedData> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiAssoiatedAt("ledd", 1, data.record()), 5u);
    data.expectFrom(kOut);
}

// The only entry with a word of its own, in front of a record of an odd size.
TEST_F(SmartWifiTable, RecordInfoIsAStatusAnd257Bytes)
{
    mock::Call call = expectCommand(105, kLength).word(4, 1).status(5);
    replyNonZero(call, kLength);
    call.replyWord(532, 0x12345678);

    std::uint32_t status = kUntouched;
    RecordOutput<TarnQuantennaSmartWiFiRecordInfoData> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 1, &status, data.record()), 5u);
    EXPECT_EQ(status, 0x12345678u);
    data.expectFrom(kOut);
}

TEST_F(SmartWifiTable, SlaveDeviceIsAnAddress)
{
    replyNonZero(expectCommand(108, kLength).word(4, 1).status(5), kLength);

    Output<6> mac;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiSlaveDeviceAt("ledd", 1, mac.data()), 5u);
    mac.expectFrom(kOut);
}

TEST_F(SmartWifiTable, IndexIsSentAsItIs)
{
    for (const std::uint32_t index : {0u, 0xFFFFFFFFu})
    {
        for (const std::uint32_t command : {99u, 102u, 105u, 108u})
            expectCommand(command, kLength).word(4, index).status(index);

        RecordOutput<TarnQuantennaSmartWiFiBSSEntryData> entry;
        RecordOutput<TarnQuantennaSmartWiFiAssoiatedData> station;
        RecordOutput<TarnQuantennaSmartWiFiRecordInfoData> info;
        Output<6> mac;
        std::uint32_t status = 0;
        EXPECT_EQ(TarnGetQuantennaSmartWiFiBSSEntryAt("ledd", index, entry.record()), index);
        EXPECT_EQ(TarnGetQuantennaSmartWiFiAssoiatedAt("ledd", index, station.record()), index);
        EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", index, &status, info.record()), index);
        EXPECT_EQ(TarnGetQuantennaSmartWiFiSlaveDeviceAt("ledd", index, mac.data()), index);
    }
}

// The last argument first.
TEST_F(SmartWifiTable, RecordInfoIsCheckedBeforeItsStatus)
{
    std::uint32_t status = kUntouched;
    RecordOutput<TarnQuantennaSmartWiFiRecordInfoData> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, nullptr, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, &status, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, nullptr, data.record()), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("data is NULL", "data is NULL", "status is NULL"));
    EXPECT_EQ(status, kUntouched);
    data.expectUntouched();
}

TEST_F(SmartWifiTable, EachMissingEntryIsNamed)
{
    EXPECT_EQ(TarnGetQuantennaSmartWiFiBSSEntryAt("ledd", 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiAssoiatedAt("ledd", 0, nullptr), TARN_REJECTED);
    EXPECT_EQ(TarnGetQuantennaSmartWiFiSlaveDeviceAt("ledd", 0, nullptr), TARN_REJECTED);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("data is NULL", "data is NULL", "data is NULL"));
}

TEST_F(SmartWifiTable, TimeOutLeavesStatusAndEntry)
{
    expectCommand(105, kLength).fail(7);

    std::uint32_t status = kUntouched;
    RecordOutput<TarnQuantennaSmartWiFiRecordInfoData> data;
    EXPECT_EQ(TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, &status, data.record()), TARN_TIMED_OUT);
    EXPECT_EQ(status, kUntouched);
    data.expectUntouched();
}

} // namespace
} // namespace tarn::test
