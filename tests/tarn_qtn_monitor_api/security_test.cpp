// Security settings, MAC filter, isolation.
#include "proxy_test.h"

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using Security = ProxyTest;

TEST_F(Security, BssAssociationLimitNamesNoInterface)
{
    expectCommand(64).word(kParam1, 0xFFFFFFFF).word(kParam2, 20);
    EXPECT_EQ(tarn_qcsapi_wifi_set_bss_assoc_limit("ledd", 0xFFFFFFFF, 20), 0);
}

TEST_F(Security, PassphraseIsCutTo63CharactersInTheSecondParameter)
{
    expectOnWifi0(69).text(kParam2, kParam2Size, letters(63).c_str()).byte(167, 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_key_passphrase("ledd", "wifi0", letters(64).c_str()), 0);
}

TEST_F(Security, PassphraseOf63CharactersIsSentWhole)
{
    expectOnWifi0(69).text(kParam2, kParam2Size, letters(63).c_str());
    EXPECT_EQ(tarn_qcsapi_wifi_set_key_passphrase("ledd", "wifi0", letters(63).c_str()), 0);
}

TEST_F(Security, TheThreeSecurityTextsAreCutTo32Characters)
{
    for (const std::uint32_t command : {66u, 67u, 68u})
        expectOnWifi0(command).text(kParam1, kParam1Size, letters(32).c_str());
    EXPECT_EQ(tarn_qcsapi_wifi_set_beacon_type("ledd", "wifi0", letters(40).c_str()), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_WPA_authentication_mode("ledd", "wifi0", letters(40).c_str()), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_WPA_encryption_modes("ledd", "wifi0", letters(40).c_str()), 0);
}

TEST_F(Security, KeyIntervalPmfAndFilterModeGoToTheFirstParameter)
{
    for (const std::uint32_t command : {70u, 71u, 72u})
        expectOnWifi0(command).word(kParam1, 0x01020304);
    EXPECT_EQ(tarn_qcsapi_wifi_set_group_key_interval("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_pmf("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_mac_address_filtering("ledd", "wifi0", 0x01020304), 0);
}

TEST_F(Security, IsolationGoesToTheSecondParameter)
{
    for (const std::uint32_t command : {65u, 78u})
        expectOnWifi0(command).word(kParam2, 0x01020304);
    EXPECT_EQ(tarn_qcsapi_wifi_set_intra_bss_isolate("ledd", "wifi0", 0x01020304), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_bss_isolate("ledd", "wifi0", 0x01020304), 0);
}

TEST_F(Security, VlanTakesBothParametersInOrder)
{
    expectOnWifi0(77).word(kParam1, 2).word(kParam2, 100);
    EXPECT_EQ(tarn_qcsapi_wifi_vlan_config("ledd", "wifi0", 2, 100), 0);
}

TEST_F(Security, FilteredAddressesAreSixRawBytes)
{
    const std::uint8_t mac[6] = {0x00, 0x10, 0x00, 0x00, 0xFF, 0x00};
    expectOnWifi0(75).bytes(kParam2, mac, sizeof mac);
    expectOnWifi0(76).bytes(kParam2, mac, sizeof mac);
    EXPECT_EQ(tarn_qcsapi_wifi_authorize_mac_address("ledd", "wifi0", mac), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_deny_mac_address("ledd", "wifi0", mac), 0);
}

TEST_F(Security, BytesBehindZerosOfAnAddressAreSent)
{
    const std::uint8_t mac[6] = {0, 0, 0, 0, 0, 0x42};
    expectOnWifi0(75).byte(109, 0x42);
    EXPECT_EQ(tarn_qcsapi_wifi_authorize_mac_address("ledd", "wifi0", mac), 0);
}

TEST_F(Security, FilterModeIsReadFromTheResult)
{
    expectOnWifi0(74).replyWord(kOut, 2).status(4);

    std::uint32_t filtering = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_mac_address_filtering("ledd", "wifi0", &filtering), 4);
    EXPECT_EQ(filtering, 2u);
}

TEST_F(Security, FiltersAreClearedByTheInterfaceAlone)
{
    expectOnWifi0(73);
    EXPECT_EQ(tarn_qcsapi_wifi_clear_mac_address_filters("ledd", "wifi0"), 0);
}

TEST_F(Security, EachMissingArgumentIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_wifi_set_beacon_type("ledd", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_beacon_type("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_WPA_authentication_mode("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_WPA_encryption_modes("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_key_passphrase("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_mac_address_filtering("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_authorize_mac_address("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_deny_mac_address("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("ifname is NULL", "p_new_beacon is NULL", "authentication_mode is NULL", "encryption_modes is NULL",
                            "passphrase is NULL", "current_mac_address_filtering is NULL", "address_to_authorize is NULL",
                            "address_to_deny is NULL"));
}

} // namespace
} // namespace tarn::test
