// Security settings, MAC filter, isolation.
#include "proxy_test.h"

namespace tarn::test
{
namespace
{

using Security = ProxyTest;

TEST_F(Security, BssAssociationLimitNamesNoInterface)
{
    expectNumbersAt({kParam1, kParam2}, 64, tarn_qcsapi_wifi_set_bss_assoc_limit);
}

TEST_F(Security, PassphraseIsCutTo63CharactersInTheSecondParameter)
{
    expectTextAt(kParam2, 63, 69, tarn_qcsapi_wifi_set_key_passphrase);
}

TEST_F(Security, TheThreeSecurityTextsAreCutTo32Characters)
{
    expectTextAt(kParam1, 32, 66, tarn_qcsapi_wifi_set_beacon_type);
    expectTextAt(kParam1, 32, 67, tarn_qcsapi_wifi_set_WPA_authentication_mode);
    expectTextAt(kParam1, 32, 68, tarn_qcsapi_wifi_set_WPA_encryption_modes);
}

TEST_F(Security, KeyIntervalPmfAndFilterModeGoToTheFirstParameter)
{
    expectNumbersAt({kParam1}, 70, tarn_qcsapi_wifi_set_group_key_interval);
    expectNumbersAt({kParam1}, 71, tarn_qcsapi_wifi_set_pmf);
    expectNumbersAt({kParam1}, 72, tarn_qcsapi_wifi_set_mac_address_filtering);
}

TEST_F(Security, IsolationGoesToTheSecondParameter)
{
    expectNumbersAt({kParam2}, 65, tarn_qcsapi_wifi_set_intra_bss_isolate);
    expectNumbersAt({kParam2}, 78, tarn_qcsapi_wifi_set_bss_isolate);
}

TEST_F(Security, VlanTakesBothParametersInOrder)
{
    expectNumbersAt({kParam1, kParam2}, 77, tarn_qcsapi_wifi_vlan_config);
}

// Zeros among them end nothing.
TEST_F(Security, FilteredAddressesAreSixRawBytes)
{
    const std::uint8_t mac[6] = {0x00, 0x10, 0x00, 0x00, 0xFF, 0x42};
    expectOnWifi0(75).bytes(kParam2, mac, sizeof mac);
    expectOnWifi0(76).bytes(kParam2, mac, sizeof mac);
    EXPECT_EQ(tarn_qcsapi_wifi_authorize_mac_address("ledd", kWifi0, mac), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_deny_mac_address("ledd", kWifi0, mac), 0);
}

TEST_F(Security, FilterModeIsReadFromTheResult)
{
    expectWordsFrom({kOut}, 74, tarn_qcsapi_wifi_get_mac_address_filtering);
}

TEST_F(Security, FiltersAreClearedByTheInterfaceAlone)
{
    expectNumbersAt({}, 73, tarn_qcsapi_wifi_clear_mac_address_filters);
}

TEST_F(Security, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_intra_bss_isolate), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_beacon_type), "ifname, p_new_beacon");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_WPA_authentication_mode), "ifname, authentication_mode");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_WPA_encryption_modes), "ifname, encryption_modes");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_key_passphrase), "ifname, passphrase");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_group_key_interval), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_pmf), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_mac_address_filtering), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_clear_mac_address_filters), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_mac_address_filtering), "ifname, current_mac_address_filtering");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_authorize_mac_address), "ifname, address_to_authorize");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_deny_mac_address), "ifname, address_to_deny");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_vlan_config), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_bss_isolate), "ifname");
}

} // namespace
} // namespace tarn::test
