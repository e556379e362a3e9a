#include "support.h"

#include "kor_iil.h"

namespace simulator_test
{

using InterfaceTest = SimulatorTest;

Record ssidIntf(std::uint32_t radioId, std::uint32_t ssidId)
{
    TarnSsidIntfData data;
    EXPECT_EQ(CALL(TarnGetSsidIntf)(radioId, ssidId, &data), kDone);
    return recordOf("TarnSsidIntfData", data);
}

TEST_F(InterfaceTest, InterfacesAreCountedListedAndRead)
{
    std::uint32_t number = 0;
    ASSERT_EQ(CALL(TarnGetSsidIntfNum)(1, &number), kDone);
    ASSERT_EQ(number, 2u);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnSsidIntfData listed;
        ASSERT_EQ(CALL(TarnGetSsidIntfAt)(1, index, &listed), kDone);
        EXPECT_EQ(ssidIntf(1, index + 1).bytes(), recordOf("TarnSsidIntfData", listed).bytes());
        std::uint32_t isPrimary = 99;
        EXPECT_EQ(CALL(TarnGetSsidIntfIsPrimarySSIDIntf)(1, index + 1, &isPrimary), kDone);
        EXPECT_EQ(isPrimary, index == 0 ? 1u : 0u);
        EXPECT_EQ(isPrimary, ssidIntf(1, index + 1).number("primary"));
    }
    TarnSsidIntfData data;
    EXPECT_EQ(CALL(TarnGetSsidIntfAt)(1, number, &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetSsidIntf)(1, number + 1, &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetSsidIntf)(1, 0, &data), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetSsidIntf)(3, 1, &data), kNoSuchObject);

    const Record guests = ssidIntf(1, 2);
    EXPECT_EQ(guests.text("name"), "wifi1");
    EXPECT_EQ(guests.text("ssid"), "guests");
    EXPECT_EQ(guests.address("bssid"), (MacAddress{0x02, 0, 0, 0, 0, 0x11}));
    EXPECT_EQ(guests.number("ssidGroupId"), 1u);
}

TEST_F(InterfaceTest, ConfigurationIsReadBack)
{
    Record cfg = blank("TarnSsidIntfCfg");
    cfg.setText("ssid", "renamed");
    cfg.setNumber("hidden", 1);
    cfg.setNumber("priority", 3);
    cfg.setNumber("enabled", 1);
    EXPECT_EQ(CALL(TarnSetSsidIntfCfg)(1, 2, 0, rawOf<TarnSsidIntfCfg>(cfg)), kDone);
    EXPECT_EQ(ssidIntf(1, 2).text("ssid"), "renamed");
    EXPECT_EQ(ssidIntf(1, 2).number("hidden"), 1u);
    EXPECT_EQ(ssidIntf(1, 2).number("priority"), 3u);

    cfg.setText("ssid", "only this");
    cfg.setNumber("priority", 0);
    EXPECT_EQ(CALL(TarnSetSsidIntfCfg)(1, 2, 1, rawOf<TarnSsidIntfCfg>(cfg)), kDone);
    EXPECT_EQ(ssidIntf(1, 2).text("ssid"), "only this");
    EXPECT_EQ(ssidIntf(1, 2).number("priority"), 3u);

    cfg.setText("ssid", "");
    EXPECT_EQ(CALL(TarnSetSsidIntfCfg)(1, 2, 1, rawOf<TarnSsidIntfCfg>(cfg)), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetSsidIntfCfg)(1, 3, 1, rawOf<TarnSsidIntfCfg>(cfg)), kNoSuchObject);
}

TEST_F(InterfaceTest, StatisticsCountWhatTheStationsDo)
{
    passSeconds(100);
    TarnSsidIntfStats raw;
    ASSERT_EQ(CALL(TarnGetSsidIntfStats)(1, 1, &raw), kDone);
    const Record stats = recordOf("TarnSsidIntfStats", raw);
    EXPECT_EQ(stats.number("txPackets"), 12000u);
    EXPECT_EQ(stats.number("rxBytes"), 12000000u);
    EXPECT_EQ(stats.number("stations"), 3u);

    // The module's answer for the same interface.
    std::uint8_t module[84];
    ASSERT_EQ(CALL(tarn_qcsapi_get_interface_stats)("wifi0", module), kDone);
    EXPECT_EQ(stats.bytes(), recordOf("tarn_qcsapi_get_interface_stats.stats", module).bytes());

    // What a station has counted remains when it is gone.
    EXPECT_EQ(CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()), kDone);
    ASSERT_EQ(CALL(TarnGetSsidIntfStats)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnSsidIntfStats", raw).number("txPackets"), 12000u);
    EXPECT_EQ(recordOf("TarnSsidIntfStats", raw).number("stations"), 2u);
}

TEST_F(InterfaceTest, RoamingIsTheSameForTheModule)
{
    std::uint32_t enable = 99;
    const std::uint8_t given[2] = {0x0f, 0xe0};
    std::uint8_t mdid[2] = {};
    EXPECT_EQ(CALL(TarnSetSsidOPXRoamingEnable)(1, 1, 1), kDone);
    EXPECT_EQ(CALL(TarnGetSsidOPXRoamingState)(1, 1, &enable), kDone);
    EXPECT_EQ(enable, 1u);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_ieee80211r)("wifi0", 0), kDone);
    EXPECT_EQ(CALL(TarnGetSsidOPXRoamingState)(1, 1, &enable), kDone);
    EXPECT_EQ(enable, 0u);
    EXPECT_EQ(CALL(TarnSetSsidOPXRoamingEnable)(1, 1, 2), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetSsidOPXRoamingEnable)(2, 1, 1), kSwitchedOff); // a radio that does not support it

    EXPECT_EQ(CALL(TarnSetSsidOPXRoamingMdid)(1, 1, given), kDone);
    EXPECT_EQ(CALL(TarnGetSsidOPXRoamingMdid)(1, 1, mdid), kDone);
    EXPECT_EQ(std::memcmp(given, mdid, sizeof mdid), 0);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain)("wifi0", "12ab"), kDone);
    EXPECT_EQ(CALL(TarnGetSsidOPXRoamingMdid)(1, 1, mdid), kDone);
    EXPECT_EQ(mdid[0], 0x12);
    EXPECT_EQ(mdid[1], 0xab);
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain)("wifi0", "12abc"), kModuleInvalidValue);
}

TEST_F(InterfaceTest, BlockListJudgesItsAddresses)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {0xee, 0xee, 0xee, 0xee, 0xee, 0xee};
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kFirstStation.data()), kDone);
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kStranger.data()), kAlreadyThere);
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, MacAddress{}.data()), kInvalidValue);
    EXPECT_EQ(CALL(TarnGetSsidOPXShgwBlockAddrNum)(1, 1, &number), kDone);
    EXPECT_EQ(number, 2u);
    EXPECT_EQ(CALL(TarnGetSsidOPXShgwBlockAddrAt)(1, 1, 0, mac), kDone);
    EXPECT_EQ(mac[0], 0xee); // the library does not hand the address on
    EXPECT_EQ(CALL(TarnGetSsidOPXShgwBlockAddrAt)(1, 1, 2, mac), kNoSuchObject);
    EXPECT_EQ(CALL(TarnDelSsidOPXShgwBlockAddr)(1, 1, kStranger.data()), kDone);
    EXPECT_EQ(CALL(TarnDelSsidOPXShgwBlockAddr)(1, 1, kStranger.data()), kNotThere);
    EXPECT_EQ(CALL(TarnGetSsidOPXShgwBlockAddrNum)(1, 1, &number), kDone);
    EXPECT_EQ(number, 1u);
    EXPECT_EQ(CALL(TarnGetSsidOPXShgwBlockAddrNum)(1, 2, &number), kDone);
    EXPECT_EQ(number, 0u);
}

// The message itself: command 53, two ids less one and an index in front, the address where commands 54 and 55 have it.
TEST_F(InterfaceTest, BlockListEntryTravelsInTheReply)
{
    std::uint8_t message[36] = {};
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kStranger.data()), kDone);
    EXPECT_EQ(KorIilExecute(kCaller, "TARN", 60, 53, sizeof message, message), 0u);
    EXPECT_EQ(std::memcmp(kStranger.data(), message + 12, 6), 0);
}

TEST_F(InterfaceTest, BlockListIsLimited)
{
    for (std::uint8_t i = 0; i < 16; ++i)
        EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(2, 1, MacAddress{0x02, 0, 0, 0, 8, i}.data()), kDone);
    EXPECT_EQ(CALL(TarnAddSsidOPXShgwBlockAddr)(2, 1, kStranger.data()), kFull);
}

// --- Access points -----------------------------------------------------------------------------------------------------------

TEST_F(InterfaceTest, AccessPointConfigurationIsReadBack)
{
    Record cfg = blank("TarnAccessPointCfg");
    cfg.setNumber("enabled", 1);
    cfg.setNumber("assocLimit", 10);
    cfg.setNumber("intraBssIsolate", 1);
    cfg.setNumber("beaconInterval", 200);
    cfg.setNumber("dtim", 3);
    cfg.setNumber("rtsThreshold", 500);
    EXPECT_EQ(CALL(TarnSetAccessPointCfg)(1, 1, rawOf<TarnAccessPointCfg>(cfg)), kDone);
    TarnAccessPointData raw;
    EXPECT_EQ(CALL(TarnGetAccessPoint)(1, 1, &raw), kDone);
    const Record data = recordOf("TarnAccessPointData", raw);
    for (const char* name : {"enabled", "assocLimit", "intraBssIsolate", "beaconInterval", "dtim", "rtsThreshold", "txAmsdu"})
        EXPECT_EQ(data.number(name), cfg.number(name)) << name;
    EXPECT_EQ(data.number("stations"), 3u);

    cfg.setNumber("dtim", 0);
    EXPECT_EQ(CALL(TarnSetAccessPointCfg)(1, 1, rawOf<TarnAccessPointCfg>(cfg)), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetAccessPointCfg)(1, 3, rawOf<TarnAccessPointCfg>(cfg)), kNoSuchObject);
    EXPECT_EQ(CALL(TarnGetAccessPoint)(1, 3, &raw), kNoSuchObject);
}

TEST_F(InterfaceTest, SecurityIsReadBack)
{
    Record cfg = blank("TarnAccessPointSecurityCfg");
    cfg.setText("beaconType", "wpa3");
    cfg.setText("authenticationMode", "sae");
    cfg.setText("encryptionModes", "aes");
    cfg.setText("passphrase", "a better one");
    cfg.setText("radiusAddress", "192.0.2.1");
    cfg.setNumber("radiusPort", 1645);
    EXPECT_EQ(CALL(TarnSetAccessPointSecurityCfg)(1, 1, rawOf<TarnAccessPointSecurityCfg>(cfg)), kDone);
    EXPECT_EQ(CALL(TarnSetAccessPointSecurityExCfg)(1, 1, 1800, 2), kDone);

    TarnAccessPointSecurityData raw;
    EXPECT_EQ(CALL(TarnGetAccessPointSecurity)(1, 1, &raw), kDone);
    const Record data = recordOf("TarnAccessPointSecurityData", raw);
    for (const char* name :
         {"beaconType", "authenticationMode", "encryptionModes", "passphrase", "radiusAddress", "radiusSecret"})
        EXPECT_EQ(data.text(name), cfg.text(name)) << name;
    EXPECT_EQ(data.number("radiusPort"), 1645u);
    EXPECT_EQ(data.number("groupKeyInterval"), 1800u);
    EXPECT_EQ(data.number("pmf"), 2u);

    cfg.setText("passphrase", "short");
    EXPECT_EQ(CALL(TarnSetAccessPointSecurityCfg)(1, 1, rawOf<TarnAccessPointSecurityCfg>(cfg)), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetAccessPointSecurityExCfg)(1, 1, 1800, 3), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetAccessPointSecurityExCfg)(1, 0, 1800, 2), kNoSuchObject);
}

TEST_F(InterfaceTest, WpsConfigurationIsReadBack)
{
    Record cfg = blank("TarnAccessPointWpsCfg");
    cfg.setNumber("wpsEnabled", 1);
    cfg.setNumber("wpsConfigured", 1);
    cfg.setNumber("wpsUpnp", 1);
    cfg.setText("wpsApPin", "00000000");
    EXPECT_EQ(CALL(TarnSetAccessPointWpsCfg)(1, 1, 0, rawOf<TarnAccessPointWpsCfg>(cfg)), kDone);
    TarnAccessPointWpsData raw;
    EXPECT_EQ(CALL(TarnGetAccessPointWps)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).number("wpsConfigured"), 1u);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).number("wpsUpnp"), 1u);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).text("wpsApPin"), "00000000");

    cfg.setText("wpsApPin", "12345678"); // a wrong check digit
    EXPECT_EQ(CALL(TarnSetAccessPointWpsCfg)(1, 1, 0, rawOf<TarnAccessPointWpsCfg>(cfg)), kInvalidValue);
    EXPECT_EQ(CALL(TarnSetAccessPointWpsCfg)(1, 1, 1, rawOf<TarnAccessPointWpsCfg>(cfg)), kDone); // the first field alone
    EXPECT_EQ(CALL(TarnSetAccessPointWpsCfg)(1, 1, 32, rawOf<TarnAccessPointWpsCfg>(cfg)), kInvalidValue);
}

// --- The WPS window ----------------------------------------------------------------------------------------------------------

std::uint32_t windowStatus()
{
    std::uint32_t status = 99;
    EXPECT_EQ(CALL(TarnGetAccessPointWpsWindowStatus)(1, 1, &status), kDone);
    return status;
}

std::string moduleWpsState()
{
    char text[32];
    EXPECT_EQ(CALL(tarn_qcsapi_wps_get_state)("wifi0", text, sizeof text), kDone);
    return text;
}

TEST_F(InterfaceTest, WpsWindowOpensAndExpires)
{
    EXPECT_EQ(windowStatus(), 0u);
    EXPECT_EQ(moduleWpsState(), "idle");
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kBusy);
    EXPECT_EQ(windowStatus(), 1u);
    EXPECT_EQ(moduleWpsState(), "open");
    passSeconds(119);
    TarnAccessPointWpsData raw;
    EXPECT_EQ(CALL(TarnGetAccessPointWps)(1, 1, &raw), kDone);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).number("windowStatus"), 1u);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).number("windowSecondsLeft"), 1u);
    EXPECT_EQ(recordOf("TarnAccessPointWpsData", raw).number("windowMethod"), 1u);
    passSeconds(1);
    EXPECT_EQ(windowStatus(), 2u);
    EXPECT_EQ(moduleWpsState(), "expired");
}

TEST_F(InterfaceTest, WpsWindowIsCancelledFromEitherSide)
{
    EXPECT_EQ(CALL(TarnCancelAccessPointWpsWindow)(1, 1), kNotThere);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_cancel)(kWifi0), kDone);
    EXPECT_EQ(windowStatus(), 3u);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_cancel)(kWifi0), kModuleNotThere);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_registrar_report_button_press)("wifi0"), kDone);
    EXPECT_EQ(windowStatus(), 1u);
    EXPECT_EQ(CALL(TarnCancelAccessPointWpsWindow)(1, 1), kDone);
    EXPECT_EQ(moduleWpsState(), "cancelled");
}

TEST_F(InterfaceTest, WpsWindowOpensByPin)
{
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 2, 12345678), kInvalidValue);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 3, 0), kInvalidValue);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 2, 12345670), kDone);
    EXPECT_EQ(state("/radios/0/interfaces/0/wpsWindow/pin"), "12345670");
    EXPECT_EQ(CALL(TarnCancelAccessPointWpsWindow)(1, 1), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_registrar_report_pin)("wifi0", "1234567"), kModuleInvalidValue);
    EXPECT_EQ(CALL(tarn_qcsapi_wps_registrar_report_pin)("wifi0", "00000000"), kDone);
    EXPECT_EQ(windowStatus(), 1u);
}

TEST_F(InterfaceTest, WpsWindowNeedsWhatItNeeds)
{
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disable_wps)("wifi0", 1), kDone);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kSwitchedOff);
    EXPECT_EQ(moduleWpsState(), "disabled");
    EXPECT_EQ(CALL(tarn_qcsapi_wifi_disable_wps)("wifi0", 0), kDone);
    EXPECT_EQ(CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0), kDone);
    EXPECT_EQ(CALL(tarn_qcsapi_interface_enable)("wifi0", 0), kDone);
    EXPECT_EQ(windowStatus(), 3u);
}

} // namespace simulator_test
