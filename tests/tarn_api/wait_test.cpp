// Which commands wait longer than the others. Here they stand side by side.
#include "device_test.h"

#include <map>

namespace tarn::test
{
namespace
{

using Waits = std::map<std::uint32_t, std::uint32_t>;

std::uint32_t record(void* waits, const char*, const char*, std::uint32_t wait, std::uint32_t command, std::uint32_t, void*)
{
    (*static_cast<Waits*>(waits))[command] = wait;
    return 0;
}

class Wait : public DeviceTest
{
protected:
    Wait()
    {
        KorIilMockOnExecute(record, &waits);
    }

    Waits waits;
    std::uint32_t word = 0;
    std::array<std::uint8_t, 2> mdid = {1, 2};
    std::array<std::uint8_t, 9552> buffer = {};

    template <class Record>
    Record* into()
    {
        return reinterpret_cast<Record*>(buffer.data());
    }
};

TEST_F(Wait, IsFourWhereTheModuleOrAStationIsAsked)
{
    TarnGetRadioStats("ledd", 1, into<TarnRadioStats>());
    TarnGetRadioChainRssiAt("ledd", 1, 0, &word);
    TarnGetRadioChipTemperature("ledd", 1, &word);
    TarnGetRadioQuantennaCurrentTransmitPower("ledd", 1, buffer.data());
    TarnGetRadioQuantennaCarrierId("ledd", &word);
    TarnGetSsidIntfStats("ledd", 1, 1, into<TarnSsidIntfStats>());
    TarnTriggerAccessPointWpsWindow("ledd", 1, 1, 0, 0);
    TarnCancelAccessPointWpsWindow("ledd", 1, 1);
    TarnGetAccessPointAssociatedAt("ledd", 1, 1, 0, into<TarnAccessPointAssociatedData>());
    TarnGetAccessPointAssociated("ledd", 1, 1, kMac.data(), into<TarnAccessPointAssociatedData>());
    TarnGetAccessPointAssociatedStats("ledd", 1, 1, kMac.data(), into<TarnAccessPointAssociatedStats>());
    TarnKickOutAccessPointAssociated("ledd", 1, 1, kMac.data());
    EXPECT_EQ(
        waits,
        (Waits{{11, 4}, {17, 4}, {18, 4}, {28, 4}, {29, 4}, {46, 4}, {64, 4}, {65, 4}, {67, 4}, {68, 4}, {69, 4}, {70, 4}}));
}

TEST_F(Wait, IsThreeForTheirNeighbours)
{
    TarnGetRadioDriverVersion("ledd", 1, reinterpret_cast<char*>(buffer.data()));
    TarnGetRadioChainNumber("ledd", 1, &word);
    TarnGetRadioPrimarySSIDIntfId("ledd", 1, &word);
    TarnSetRadioQuantennaQhopEnable("ledd", 1, 1);
    TarnSetQuantennaATM("ledd", 1);
    TarnGetSsidIntf("ledd", 1, 1, into<TarnSsidIntfData>());
    TarnGetSsidIntfIsPrimarySSIDIntf("ledd", 1, 1, &word);
    TarnGetAccessPointWpsWindowStatus("ledd", 1, 1, &word);
    TarnGetAccessPointAssociatedNum("ledd", 1, 1, &word);
    TarnGetAccessPointMacFilterMode("ledd", 1, 1, &word);
    EXPECT_EQ(waits, (Waits{{12, 3}, {16, 3}, {19, 3}, {27, 3}, {30, 3}, {44, 3}, {47, 3}, {63, 3}, {66, 3}, {71, 3}}));
}

TEST_F(Wait, IsTenForThePropagationAndThreeForAllOtherSmartWifiCommands)
{
    TarnResetQuantennaSmartWiFiDaemon("ledd");
    TarnGetQuantennaSmartWiFiState("ledd", &word);
    TarnSetQuantennaSmartWiFiEnable("ledd", 1);
    TarnGetQuantennaSmartWiFiVersion("ledd", reinterpret_cast<char*>(buffer.data()));
    TarnGetQuantennaSmartWiFiDaemonVersion("ledd", reinterpret_cast<char*>(buffer.data()));
    TarnSetQuantennaSmartWiFiBindingInterface("ledd", "wifi0");
    TarnGetQuantennaSmartWiFiQcomm("ledd", into<TarnQuantennaSmartWiFiQcommData>());
    TarnSetQuantennaSmartWiFiQcommCfg("ledd", 1, {});
    TarnGetQuantennaSmartWiFiQslCfgSyncing("ledd", &word);
    TarnSetQuantennaSmartWiFiQslCfgSyncing("ledd", 1);
    TarnGetQuantennaSmartWiFiQslMdidNumber("ledd", &word);
    TarnGetQuantennaSmartWiFiQslMdidAt("ledd", 0, mdid.data());
    TarnGetQuantennaSmartWiFiQsl("ledd", mdid.data(), into<TarnQuantennaSmartWiFiQslData>());
    TarnSetQuantennaSmartWiFiQslPart1Cfg("ledd", mdid.data(), 1, {});
    TarnSetQuantennaSmartWiFiQslPart2Cfg("ledd", mdid.data(), 1, {});
    TarnGetQuantennaSmartWiFiNonSteerNumber("ledd", mdid.data(), &word);
    TarnGetQuantennaSmartWiFiNonSteerAt("ledd", mdid.data(), 0, buffer.data());
    TarnAddQuantennaSmartWiFiNonSteer("ledd", mdid.data(), kMac.data());
    TarnDelQuantennaSmartWiFiNonSteer("ledd", mdid.data(), kMac.data());
    TarnSyncQuantennaSmartWiFiBSSTable("ledd");
    TarnGetQuantennaSmartWiFiBSSEntryNumber("ledd", &word);
    TarnGetQuantennaSmartWiFiBSSEntryAt("ledd", 0, into<TarnQuantennaSmartWiFiBSSEntryData>());
    TarnSyncQuantennaSmartWiFiAssoiated("ledd");
    TarnGetQuantennaSmartWiFiAssoiatedNumber("ledd", &word);
    TarnGetQuantennaSmartWiFiAssoiatedAt("ledd", 0, into<TarnQuantennaSmartWiFiAssoiatedData>());
    TarnSyncQuantennaSmartWiFiRecordInfo("ledd");
    TarnGetQuantennaSmartWiFiRecordInfoNumber("ledd", &word);
    TarnGetQuantennaSmartWiFiRecordInfoAt("ledd", 0, &word, into<TarnQuantennaSmartWiFiRecordInfoData>());
    TarnSyncQuantennaSmartWiFiSlaveDevice("ledd");
    TarnGetQuantennaSmartWiFiSlaveDeviceNumber("ledd", &word);
    TarnGetQuantennaSmartWiFiSlaveDeviceAt("ledd", 0, buffer.data());
    TarnDoQuantennaSmartWiFiCfgPropagation("ledd");
    TarnGetQuantennaSmartWiFiCfgToFile("ledd", "/a");

    Waits expected;
    for (std::uint32_t command = 78; command <= 110; ++command)
        expected[command] = command == 109 ? 10 : 3;
    EXPECT_EQ(waits, expected);
}

} // namespace
} // namespace tarn::test
