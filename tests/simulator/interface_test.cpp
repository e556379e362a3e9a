#include "support.h"

#include "kor_iil.h"

namespace simulator_test
{

using InterfaceTest = SimulatorTest;

Record ssidIntf(std::uint32_t radioId, std::uint32_t ssidId)
{
    TarnSsidIntfData data;
    EXPECT_EQ(kDone, CALL(TarnGetSsidIntf)(radioId, ssidId, &data));
    return recordOf("TarnSsidIntfData", data);
}

TEST_F(InterfaceTest, InterfacesAreCountedListedAndRead)
{
    std::uint32_t number = 0;
    ASSERT_EQ(kDone, CALL(TarnGetSsidIntfNum)(1, &number));
    ASSERT_EQ(2U, number);
    for (std::uint32_t index = 0; index < number; ++index)
    {
        TarnSsidIntfData listed;
        ASSERT_EQ(kDone, CALL(TarnGetSsidIntfAt)(1, index, &listed));
        EXPECT_EQ(ssidIntf(1, index + 1).bytes(), recordOf("TarnSsidIntfData", listed).bytes());
        std::uint32_t isPrimary = 99;
        EXPECT_EQ(kDone, CALL(TarnGetSsidIntfIsPrimarySSIDIntf)(1, index + 1, &isPrimary));
        EXPECT_EQ(index == 0 ? 1U : 0U, isPrimary);
        EXPECT_EQ(isPrimary, ssidIntf(1, index + 1).number("primary"));
    }
    TarnSsidIntfData data;
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetSsidIntfAt)(1, number, &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetSsidIntf)(1, number + 1, &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetSsidIntf)(1, 0, &data));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetSsidIntf)(3, 1, &data));

    const Record guests = ssidIntf(1, 2);
    EXPECT_EQ("wifi1", guests.text("name"));
    EXPECT_EQ("guests", guests.text("ssid"));
    EXPECT_EQ((MacAddress{0x02, 0, 0, 0, 0, 0x11}), guests.address("bssid"));
    EXPECT_EQ(1U, guests.number("ssidGroupId"));
}

TEST_F(InterfaceTest, ConfigurationIsReadBack)
{
    Record cfg = blank("TarnSsidIntfCfg");
    cfg.setText("ssid", "renamed");
    cfg.setNumber("hidden", 1);
    cfg.setNumber("priority", 3);
    cfg.setNumber("enabled", 1);
    EXPECT_EQ(kDone, CALL(TarnSetSsidIntfCfg)(1, 2, 0, rawOf<TarnSsidIntfCfg>(cfg)));
    EXPECT_EQ("renamed", ssidIntf(1, 2).text("ssid"));
    EXPECT_EQ(1U, ssidIntf(1, 2).number("hidden"));
    EXPECT_EQ(3U, ssidIntf(1, 2).number("priority"));

    cfg.setText("ssid", "only this");
    cfg.setNumber("priority", 0);
    EXPECT_EQ(kDone, CALL(TarnSetSsidIntfCfg)(1, 2, 1, rawOf<TarnSsidIntfCfg>(cfg)));
    EXPECT_EQ("only this", ssidIntf(1, 2).text("ssid"));
    EXPECT_EQ(3U, ssidIntf(1, 2).number("priority"));

    cfg.setText("ssid", "");
    EXPECT_EQ(kInvalidValue, CALL(TarnSetSsidIntfCfg)(1, 2, 1, rawOf<TarnSsidIntfCfg>(cfg)));
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetSsidIntfCfg)(1, 3, 1, rawOf<TarnSsidIntfCfg>(cfg)));
}

TEST_F(InterfaceTest, StatisticsCountWhatTheStationsDo)
{
    passSeconds(100);
    TarnSsidIntfStats raw;
    ASSERT_EQ(kDone, CALL(TarnGetSsidIntfStats)(1, 1, &raw));
    const Record stats = recordOf("TarnSsidIntfStats", raw);
    EXPECT_EQ(12000U, stats.number("txPackets"));
    EXPECT_EQ(12000000U, stats.number("rxBytes"));
    EXPECT_EQ(3U, stats.number("stations"));

    // What the module says of the same interface.
    std::uint8_t module[84];
    ASSERT_EQ(kDone, CALL(tarn_qcsapi_get_interface_stats)("wifi0", module));
    EXPECT_EQ(stats.bytes(), recordOf("tarn_qcsapi_get_interface_stats.stats", module).bytes());

    // A station that is gone has counted all the same.
    EXPECT_EQ(kDone, CALL(TarnKickOutAccessPointAssociated)(1, 1, kFirstStation.data()));
    ASSERT_EQ(kDone, CALL(TarnGetSsidIntfStats)(1, 1, &raw));
    EXPECT_EQ(12000U, recordOf("TarnSsidIntfStats", raw).number("txPackets"));
    EXPECT_EQ(2U, recordOf("TarnSsidIntfStats", raw).number("stations"));
}

TEST_F(InterfaceTest, RoamingIsTheSameForTheModule)
{
    std::uint32_t enable = 99;
    const std::uint8_t given[2] = {0x0f, 0xe0};
    std::uint8_t mdid[2] = {};
    EXPECT_EQ(kDone, CALL(TarnSetSsidOPXRoamingEnable)(1, 1, 1));
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXRoamingState)(1, 1, &enable));
    EXPECT_EQ(1U, enable);
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_ieee80211r)("wifi0", 0));
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXRoamingState)(1, 1, &enable));
    EXPECT_EQ(0U, enable);
    EXPECT_EQ(kInvalidValue, CALL(TarnSetSsidOPXRoamingEnable)(1, 1, 2));
    EXPECT_EQ(kSwitchedOff, CALL(TarnSetSsidOPXRoamingEnable)(2, 1, 1)); // a radio that does not support it

    EXPECT_EQ(kDone, CALL(TarnSetSsidOPXRoamingMdid)(1, 1, given));
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXRoamingMdid)(1, 1, mdid));
    EXPECT_EQ(0, std::memcmp(given, mdid, sizeof mdid));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain)("wifi0", "12ab"));
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXRoamingMdid)(1, 1, mdid));
    EXPECT_EQ(0x12, mdid[0]);
    EXPECT_EQ(0xab, mdid[1]);
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wifi_set_ieee80211r_mobility_domain)("wifi0", "12abc"));
}

TEST_F(InterfaceTest, BlockListJudgesItsAddresses)
{
    std::uint32_t number = 99;
    std::uint8_t mac[6] = {0xee, 0xee, 0xee, 0xee, 0xee, 0xee};
    EXPECT_EQ(kDone, CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kStranger.data()));
    EXPECT_EQ(kDone, CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kFirstStation.data()));
    EXPECT_EQ(kAlreadyThere, CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kStranger.data()));
    EXPECT_EQ(kInvalidValue, CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, MacAddress{}.data()));
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXShgwBlockAddrNum)(1, 1, &number));
    EXPECT_EQ(2U, number);
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXShgwBlockAddrAt)(1, 1, 0, mac));
    EXPECT_EQ(0xee, mac[0]); // the library does not hand the address on
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetSsidOPXShgwBlockAddrAt)(1, 1, 2, mac));
    EXPECT_EQ(kDone, CALL(TarnDelSsidOPXShgwBlockAddr)(1, 1, kStranger.data()));
    EXPECT_EQ(kNotThere, CALL(TarnDelSsidOPXShgwBlockAddr)(1, 1, kStranger.data()));
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXShgwBlockAddrNum)(1, 1, &number));
    EXPECT_EQ(1U, number);
    EXPECT_EQ(kDone, CALL(TarnGetSsidOPXShgwBlockAddrNum)(1, 2, &number));
    EXPECT_EQ(0U, number);
}

// The message itself: command 53, two ids less one and an index in front, the address where commands 54 and 55 have it.
TEST_F(InterfaceTest, BlockListEntryTravelsInTheReply)
{
    std::uint8_t message[36] = {};
    EXPECT_EQ(kDone, CALL(TarnAddSsidOPXShgwBlockAddr)(1, 1, kStranger.data()));
    EXPECT_EQ(0U, KorIilExecute(kCaller, "TARN", 60, 53, sizeof message, message));
    EXPECT_EQ(0, std::memcmp(kStranger.data(), message + 12, 6));
}

TEST_F(InterfaceTest, BlockListIsLimited)
{
    for (std::uint8_t i = 0; i < 16; ++i)
        EXPECT_EQ(kDone, CALL(TarnAddSsidOPXShgwBlockAddr)(2, 1, MacAddress{0x02, 0, 0, 0, 8, i}.data()));
    EXPECT_EQ(kFull, CALL(TarnAddSsidOPXShgwBlockAddr)(2, 1, kStranger.data()));
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
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointCfg)(1, 1, rawOf<TarnAccessPointCfg>(cfg)));
    TarnAccessPointData raw;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPoint)(1, 1, &raw));
    const Record data = recordOf("TarnAccessPointData", raw);
    for (const char* name : {"enabled", "assocLimit", "intraBssIsolate", "beaconInterval", "dtim", "rtsThreshold", "txAmsdu"})
        EXPECT_EQ(cfg.number(name), data.number(name)) << name;
    EXPECT_EQ(3U, data.number("stations"));

    cfg.setNumber("dtim", 0);
    EXPECT_EQ(kInvalidValue, CALL(TarnSetAccessPointCfg)(1, 1, rawOf<TarnAccessPointCfg>(cfg)));
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetAccessPointCfg)(1, 3, rawOf<TarnAccessPointCfg>(cfg)));
    EXPECT_EQ(kNoSuchObject, CALL(TarnGetAccessPoint)(1, 3, &raw));
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
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointSecurityCfg)(1, 1, rawOf<TarnAccessPointSecurityCfg>(cfg)));
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointSecurityExCfg)(1, 1, 1800, 2));

    TarnAccessPointSecurityData raw;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointSecurity)(1, 1, &raw));
    const Record data = recordOf("TarnAccessPointSecurityData", raw);
    for (const char* name :
         {"beaconType", "authenticationMode", "encryptionModes", "passphrase", "radiusAddress", "radiusSecret"})
        EXPECT_EQ(cfg.text(name), data.text(name)) << name;
    EXPECT_EQ(1645U, data.number("radiusPort"));
    EXPECT_EQ(1800U, data.number("groupKeyInterval"));
    EXPECT_EQ(2U, data.number("pmf"));

    cfg.setText("passphrase", "short");
    EXPECT_EQ(kInvalidValue, CALL(TarnSetAccessPointSecurityCfg)(1, 1, rawOf<TarnAccessPointSecurityCfg>(cfg)));
    EXPECT_EQ(kInvalidValue, CALL(TarnSetAccessPointSecurityExCfg)(1, 1, 1800, 3));
    EXPECT_EQ(kNoSuchObject, CALL(TarnSetAccessPointSecurityExCfg)(1, 0, 1800, 2));
}

TEST_F(InterfaceTest, WpsConfigurationIsReadBack)
{
    Record cfg = blank("TarnAccessPointWpsCfg");
    cfg.setNumber("wpsEnabled", 1);
    cfg.setNumber("wpsConfigured", 1);
    cfg.setNumber("wpsUpnp", 1);
    cfg.setText("wpsApPin", "00000000");
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointWpsCfg)(1, 1, 0, rawOf<TarnAccessPointWpsCfg>(cfg)));
    TarnAccessPointWpsData raw;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointWps)(1, 1, &raw));
    EXPECT_EQ(1U, recordOf("TarnAccessPointWpsData", raw).number("wpsConfigured"));
    EXPECT_EQ(1U, recordOf("TarnAccessPointWpsData", raw).number("wpsUpnp"));
    EXPECT_EQ("00000000", recordOf("TarnAccessPointWpsData", raw).text("wpsApPin"));

    cfg.setText("wpsApPin", "12345678"); // a wrong check digit
    EXPECT_EQ(kInvalidValue, CALL(TarnSetAccessPointWpsCfg)(1, 1, 0, rawOf<TarnAccessPointWpsCfg>(cfg)));
    EXPECT_EQ(kDone, CALL(TarnSetAccessPointWpsCfg)(1, 1, 1, rawOf<TarnAccessPointWpsCfg>(cfg))); // the first field alone
    EXPECT_EQ(kInvalidValue, CALL(TarnSetAccessPointWpsCfg)(1, 1, 32, rawOf<TarnAccessPointWpsCfg>(cfg)));
}

// --- The WPS window ----------------------------------------------------------------------------------------------------------

std::uint32_t windowStatus()
{
    std::uint32_t status = 99;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointWpsWindowStatus)(1, 1, &status));
    return status;
}

std::string moduleWpsState()
{
    char text[32];
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_get_state)("wifi0", text, sizeof text));
    return text;
}

TEST_F(InterfaceTest, WpsWindowOpensAndExpires)
{
    EXPECT_EQ(0U, windowStatus());
    EXPECT_EQ("idle", moduleWpsState());
    EXPECT_EQ(kDone, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0));
    EXPECT_EQ(kBusy, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0));
    EXPECT_EQ(1U, windowStatus());
    EXPECT_EQ("open", moduleWpsState());
    passSeconds(119);
    TarnAccessPointWpsData raw;
    EXPECT_EQ(kDone, CALL(TarnGetAccessPointWps)(1, 1, &raw));
    EXPECT_EQ(1U, recordOf("TarnAccessPointWpsData", raw).number("windowStatus"));
    EXPECT_EQ(1U, recordOf("TarnAccessPointWpsData", raw).number("windowSecondsLeft"));
    EXPECT_EQ(1U, recordOf("TarnAccessPointWpsData", raw).number("windowMethod"));
    passSeconds(1);
    EXPECT_EQ(2U, windowStatus());
    EXPECT_EQ("expired", moduleWpsState());
}

TEST_F(InterfaceTest, WpsWindowIsCancelledFromEitherSide)
{
    EXPECT_EQ(kNotThere, CALL(TarnCancelAccessPointWpsWindow)(1, 1));
    EXPECT_EQ(kDone, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_cancel)(kWifi0));
    EXPECT_EQ(3U, windowStatus());
    EXPECT_EQ(kModuleNotThere, CALL(tarn_qcsapi_wps_cancel)(kWifi0));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_registrar_report_button_press)("wifi0"));
    EXPECT_EQ(1U, windowStatus());
    EXPECT_EQ(kDone, CALL(TarnCancelAccessPointWpsWindow)(1, 1));
    EXPECT_EQ("cancelled", moduleWpsState());
}

TEST_F(InterfaceTest, WpsWindowOpensByPin)
{
    EXPECT_EQ(kInvalidValue, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 2, 12345678));
    EXPECT_EQ(kInvalidValue, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 3, 0));
    EXPECT_EQ(kDone, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 2, 12345670));
    EXPECT_EQ("12345670", state("/radios/0/interfaces/0/wpsWindow/pin"));
    EXPECT_EQ(kDone, CALL(TarnCancelAccessPointWpsWindow)(1, 1));
    EXPECT_EQ(kModuleInvalidValue, CALL(tarn_qcsapi_wps_registrar_report_pin)("wifi0", "1234567"));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wps_registrar_report_pin)("wifi0", "00000000"));
    EXPECT_EQ(1U, windowStatus());
}

TEST_F(InterfaceTest, WpsWindowNeedsWhatItNeeds)
{
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_disable_wps)("wifi0", 1));
    EXPECT_EQ(kSwitchedOff, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0));
    EXPECT_EQ("disabled", moduleWpsState());
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_wifi_disable_wps)("wifi0", 0));
    EXPECT_EQ(kDone, CALL(TarnTriggerAccessPointWpsWindow)(1, 1, 1, 0));
    EXPECT_EQ(kDone, CALL(tarn_qcsapi_interface_enable)("wifi0", 0));
    EXPECT_EQ(3U, windowStatus());
}

} // namespace simulator_test
