// Channels, bandwidths and regulatory lists.
#include "proxy_test.h"

namespace tarn::test
{
namespace
{

using Channel = ProxyTest;

TEST_F(Channel, SingleWordsComeFromTheStartOfTheResult)
{
    expectWordsFrom({kOut}, 2, tarn_qcsapi_wifi_get_channel);
    expectWordsFrom({kOut}, 3, tarn_qcsapi_wifi_get_bw);
    expectWordsFrom({kOut}, 5, tarn_qcsapi_wifi_get_dfs_s_radio_status);
}

TEST_F(Channel, SecondaryChannelIsAskedForByThePrimary)
{
    expectWordsFrom({kOut}, 4, tarn_qcsapi_wifi_get_sec_chan);
}

TEST_F(Channel, BandwidthIsSetInTheSecondParameterAndChannelInTheFirst)
{
    expectNumbersAt({kParam2}, 47, tarn_qcsapi_wifi_set_bw);
    expectNumbersAt({kParam1}, 48, tarn_qcsapi_wifi_set_channel);
}

TEST_F(Channel, RegionIsCutTo32Characters)
{
    expectCommand(24).text(kParam1, kParam1Size, letters(32).c_str()).word(kParam2, 40);

    char channels[8] = "";
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels("ledd", letters(40).c_str(), 40, channels, sizeof channels),
              0);
}

TEST_F(Channel, RegionOfAnInterfaceIsCutTo32CharactersToo)
{
    expectOnWifi0(25).text(kParam1, kParam1Size, letters(32).c_str()).word(kParam2, 40).word(kParam3, 2);

    char channels[8] = "";
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", kWifi0, letters(40).c_str(), 40, 2, channels,
                                                                     sizeof channels),
              0);
}

TEST_F(Channel, BothCountryNamesAreCutTo32Characters)
{
    expectOnWifi0(43).text(kParam1, kParam1Size, letters(32).c_str()).text(kParam2, kParam2Size, letters(32).c_str());
    EXPECT_EQ(tarn_qcsapi_regulatory_overwrite_country_code("ledd", kWifi0, letters(40).c_str(), letters(40).c_str()), 0);
}

TEST_F(Channel, NewCountryFollowsTheCurrentOne)
{
    expectOnWifi0(43).text(kParam1, kParam1Size, "eu").text(kParam2, kParam2Size, "us");
    EXPECT_EQ(tarn_qcsapi_regulatory_overwrite_country_code("ledd", kWifi0, "eu", "us"), 0);
}

// The functions differ in how they call the name of the interface and of the region.
TEST_F(Channel, EachMissingArgumentIsNamedInOrder)
{
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_channel), "intf_name, channel");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_bw), "intf_name, bandwidth");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_sec_chan), "intf_name, secondary_channel");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_dfs_s_radio_status), "intf_name, status");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_get_list_channels), "intf_name, list_of_channels");
    EXPECT_EQ(missing(tarn_qcsapi_regulatory_get_list_regulatory_channels), "region_by_name, list_of_channels");
    EXPECT_EQ(missing(tarn_qcsapi_regulatory_get_list_regulatory_channels_if), "ifname, region_name, list_of_channels");
    EXPECT_EQ(missing(tarn_qcsapi_regulatory_overwrite_country_code), "ifname, curr_country_name, new_country_name");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_bw), "ifname");
    EXPECT_EQ(missing(tarn_qcsapi_wifi_set_channel), "ifname");
}

} // namespace
} // namespace tarn::test
