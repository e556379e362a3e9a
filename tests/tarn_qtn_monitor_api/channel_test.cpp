// Channels, bandwidths and regulatory lists.
#include "proxy_test.h"

#include <cstring>

using testing::ElementsAre;

namespace tarn::test
{
namespace
{

using Channel = ProxyTest;

TEST_F(Channel, SecondaryChannelIsAskedForByThePrimary)
{
    expectOnWifi0(4).word(kParam1, 36).replyWord(kOut, 40);

    std::uint32_t secondary = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_sec_chan("ledd", "wifi0", 36, &secondary), 0);
    EXPECT_EQ(secondary, 40u);
}

TEST_F(Channel, BandwidthIsSetInTheSecondParameterAndChannelInTheFirst)
{
    expectOnWifi0(47).word(kParam2, 80);
    expectOnWifi0(48).word(kParam1, 36);
    EXPECT_EQ(tarn_qcsapi_wifi_set_bw("ledd", "wifi0", 80), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_set_channel("ledd", "wifi0", 36), 0);
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
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", "wifi0", letters(40).c_str(), 40, 2, channels,
                                                                     sizeof channels),
              0);
}

TEST_F(Channel, BothCountryNamesAreCutTo32Characters)
{
    expectOnWifi0(43).text(kParam1, kParam1Size, letters(32).c_str()).text(kParam2, kParam2Size, letters(32).c_str());
    EXPECT_EQ(tarn_qcsapi_regulatory_overwrite_country_code("ledd", "wifi0", letters(40).c_str(), letters(40).c_str()), 0);
}

TEST_F(Channel, NewCountryFollowsTheCurrentOne)
{
    expectOnWifi0(43).text(kParam1, kParam1Size, "eu").text(kParam2, kParam2Size, "us");
    EXPECT_EQ(tarn_qcsapi_regulatory_overwrite_country_code("ledd", "wifi0", "eu", "us"), 0);
}

TEST_F(Channel, ListThatIsLongerThanTheBufferIsCut)
{
    expectOnWifi0(23).replyText(kOut, "36,40,44,48,52");

    char channels[10];
    std::memset(channels, '#', sizeof channels);
    EXPECT_EQ(tarn_qcsapi_wifi_get_list_channels("ledd", "wifi0", channels, 9), 0);
    EXPECT_STREQ(channels, "36,40,44");
    EXPECT_EQ(channels[9], '#');
}

TEST_F(Channel, TimeOutLeavesTheChannel)
{
    expectOnWifi0(2).fail(7);

    std::uint32_t channel = kUntouched;
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", &channel), -1);
    EXPECT_EQ(channel, kUntouched);
    EXPECT_THAT(platform.traceTexts(), ElementsAre("fail to KorIilExecute(), err = TIMEOUT"));
}

TEST_F(Channel, SingleWordsComeFromTheStartOfTheResult)
{
    expectOnWifi0(3).replyWord(kOut, 80);
    expectOnWifi0(5).replyWord(kOut, 1);

    std::uint32_t bandwidth = 0;
    std::uint32_t status = 0;
    EXPECT_EQ(tarn_qcsapi_wifi_get_bw("ledd", "wifi0", &bandwidth), 0);
    EXPECT_EQ(tarn_qcsapi_wifi_get_dfs_s_radio_status("ledd", "wifi0", &status), 0);
    EXPECT_EQ(bandwidth, 80u);
    EXPECT_EQ(status, 1u);
}

TEST_F(Channel, EachMissingWordIsNamed)
{
    EXPECT_EQ(tarn_qcsapi_wifi_get_channel("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_bw("ledd", "wifi0", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_sec_chan("ledd", "wifi0", 36, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_dfs_s_radio_status("ledd", "wifi0", nullptr), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("channel is NULL", "bandwidth is NULL", "secondary_channel is NULL", "status is NULL"));
}

// The two list functions and the setters differ in how they call the name of the interface and of the region.
TEST_F(Channel, EachMissingArgumentIsNamedInOrder)
{
    char list[8] = "";
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels("ledd", nullptr, 20, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels("ledd", "eu", 20, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", nullptr, nullptr, 20, 0, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", "wifi0", nullptr, 20, 0, list, 8), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_get_list_regulatory_channels_if("ledd", "wifi0", "eu", 20, 0, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_overwrite_country_code("ledd", "wifi0", nullptr, nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_regulatory_overwrite_country_code("ledd", "wifi0", "eu", nullptr), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_get_list_channels("ledd", nullptr, nullptr, 0), -1);
    EXPECT_EQ(tarn_qcsapi_wifi_set_bw("ledd", nullptr, 20), -1);
    EXPECT_THAT(platform.traceTexts(),
                ElementsAre("region_by_name is NULL", "list_of_channels is NULL", "ifname is NULL", "region_name is NULL",
                            "list_of_channels is NULL", "curr_country_name is NULL", "new_country_name is NULL",
                            "intf_name is NULL", "ifname is NULL"));
}

} // namespace
} // namespace tarn::test
